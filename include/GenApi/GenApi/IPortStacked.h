/// Access to registers, several writes at once.
#ifndef GENAPI_IPORTSTACKED_H
#define GENAPI_IPORTSTACKED_H

#include "IPort.h"

namespace GENAPI_NAMESPACE {

/// One write of several.
struct PORT_REGISTER_STACK_ENTRY {
  uint64_t Address;
  void* pBuffer;
  size_t Size;
};

/// A port that can take several writes in one call.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IPortStacked : virtual public IPort {
  using IPort::Write;
  virtual void Write(PORT_REGISTER_STACK_ENTRY * pEntries, size_t numEntries) = 0;
};

/// A reference to a port that takes several writes at once.
template <class T, class I = T>
class CPortStackedRefT : public CPortRefT<T, I> {
 public:
  using CPortRefT<T, I>::Write;
  void Write(PORT_REGISTER_STACK_ENTRY* pEntries, size_t numEntries) override {
    this->Ref()->Write(pEntries, numEntries);
  }
};

typedef CPortStackedRefT<IPortStacked> CPortStackedRef;

}  // namespace GENAPI_NAMESPACE

#endif
