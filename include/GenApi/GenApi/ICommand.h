/// Commands.
#ifndef GENAPI_ICOMMAND_H
#define GENAPI_ICOMMAND_H

#include "IValue.h"

namespace GENAPI_NAMESPACE {

/// Something the device does when told to.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT ICommand : virtual public IValue {
  virtual void Execute(bool Verify = true) = 0;
  virtual void operator()() = 0;
  /// Whether the last execution ended. Reads the device while it has not.
  virtual bool IsDone(bool Verify = true) = 0;
};

}  // namespace GENAPI_NAMESPACE

#endif
