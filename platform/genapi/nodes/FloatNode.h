/// Float nodes.
#ifndef ZYN_GENAPI_NODES_FLOATNODE_H
#define ZYN_GENAPI_NODES_FLOATNODE_H

#include "nodes/FloatCore.h"
#include "nodes/IndexedSource.h"

namespace zyn::genapi {

/// A real number kept here or in another node. What it does not say about itself, the other node says.
class FloatNode final : public FloatCore {
 public:
  FloatNode(NodeMap& map, NodeId id);

  ERepresentation RepresentationOf() override;
  std::string_view UnitOf() override;
  EDisplayNotation NotationOf() override;
  std::int64_t PrecisionOf() override;

 protected:
  EAccessMode BaseAccess() override { return source_.BaseAccess(); }
  double Compute(ReadMode read) override;
  void Put(double value, bool verify) override;
  double OwnMin() override;
  double OwnMax() override;
  std::optional<double> OwnInc() override;

 private:
  /// The node that speaks for this one where it has no element of that kind; null when it speaks for itself.
  Node* Inherited(Element element);

  IndexedSource<double> source_;
  const Source<double> min_, max_, inc_;
};

}  // namespace zyn::genapi

#endif
