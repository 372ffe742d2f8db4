#include "nodes/BooleanNode.h"

namespace zyn::genapi {

BooleanNode::BooleanNode(NodeMap& map, NodeId id)
    : ValueNode<IBoolean>(map, id),
      target_(Link(Element::pValue)),
      on_(Number(Element::onValue, 1)),
      off_(Number(Element::offValue, 0)),
      value_(Number(Element::value, 0) != 0) {}

bool BooleanNode::Read(ReadMode read) {
  RequireReadable();
  if (target_ == kNoNode || (valueValid_ && !read.ignoreCache)) {
    valueValid_ = true;
    return value_;
  }
  const DepthGuard depth(*this);
  valueValid_ = false;
  const std::int64_t raw = At(target_).IntegerValue({false, read.ignoreCache});
  if (raw != on_ && raw != off_)
    ZYN_THROW(LogicalErrorException, "Value %lld means neither true nor false.", static_cast<long long>(raw));
  value_ = raw == on_;
  valueValid_ = !read.ignoreCache && CachingMode() != NoCache;
  return value_;
}

void BooleanNode::WriteTruth(bool value, bool verify) {
  const DepthGuard depth(*this);
  valueValid_ = false;
  RequireWritable();
  WriteCall::MarkWritten(*this);
  if (target_ != kNoNode) At(target_).WriteInteger(value ? on_ : off_, verify);
  value_ = value;
  valueValid_ =
      target_ == kNoNode || (verify && CachingMode() == WriteThrough && At(target_).IsIntegerKind());
}

void BooleanNode::SetValue(bool Value, bool Verify) {
  WriteCall call(*this, "SetValue");
  WriteTruth(Value, Verify);
  call.Commit(Verify);
}

bool BooleanNode::GetValue(bool Verify, bool IgnoreCache) const {
  const Call call(*this, "GetValue");
  auto* const self = const_cast<BooleanNode*>(this);
  const bool value = self->Read({Verify, IgnoreCache});
  if (Verify) self->CheckError();
  return value;
}

void BooleanNode::WriteText(const gcstring& text, bool verify) {
  RequireWritable();
  const bool isTrue = text == "1" || text == "true";
  if (!isTrue && text != "0" && text != "false")
    ZYN_THROW(InvalidArgumentException, "'%s' is neither true nor false.", text.c_str());
  WriteTruth(isTrue, verify);
}

}  // namespace zyn::genapi
