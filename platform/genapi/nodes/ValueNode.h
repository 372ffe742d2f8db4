/// Nodes with a value.
#ifndef ZYN_GENAPI_NODES_VALUENODE_H
#define ZYN_GENAPI_NODES_VALUENODE_H

#include "nodes/Node.h"

namespace zyn::genapi {

/// A node whose main interface is Interface; implements what all values share.
template <class Interface>
class ValueNode : public Node, virtual public Interface {
 public:
  using Node::Node;

  EAccessMode GetAccessMode() const override { return Node::GetAccessMode(); }
  INode* GetNode() override { return this; }

  gcstring ToString(bool Verify, bool IgnoreCache) override {
    const Call call(*this, "ToString");
    gcstring text = TextValue({Verify, IgnoreCache});
    if (Verify) CheckError();
    return text;
  }

  void FromString(const gcstring& ValueStr, bool Verify) override {
    WriteCall call(*this, "FromString");
    WriteText(ValueStr, Verify);
    call.Commit(Verify);
  }

  bool IsValueCacheValid() const override {
    const Call call(*this, "IsValueCacheValid");
    return valueValid_;
  }

  void Forget(bool device) override {
    Node::Forget(device);
    valueValid_ = false;
  }

 protected:
  // Whether the derived class's remembered value may be used.
  bool valueValid_ = false;
};

}  // namespace zyn::genapi

#endif
