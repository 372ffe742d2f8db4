#include "nodes/CommandNode.h"

namespace zyn::genapi {

CommandNode::CommandNode(NodeMap& map, NodeId id)
    : ValueNode<ICommand>(map, id), target_(Link(Element::pValue)) {}

std::int64_t CommandNode::CommandValue() {
  const NodeId link = Link(Element::pCommandValue);
  return link == kNoNode ? Number(Element::commandValue, 1) : At(link).IntegerValue({});
}

void CommandNode::Start(bool verify) {
  const DepthGuard depth(*this);
  RequireWritable();
  WriteCall::MarkWritten(*this);
  if (target_ == kNoNode) return;
  At(target_).WriteInteger(CommandValue(), verify);
  busy_ = true;
}

void CommandNode::Execute(bool Verify) {
  WriteCall call(*this, "Execute");
  Start(Verify);
  call.Commit(false);  // the error registers tell about values, not about commands
}

bool CommandNode::StillBusy() {
  if (!busy_ || target_ == kNoNode || !IsReadable(At(target_).Access())) return false;
  return At(target_).IntegerValue({false, true}) == CommandValue();
}

// A command that is not available is one that the device is perhaps still busy with.
bool CommandNode::IsDone(bool) {
  WriteCall call(*this, "IsDone");
  if (!IsImplemented(Access())) RequireAvailable();
  const bool finishes = busy_ && !StillBusy();
  if (!finishes) {
    const bool done = !busy_;
    call.CommitNothing();
    return done;
  }
  busy_ = false;
  WriteCall::MarkWritten(*this);
  call.Commit(false);
  return true;
}

gcstring CommandNode::TextValue(ReadMode) {
  RequireReadable();
  if (busy_ && !StillBusy()) busy_ = false;
  return busy_ ? "1" : "0";
}

void CommandNode::WriteText(const gcstring& text, bool verify) {
  RequireWritable();
  if (text != "1" && text != "true")
    ZYN_THROW(InvalidArgumentException, "'%s' does not execute a command.", text.c_str());
  Start(verify);
}

}  // namespace zyn::genapi
