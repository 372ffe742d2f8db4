/// Destruction through an interface.
#ifndef GENAPI_IDESTROY_H
#define GENAPI_IDESTROY_H

#include "GenApiDll.h"
#include "Types.h"

namespace GENAPI_NAMESPACE {

/// An object that deletes itself.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IDestroy {
  virtual void Destroy() = 0;

 protected:
  ~IDestroy() {}
};

}  // namespace GENAPI_NAMESPACE

#endif
