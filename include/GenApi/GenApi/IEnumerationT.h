/// Enumerations with a type of the program's own.
#ifndef GENAPI_IENUMERATIONT_H
#define GENAPI_IENUMERATIONT_H

#include <vector>

#include "../Base/GCException.h"
#include "IEnumeration.h"

namespace GENAPI_NAMESPACE {

/// A choice among the enumerators of EnumT. Implemented by references, not by nodes: nodes do not know the
/// program's types.
template <typename EnumT>
GENICAM_INTERFACE IEnumerationT : virtual public IEnumeration {
  virtual void SetValue(EnumT Value, bool Verify = true) = 0;
  virtual IEnumeration& operator=(EnumT Value) = 0;
  virtual EnumT GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
  virtual EnumT operator()() = 0;
  virtual IEnumeration& operator=(const GENICAM_NAMESPACE::gcstring& ValueStr) = 0;
  using IEnumeration::GetCurrentEntry;
  using IEnumeration::GetEntry;
  virtual IEnumEntry* GetEntry(const EnumT Value) = 0;
};

/// A reference to an enumeration, seen through the enumerators of EnumT: 0 to one less than SetNumEnums()
/// said, each bound to an entry by its name with SetEnumReference(), after SetReference(). An enumerator whose
/// entry the device lacks throws AccessException, and so does a value of the device that no enumerator has.
template <typename EnumT>
class CEnumerationTRef : public CEnumerationRefT<IEnumerationT<EnumT>, IEnumeration>, public IEnumReference {
  typedef CEnumerationRefT<IEnumerationT<EnumT>, IEnumeration> Base;

 public:
  void SetValue(EnumT Value, bool Verify = true) override {
    this->Ref()->SetIntValue(IntValueOf(Value), Verify);
  }
  // The interface decides the type returned. NOLINTNEXTLINE(misc-unconventional-assign-operator)
  IEnumeration& operator=(EnumT Value) override {
    SetValue(Value);
    return *this->m_Ptr;
  }
  // NOLINTNEXTLINE(misc-unconventional-assign-operator)
  IEnumeration& operator=(const GENICAM_NAMESPACE::gcstring& ValueStr) override {
    return Base::operator=(ValueStr);
  }
  EnumT GetValue(bool Verify = false, bool IgnoreCache = false) override {
    const int64_t value = this->Ref()->GetIntValue(Verify, IgnoreCache);
    for (size_t i = 0; i < m_Entries.size(); ++i)
      if (m_Entries[i].exists && m_Entries[i].value == value) return static_cast<EnumT>(i);
    throw ACCESS_EXCEPTION("Unknown IntValue %lld", static_cast<long long>(value));
  }
  EnumT operator()() override { return GetValue(); }
  using Base::GetEntry;
  IEnumEntry* GetEntry(const EnumT Value) override { return this->Ref()->GetEntry(IntValueOf(Value)); }

  void SetEnumReference(int Index, GENICAM_NAMESPACE::gcstring Name) override {
    if (Index < 0 || static_cast<size_t>(Index) >= m_Entries.size())
      throw OUT_OF_RANGE_EXCEPTION("EnumEntry %d not present", Index);
    IEnumEntry* const entry = this->m_Ptr ? this->m_Ptr->GetEntryByName(Name) : nullptr;
    m_Entries[static_cast<size_t>(Index)] = entry ? Entry(entry->GetValue()) : Entry();
  }
  void SetNumEnums(int NumEnums) override {
    m_Entries.assign(NumEnums > 0 ? static_cast<size_t>(NumEnums) : 0, Entry());
  }

 protected:
  int64_t IntValueOf(EnumT Value) const {
    const size_t index = static_cast<size_t>(Value);
    if (index >= m_Entries.size() || !m_Entries[index].exists)
      throw ACCESS_EXCEPTION("EnumEntry %d not present", static_cast<int>(Value));
    return m_Entries[index].value;
  }

 private:
  struct Entry {
    Entry() : exists(false), value(0) {}
    explicit Entry(int64_t v) : exists(true), value(v) {}
    bool exists;
    int64_t value;
  };
  std::vector<Entry> m_Entries;
};

}  // namespace GENAPI_NAMESPACE

#endif
