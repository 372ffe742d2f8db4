#include "GenApi/EventPort.h"

#include <cstring>
#include <string>
#include <vector>

#include "Base/GCException.h"
#include "chunks/HexId.h"

namespace GENAPI_NAMESPACE {

using GENICAM_NAMESPACE::gcstring;

struct CEventPort::Storage {
  // Of the node, normalised.
  std::string id;
  bool hasEvent = false;
  std::vector<uint8_t> bytes;
};

CEventPort::CEventPort(INode* pNode) : m_pNode(nullptr), m_pStorage(new Storage) {
  AttachNode(pNode);
}

CEventPort::~CEventPort() {
  DetachNode();
  delete m_pStorage;
}

EAccessMode CEventPort::GetAccessMode() const {
  return m_pStorage->hasEvent ? RO : NA;
}

void CEventPort::Read(void* pBuffer, int64_t Address, int64_t Length) {
  if (!m_pStorage->hasEvent) throw ACCESS_EXCEPTION("No event came yet.");
  const auto size = static_cast<int64_t>(m_pStorage->bytes.size());
  if (Address < 0 || Length < 0 || Address > size || Length > size - Address)
    throw OUT_OF_RANGE_EXCEPTION("%lld bytes at %lld lie outside an event of %lld bytes.",
                                 static_cast<long long>(Length), static_cast<long long>(Address),
                                 static_cast<long long>(size));
  if (Length > 0) std::memcpy(pBuffer, m_pStorage->bytes.data() + Address, static_cast<size_t>(Length));
}

void CEventPort::Write(const void*, int64_t, int64_t) {
  throw ACCESS_EXCEPTION("Events cannot be written.");
}

// Told by the node while AttachNode connects it.
void CEventPort::SetPortImpl(IPort*) {}

EYesNo CEventPort::GetSwapEndianess() {
  return No;
}

void CEventPort::AttachNode(INode* pNode) {
  DetachNode();
  if (!pNode) return;
  const gcstring id = pNode->GetEventID();
  m_pStorage->id = zyn::genapi::NormalizedHexId(std::string_view(id.c_str(), id.size()));
  if (m_pStorage->id.empty()) return;
  m_pNode = pNode;
  if (auto* const construct = dynamic_cast<IPortConstruct*>(pNode)) construct->SetPortImpl(this);
}

void CEventPort::DetachNode() {
  DetachEvent();
  auto* const construct = dynamic_cast<IPortConstruct*>(m_pNode);
  m_pNode = nullptr;
  m_pStorage->id.clear();
  if (construct) construct->SetPortImpl(nullptr);
}

bool CEventPort::CheckEventID(uint8_t* pEventIDBuffer, int EventIDLength) const {
  std::string digits;
  for (int i = 0; pEventIDBuffer && i < EventIDLength; ++i) {
    digits += "0123456789abcdef"[pEventIDBuffer[i] >> 4];
    digits += "0123456789abcdef"[pEventIDBuffer[i] & 15];
  }
  return CheckEventID(gcstring(digits.data(), digits.size()));
}

bool CEventPort::CheckEventID(uint64_t EventID) const {
  return m_pStorage->id == zyn::genapi::NormalizedHexId(EventID);
}

bool CEventPort::CheckEventID(const gcstring& EventID) const {
  const std::string id = zyn::genapi::NormalizedHexId(std::string_view(EventID.c_str(), EventID.size()));
  return !id.empty() && m_pStorage->id == id;
}

void CEventPort::AttachEvent(uint8_t* pBaseAddress, int64_t Length) {
  if (Length < 0 || (!pBaseAddress && Length > 0))
    throw INVALID_ARGUMENT_EXCEPTION("The event is null or its length negative.");
  m_pStorage->bytes.assign(pBaseAddress, pBaseAddress + Length);
  m_pStorage->hasEvent = true;
}

void CEventPort::DetachEvent() {
  m_pStorage->hasEvent = false;
  m_pStorage->bytes.clear();
}

}  // namespace GENAPI_NAMESPACE
