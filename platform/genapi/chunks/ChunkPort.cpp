#include "GenApi/ChunkPort.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "Base/GCException.h"
#include "GenApi/IChunkPort.h"
#include "chunks/HexId.h"

namespace GENAPI_NAMESPACE {

using GENICAM_NAMESPACE::gcstring;

namespace {

// An identifier that lies in a device which does not answer is none.
gcstring ChunkIdOf(IPort* port) {
  const auto* const chunkPort = dynamic_cast<IChunkPort*>(port);
  if (!chunkPort) return {};
  try {
    return chunkPort->GetChunkID();
  } catch (const GENICAM_NAMESPACE::GenericException&) {
    return {};
  }
}

std::string IdOf(IPort* port) {
  const gcstring id = ChunkIdOf(port);
  return zyn::genapi::NormalizedHexId(std::string_view(id.c_str(), id.size()));
}

}  // namespace

struct CChunkPort::Copy {
  std::vector<uint8_t> bytes;
};

CChunkPort::CChunkPort(IPort* pPort)
    : m_pPort(nullptr), m_pBaseAddress(nullptr), m_ChunkOffset(0), m_Length(0), m_pCopy(nullptr) {
  AttachPort(pPort);
}

CChunkPort::~CChunkPort() {
  DetachPort();
  delete m_pCopy;
}

EAccessMode CChunkPort::GetAccessMode() const {
  return m_pBaseAddress || m_pCopy ? RW : NA;
}

uint8_t* CChunkPort::At(int64_t Address, int64_t Length) const {
  if (!m_pBaseAddress && !m_pCopy) throw ACCESS_EXCEPTION("No chunk is attached.");
  if (Address < 0 || Length < 0 || Address > m_Length || Length > m_Length - Address)
    throw OUT_OF_RANGE_EXCEPTION("%lld bytes at %lld lie outside a chunk of %lld bytes.",
                                 static_cast<long long>(Length), static_cast<long long>(Address),
                                 static_cast<long long>(m_Length));
  return (m_pCopy ? m_pCopy->bytes.data() : m_pBaseAddress + m_ChunkOffset) + Address;
}

void CChunkPort::Read(void* pBuffer, int64_t Address, int64_t Length) {
  const uint8_t* const bytes = At(Address, Length);
  if (Length > 0) std::memcpy(pBuffer, bytes, static_cast<size_t>(Length));
}

void CChunkPort::Write(const void* pBuffer, int64_t Address, int64_t Length) {
  uint8_t* const bytes = At(Address, Length);
  if (Length > 0) std::memcpy(bytes, pBuffer, static_cast<size_t>(Length));
}

// Told by the node while AttachPort connects it.
void CChunkPort::SetPortImpl(IPort*) {}

EYesNo CChunkPort::GetSwapEndianess() {
  return No;
}

void CChunkPort::AttachPort(IPort* pPort) {
  DetachPort();
  auto* const construct = dynamic_cast<IPortConstruct*>(pPort);
  if (!construct || !dynamic_cast<IChunkPort*>(pPort)) return;
  construct->SetPortImpl(this);
  m_pPort = pPort;
}

void CChunkPort::DetachPort() {
  DetachChunk();
  auto* const construct = dynamic_cast<IPortConstruct*>(m_pPort);
  m_pPort = nullptr;
  if (construct) construct->SetPortImpl(nullptr);
}

void CChunkPort::AttachChunk(uint8_t* pBaseAddress, int64_t ChunkOffset, int64_t Length, bool Cache) {
  if (!pBaseAddress || ChunkOffset < 0 || Length < 0)
    throw INVALID_ARGUMENT_EXCEPTION("The buffer of a chunk is null, or its place negative.");
  if (!Cache) {
    ClearCache();
  } else {
    if (!m_pCopy) m_pCopy = new Copy;
    m_pCopy->bytes.assign(pBaseAddress + ChunkOffset, pBaseAddress + ChunkOffset + Length);
  }
  m_pBaseAddress = pBaseAddress;
  m_ChunkOffset = ChunkOffset;
  m_Length = Length;
}

void CChunkPort::DetachChunk() {
  ClearCache();
  m_pBaseAddress = nullptr;
}

bool CChunkPort::CheckChunkID(uint8_t* pChunkIDBuffer, int ChunkIDLength) const {
  std::string digits;
  for (int i = 0; pChunkIDBuffer && i < ChunkIDLength; ++i) {
    digits += "0123456789abcdef"[pChunkIDBuffer[i] >> 4];
    digits += "0123456789abcdef"[pChunkIDBuffer[i] & 15];
  }
  return CheckChunkID(gcstring(digits.data(), digits.size()));
}

bool CChunkPort::CheckChunkID(uint64_t ChunkID) const {
  return IdOf(m_pPort) == zyn::genapi::NormalizedHexId(ChunkID);
}

bool CChunkPort::CheckChunkID(const gcstring& ChunkID) const {
  const std::string id = zyn::genapi::NormalizedHexId(std::string_view(ChunkID.c_str(), ChunkID.size()));
  return !id.empty() && IdOf(m_pPort) == id;
}

void CChunkPort::UpdateBuffer(uint8_t* pBaseAddress) {
  if (m_pBaseAddress) AttachChunk(pBaseAddress, m_ChunkOffset, m_Length, m_pCopy != nullptr);
}

void CChunkPort::ClearCache() {
  if (!m_pCopy) return;
  delete m_pCopy;
  m_pCopy = nullptr;
  m_pBaseAddress = nullptr;
}

int CChunkPort::GetChunkIDLength() const {
  return static_cast<int>((ChunkIdOf(m_pPort).size() + 1) / 2);
}

}  // namespace GENAPI_NAMESPACE
