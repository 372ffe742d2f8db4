#ifndef ZYN_FAKES_FAKE_NODE_MAP_H
#define ZYN_FAKES_FAKE_NODE_MAP_H

#include <cstdint>
#include <vector>

#include "FakeNode.h"

namespace fakes {

/// A node map of scripted nodes, which it borrows and lists in their order.
class FakeNodeMap : public GenApi::INodeMap {
 public:
  void GetNodes(GenApi::NodeList_t& out) const override {
    for (FakeNode* node : nodes) out.push_back(node);
  }
  GenApi::INode* GetNode(const GenICam::gcstring& name) const override {
    for (FakeNode* node : nodes)
      if (node->name == name.c_str()) return node;
    return nullptr;
  }
  void InvalidateNodes() const override {}
  bool Connect(GenApi::IPort* /*port*/, const GenICam::gcstring& /*name*/) const override { return false; }
  bool Connect(GenApi::IPort* /*port*/) const override { return false; }
  bool Connect(GenApi::IPortStacked* /*port*/, const GenICam::gcstring& /*name*/) override { return false; }
  bool Connect(GenApi::IPortStacked* /*port*/) override { return false; }
  GenICam::gcstring GetDeviceName() override { return "Device"; }
  void Poll(std::int64_t /*elapsed*/) override {}
  GenApi::CLock& GetLock() const override { return lock_; }
  std::uint64_t GetNumNodes() const override { return nodes.size(); }
  bool ParseSwissKnifes(GenICam::gcstring_vector* /*errors*/) const override { return true; }
  GenApi::CNodeWriteConcatenator* NewNodeWriteConcatenator() const override { return nullptr; }
  bool ConcatenatedWrite(GenApi::CNodeWriteConcatenator* /*writes*/, bool /*streaming*/,
                         GenICam::gcstring_vector* /*errors*/) override {
    return false;
  }
  void SetSuppressCallbackMode(GenApi::ECallbackSuppressMode /*mode*/) override {}

  std::vector<FakeNode*> nodes;

 private:
  mutable GenApi::CLock lock_;
};

}  // namespace fakes

#endif
