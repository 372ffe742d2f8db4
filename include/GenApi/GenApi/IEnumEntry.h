/// Entries of enumerations.
#ifndef GENAPI_IENUMENTRY_H
#define GENAPI_IENUMENTRY_H

#include "IValue.h"

namespace GENAPI_NAMESPACE {

/// One choice of an enumeration.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IEnumEntry : virtual public IValue {
  virtual int64_t GetValue() = 0;
  virtual GENICAM_NAMESPACE::gcstring GetSymbolic() const = 0;
  virtual double GetNumericValue() = 0;
  virtual bool IsSelfClearing() = 0;
};

/// A reference to an entry of an enumeration.
template <class T, class I = T>
class CEnumEntryRefT : public CValueRefT<T, I> {
 public:
  int64_t GetValue() override { return this->Ref()->GetValue(); }
  GENICAM_NAMESPACE::gcstring GetSymbolic() const override { return this->Ref()->GetSymbolic(); }
  double GetNumericValue() override { return this->Ref()->GetNumericValue(); }
  bool IsSelfClearing() override { return this->Ref()->IsSelfClearing(); }
};

typedef CEnumEntryRefT<IEnumEntry> CEnumEntryRef;

}  // namespace GENAPI_NAMESPACE

#endif
