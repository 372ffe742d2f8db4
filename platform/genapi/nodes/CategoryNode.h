/// Category nodes.
#ifndef ZYN_GENAPI_NODES_CATEGORYNODE_H
#define ZYN_GENAPI_NODES_CATEGORYNODE_H

#include "nodes/ValueNode.h"

namespace zyn::genapi {

/// A group of features. Readable as soon as one of them is implemented, also while it is "not available".
class CategoryNode final : public ValueNode<ICategory> {
 public:
  using ValueNode<ICategory>::ValueNode;

  void GetFeatures(FeatureList_t& Features) const override;
  gcstring TextValue(ReadMode read) override;

 protected:
  EAccessMode BaseAccess() override;
  bool IgnoresAvailability() const override { return true; }
};

}  // namespace zyn::genapi

#endif
