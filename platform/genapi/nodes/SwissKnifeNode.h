/// SwissKnife nodes.
#ifndef ZYN_GENAPI_NODES_SWISSKNIFENODE_H
#define ZYN_GENAPI_NODES_SWISSKNIFENODE_H

#include "nodes/FloatCore.h"
#include "nodes/NodeFormula.h"

namespace zyn::genapi {

/// A real number computed from others.
class SwissKnifeNode final : public FloatCore {
 public:
  SwissKnifeNode(NodeMap& map, NodeId id) : FloatCore(map, id), formula_(*this, Element::formula, {}) {}

  void CompileFormulas() override { formula_.Compile(); }

 protected:
  EAccessMode BaseAccess() override { return RO; }
  double Compute(ReadMode read) override { return formula_.Evaluate(0, read); }
  void Put(double, bool) override { ZYN_THROW(AccessException, "Node is not writable."); }

 private:
  NodeFormula<double> formula_;
};

}  // namespace zyn::genapi

#endif
