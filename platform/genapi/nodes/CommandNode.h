/// Command nodes.
#ifndef ZYN_GENAPI_NODES_COMMANDNODE_H
#define ZYN_GENAPI_NODES_COMMANDNODE_H

#include "nodes/ValueNode.h"

namespace zyn::genapi {

/// Writes a number to make the device do something; it is done once the number no longer reads back.
class CommandNode final : public ValueNode<ICommand> {
 public:
  CommandNode(NodeMap& map, NodeId id);

  void Execute(bool Verify) override;
  void operator()() override { Execute(true); }
  bool IsDone(bool Verify) override;

  gcstring TextValue(ReadMode read) override;
  void WriteText(const gcstring& text, bool verify) override;
  bool WantsPolling() override { return busy_; }

 protected:
  EAccessMode BaseAccess() override { return target_ == kNoNode ? RW : At(target_).Access(); }

 private:
  std::int64_t CommandValue();
  void Start(bool verify);
  /// Asks the device; fires no callbacks.
  bool StillBusy();

  const NodeId target_;
  bool busy_ = false;
};

}  // namespace zyn::genapi

#endif
