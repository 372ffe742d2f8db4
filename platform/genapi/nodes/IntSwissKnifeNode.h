/// IntSwissKnife nodes.
#ifndef ZYN_GENAPI_NODES_INTSWISSKNIFENODE_H
#define ZYN_GENAPI_NODES_INTSWISSKNIFENODE_H

#include "nodes/IntegerCore.h"
#include "nodes/NodeFormula.h"

namespace zyn::genapi {

/// An integer computed from others.
class IntSwissKnifeNode final : public IntegerCore {
 public:
  IntSwissKnifeNode(NodeMap& map, NodeId id) : IntegerCore(map, id), formula_(*this, Element::formula, {}) {}

  void CompileFormulas() override { formula_.Compile(); }

 protected:
  EAccessMode BaseAccess() override { return RO; }
  /// Nothing is ever written, so only registers that must not be cached matter.
  ECachingMode ComputeCachingMode() override {
    return IntegerCore::ComputeCachingMode() == NoCache ? NoCache : WriteThrough;
  }
  std::int64_t Compute(ReadMode read) override { return formula_.Evaluate(0, read); }
  void Put(std::int64_t, bool) override { ZYN_THROW(AccessException, "Node is not writable."); }

 private:
  NodeFormula<std::int64_t> formula_;
};

}  // namespace zyn::genapi

#endif
