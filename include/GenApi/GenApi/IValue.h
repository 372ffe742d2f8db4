/// What every node with a value has.
#ifndef GENAPI_IVALUE_H
#define GENAPI_IVALUE_H

#include "../Base/GCString.h"
#include "INode.h"
#include "Reference.h"

namespace GENAPI_NAMESPACE {

/// A value that can be read and written as text.
/// Verify checks limits and the error register; IgnoreCache reads the device.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IValue : virtual public IBase {
  virtual INode* GetNode() {
    return dynamic_cast<INode*>(this);
  }
  virtual GENICAM_NAMESPACE::gcstring ToString(bool Verify = false, bool IgnoreCache = false) = 0;
  /// Throws InvalidArgumentException when the text does not name a value of this node.
  virtual void FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, bool Verify = true) = 0;
  virtual bool IsValueCacheValid() const = 0;
};

/// A reference to a value.
template <class T, class I = T>
class CValueRefT : public CBaseRefT<T, I> {
 public:
  INode* GetNode() override { return this->Ref()->GetNode(); }
  GENICAM_NAMESPACE::gcstring ToString(bool Verify = false, bool IgnoreCache = false) override {
    return this->Ref()->ToString(Verify, IgnoreCache);
  }
  void FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, bool Verify = true) override {
    this->Ref()->FromString(ValueStr, Verify);
  }
  bool IsValueCacheValid() const override { return this->Ref()->IsValueCacheValid(); }
};

typedef CValueRefT<IValue> CValueRef;

}  // namespace GENAPI_NAMESPACE

#endif
