/// IntReg and MaskedIntReg nodes.
#ifndef ZYN_GENAPI_NODES_INTREGNODE_H
#define ZYN_GENAPI_NODES_INTREGNODE_H

#include "nodes/IntegerCore.h"
#include "nodes/RegisterNode.h"

namespace zyn::genapi {

/// An integer of 1 to 8 bytes, or some bits of one.
///
/// Bits are counted from the least significant one in little-endian registers, from the most significant one
/// in big-endian registers; LSB and MSB may come in either order.
class IntRegNode final : public WithRegister<IntegerCore> {
 public:
  IntRegNode(NodeMap& map, NodeId id);

 protected:
  std::int64_t Compute(ReadMode read) override;
  void Put(std::int64_t value, bool verify) override;
  std::int64_t OwnMin() override;
  std::int64_t OwnMax() override;

 private:
  struct Field {
    int shift;
    int width;
  };
  /// The whole register when the node has no mask.
  Field FieldIn(std::int64_t length);
  int Width() { return FieldIn(register_.NumberLength()).width; }
  std::uint64_t RawForUpdate();

  const bool isSigned_;
  const bool isBigEndian_;
  const bool isMasked_;
};

}  // namespace zyn::genapi

#endif
