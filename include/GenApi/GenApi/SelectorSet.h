/// All combinations of the selectors of a feature.
#ifndef GENAPI_SELECTORSET_H
#define GENAPI_SELECTORSET_H

#include "IBase.h"
#include "ISelectorDigit.h"
#include "SelectorState.h"

namespace GENAPI_NAMESPACE {

/// Steps the selectors of one feature, also those that select another selector, through all values that are
/// available. A selector that cannot be written keeps its value. Works on the device; hold the lock of the node
/// map during a walk, and end an unfinished walk with Restore(). A finished one has restored everything.
class GENAPI_DECL CSelectorSet : public ISelectorDigit {
 public:
  /// pBase is a node; without selectors the set is empty.
  explicit CSelectorSet(IBase* pBase);
  ~CSelectorSet() override;
  CSelectorSet(const CSelectorSet&) = delete;
  CSelectorSet& operator=(const CSelectorSet&) = delete;

  bool IsEmpty() const;
  bool SetFirst() override;
  bool SetNext(bool Tick = true) override;
  void Restore() override;
  /// "{Selector=Value<tab>...}"; empty without selectors.
  GENICAM_NAMESPACE::gcstring ToString() override;
  /// Appends the present values.
  void GetState(CSelectorState& SelectorState) const;
  void GetSelectorList(FeatureList_t& SelectorList, bool Incremental = false) override;

 private:
  struct Impl;
  Impl* m_pImpl;
};

}  // namespace GENAPI_NAMESPACE

#endif
