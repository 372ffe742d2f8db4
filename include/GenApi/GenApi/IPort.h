/// Access to registers.
#ifndef GENAPI_IPORT_H
#define GENAPI_IPORT_H

#include "../Base/GCTypes.h"
#include "IBase.h"

namespace GENAPI_NAMESPACE {

/// Reads and writes bytes of a device. Implemented by the transport, and by Port nodes, which pass calls on
/// to it. Failures are exceptions; they reach the caller of the feature unchanged.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IPort : virtual public IBase {
  virtual void Read(void* pBuffer, int64_t Address, int64_t Length) = 0;
  virtual void Write(const void* pBuffer, int64_t Address, int64_t Length) = 0;
};

}  // namespace GENAPI_NAMESPACE

#endif
