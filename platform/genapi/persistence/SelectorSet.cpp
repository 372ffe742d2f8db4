#include "GenApi/SelectorSet.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "Base/GCException.h"
#include "GenApi/IBoolean.h"
#include "GenApi/IEnumeration.h"
#include "GenApi/IInteger.h"
#include "GenApi/INode.h"
#include "GenApi/ISelector.h"

namespace GENAPI_NAMESPACE {

using GENICAM_NAMESPACE::gcstring;

namespace {

// A selector with more values, usually an address in disguise, keeps its value.
constexpr std::uint64_t kMaxSteps = 65536;

std::vector<gcstring> IntegerValues(IInteger& integer) {
  const int64_t min = integer.GetMin();
  const int64_t max = integer.GetMax();
  const int64_t inc = std::max<int64_t>(integer.GetInc(), 1);
  std::vector<gcstring> values;
  const int64_autovector_t valid = integer.GetListOfValidValues();
  for (size_t i = 0; i < valid.size(); ++i) values.emplace_back(std::to_string(valid[i]).c_str());
  if (!values.empty() || max < min) return values;
  const std::uint64_t steps =
      (static_cast<std::uint64_t>(max) - static_cast<std::uint64_t>(min)) / static_cast<std::uint64_t>(inc);
  if (steps >= kMaxSteps) return values;
  for (std::uint64_t i = 0; i <= steps; ++i) {
    const std::uint64_t value = static_cast<std::uint64_t>(min) + i * static_cast<std::uint64_t>(inc);
    values.emplace_back(std::to_string(static_cast<int64_t>(value)).c_str());
  }
  return values;
}

// One selector on its way through its values.
class Digit {
 public:
  explicit Digit(IValue& selector) : selector_(&selector) {}

  IValue& Selector() const { return *selector_; }

  bool SetFirst() {
    original_.reset();
    values_.clear();
    position_ = 0;
    if (!IsReadable(selector_->GetAccessMode())) return false;
    original_ = Present();
    if (IsWritable(selector_->GetAccessMode())) values_ = AllValues();
    if (values_.empty()) return true;  // fixed
    return SetFrom(0);
  }

  bool SetNext() { return !values_.empty() && SetFrom(position_ + 1); }

  void SetAgain() {
    if (!values_.empty()) selector_->FromString(values_[position_]);
  }

  void Restore() {
    if (original_ && !values_.empty()) selector_->FromString(*original_, false);
    original_.reset();
  }

 private:
  // Nothing when the device holds a number that no entry has.
  std::optional<gcstring> Present() {
    try {
      return selector_->ToString();
    } catch (const GENICAM_NAMESPACE::InvalidArgumentException&) {
      return std::nullopt;
    }
  }

  std::vector<gcstring> AllValues() {
    std::vector<gcstring> values;
    if (auto* const enumeration = dynamic_cast<IEnumeration*>(selector_)) {
      StringList_t symbolics;
      enumeration->GetSymbolics(symbolics);
      values.assign(symbolics.begin(), symbolics.end());
    } else if (dynamic_cast<IBoolean*>(selector_)) {
      values = {"0", "1"};
    } else if (auto* const integer = dynamic_cast<IInteger*>(selector_)) {
      values = IntegerValues(*integer);
    }
    return values;
  }

  // The first value, from that one on, that the device takes.
  bool SetFrom(size_t position) {
    for (; position < values_.size(); ++position) {
      try {
        selector_->FromString(values_[position]);
        position_ = position;
        return true;
      } catch (const GENICAM_NAMESPACE::AccessException&) {
        continue;
      } catch (const GENICAM_NAMESPACE::OutOfRangeException&) {
        continue;
      }
    }
    return false;
  }

  IValue* selector_;
  std::vector<gcstring> values_;
  size_t position_ = 0;
  std::optional<gcstring> original_;
};

}  // namespace

struct CSelectorSet::Impl {
  // Outermost first: what an inner selector may be depends on the outer ones.
  std::vector<Digit> digits;

  // Selectors may select each other in a circle; each counts once.
  void Collect(IBase* base, std::vector<const ISelector*>& visited) {
    const auto* const selected = dynamic_cast<ISelector*>(base);
    if (!selected || std::find(visited.begin(), visited.end(), selected) != visited.end()) return;
    visited.push_back(selected);
    FeatureList_t selectors;
    selected->GetSelectingFeatures(selectors);
    for (IValue* const selector : selectors) {
      if (Has(*selector)) continue;
      Collect(selector, visited);
      if (!Has(*selector)) digits.emplace_back(*selector);
    }
  }

  bool Has(const IValue& selector) const {
    return std::any_of(digits.begin(), digits.end(),
                       [&selector](const Digit& digit) { return &digit.Selector() == &selector; });
  }

  // Sets the digits from that one on to their first combination; steps outer ones on where inner ones have no
  // value at all.
  bool SetFirstFrom(size_t first) {
    size_t i = first;
    while (i < digits.size()) {
      if (digits[i].SetFirst()) {
        ++i;
      } else if (!Advance(i)) {
        return false;
      }
    }
    return true;
  }

  // Moves the innermost of the digits before `end` that has a next value, and makes `end` the digit behind it.
  bool Advance(size_t& end) {
    while (end > 0) {
      if (digits[end - 1].SetNext()) return true;
      digits[--end].Restore();
    }
    return false;
  }

  bool SetNext() {
    size_t end = digits.size();
    return Advance(end) && SetFirstFrom(end);
  }
};

CSelectorSet::CSelectorSet(IBase* pBase) : m_pImpl(new Impl) {
  std::vector<const ISelector*> visited;
  m_pImpl->Collect(pBase, visited);
}

CSelectorSet::~CSelectorSet() {
  delete m_pImpl;
}

bool CSelectorSet::IsEmpty() const {
  return m_pImpl->digits.empty();
}

bool CSelectorSet::SetFirst() {
  return !IsEmpty() && m_pImpl->SetFirstFrom(0);
}

bool CSelectorSet::SetNext(bool Tick) {
  if (Tick) return m_pImpl->SetNext();
  for (Digit& digit : m_pImpl->digits) digit.SetAgain();
  return !IsEmpty();
}

// Inner selectors were changed in the context of the outer ones, so they go back first.
void CSelectorSet::Restore() {
  for (size_t i = m_pImpl->digits.size(); i-- > 0;) m_pImpl->digits[i].Restore();
}

gcstring CSelectorSet::ToString() {
  if (IsEmpty()) return {};
  gcstring text;
  for (const Digit& digit : m_pImpl->digits) {
    text += text.empty() ? "{" : "\t";
    text += digit.Selector().GetNode()->GetName() + "=" + digit.Selector().ToString();
  }
  return text + "}";
}

void CSelectorSet::GetState(CSelectorState& SelectorState) const {
  for (const Digit& digit : m_pImpl->digits) SelectorState.AddSelector(digit.Selector());
}

void CSelectorSet::GetSelectorList(FeatureList_t& SelectorList, bool Incremental) {
  if (!Incremental) SelectorList.clear();
  for (const Digit& digit : m_pImpl->digits) SelectorList.push_back(&digit.Selector());
}

}  // namespace GENAPI_NAMESPACE
