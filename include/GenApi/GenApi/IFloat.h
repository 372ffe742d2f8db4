/// Floating-point features.
#ifndef GENAPI_IFLOAT_H
#define GENAPI_IFLOAT_H

#include "Autovector.h"
#include "IValue.h"

namespace GENAPI_NAMESPACE {

/// A real number. Setting with Verify throws OutOfRangeException outside minimum or maximum; an increment is
/// a hint.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IFloat : virtual public IValue {
  virtual void SetValue(double Value, bool Verify = true) = 0;
  virtual IFloat& operator=(double Value) = 0;
  virtual double GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
  virtual double operator()() = 0;
  virtual double operator*() = 0;
  virtual double GetMin() = 0;
  virtual double GetMax() = 0;
  virtual bool HasInc() = 0;
  virtual EIncMode GetIncMode() = 0;
  /// Throws RuntimeException when the node has no increment.
  virtual double GetInc() = 0;
  virtual double_autovector_t GetListOfValidValues(bool bounded = true) = 0;
  virtual ERepresentation GetRepresentation() = 0;
  virtual GENICAM_NAMESPACE::gcstring GetUnit() const = 0;
  virtual EDisplayNotation GetDisplayNotation() const = 0;
  /// Significant digits to show.
  virtual int64_t GetDisplayPrecision() const = 0;
  virtual void ImposeMin(double Value) = 0;
  virtual void ImposeMax(double Value) = 0;
};

}  // namespace GENAPI_NAMESPACE

#endif
