/// Enumerations.
#ifndef GENAPI_IENUMERATION_H
#define GENAPI_IENUMERATION_H

#include "Container.h"
#include "IEnumEntry.h"
#include "IValue.h"

namespace GENAPI_NAMESPACE {

/// A choice among named entries.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IEnumeration : virtual public IValue {
  /// The symbolic names of the entries that are available.
  virtual void GetSymbolics(StringList_t & Symbolics) = 0;
  /// All entries, also those not implemented.
  virtual void GetEntries(NodeList_t & Entries) = 0;
  /// Chooses the entry of this symbolic name; InvalidArgumentException when there is none.
  virtual IEnumeration& operator=(const GENICAM_NAMESPACE::gcstring& ValueStr) = 0;
  virtual void SetIntValue(int64_t Value, bool Verify = true) = 0;
  virtual GENICAM_NAMESPACE::gcstring operator*() = 0;
  virtual int64_t GetIntValue(bool Verify = false, bool IgnoreCache = false) = 0;
  /// Null when there is no such entry.
  virtual IEnumEntry* GetEntryByName(const GENICAM_NAMESPACE::gcstring& Symbolic) = 0;
  virtual IEnumEntry* GetEntry(const int64_t IntValue) = 0;
  /// Null when the device holds a value that no entry has.
  virtual IEnumEntry* GetCurrentEntry(bool Verify = false, bool IgnoreCache = false) = 0;
};

/// A reference to an enumeration.
template <class T, class I = T>
class CEnumerationRefT : public CValueRefT<T, I> {
 public:
  using T::GetEntry;
  void GetSymbolics(StringList_t& Symbolics) override { this->Ref()->GetSymbolics(Symbolics); }
  void GetEntries(NodeList_t& Entries) override { this->Ref()->GetEntries(Entries); }
  // The interface decides the type returned. NOLINTNEXTLINE(misc-unconventional-assign-operator)
  IEnumeration& operator=(const GENICAM_NAMESPACE::gcstring& ValueStr) override {
    this->Ref()->FromString(ValueStr);
    return *this->m_Ptr;
  }
  void SetIntValue(int64_t Value, bool Verify = true) override { this->Ref()->SetIntValue(Value, Verify); }
  GENICAM_NAMESPACE::gcstring operator*() override { return this->Ref()->ToString(); }
  int64_t GetIntValue(bool Verify = false, bool IgnoreCache = false) override {
    return this->Ref()->GetIntValue(Verify, IgnoreCache);
  }
  IEnumEntry* GetEntryByName(const GENICAM_NAMESPACE::gcstring& Symbolic) override {
    return this->Ref()->GetEntryByName(Symbolic);
  }
  IEnumEntry* GetEntry(const int64_t IntValue) override { return this->Ref()->GetEntry(IntValue); }
  IEnumEntry* GetCurrentEntry(bool Verify = false, bool IgnoreCache = false) override {
    return this->Ref()->GetCurrentEntry(Verify, IgnoreCache);
  }
};

typedef CEnumerationRefT<IEnumeration> CEnumerationRef;

}  // namespace GENAPI_NAMESPACE

#endif
