/// The runtime's node map.
#ifndef ZYN_GENAPI_MAP_NODEMAP_H
#define ZYN_GENAPI_MAP_NODEMAP_H

#include <exception>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "GenApi/GenApi.h"
#include "GenApi/ICacheSwitch.h"
#include "GenApi/ILoadNotes.h"
#include "description/Description.h"
#include "map/CallbackRunner.h"

namespace zyn::genapi {

using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::gcstring_vector;
using namespace GENAPI_NAMESPACE;

class Node;
class PortNode;
class WriteCall;

/// One device's nodes over a shared description. A node object is made when it is first asked for.
/// Everything that is not part of a public interface is called with the lock held.
class NodeMap final : public INodeMap,
                      public IDeviceInfo,
                      public IDestroy,
                      public IUserData,
                      public ILoadNotes,
                      public ICacheSwitch {
 public:
  /// `lock` is borrowed when given, else the map has its own.
  NodeMap(std::shared_ptr<const Description> description, std::string deviceName, CLock* lock);
  ~NodeMap() override;
  NodeMap(const NodeMap&) = delete;
  NodeMap& operator=(const NodeMap&) = delete;

  void GetNodes(NodeList_t& Nodes) const override;
  INode* GetNode(const gcstring& Name) const override;
  void InvalidateNodes() const override;
  bool Connect(IPort* pPort, const gcstring& PortName) const override;
  bool Connect(IPort* pPort) const override;
  bool Connect(IPortStacked* pPort, const gcstring& PortName) override;
  bool Connect(IPortStacked* pPort) override;
  gcstring GetDeviceName() override;
  void Poll(int64_t ElapsedTime) override;
  CLock& GetLock() const override { return lock_; }
  uint64_t GetNumNodes() const override;
  bool ParseSwissKnifes(gcstring_vector* pErrorList) const override;
  CNodeWriteConcatenator* NewNodeWriteConcatenator() const override;
  bool ConcatenatedWrite(CNodeWriteConcatenator* pConcatenatedWrite, bool featureStreaming,
                         gcstring_vector* pErrorList) override;
  void SetSuppressCallbackMode(ECallbackSuppressMode mode) override;

  gcstring GetModelName() override;
  gcstring GetVendorName() override;
  gcstring GetToolTip() override;
  gcstring GetStandardNameSpace() override;
  void GetGenApiVersion(Version_t& Version, uint16_t& Build) override;
  void GetSchemaVersion(Version_t& Version) override;
  void GetDeviceVersion(Version_t& Version) override;
  gcstring GetProductGuid() override;
  gcstring GetVersionGuid() override;

  void Destroy() override;
  UserData_t GetUserData() const override;
  UserData_t SetUserData(UserData_t pUserData) override;
  void GetLoadNotes(gcstring_vector& Notes) const override;
  void SetCachingEnabled(bool IsEnabled) override;
  bool IsCachingEnabled() const override;

  const Description& Facts() const { return *description_; }
  bool RemembersRegisters() const { return remembersRegisters_; }
  const std::string& DeviceName() const { return deviceName_; }
  Node& At(NodeId id) const;
  /// Null when the node was never asked for: then it has no state either.
  Node* Existing(NodeId id) const { return nodes_[id].get(); }

  /// The node, and everything that changes with it, directly or not. Worked out once per node; very large ones and, when
  /// there are very many, further ones each time, because all of them together would grow with the square of the nodes.
  /// Holds until the next call.
  const std::vector<NodeId>& Closure(NodeId id) const;
  /// visit(node) for everything that changes with these nodes and for themselves; of a few nodes maybe more than once.
  template <class Visit>
  void EachAffected(const std::vector<NodeId>& changed, const Visit& visit) const {
    constexpr std::size_t kFew = 8;
    if (changed.size() > kFew) {
      for (const NodeId id : Reachable(changed)) visit(id);
      return;
    }
    for (const NodeId id : changed)
      for (const NodeId affected : Closure(id)) visit(affected);
  }

  /// Counts the instructions of a compiled formula. Throws FormulaError when all formulas together take too many.
  void CountInstructions(std::size_t count);

  /// Forgets the state of the node and of everything that changes with it.
  void InvalidateClosure(NodeId id) const;
  /// Forgets the state of every node. Allocates nothing and throws nothing.
  void ForgetEverything() const;

  /// "Node.Method()" of the outermost call, for messages.
  std::string EntryPoint() const;

  CallbackRunner& Callbacks() const { return runner_; }
  /// Whether this thread, which holds the lock, took it more often than the call it is in.
  bool IsLockedOutside() const;

 private:
  friend class Call;
  friend class WriteCall;
  friend class DepthGuard;

  /// Lets time pass for the polled nodes and returns those whose time is over. `failure` becomes the first exception.
  std::vector<NodeId> CollectDue(int64_t elapsedTime, std::exception_ptr& failure);
  bool IsPollingBlocked(const Node& node) const;
  /// Nothing, when callbacks are suppressed or there are none.
  void CollectCallbacks(const std::vector<NodeId>& changed, std::vector<CNodeCallback*>& callbacks) const;
  bool ConsumeSuppression() const;
  void WriteStacked(const CNodeWriteConcatenator& writes, bool isStreaming, std::vector<std::string>& errors);
  void WriteAll(const CNodeWriteConcatenator& writes, std::vector<std::string>& errors);
  void BeginStacks();
  void FlushPorts(std::vector<std::string>& errors);
  void DropStacks();
  /// Calls what is to be called with the lock held. Afterwards `callbacks` is what FireOutside() has to call: that
  /// and what was written inside of callbacks; nothing when this was inside of a callback itself.
  void FireInside(std::vector<CNodeCallback*>& callbacks) const;
  void FireOutside(const std::vector<CNodeCallback*>& callbacks) const;
  void CollectAllCallbacks(std::vector<CNodeCallback*>& callbacks) const;
  /// These nodes and everything that changes with them, each once.
  std::vector<NodeId> Reachable(std::vector<NodeId> from) const;

  // Constant after construction.
  const std::shared_ptr<const Description> description_;
  const std::string deviceName_;
  mutable CLock ownLock_;
  CLock& lock_;

  // Guarded by lock_, which is the client's type and carries no annotation.
  mutable std::vector<std::unique_ptr<Node>> nodes_;
  mutable std::vector<std::unique_ptr<std::vector<NodeId>>> closures_;
  mutable std::vector<NodeId> largeClosure_;
  mutable std::size_t closureBytes_ = 0;
  std::size_t instructions_ = 0;
  mutable const Node* entryNode_ = nullptr;
  mutable const char* entryMethod_ = nullptr;
  mutable int callDepth_ = 0;
  mutable int evaluationDepth_ = 0;
  mutable int evaluations_ = 0;
  mutable CallbackRunner runner_;
  mutable int firingDepth_ = 0;
  mutable std::vector<CNodeCallback*> firedInside_;
  mutable WriteCall* write_ = nullptr;
  // Set while several writes count as one: where their nodes are collected, to fire callbacks in the end.
  std::vector<NodeId>* joined_ = nullptr;
  mutable ECallbackSuppressMode suppress_ = csmOff;
  std::vector<int64_t> pollingElapsed_;
  bool remembersRegisters_ = true;
  UserData_t userData_ = nullptr;

 public:
  /// Counts accesses to nodes whose access mode is being worked out; see Node::Access.
  mutable unsigned accessLoops_ = 0;
};

/// One public call: holds the lock, and knows its name while it is the outermost one.
class Call {
 public:
  Call(const Node& node, const char* method);
  ~Call();
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

 private:
  NodeMap& map_;
};

/// Bounds how deep nodes may read through each other, so that no description exhausts the stack, and how often within
/// one call: where nothing is remembered, the work may double with every level.
class DepthGuard {
 public:
  /// `work` is about how many nodes it is as costly as.
  explicit DepthGuard(const Node& node, std::size_t work = 1);
  ~DepthGuard() { --map_.evaluationDepth_; }
  DepthGuard(const DepthGuard&) = delete;
  DepthGuard& operator=(const DepthGuard&) = delete;

 private:
  const NodeMap& map_;
};

/// One public call that changes something. Commit() brings caches up to date and fires callbacks; without it,
/// after an exception, everything touched is forgotten.
class WriteCall {
 public:
  WriteCall(Node& node, const char* method);
  ~WriteCall();
  WriteCall(const WriteCall&) = delete;
  WriteCall& operator=(const WriteCall&) = delete;

  /// With checkError the node's error registers are read before callbacks fire.
  void Commit(bool checkError);
  /// Ends a call that turned out to change nothing.
  void CommitNothing() { committed_ = true; }

  /// A node that this call writes; its value stays valid.
  static void MarkWritten(const Node& node);
  /// A register that lies at the same place as a written one: what was computed from it is stale.
  static void MarkSibling(NodeMap& map, NodeId node);

 private:
  void ForgetWritten() noexcept;
  void Settle();
  bool IsWritten(NodeId id) const;
  void Release();

  Node& node_;
  NodeMap& map_;
  WriteCall* const outer_;
  std::vector<NodeId> written_;
  // The same, once they are many.
  std::unordered_set<NodeId> writtenIndex_;
  std::vector<NodeId> siblings_;
  bool held_ = true;
  bool committed_ = false;
};

}  // namespace zyn::genapi

#endif
