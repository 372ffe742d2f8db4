/// Node nodes.
#ifndef ZYN_GENAPI_NODES_PLAINNODE_H
#define ZYN_GENAPI_NODES_PLAINNODE_H

#include "nodes/ValueNode.h"

namespace zyn::genapi {

/// A node without meaning of its own; it keeps a text.
class PlainNode final : public ValueNode<IValue> {
 public:
  using ValueNode<IValue>::ValueNode;

  gcstring TextValue(ReadMode) override {
    RequireReadable();
    return text_;
  }
  void WriteText(const gcstring& text, bool) override {
    RequireWritable();
    WriteCall::MarkWritten(*this);
    text_ = text;
  }

 private:
  gcstring text_;
};

}  // namespace zyn::genapi

#endif
