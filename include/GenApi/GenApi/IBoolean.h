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

/// A reference to a boolean.
template <class T, class I = T>
class CBooleanRefT : public CValueRefT<T, I> {
 public:
  void SetValue(bool Value, bool Verify = true) override { this->Ref()->SetValue(Value, Verify); }
  // The interface decides the type returned. NOLINTNEXTLINE(misc-unconventional-assign-operator)
  I& operator=(bool Value) override {
    this->Ref()->SetValue(Value);
    return *this->m_Ptr;
  }
  bool GetValue(bool Verify = false, bool IgnoreCache = false) const override {
    return this->Ref()->GetValue(Verify, IgnoreCache);
  }
  bool operator()() const override { return this->Ref()->GetValue(); }
};

typedef CBooleanRefT<IBoolean> CBooleanRef;

}  // namespace GENAPI_NAMESPACE

#endif
