#include "GenApi/PortWriteList.h"

#include <cstdint>
#include <vector>

#include "Base/GCException.h"

namespace GENAPI_NAMESPACE {

struct CPortWriteList::Storage {
  struct Entry {
    int64_t address;
    std::vector<unsigned char> bytes;
  };
  std::vector<Entry> entries;
  int64_t cookie = 0;
};

CPortWriteList::CPortWriteList() : m_pStorage(new Storage) {}
CPortWriteList::~CPortWriteList() {
  delete m_pStorage;
}

void CPortWriteList::Write(const void* pBuffer, int64_t Address, int64_t Length) {
  if (Length < 0 || (!pBuffer && Length > 0))
    throw INVALID_ARGUMENT_EXCEPTION("The buffer is null or its length negative.");
  const auto* const bytes = static_cast<const unsigned char*>(pBuffer);
  m_pStorage->entries.push_back({Address, {bytes, bytes + Length}});
}

void CPortWriteList::Replay(IPort* pPort) {
  if (!pPort) throw INVALID_ARGUMENT_EXCEPTION("A list cannot be replayed into a null port.");
  for (const Storage::Entry& entry : m_pStorage->entries)
    pPort->Write(entry.bytes.data(), entry.address, static_cast<int64_t>(entry.bytes.size()));
}

void CPortWriteList::SetCookie(const int64_t Value) {
  m_pStorage->cookie = Value;
}
int64_t CPortWriteList::GetCookie() {
  return m_pStorage->cookie;
}

}  // namespace GENAPI_NAMESPACE
