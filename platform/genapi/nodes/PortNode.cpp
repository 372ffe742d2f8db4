#include "nodes/PortNode.h"

namespace zyn::genapi {
namespace {

// A description can move a register without end; memory must not grow with it.
constexpr std::size_t kMaxPlaces = 1U << 16;

}  // namespace

EAccessMode PortNode::BaseAccess() {
  if (connected_) return connected_->GetAccessMode();
  return Find(Element::chunkId) || Find(Element::pChunkId) ? NA : NI;
}

IPort& PortNode::Connected() {
  if (!connected_) ZYN_THROW(AccessException, "Port is not connected.");
  return *connected_;
}

void PortNode::Connect(IPort* port) {
  connected_ = port;
  GiveUpMemory();
  Map().InvalidateClosure(Id());
  // Another node map's Port would connect itself back.
  auto* const construct = dynamic_cast<IPortConstruct*>(port);
  if (construct && !dynamic_cast<PortNode*>(port)) construct->SetPortImpl(this);
  if (auto* const stacked = dynamic_cast<IPortStackedConstruct*>(port)) stacked->SetPortImpl(this);
}

void PortNode::SetPortImpl(IPort* pPort) {
  const Call call(*this, "SetPortImpl");
  Connect(pPort);
}

void PortNode::Read(void* pBuffer, int64_t Address, int64_t Length) {
  const Call call(*this, "Read");
  FlushStack();
  Connected().Read(pBuffer, Address, Length);
}

void PortNode::Write(const void* pBuffer, int64_t Address, int64_t Length) {
  const Call call(*this, "Write");
  IPort& port = Connected();
  if (isStacking_ && dynamic_cast<IPortStacked*>(&port)) {
    const auto* const bytes = static_cast<const std::uint8_t*>(pBuffer);
    pending_.push_back({Address, {bytes, bytes + Length}});
  } else {
    port.Write(pBuffer, Address, Length);
  }
  if (recorder_) recorder_->Write(pBuffer, Address, Length);
}

void PortNode::Write(PORT_REGISTER_STACK_ENTRY* pEntries, size_t numEntries) {
  const Call call(*this, "Write");
  if (auto* const stacked = dynamic_cast<IPortStacked*>(&Connected()))
    return stacked->Write(pEntries, numEntries);
  for (size_t i = 0; i < numEntries; ++i)
    Connected().Write(pEntries[i].pBuffer, static_cast<std::int64_t>(pEntries[i].Address),
                      static_cast<std::int64_t>(pEntries[i].Size));
}

void PortNode::BeginStack() {
  isStacking_ = true;
  pending_.clear();
}

void PortNode::DropStack() {
  isStacking_ = false;
  if (pending_.empty()) return;
  pending_.clear();
  Map().InvalidateClosure(Id());
}

void PortNode::FlushStack() {
  if (pending_.empty()) return;
  std::vector<PendingWrite> writes;
  writes.swap(pending_);
  std::vector<PORT_REGISTER_STACK_ENTRY> entries;
  entries.reserve(writes.size());
  for (PendingWrite& write : writes)
    entries.push_back({static_cast<std::uint64_t>(write.address), write.bytes.data(), write.bytes.size()});
  try {
    dynamic_cast<IPortStacked&>(Connected()).Write(entries.data(), entries.size());
  } catch (...) {
    Map().InvalidateClosure(Id());
    throw;
  }
}

EYesNo PortNode::GetSwapEndianess() {
  return static_cast<EYesNo>(Number(Element::swapEndianess, No));
}
EYesNo PortNode::CacheChunkData() const {
  return static_cast<EYesNo>(Number(Element::cacheChunkData, No));
}

gcstring PortNode::GetChunkID() const {
  const Call call(*this, "GetChunkID");
  const NodeId link = Link(Element::pChunkId);
  if (link != kNoNode) return Node::At(link).TextValue({});
  const std::string_view text = Text(Element::chunkId);
  return {text.data(), text.size()};
}

void PortNode::Replay(IPortWriteList* pPortRecorder, bool Invalidate) {
  WriteCall call(*this, "Replay");
  if (!pPortRecorder) ZYN_THROW(InvalidArgumentException, "A null list cannot be replayed.");
  pPortRecorder->Replay(&Connected());
  if (!Invalidate) return call.Commit(false);
  Map().InvalidateClosure(Id());
  WriteCall::MarkWritten(*this);
  call.Commit(false);
}

void PortNode::StartRecording(IPortWriteList* pPortRecorder) {
  const Call call(*this, "StartRecording");
  recorder_ = pPortRecorder;
}

void PortNode::StopRecording() {
  const Call call(*this, "StopRecording");
  recorder_ = nullptr;
}

void PortNode::Forget(bool device) {
  Node::Forget(device);
  if (!device) return;
  for (auto& [place, memory] : memory_) memory.valid = false;
}

void PortNode::GiveUpMemory() {
  memory_.clear();
  ++generation_;
}

PortNode::Memory& PortNode::At(std::int64_t address, std::int64_t length) {
  if (memory_.size() >= kMaxPlaces) GiveUpMemory();
  return memory_[{address, length}];
}

void PortNode::ForgetPlace(std::int64_t address, std::int64_t length) {
  const auto place = memory_.find({address, length});
  if (place != memory_.end()) place->second.valid = false;
}

}  // namespace zyn::genapi
