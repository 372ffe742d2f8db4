/// Boolean nodes.
#ifndef ZYN_GENAPI_NODES_BOOLEANNODE_H
#define ZYN_GENAPI_NODES_BOOLEANNODE_H

#include "nodes/ValueNode.h"

namespace zyn::genapi {

/// True or false, kept here or as one of two numbers in another node.
class BooleanNode final : public ValueNode<IBoolean> {
 public:
  BooleanNode(NodeMap& map, NodeId id);

  void SetValue(bool Value, bool Verify) override;
  bool GetValue(bool Verify, bool IgnoreCache) const override;

  std::int64_t IntegerValue(ReadMode read) override { return Read(read) ? 1 : 0; }
  double RealValue(ReadMode read) override { return Read(read) ? 1 : 0; }
  void WriteInteger(std::int64_t value, bool verify) override { WriteTruth(value != 0, verify); }
  void WriteReal(double value, bool verify) override { WriteTruth(value != 0, verify); }
  std::int64_t IntegerMin() override { return 0; }
  std::int64_t IntegerMax() override { return 1; }
  double RealMin() override { return 0; }
  double RealMax() override { return 1; }
  gcstring TextValue(ReadMode read) override { return Read(read) ? "1" : "0"; }
  void WriteText(const gcstring& text, bool verify) override;

 protected:
  EAccessMode BaseAccess() override { return target_ == kNoNode ? RW : At(target_).Access(); }

 private:
  bool Read(ReadMode read);
  void WriteTruth(bool value, bool verify);

  const NodeId target_;
  const std::int64_t on_;
  const std::int64_t off_;
  bool value_;
};

}  // namespace zyn::genapi

#endif
