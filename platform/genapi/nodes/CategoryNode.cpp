#include "nodes/CategoryNode.h"

namespace zyn::genapi {

void CategoryNode::GetFeatures(FeatureList_t& Features) const {
  const Call call(*this, "GetFeatures");
  Features.clear();
  for (const Property& property : Properties()) {
    if (property.element != Element::pFeature || property.Target() == kNoNode) continue;
    if (auto* const value = dynamic_cast<IValue*>(&At(property.Target()))) Features.push_back(value);
  }
}

gcstring CategoryNode::TextValue(ReadMode) {
  RequireReadable();
  return GetDisplayName();
}

EAccessMode CategoryNode::BaseAccess() {
  for (const Property& property : Properties()) {
    if (property.element != Element::pFeature || property.Target() == kNoNode) continue;
    if (IsImplemented(At(property.Target()).Access())) return RO;
  }
  return NI;
}

}  // namespace zyn::genapi
