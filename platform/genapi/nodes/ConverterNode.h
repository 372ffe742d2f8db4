/// Converter nodes.
#ifndef ZYN_GENAPI_NODES_CONVERTERNODE_H
#define ZYN_GENAPI_NODES_CONVERTERNODE_H

#include "nodes/FloatCore.h"
#include "nodes/NodeFormula.h"

namespace zyn::genapi {

/// A real number that another node holds in other terms.
class ConverterNode final : public FloatCore {
 public:
  ConverterNode(NodeMap& map, NodeId id);

  void CompileFormulas() override;

 protected:
  EAccessMode BaseAccess() override { return Target().Access(); }
  double Compute(ReadMode read) override;
  void Put(double value, bool verify) override;
  double OwnMin() override { return Limits().first; }
  double OwnMax() override { return Limits().second; }
  /// Only of linear converters of integers: the change per step.
  std::optional<double> OwnInc() override;

 private:
  Node& Target() { return At(Link(Element::pValue)); }
  /// The type's limits where the formula gives none.
  std::pair<double, double> Limits();

  NodeFormula<double> toDevice_;
  NodeFormula<double> fromDevice_;
};

}  // namespace zyn::genapi

#endif
