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

GENICAM_INTERFACE IInteger;
GENICAM_INTERFACE IEnumeration;

/// A reference to a float.
template <class T, class I = T>
class CFloatRefT : public CValueRefT<T, I> {
 public:
  void SetValue(double Value, bool Verify = true) override { this->Ref()->SetValue(Value, Verify); }
  // The interface decides the type returned. NOLINTNEXTLINE(misc-unconventional-assign-operator)
  I& operator=(double Value) override {
    this->Ref()->SetValue(Value);
    return *this->m_Ptr;
  }
  double GetValue(bool Verify = false, bool IgnoreCache = false) override {
    return this->Ref()->GetValue(Verify, IgnoreCache);
  }
  double operator()() override { return this->Ref()->GetValue(); }
  double operator*() override { return this->Ref()->GetValue(); }
  double GetMin() override { return this->Ref()->GetMin(); }
  double GetMax() override { return this->Ref()->GetMax(); }
  EIncMode GetIncMode() override { return this->Ref()->GetIncMode(); }
  double GetInc() override { return this->Ref()->GetInc(); }
  double_autovector_t GetListOfValidValues(bool bounded = true) override {
    return this->Ref()->GetListOfValidValues(bounded);
  }
  ERepresentation GetRepresentation() override { return this->Ref()->GetRepresentation(); }
  GENICAM_NAMESPACE::gcstring GetUnit() const override { return this->Ref()->GetUnit(); }
  void ImposeMin(double Value) override { this->Ref()->ImposeMin(Value); }
  void ImposeMax(double Value) override { this->Ref()->ImposeMax(Value); }
  bool HasInc() override { return this->Ref()->HasInc(); }
  EDisplayNotation GetDisplayNotation() const override { return this->Ref()->GetDisplayNotation(); }
  int64_t GetDisplayPrecision() const override { return this->Ref()->GetDisplayPrecision(); }
  /// The integer or enumeration beside the node (its cast alias); null when there is none.
  IInteger* GetIntAlias() { return dynamic_cast<IInteger*>(this->Ref()->GetNode()->GetCastAlias()); }
  IEnumeration* GetEnumAlias() { return dynamic_cast<IEnumeration*>(this->Ref()->GetNode()->GetCastAlias()); }
};

typedef CFloatRefT<IFloat> CFloatRef;

}  // namespace GENAPI_NAMESPACE

#endif
