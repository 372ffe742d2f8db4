/// Where Integer and Float nodes take their value from.
#ifndef ZYN_GENAPI_NODES_INDEXEDSOURCE_H
#define ZYN_GENAPI_NODES_INDEXEDSOURCE_H

#include <utility>
#include <vector>

#include "description/NumberText.h"
#include "nodes/Node.h"

namespace zyn::genapi {

/// A constant, another node, or the one of several that an index chooses. Constants can be written, here. T
/// is std::int64_t or double. Part of its node; called with the lock held.
template <class T>
class IndexedSource {
 public:
  explicit IndexedSource(Node& owner) : owner_(owner) {
    for (const Property& property : owner.Properties())
      if (IsConstant(property.element)) constants_.emplace_back(&property, Initial(property));
  }

  /// The other node, or null when a constant is chosen.
  Node* Target() { return TargetOf(Chosen()); }

  T Constant() { return ConstantOf(Chosen()); }

  void SetConstant(T value) { ConstantOf(Chosen()) = value; }

  /// The mode of what is chosen, restricted by the copies.
  EAccessMode BaseAccess() {
    EAccessMode mode = ChosenAccess();
    for (const Property& property : owner_.Properties()) {
      if (property.element != Element::pValueCopy) continue;
      const EAccessMode copy = owner_.At(property.Target()).Access();
      if (copy == NI || copy == NA) mode = Combine(mode, copy);
      if (!IsWritable(copy)) mode = Combine(mode, RO);
    }
    return mode;
  }

 private:
  static bool IsConstant(Element element) {
    return element == Element::value || element == Element::valueIndexed || element == Element::valueDefault;
  }
  static T Initial(const Property& property) {
    if constexpr (std::is_same_v<T, double>) {
      return property.Real();
    } else {
      return property.number;
    }
  }

  EAccessMode ChosenAccess() {
    const NodeId index = owner_.Link(Element::pIndex);
    if (index != kNoNode) {
      const EAccessMode access = owner_.At(index).Access();
      if (!IsReadable(access)) return access == NI ? NI : NA;
    }
    Node* const target = Target();
    return target ? target->Access() : RW;
  }

  const Property* Chosen() {
    const NodeId index = owner_.Link(Element::pIndex);
    if (index == kNoNode) {
      const Property* const link = owner_.Find(Element::pValue);
      return link ? link : owner_.Find(Element::value);
    }
    const std::int64_t wanted = owner_.At(index).IntegerValue({});
    for (const Property& property : owner_.Properties()) {
      if (property.element != Element::valueIndexed && property.element != Element::pValueIndexed) continue;
      if (ParseInteger(owner_.Map().Facts().Text(property.attribute)) == wanted) return &property;
    }
    const Property* const link = owner_.Find(Element::pValueDefault);
    const Property* const chosen = link ? link : owner_.Find(Element::valueDefault);
    if (!chosen)
      owner_.Throw<GENICAM_NAMESPACE::LogicalErrorException>(
          "LogicalErrorException", "Index %lld has no value.", static_cast<long long>(wanted));
    return chosen;
  }

  Node* TargetOf(const Property* chosen) {
    return IsConstant(chosen->element) ? nullptr : &owner_.At(chosen->Target());
  }

  T& ConstantOf(const Property* chosen) {
    for (auto& [property, value] : constants_)
      if (property == chosen) return value;
    return constants_.front().second;
  }

  Node& owner_;
  std::vector<std::pair<const Property*, T>> constants_;
};

}  // namespace zyn::genapi

#endif
