/// Register features.
#ifndef GENAPI_IREGISTER_H
#define GENAPI_IREGISTER_H

#include "IValue.h"

namespace GENAPI_NAMESPACE {

/// Raw bytes of the device.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IRegister : virtual public IValue {
  /// Writes Length bytes, at most the register's length; more throws OutOfRangeException.
  virtual void Set(const uint8_t* pBuffer, int64_t Length, bool Verify = true) = 0;
  /// Reads the first Length bytes; more than the register has throws OutOfRangeException.
  virtual void Get(uint8_t * pBuffer, int64_t Length, bool Verify = false, bool IgnoreCache = false) = 0;
  virtual int64_t GetLength(bool Verify = false) = 0;
  virtual int64_t GetAddress(bool Verify = false) = 0;
};

/// A reference to a register.
template <class T, class I = T>
class CRegisterRefT : public CValueRefT<T, I> {
 public:
  void Set(const uint8_t* pBuffer, int64_t Length, bool Verify = true) override {
    this->Ref()->Set(pBuffer, Length, Verify);
  }
  void Get(uint8_t* pBuffer, int64_t Length, bool Verify = false, bool IgnoreCache = false) override {
    this->Ref()->Get(pBuffer, Length, Verify, IgnoreCache);
  }
  int64_t GetLength(bool Verify = false) override { return this->Ref()->GetLength(Verify); }
  int64_t GetAddress(bool Verify = false) override { return this->Ref()->GetAddress(Verify); }
};

typedef CRegisterRefT<IRegister> CRegisterRef;

}  // namespace GENAPI_NAMESPACE

#endif
