/// FloatReg nodes.
#ifndef ZYN_GENAPI_NODES_FLOATREGNODE_H
#define ZYN_GENAPI_NODES_FLOATREGNODE_H

#include "nodes/FloatCore.h"
#include "nodes/RegisterNode.h"

namespace zyn::genapi {

/// An IEEE number of 4 or 8 bytes.
class FloatRegNode final : public WithRegister<FloatCore> {
 public:
  FloatRegNode(NodeMap& map, NodeId id);

 protected:
  double Compute(ReadMode read) override;
  void Put(double value, bool verify) override;
  double OwnMin() override { return -OwnMax(); }
  double OwnMax() override;

 private:
  std::int64_t ByteCount();

  const bool isBigEndian_;
};

}  // namespace zyn::genapi

#endif
