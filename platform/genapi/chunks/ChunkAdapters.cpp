#include <algorithm>
#include <string>
#include <vector>

#include "Base/GCException.h"
#include "GenApi/ChunkAdapterGEV.h"
#include "GenApi/ChunkAdapterGenDC.h"
#include "GenApi/ChunkAdapterGeneric.h"
#include "GenApi/ChunkAdapterU3V.h"
#include "chunks/AdapterCore.h"
#include "chunks/HexId.h"

namespace GENAPI_NAMESPACE {
namespace {

std::vector<zyn::genapi::FoundChunk> ParseOrThrow(const uint8_t* buffer, int64_t length, bool bigEndian) {
  auto chunks = zyn::genapi::ParseTrailers(buffer, length, bigEndian);
  if (!chunks) throw RUNTIME_EXCEPTION("Invalid layout of buffer attached to chunk parser!");
  return std::move(*chunks);
}

std::string IdOf(const SingleChunkData_t& chunk) {
  return zyn::genapi::NormalizedHexId(chunk.ChunkID);
}
std::string IdOf(const SingleChunkDataStr_t& chunk) {
  return zyn::genapi::NormalizedHexId(std::string_view(chunk.ChunkID.c_str(), chunk.ChunkID.size()));
}

// The last entry of an identifier holds.
template <class Chunk>
zyn::genapi::ChunkPlace FindIn(const Chunk* chunks, int64_t count, const std::string& id) {
  for (int64_t i = count - 1; i >= 0; --i)
    if (IdOf(chunks[i]) == id)
      return {chunks[i].ChunkOffset, static_cast<int64_t>(chunks[i].ChunkLength), true};
  return {};
}

void RequireList(const void* chunks, int64_t count) {
  if (count < 0 || (!chunks && count > 0))
    throw INVALID_ARGUMENT_EXCEPTION("The list of chunks is null or its length negative.");
}

}  // namespace

CChunkAdapterGEV::CChunkAdapterGEV(INodeMap* pNodeMap, int64_t MaxChunkCacheSize)
    : CChunkAdapter(pNodeMap, MaxChunkCacheSize) {}
CChunkAdapterGEV::~CChunkAdapterGEV() = default;

bool CChunkAdapterGEV::CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) {
  return zyn::genapi::ParseTrailers(pBuffer, BufferLength, true).has_value();
}

void CChunkAdapterGEV::AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                                    AttachStatistics_t* pAttachStatistics) {
  m_pImpl->AttachBuffer(pBuffer, ParseOrThrow(pBuffer, BufferLength, true), pAttachStatistics);
}

CChunkAdapterU3V::CChunkAdapterU3V(INodeMap* pNodeMap, int64_t MaxChunkCacheSize)
    : CChunkAdapter(pNodeMap, MaxChunkCacheSize) {}
CChunkAdapterU3V::~CChunkAdapterU3V() = default;

bool CChunkAdapterU3V::CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) {
  return zyn::genapi::ParseTrailers(pBuffer, BufferLength, false).has_value();
}

void CChunkAdapterU3V::AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                                    AttachStatistics_t* pAttachStatistics) {
  m_pImpl->AttachBuffer(pBuffer, ParseOrThrow(pBuffer, BufferLength, false), pAttachStatistics);
}

CChunkAdapterGenDC::CChunkAdapterGenDC(INodeMap* pNodeMap, int64_t MaxChunkCacheSize)
    : CChunkAdapterU3V(pNodeMap, MaxChunkCacheSize) {}
CChunkAdapterGenDC::~CChunkAdapterGenDC() = default;

CChunkAdapterGeneric::CChunkAdapterGeneric(INodeMap* pNodeMap, int64_t MaxChunkCacheSize)
    : CChunkAdapter(pNodeMap, MaxChunkCacheSize) {}
CChunkAdapterGeneric::~CChunkAdapterGeneric() = default;

bool CChunkAdapterGeneric::CheckBufferLayout(uint8_t*, int64_t) {
  return false;
}

void CChunkAdapterGeneric::AttachBuffer(uint8_t*, int64_t, AttachStatistics_t*) {
  throw RUNTIME_EXCEPTION("This adapter needs the list of the chunks.");
}

void CChunkAdapterGeneric::AttachBuffer(uint8_t* pBuffer, SingleChunkData_t* ChunkData, int64_t NumChunks,
                                        AttachStatistics_t* pAttachStatistics) {
  RequireList(ChunkData, NumChunks);
  m_pImpl->AttachBuffer(
      pBuffer, static_cast<int>(NumChunks),
      [=](const std::string& id) { return FindIn(ChunkData, NumChunks, id); }, pAttachStatistics);
}

void CChunkAdapterGeneric::AttachBuffer(uint8_t* pBuffer, SingleChunkDataStr_t* ChunkData, int64_t NumChunks,
                                        AttachStatistics_t* pAttachStatistics) {
  RequireList(ChunkData, NumChunks);
  m_pImpl->AttachBuffer(
      pBuffer, static_cast<int>(NumChunks),
      [=](const std::string& id) { return FindIn(ChunkData, NumChunks, id); }, pAttachStatistics);
}

}  // namespace GENAPI_NAMESPACE
