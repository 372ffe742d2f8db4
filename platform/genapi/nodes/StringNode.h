/// String nodes.
#ifndef ZYN_GENAPI_NODES_STRINGNODE_H
#define ZYN_GENAPI_NODES_STRINGNODE_H

#include "nodes/StringCore.h"

namespace zyn::genapi {

/// A text kept here or in another node.
class StringNode final : public StringCore {
 public:
  StringNode(NodeMap& map, NodeId id) : StringCore(map, id), target_(Link(Element::pValue)) {
    const std::string_view text = Text(Element::value);
    constant_.assign(text.data(), text.size());
  }

  std::int64_t TextMaxLength() override {
    return target_ == kNoNode ? StringCore::TextMaxLength() : At(target_).TextMaxLength();
  }

 protected:
  EAccessMode BaseAccess() override { return target_ == kNoNode ? RW : At(target_).Access(); }

  gcstring Compute(ReadMode read) override {
    return target_ == kNoNode ? constant_ : At(target_).TextValue({false, read.ignoreCache});
  }

  void Put(const gcstring& text, bool verify) override {
    if (target_ == kNoNode) {
      constant_ = text;
    } else {
      At(target_).WriteText(text, verify);
    }
  }

  // A node of another kind may write the same in other words.
  bool KeepsWrittenText() const override {
    return target_ == kNoNode || dynamic_cast<const StringCore*>(&At(target_)) != nullptr;
  }

 private:
  const NodeId target_;
  gcstring constant_;
};

}  // namespace zyn::genapi

#endif
