#include "map/NodeMap.h"

#include <algorithm>
#include <new>
#include <optional>
#include <utility>

#include "GenApi/ConcatenatedWrite.h"
#include "GenApi/GenApiVersion.h"
#include "formula/Compiler.h"
#include "map/NodeFactory.h"
#include "nodes/Node.h"
#include "nodes/PortNode.h"
#include "persistence/Announcement.h"

namespace zyn::genapi {
namespace {

// From that many on, what a call has written is looked up rather than searched.
constexpr std::size_t kFewWritten = 32;

gcstring Copy(const std::string& text) {
  return {text.data(), text.size()};
}

bool TakePrefix(std::string_view& name, std::string_view prefix) {
  if (name.substr(0, prefix.size()) != prefix) return false;
  name.remove_prefix(prefix.size());
  return true;
}

}  // namespace

NodeMap::NodeMap(std::shared_ptr<const Description> description, std::string deviceName, CLock* lock)
    : description_(std::move(description)),
      deviceName_(std::move(deviceName)),
      lock_(lock ? *lock : ownLock_),
      nodes_(description_->nodes.size()),
      closures_(description_->nodes.size()),
      pollingElapsed_(description_->polled.size(), 0) {}

NodeMap::~NodeMap() = default;

Node& NodeMap::At(NodeId id) const {
  std::unique_ptr<Node>& node = nodes_[id];
  if (!node) node = MakeNode(const_cast<NodeMap&>(*this), id);
  return *node;
}

void NodeMap::GetNodes(NodeList_t& Nodes) const {
  const AutoLock lock(lock_);
  Nodes.clear();
  Nodes.reserve(nodes_.size());
  for (NodeId id = 0; id < nodes_.size(); ++id) Nodes.push_back(&At(id));
}

INode* NodeMap::GetNode(const gcstring& Name) const {
  std::string_view name(Name.c_str(), Name.size());
  const bool standard = TakePrefix(name, "Std::");
  const bool custom = !standard && TakePrefix(name, "Cust::");
  const NodeId id = description_->FindNode(name);
  if (id == kNoNode) return nullptr;
  const ENameSpace own = description_->nodes[id].nameSpace;
  if ((standard && own != Standard) || (custom && own != Custom)) return nullptr;
  const AutoLock lock(lock_);
  return &At(id);
}

uint64_t NodeMap::GetNumNodes() const {
  return nodes_.size();
}

// Invalidation

std::vector<NodeId> NodeMap::Reachable(std::vector<NodeId> from) const {
  std::vector<bool> seen(nodes_.size(), false);
  std::erase_if(from, [&seen](NodeId id) {
    const bool isKnown = seen[id];
    seen[id] = true;
    return isKnown;
  });
  for (std::size_t i = 0; i < from.size(); ++i) {
    for (const NodeId next : description_->affected.Of(from[i])) {
      if (seen[next]) continue;
      seen[next] = true;
      from.push_back(next);
    }
  }
  return from;
}

const std::vector<NodeId>& NodeMap::Closure(NodeId id) const {
  if (closures_[id]) return *closures_[id];
  constexpr std::size_t kLarge = 4096;
  constexpr std::size_t kMaxBytes = std::size_t{16} << 20;
  std::vector<NodeId> closure = Reachable({id});
  if (closure.size() > kLarge || closureBytes_ > kMaxBytes) {
    largeClosure_.swap(closure);
    return largeClosure_;
  }
  closure.shrink_to_fit();
  closureBytes_ += closure.size() * sizeof(NodeId);
  closures_[id] = std::make_unique<std::vector<NodeId>>(std::move(closure));
  return *closures_[id];
}

void NodeMap::InvalidateClosure(NodeId id) const {
  for (const NodeId affected : Closure(id))
    if (Node* const node = Existing(affected)) node->Forget(true);
}

void NodeMap::ForgetEverything() const {
  for (const auto& node : nodes_)
    if (node) node->Forget(true);
}

void NodeMap::SetCachingEnabled(bool IsEnabled) {
  const AutoLock lock(lock_);
  remembersRegisters_ = IsEnabled;
  ForgetEverything();
  for (const auto& node : nodes_)
    if (node) node->ForgetCachingModes();
}

bool NodeMap::IsCachingEnabled() const {
  const AutoLock lock(lock_);
  return remembersRegisters_;
}

void NodeMap::InvalidateNodes() const {
  std::vector<CNodeCallback*> callbacks;
  {
    const AutoLock lock(lock_);
    ForgetEverything();
    CollectAllCallbacks(callbacks);
    FireInside(callbacks);
  }
  FireOutside(callbacks);
}

// A node whose block cannot be read does not keep the others from being polled.
std::vector<NodeId> NodeMap::CollectDue(int64_t elapsedTime, std::exception_ptr& failure) {
  std::vector<NodeId> due;
  for (std::size_t i = 0; i < description_->polled.size(); ++i) {
    try {
      Node& node = At(description_->polled[i]);
      if (!node.WantsPolling() || IsPollingBlocked(node)) continue;
      if (elapsedTime < node.GetPollingTime() - pollingElapsed_[i]) {
        pollingElapsed_[i] += elapsedTime;
        continue;
      }
      pollingElapsed_[i] = 0;
      due.push_back(node.Id());
    } catch (...) {  // a port may throw anything
      if (!failure) failure = std::current_exception();
    }
  }
  return due;
}

bool NodeMap::IsPollingBlocked(const Node& node) const {
  const NodeId id = node.Link(Element::pBlockPolling);
  return id != kNoNode && IsReadable(At(id).Access()) && At(id).IsTrue();
}

void NodeMap::Poll(int64_t ElapsedTime) {
  std::vector<CNodeCallback*> callbacks;
  std::exception_ptr failure;
  {
    const AutoLock lock(lock_);
    evaluations_ = 0;
    const std::vector<NodeId> due = CollectDue(std::max<int64_t>(ElapsedTime, 0), failure);
    EachAffected(due, [this](NodeId id) {
      if (Node* const node = Existing(id)) node->Forget(true);
    });
    if (!due.empty()) CollectCallbacks(due, callbacks);
    FireInside(callbacks);
  }
  FireOutside(callbacks);
  if (failure) std::rethrow_exception(failure);
}

// Callbacks

bool NodeMap::ConsumeSuppression() const {
  if (suppress_ == csmOff) return false;
  if (suppress_ == csmOnce) suppress_ = csmOff;
  return true;
}

void NodeMap::SetSuppressCallbackMode(ECallbackSuppressMode mode) {
  const AutoLock lock(lock_);
  suppress_ = mode;
}

void NodeMap::CollectCallbacks(const std::vector<NodeId>& changed,
                               std::vector<CNodeCallback*>& callbacks) const {
  if (ConsumeSuppression() || runner_.IsEmpty()) return;
  std::vector<bool> seen(nodes_.size(), false);
  EachAffected(changed, [&](NodeId id) {
    if (seen[id]) return;
    seen[id] = true;
    const Node* const node = Existing(id);
    if (node) callbacks.insert(callbacks.end(), node->Callbacks().begin(), node->Callbacks().end());
  });
}

void NodeMap::CollectAllCallbacks(std::vector<CNodeCallback*>& callbacks) const {
  if (ConsumeSuppression() || runner_.IsEmpty()) return;
  for (const auto& node : nodes_)
    if (node) callbacks.insert(callbacks.end(), node->Callbacks().begin(), node->Callbacks().end());
}

// A callback may end the registration of another one, and may write: then others are to be called in turn. Those
// outside of the lock wait until it is really released.
void NodeMap::FireInside(std::vector<CNodeCallback*>& callbacks) const {
  struct Depth {
    int& depth;
    ~Depth() { --depth; }
  };
  {
    const Depth depth{++firingDepth_};
    for (CNodeCallback* const callback : callbacks) {
      if (!runner_.IsRegistered(callback)) continue;
      evaluations_ = 0;
      runner_.Begin(callback);
      runner_.Run(callback, cbPostInsideLock);
    }
  }
  firedInside_.insert(firedInside_.end(), callbacks.begin(), callbacks.end());
  callbacks.clear();
  if (firingDepth_ == 0) callbacks.swap(firedInside_);
}

void NodeMap::FireOutside(const std::vector<CNodeCallback*>& callbacks) const {
  for (CNodeCallback* const callback : callbacks) {
    {
      const AutoLock lock(lock_);
      if (!runner_.IsRegistered(callback)) continue;
      runner_.Begin(callback);
    }
    runner_.Run(callback, cbPostOutsideLock);
  }
}

// Ports

bool NodeMap::Connect(IPort* pPort, const gcstring& PortName) const {
  const AutoLock lock(lock_);
  const NodeId id = description_->FindNode({PortName.c_str(), PortName.size()});
  if (id == kNoNode) return false;
  auto* const port = dynamic_cast<PortNode*>(&At(id));
  if (!port) return false;
  port->Connect(pPort);
  return true;
}

bool NodeMap::Connect(IPort* pPort) const {
  return Connect(pPort, "Device");
}

bool NodeMap::Connect(IPortStacked* pPort, const gcstring& PortName) {
  return Connect(static_cast<IPort*>(pPort), PortName);
}

bool NodeMap::Connect(IPortStacked* pPort) {
  return Connect(static_cast<IPort*>(pPort));
}

// Formulas and lists of writes

void NodeMap::CountInstructions(std::size_t count) {
  constexpr std::size_t kMaxInstructions = 6'000'000;
  if (instructions_ + count > kMaxInstructions) throw formula::FormulaError("#Internal error!");
  instructions_ += count;
}

bool NodeMap::ParseSwissKnifes(gcstring_vector* pErrorList) const {
  const AutoLock lock(lock_);
  if (pErrorList) pErrorList->clear();
  bool allGood = true;
  for (NodeId id = 0; id < nodes_.size(); ++id) {
    try {
      At(id).CompileFormulas();
    } catch (const GENICAM_NAMESPACE::GenericException& error) {
      allGood = false;
      if (pErrorList) pErrorList->push_back(error.GetDescription());
    }
  }
  return allGood;
}

CNodeWriteConcatenator* NodeMap::NewNodeWriteConcatenator() const {
  return new CNodeWriteConcatenator;
}

// Goes through the ports' stacks, so that a device that takes several writes at once gets them so. Callbacks see
// all of it done.
bool NodeMap::ConcatenatedWrite(CNodeWriteConcatenator* pConcatenatedWrite, bool featureStreaming,
                                gcstring_vector* pErrorList) {
  if (!pConcatenatedWrite) throw INVALID_ARGUMENT_EXCEPTION("A null list of writes cannot be written.");
  std::vector<std::string> errors;
  std::vector<CNodeCallback*> callbacks;
  {
    const AutoLock lock(lock_);
    std::vector<NodeId> changed;
    std::vector<NodeId>* const outer = std::exchange(joined_, &changed);
    try {
      WriteStacked(*pConcatenatedWrite, featureStreaming, errors);
    } catch (...) {  // a port may throw anything
      joined_ = outer;
      throw;
    }
    joined_ = outer;
    CollectCallbacks(changed, callbacks);
    FireInside(callbacks);
  }
  FireOutside(callbacks);
  if (pErrorList) pErrorList->clear();
  for (const std::string& error : errors)
    if (pErrorList) pErrorList->push_back(Copy(error));
  return errors.empty();
}

// The device must hear of the start before the first write, and of the end after the last one, so neither is kept back.
void NodeMap::WriteStacked(const CNodeWriteConcatenator& writes, bool isStreaming,
                           std::vector<std::string>& errors) {
  std::optional<Announcement> announcement;
  const auto announce = [&](const auto& step) {
    try {
      step();
    } catch (const GENICAM_NAMESPACE::GenericException& error) {
      errors.emplace_back(error.what());
    }
  };
  if (isStreaming)
    announce(
        [&] { announcement.emplace(*this, "DeviceRegistersStreamingStart", "DeviceRegistersStreamingEnd"); });
  BeginStacks();
  try {
    WriteAll(writes, errors);
    FlushPorts(errors);
  } catch (...) {
    DropStacks();
    throw;
  }
  if (announcement) announce([&] { announcement->End(); });
}

void NodeMap::BeginStacks() {
  for (const NodeId id : description_->ports) dynamic_cast<PortNode&>(At(id)).BeginStack();
}

void NodeMap::DropStacks() {
  for (const NodeId id : description_->ports) dynamic_cast<PortNode&>(At(id)).DropStack();
}

void NodeMap::WriteAll(const CNodeWriteConcatenator& writes, std::vector<std::string>& errors) {
  for (size_t i = 0; i < writes.Names().size(); ++i) {
    const gcstring& name = writes.Names()[i];
    try {
      auto* const value = dynamic_cast<IValue*>(GetNode(name));
      if (!value) throw INVALID_ARGUMENT_EXCEPTION("Error while writing node: '%s' not found", name.c_str());
      value->FromString(writes.Values()[i]);
    } catch (const GENICAM_NAMESPACE::GenericException& error) {
      errors.emplace_back(error.what());
    }
  }
}

void NodeMap::FlushPorts(std::vector<std::string>& errors) {
  for (const NodeId id : description_->ports) {
    auto& port = dynamic_cast<PortNode&>(At(id));
    port.EndStack();
    try {
      port.FlushStack();
    } catch (const GENICAM_NAMESPACE::GenericException& error) {
      errors.emplace_back(error.what());
    }
  }
}

// Facts

gcstring NodeMap::GetDeviceName() {
  return Copy(deviceName_);
}
gcstring NodeMap::GetModelName() {
  return Copy(description_->facts.modelName);
}
gcstring NodeMap::GetVendorName() {
  return Copy(description_->facts.vendorName);
}
gcstring NodeMap::GetToolTip() {
  return Copy(description_->facts.toolTip);
}
gcstring NodeMap::GetStandardNameSpace() {
  return Copy(description_->facts.standardNameSpace);
}
gcstring NodeMap::GetProductGuid() {
  return Copy(description_->facts.productGuid);
}
gcstring NodeMap::GetVersionGuid() {
  return Copy(description_->facts.versionGuid);
}
void NodeMap::GetSchemaVersion(Version_t& Version) {
  Version = description_->facts.schemaVersion;
}
void NodeMap::GetDeviceVersion(Version_t& Version) {
  Version = description_->facts.deviceVersion;
}

void NodeMap::GetGenApiVersion(Version_t& Version, uint16_t& Build) {
  Version = {GENAPI_VERSION_MAJOR, GENAPI_VERSION_MINOR, GENAPI_VERSION_SUBMINOR};
  Build = GENAPI_VERSION_BUILD;
}

void NodeMap::Destroy() {
  delete this;
}

UserData_t NodeMap::GetUserData() const {
  const AutoLock lock(lock_);
  return userData_;
}

UserData_t NodeMap::SetUserData(UserData_t pUserData) {
  const AutoLock lock(lock_);
  return std::exchange(userData_, pUserData);
}

void NodeMap::GetLoadNotes(gcstring_vector& Notes) const {
  Notes.clear();
  for (const std::string& note : description_->tolerated) Notes.push_back(Copy(note));
  if (description_->toleratedBeyond == 0) return;
  Notes.push_back(Copy("and " + std::to_string(description_->toleratedBeyond) + " more"));
}

// Calls

std::string NodeMap::EntryPoint() const {
  if (!entryNode_ || !entryMethod_) return {};
  return std::string(entryNode_->Name()) + "." + entryMethod_ + "()";
}

}  // namespace zyn::genapi

namespace GENAPI_NAMESPACE {

class LockDepth {
 public:
  static int Of(const CLock& lock) { return lock.m_Depth; }
};

}  // namespace GENAPI_NAMESPACE

namespace zyn::genapi {

bool NodeMap::IsLockedOutside() const {
  return LockDepth::Of(lock_) > 1;
}

Call::Call(const Node& node, const char* method) : map_(node.Map()) {
  map_.lock_.Lock();
  if (map_.callDepth_++ > 0) return;
  map_.evaluations_ = 0;
  map_.entryNode_ = &node;
  map_.entryMethod_ = method;
}

Call::~Call() {
  if (--map_.callDepth_ == 0) map_.entryNode_ = nullptr;
  map_.lock_.Unlock();
}

DepthGuard::DepthGuard(const Node& node, std::size_t work) : map_(node.Map()) {
  constexpr int kMaxDepth = 128;
  constexpr int kMaxEvaluations = 1'000'000;
  if (map_.evaluationDepth_ >= kMaxDepth)
    node.Throw<GENICAM_NAMESPACE::RuntimeException>("RuntimeException",
                                                    "Nodes read through each other too deeply at %s",
                                                    map_.Facts().Label(node.Id()).c_str());
  map_.evaluations_ += static_cast<int>(work);
  if (map_.evaluations_ > kMaxEvaluations)
    node.Throw<GENICAM_NAMESPACE::RuntimeException>("RuntimeException",
                                                    "Nodes read through each other too much at %s",
                                                    map_.Facts().Label(node.Id()).c_str());
  ++map_.evaluationDepth_;
}

WriteCall::WriteCall(Node& node, const char* method)
    : node_(node), map_(node.Map()), outer_([&] {
        map_.lock_.Lock();
        return map_.write_;
      }()) {
  map_.write_ = this;
  if (map_.callDepth_++ > 0) return;
  map_.evaluations_ = 0;
  map_.entryNode_ = &node;
  map_.entryMethod_ = method;
}

WriteCall::~WriteCall() {
  if (!held_) return;
  if (!committed_) ForgetWritten();
  Release();
}

// Often runs while an exception is on its way, so none may leave it. What changes with a node is worked out when
// first needed, which takes memory; without that memory more is forgotten than has to be, never less.
void WriteCall::ForgetWritten() noexcept {
  try {
    map_.EachAffected(written_, [this](NodeId id) {
      if (Node* const node = map_.Existing(id)) node->Forget(true);
    });
  } catch (const std::bad_alloc&) {
    map_.ForgetEverything();
  }
}

void WriteCall::Release() {
  held_ = false;
  map_.write_ = outer_;
  if (--map_.callDepth_ == 0) map_.entryNode_ = nullptr;
  map_.lock_.Unlock();
}

void WriteCall::MarkWritten(const Node& node) {
  WriteCall* const write = node.Map().write_;
  if (!write || write->IsWritten(node.Id())) return;
  write->written_.push_back(node.Id());
  if (write->written_.size() == kFewWritten)
    write->writtenIndex_.insert(write->written_.begin(), write->written_.end());
  if (write->written_.size() > kFewWritten) write->writtenIndex_.insert(node.Id());
}

void WriteCall::MarkSibling(NodeMap& map, NodeId node) {
  if (map.write_) map.write_->siblings_.push_back(node);
}

bool WriteCall::IsWritten(NodeId id) const {
  if (written_.size() >= kFewWritten) return writtenIndex_.contains(id);
  return std::find(written_.begin(), written_.end(), id) != written_.end();
}

void WriteCall::Settle() {
  map_.EachAffected(written_, [this](NodeId id) {
    Node* const node = map_.Existing(id);
    if (!node) return;
    // What was written keeps its value; what it may do and may become can have changed with it.
    if (IsWritten(id)) {
      node->ForgetDerived();
    } else {
      node->Forget(true);
    }
  });
  map_.EachAffected(siblings_, [this](NodeId id) {
    if (IsWritten(id)) return;
    if (Node* const node = map_.Existing(id)) node->Forget(false);
  });
}

void WriteCall::Commit(bool checkError) {
  Settle();
  committed_ = true;
  if (checkError) node_.CheckError();
  if (map_.joined_) {
    map_.joined_->insert(map_.joined_->end(), written_.begin(), written_.end());
    return Release();
  }
  std::vector<CNodeCallback*> callbacks;
  map_.CollectCallbacks(written_, callbacks);
  map_.FireInside(callbacks);
  NodeMap& map = map_;
  Release();
  map.FireOutside(callbacks);
}

}  // namespace zyn::genapi
