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

}  // namespace GENAPI_NAMESPACE

#endif
