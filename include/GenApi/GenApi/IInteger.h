/// Integer features.
#ifndef GENAPI_IINTEGER_H
#define GENAPI_IINTEGER_H

#include "Autovector.h"
#include "IValue.h"

namespace GENAPI_NAMESPACE {

/// A whole number.
/// Setting throws AccessException when not writable, and with Verify OutOfRangeException outside minimum,
/// maximum or increment.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IInteger : virtual public IValue {
  virtual void SetValue(int64_t Value, bool Verify = true) = 0;
  virtual IInteger& operator=(int64_t Value) = 0;
  virtual int64_t GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
  virtual int64_t operator()() = 0;
  virtual int64_t operator*() = 0;
  virtual int64_t GetMin() = 0;
  virtual int64_t GetMax() = 0;
  virtual EIncMode GetIncMode() = 0;
  virtual int64_t GetInc() = 0;
  /// The list of valid values; empty when every value on the grid is valid. bounded drops those outside the
  /// limits.
  virtual int64_autovector_t GetListOfValidValues(bool bounded = true) = 0;
  virtual ERepresentation GetRepresentation() = 0;
  virtual GENICAM_NAMESPACE::gcstring GetUnit() = 0;
  virtual void ImposeMin(int64_t Value) = 0;
  virtual void ImposeMax(int64_t Value) = 0;
};

}  // namespace GENAPI_NAMESPACE

#endif
