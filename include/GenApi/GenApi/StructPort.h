/// A device in memory.
#ifndef GENAPI_STRUCTPORT_H
#define GENAPI_STRUCTPORT_H

#include <cstring>

#include "../Base/GCException.h"
#include "PortImpl.h"

namespace GENAPI_NAMESPACE {

/// A port whose registers are the members of TStruct, a structure without virtual functions. The first byte
/// has the address BaseAddress; access outside the structure throws RuntimeException. Not synchronised.
template <class TStruct>
class CTestPortStruct : public TStruct, public CPortImpl {
 public:
  explicit CTestPortStruct(int64_t BaseAddress = 0)
      : TStruct(), m_BaseAddress(BaseAddress), m_NumReads(0), m_NumWrites(0) {
    MemSet(0);
  }

  EAccessMode GetAccessMode() const override { return RW; }
  void Read(void* pBuffer, int64_t Address, int64_t Length) override {
    std::memcpy(pBuffer, At(Address, Length), static_cast<size_t>(Length));
    ++m_NumReads;
  }
  void Write(const void* pBuffer, int64_t Address, int64_t Length) override {
    std::memcpy(At(Address, Length), pBuffer, static_cast<size_t>(Length));
    ++m_NumWrites;
  }

  /// Sets every byte of the structure.
  void MemSet(char Pattern) { std::memset(Bytes(), Pattern, sizeof(TStruct)); }
  void ResetStatistics() { m_NumReads = m_NumWrites = 0; }
  int GetNumReads() const { return m_NumReads; }
  int GetNumWrites() const { return m_NumWrites; }

 private:
  unsigned char* Bytes() { return reinterpret_cast<unsigned char*>(static_cast<TStruct*>(this)); }
  unsigned char* At(int64_t Address, int64_t Length) {
    const int64_t size = static_cast<int64_t>(sizeof(TStruct));
    const int64_t offset = Address - m_BaseAddress;
    if (Address < m_BaseAddress || Length < 0 || offset > size || Length > size - offset)
      throw RUNTIME_EXCEPTION("%lld bytes at address 0x%llx lie outside the structure",
                              static_cast<long long>(Length), static_cast<unsigned long long>(Address));
    return Bytes() + offset;
  }

  int64_t m_BaseAddress;
  int m_NumReads;
  int m_NumWrites;
};

}  // namespace GENAPI_NAMESPACE

#endif
