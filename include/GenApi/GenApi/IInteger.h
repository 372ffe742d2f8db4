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

GENICAM_INTERFACE IFloat;

/// A reference to an integer.
template <class T, class I = T>
class CIntegerRefT : public CValueRefT<T, I> {
 public:
  void SetValue(int64_t Value, bool Verify = true) override { this->Ref()->SetValue(Value, Verify); }
  // The interface decides the type returned. NOLINTNEXTLINE(misc-unconventional-assign-operator)
  I& operator=(int64_t Value) override {
    this->Ref()->SetValue(Value);
    return *this->m_Ptr;
  }
  int64_t GetValue(bool Verify = false, bool IgnoreCache = false) override {
    return this->Ref()->GetValue(Verify, IgnoreCache);
  }
  int64_t operator()() override { return this->Ref()->GetValue(); }
  int64_t operator*() override { return this->Ref()->GetValue(); }
  int64_t GetMin() override { return this->Ref()->GetMin(); }
  int64_t GetMax() override { return this->Ref()->GetMax(); }
  EIncMode GetIncMode() override { return this->Ref()->GetIncMode(); }
  int64_t GetInc() override { return this->Ref()->GetInc(); }
  int64_autovector_t GetListOfValidValues(bool bounded = true) override {
    return this->Ref()->GetListOfValidValues(bounded);
  }
  ERepresentation GetRepresentation() override { return this->Ref()->GetRepresentation(); }
  GENICAM_NAMESPACE::gcstring GetUnit() override { return this->Ref()->GetUnit(); }
  void ImposeMin(int64_t Value) override { this->Ref()->ImposeMin(Value); }
  void ImposeMax(int64_t Value) override { this->Ref()->ImposeMax(Value); }
  /// The float beside the node (its cast alias); null when there is none.
  IFloat* GetFloatAlias() { return dynamic_cast<IFloat*>(this->Ref()->GetNode()->GetCastAlias()); }
};

typedef CIntegerRefT<IInteger> CIntegerRef;

}  // namespace GENAPI_NAMESPACE

#endif
