/// Boolean features.
#ifndef GENAPI_IBOOLEAN_H
#define GENAPI_IBOOLEAN_H

#include "IValue.h"

namespace GENAPI_NAMESPACE {

/// True or false.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IBoolean : virtual public IValue {
  virtual void SetValue(bool Value, bool Verify = true) = 0;
  virtual IBoolean& operator=(bool Value) {
    SetValue(Value);
    return *this;
  }
  /// Throws LogicalErrorException when the device holds neither the value for true nor that for false.
  virtual bool GetValue(bool Verify = false, bool IgnoreCache = false) const = 0;
  virtual bool operator()() const {
    return GetValue();
  }
};

}  // namespace GENAPI_NAMESPACE

#endif
