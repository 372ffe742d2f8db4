/// Text features.
#ifndef GENAPI_ISTRING_H
#define GENAPI_ISTRING_H

#include "IValue.h"

namespace GENAPI_NAMESPACE {

/// A text.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IString : virtual public IValue {
  virtual void SetValue(const GENICAM_NAMESPACE::gcstring& Value, bool Verify = true) = 0;
  virtual IString& operator=(const GENICAM_NAMESPACE::gcstring& Value) = 0;
  virtual GENICAM_NAMESPACE::gcstring GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
  virtual GENICAM_NAMESPACE::gcstring operator()() = 0;
  virtual GENICAM_NAMESPACE::gcstring operator*() = 0;
  /// Bytes that fit, without a terminator.
  virtual int64_t GetMaxLength(bool Verify = false) = 0;
};

/// A reference to a text.
template <class T, class I = T>
class CStringRefT : public CValueRefT<T, I> {
 public:
  void SetValue(const GENICAM_NAMESPACE::gcstring& Value, bool Verify = true) override {
    this->Ref()->SetValue(Value, Verify);
  }
  // The interface decides the type returned. NOLINTNEXTLINE(misc-unconventional-assign-operator)
  I& operator=(const GENICAM_NAMESPACE::gcstring& Value) override {
    this->Ref()->SetValue(Value);
    return *this->m_Ptr;
  }
  GENICAM_NAMESPACE::gcstring GetValue(bool Verify = false, bool IgnoreCache = false) override {
    return this->Ref()->GetValue(Verify, IgnoreCache);
  }
  GENICAM_NAMESPACE::gcstring operator()() override { return this->Ref()->GetValue(); }
  GENICAM_NAMESPACE::gcstring operator*() override { return this->Ref()->GetValue(); }
  int64_t GetMaxLength(bool Verify = false) override { return this->Ref()->GetMaxLength(Verify); }
};

typedef CStringRefT<IString> CStringRef;

}  // namespace GENAPI_NAMESPACE

#endif
