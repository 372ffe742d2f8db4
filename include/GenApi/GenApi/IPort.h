/// Access to registers.
#ifndef GENAPI_IPORT_H
#define GENAPI_IPORT_H

#include "../Base/GCTypes.h"
#include "IBase.h"
#include "Reference.h"

namespace GENAPI_NAMESPACE {

/// Reads and writes bytes of a device. Implemented by the transport, and by Port nodes, which pass calls on
/// to it. Failures are exceptions; they reach the caller of the feature unchanged.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IPort : virtual public IBase {
  virtual void Read(void* pBuffer, int64_t Address, int64_t Length) = 0;
  virtual void Write(const void* pBuffer, int64_t Address, int64_t Length) = 0;
};

/// A reference to a port.
template <class T, class I = T>
class CPortRefT : public CBaseRefT<T, I> {
 public:
  using T::Write;
  void Read(void* pBuffer, int64_t Address, int64_t Length) override {
    this->Ref()->Read(pBuffer, Address, Length);
  }
  void Write(const void* pBuffer, int64_t Address, int64_t Length) override {
    this->Ref()->Write(pBuffer, Address, Length);
  }
};

typedef CPortRefT<IPort> CPortRef;

}  // namespace GENAPI_NAMESPACE

#endif
