/// IntConverter nodes.
#ifndef ZYN_GENAPI_NODES_INTCONVERTERNODE_H
#define ZYN_GENAPI_NODES_INTCONVERTERNODE_H

#include "nodes/IntegerCore.h"
#include "nodes/NodeFormula.h"

namespace zyn::genapi {

/// An integer that another node holds in other terms.
class IntConverterNode final : public IntegerCore {
 public:
  IntConverterNode(NodeMap& map, NodeId id);

  void CompileFormulas() override;

 protected:
  EAccessMode BaseAccess() override { return Target().Access(); }
  ECachingMode ComputeCachingMode() override {
    return Combine(IntegerCore::ComputeCachingMode(), WriteAround);
  }
  std::int64_t Compute(ReadMode read) override;
  void Put(std::int64_t value, bool verify) override;
  std::int64_t OwnMin() override { return Limits().first; }
  std::int64_t OwnMax() override { return Limits().second; }

 private:
  Node& Target() { return At(Link(Element::pValue)); }
  std::pair<std::int64_t, std::int64_t> Limits();

  NodeFormula<std::int64_t> toDevice_;
  NodeFormula<std::int64_t> fromDevice_;
};

}  // namespace zyn::genapi

#endif
