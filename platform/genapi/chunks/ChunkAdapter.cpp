#include "GenApi/ChunkAdapter.h"

#include <algorithm>
#include <iterator>

#include "Base/GCException.h"
#include "GenApi/IChunkPort.h"
#include "chunks/AdapterCore.h"
#include "chunks/HexId.h"

namespace zyn::genapi {
namespace {

constexpr std::int64_t kTrailerBytes = 8;

std::uint32_t Load32(const std::uint8_t* bytes, bool bigEndian) {
  std::uint32_t value = 0;
  for (int i = 0; i < 4; ++i) value = value << 8 | bytes[bigEndian ? i : 3 - i];
  return value;
}

}  // namespace

std::optional<std::vector<FoundChunk>> ParseTrailers(const std::uint8_t* buffer, std::int64_t length,
                                                     bool bigEndian) {
  if (!buffer || length < kTrailerBytes) return std::nullopt;
  std::vector<FoundChunk> chunks;
  while (length > 0) {
    if (length < kTrailerBytes) return std::nullopt;
    const std::uint8_t* const trailer = buffer + length - kTrailerBytes;
    const std::int64_t payload = Load32(trailer + 4, bigEndian);
    if (payload > length - kTrailerBytes) return std::nullopt;
    length -= kTrailerBytes + payload;
    chunks.push_back({Load32(trailer, bigEndian), {length, payload, true}});
  }
  return chunks;
}

}  // namespace zyn::genapi

namespace GENAPI_NAMESPACE {

using GENICAM_NAMESPACE::gcstring;

namespace {

bool ServesChunks(INode* node) {
  if (!dynamic_cast<IChunkPort*>(node)) return false;
  gcstring value;
  gcstring attribute;
  return node->GetProperty("ChunkID", value, attribute) || node->GetProperty("pChunkID", value, attribute);
}

std::string IdOf(const IChunkPort& port) {
  try {
    const gcstring id = port.GetChunkID();
    return zyn::genapi::NormalizedHexId(std::string_view(id.c_str(), id.size()));
  } catch (const GENICAM_NAMESPACE::GenericException&) {
    return {};  // the identifier lies in a device that does not give it
  }
}

void Invalidate(const std::vector<INode*>& nodes) {
  for (INode* const node : nodes) node->InvalidateNode();
}

}  // namespace

void CChunkAdapter::Impl::AttachNodeMap(INodeMap* map) {
  DetachNodeMap();
  if (!map) throw INVALID_ARGUMENT_EXCEPTION("A null node map cannot be attached.");
  const AutoLock lock(map->GetLock());
  NodeList_t nodes;
  map->GetNodes(nodes);
  for (INode* const node : nodes)
    if (ServesChunks(node)) ports_.push_back(std::make_unique<CChunkPort>(dynamic_cast<IPort*>(node)));
  map_ = map;
}

// Runs the change on every port under the lock; it says whether the port's values are others now.
template <class Change>
void CChunkAdapter::Impl::ChangeAll(Change change) {
  if (!map_) return;
  std::vector<INode*> changed;
  {
    const AutoLock lock(map_->GetLock());
    for (const auto& port : ports_)
      if (change(*port)) changed.push_back(dynamic_cast<INode*>(port->GetPort()));
  }
  Invalidate(changed);
}

void CChunkAdapter::Impl::DetachNodeMap() {
  if (!map_) return;
  const AutoLock lock(map_->GetLock());
  ports_.clear();
  map_ = nullptr;
}

void CChunkAdapter::Impl::AttachBuffer(std::uint8_t* buffer, int chunks, const Find& find,
                                       AttachStatistics_t* statistics) {
  if (!buffer) throw INVALID_ARGUMENT_EXCEPTION("A null buffer cannot be attached.");
  if (!map_) throw RUNTIME_EXCEPTION("A buffer needs a node map that it can be attached to.");
  int attached = 0;
  ChangeAll([&](CChunkPort& port) {
    auto& node = dynamic_cast<IChunkPort&>(*port.GetPort());
    const std::string id = IdOf(node);
    const auto place = id.empty() ? zyn::genapi::ChunkPlace() : find(id);
    const bool hadChunk = port.GetAccessMode() != NA;
    if (!place.exists) {
      port.DetachChunk();
      return hadChunk;
    }
    ++attached;
    const bool keeps = node.CacheChunkData() == Yes && (maxCacheSize_ < 0 || place.length <= maxCacheSize_);
    port.AttachChunk(buffer, place.offset, place.length, keeps);
    return true;
  });
  if (statistics) *statistics = {static_cast<int>(ports_.size()), chunks, attached};
}

void CChunkAdapter::Impl::AttachBuffer(std::uint8_t* buffer,
                                       const std::vector<zyn::genapi::FoundChunk>& chunks,
                                       AttachStatistics_t* statistics) {
  const auto find = [&chunks](const std::string& id) -> zyn::genapi::ChunkPlace {
    for (const auto& chunk : chunks)
      if (zyn::genapi::NormalizedHexId(std::uint64_t{chunk.id}) == id) return chunk.place;
    return {};
  };
  AttachBuffer(buffer, static_cast<int>(chunks.size()), find, statistics);
}

void CChunkAdapter::Impl::DetachBuffer() {
  ChangeAll([](CChunkPort& port) {
    if (port.GetAccessMode() == NA || port.IsCached()) return false;
    port.DetachChunk();
    return true;
  });
}

void CChunkAdapter::Impl::UpdateBuffer(std::uint8_t* buffer) {
  if (!buffer) throw INVALID_ARGUMENT_EXCEPTION("A null buffer cannot be attached.");
  ChangeAll([buffer](CChunkPort& port) {
    port.UpdateBuffer(buffer);
    return port.GetAccessMode() != NA;
  });
}

void CChunkAdapter::Impl::ClearCaches() {
  ChangeAll([](CChunkPort& port) {
    const bool wasCached = port.IsCached();
    port.ClearCache();
    return wasCached;
  });
}

CChunkAdapter::CChunkAdapter(INodeMap* pNodeMap, int64_t MaxChunkCacheSize)
    : m_pImpl(new Impl(MaxChunkCacheSize)) {
  if (!pNodeMap) return;
  try {
    m_pImpl->AttachNodeMap(pNodeMap);
  } catch (...) {
    delete m_pImpl;
    throw;
  }
}

CChunkAdapter::~CChunkAdapter() {
  delete m_pImpl;
}

void CChunkAdapter::AttachNodeMap(INodeMap* pNodeMap) {
  m_pImpl->AttachNodeMap(pNodeMap);
}
void CChunkAdapter::DetachNodeMap() {
  m_pImpl->DetachNodeMap();
}
void CChunkAdapter::DetachBuffer() {
  m_pImpl->DetachBuffer();
}
void CChunkAdapter::UpdateBuffer(uint8_t* pBaseAddress) {
  m_pImpl->UpdateBuffer(pBaseAddress);
}
void CChunkAdapter::ClearCaches() {
  m_pImpl->ClearCaches();
}

}  // namespace GENAPI_NAMESPACE
