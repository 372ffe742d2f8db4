#include "BufferQueues.h"

#include <algorithm>

#include "ChunkTrailers.h"
#include "producer/Error.h"

namespace zyn::producer {
namespace {

constexpr std::size_t kAllocationAlignment = 64;  // a cache line, and the widest vector

Buffer& Own(StreamBuffer& buffer) {
  return static_cast<Buffer&>(buffer);
}

}  // namespace

// ---- announcing ----

void BufferQueues::CheckNewMemory(const void* memory, std::size_t size) const {
  if (size == 0) throw Error(GenTL::GC_ERR_INVALID_PARAMETER, "A buffer needs at least one byte.");
  if (reinterpret_cast<std::uintptr_t>(memory) % traits_.alignment != 0) {
    throw Error(GenTL::GC_ERR_INVALID_BUFFER,
                "The memory is not aligned to " + std::to_string(traits_.alignment) + " bytes.");
  }
  const auto same = [memory](const auto& buffer) { return buffer->Memory() == memory; };
  if (std::any_of(announced_.begin(), announced_.end(), same))
    throw Error(GenTL::GC_ERR_RESOURCE_IN_USE, "This memory is announced already.");
}

std::shared_ptr<Buffer> BufferQueues::Add(std::shared_ptr<Buffer> buffer) {
  Handles().Insert(buffer);
  announced_.push_back(buffer);
  return buffer;
}

std::shared_ptr<Buffer> BufferQueues::Announce(void* memory, std::size_t size, void* user) {
  MutexLock lock(mutex_);
  CheckNewMemory(memory, size);
  return Add(std::make_shared<Buffer>(this, static_cast<std::uint8_t*>(memory), size, user));
}

std::shared_ptr<Buffer> BufferQueues::Allocate(std::size_t size, void* user) {
  if (size == 0) throw Error(GenTL::GC_ERR_INVALID_PARAMETER, "A buffer needs at least one byte.");
  auto memory = std::make_unique<OwnedMemory>(size, std::max(kAllocationAlignment, traits_.alignment));
  MutexLock lock(mutex_);
  return Add(std::make_shared<Buffer>(this, std::move(memory), size, user));
}

void BufferQueues::Revoke(Buffer& buffer) {
  MutexLock lock(mutex_);
  if (buffer.place != Buffer::Place::unqueued)
    throw Error(GenTL::GC_ERR_BUSY, "The buffer is queued: flush the queues first.");
  const auto same = [&buffer](const auto& other) { return other.get() == &buffer; };
  const auto found = std::find_if(announced_.begin(), announced_.end(), same);
  if (found == announced_.end()) ThrowInvalidHandle();
  announced_.erase(found);
}

std::vector<std::shared_ptr<Buffer>> BufferQueues::RevokeAll() {
  MutexLock lock(mutex_);
  input_.clear();
  output_.clear();
  std::vector<std::shared_ptr<Buffer>> all;
  all.swap(announced_);
  return all;
}

std::shared_ptr<Buffer> BufferQueues::At(std::size_t index) const {
  MutexLock lock(mutex_);
  if (index >= announced_.size()) {
    throw Error(GenTL::GC_ERR_INVALID_INDEX, std::to_string(announced_.size()) +
                                                 " buffers are announced, there is no number " +
                                                 std::to_string(index) + ".");
  }
  return announced_[index];
}

// ---- moving ----

void BufferQueues::ToInput(Buffer& buffer) {
  buffer.place = Buffer::Place::input;
  buffer.comesBack = Buffer::Return::asUsual;
  buffer.started = false;
  buffer.newData = false;
  buffer.info = Buffer::Empty();
  input_.push_back(&buffer);
}

void BufferQueues::ToUnqueued(Buffer& buffer) {
  buffer.place = Buffer::Place::unqueued;
  buffer.comesBack = Buffer::Return::asUsual;
  buffer.started = false;
}

bool BufferQueues::Queue(Buffer& buffer) {
  MutexLock lock(mutex_);
  if (buffer.place != Buffer::Place::unqueued)
    throw Error(GenTL::GC_ERR_RESOURCE_IN_USE, "The buffer is queued already.");
  const auto same = [&buffer](const auto& other) { return other.get() == &buffer; };
  if (std::none_of(announced_.begin(), announced_.end(), same)) ThrowInvalidHandle();
  ToInput(buffer);
  return WantsMore();
}

void BufferQueues::EmptyOutput(Buffer::Place place) {
  while (!output_.empty()) {
    Buffer& buffer = *output_.front();
    output_.pop_front();
    if (place == Buffer::Place::input)
      ToInput(buffer);
    else
      ToUnqueued(buffer);
  }
}

void BufferQueues::EmptyInput() {
  while (!input_.empty()) {
    ToUnqueued(*input_.front());
    input_.pop_front();
  }
}

void BufferQueues::RedirectTaken(Buffer::Return where) {
  for (const auto& buffer : announced_) {
    if (buffer->place == Buffer::Place::taken) buffer->comesBack = where;
  }
}

std::size_t BufferQueues::InputToOutput() {
  const std::size_t moved = input_.size();
  for (Buffer* const buffer : input_) {
    buffer->place = Buffer::Place::output;
    output_.push_back(buffer);
  }
  input_.clear();
  return moved;
}

void BufferQueues::UnqueuedToInput() {
  for (const auto& buffer : announced_) {
    if (buffer->place == Buffer::Place::unqueued) ToInput(*buffer);
  }
}

bool BufferQueues::Flush(GenTL::ACQ_QUEUE_TYPE operation) {
  std::size_t moved = 0;
  bool tellBackend = false;
  {
    MutexLock lock(mutex_);
    switch (operation) {
      case GenTL::ACQ_QUEUE_INPUT_TO_OUTPUT:
        if (mode_ != HandlingMode::oldestFirst)
          throw Error(GenTL::GC_ERR_NOT_IMPLEMENTED, "Only defined for the handling mode OldestFirst.");
        moved = InputToOutput();
        break;
      case GenTL::ACQ_QUEUE_OUTPUT_DISCARD:
        EmptyOutput(Buffer::Place::unqueued);
        break;
      case GenTL::ACQ_QUEUE_ALL_TO_INPUT:
        EmptyOutput(Buffer::Place::input);
        UnqueuedToInput();
        RedirectTaken(Buffer::Return::toInput);
        break;
      case GenTL::ACQ_QUEUE_UNQUEUED_TO_INPUT:
        UnqueuedToInput();
        break;
      case GenTL::ACQ_QUEUE_ALL_DISCARD:
        EmptyOutput(Buffer::Place::unqueued);
        EmptyInput();
        RedirectTaken(Buffer::Return::toUnqueued);
        break;
      default:
        throw Error(GenTL::GC_ERR_NOT_IMPLEMENTED,
                    "There is no flush operation " + std::to_string(operation) + ".");
    }
    tellBackend = WantsMore() && !input_.empty();
  }
  for (; moved > 0; --moved) settings_.onOutput();
  return tellBackend;
}

void BufferQueues::DiscardOutput() {
  MutexLock lock(mutex_);
  EmptyOutput(Buffer::Place::unqueued);
}

bool BufferQueues::Fetch(GenTL::EVENT_NEW_BUFFER_DATA& entry) {
  MutexLock lock(mutex_);
  if (output_.empty()) return false;
  Buffer& buffer = *output_.front();
  output_.pop_front();
  ToUnqueued(buffer);
  entry.BufferHandle = buffer.Handle();
  entry.pUserPointer = buffer.UserPointer();
  return true;
}

// ---- acquiring ----

void BufferQueues::BeginAcquisition(std::uint64_t frames) {
  if (frames == 0) throw Error(GenTL::GC_ERR_INVALID_PARAMETER, "At least one frame must be asked for.");
  MutexLock lock(mutex_);
  if (started_) throw Error(GenTL::GC_ERR_RESOURCE_IN_USE, "The acquisition runs already.");
  if (announced_.size() < traits_.minimumBuffers) {
    throw Error(GenTL::GC_ERR_INVALID_BUFFER, "The stream needs " + std::to_string(traits_.minimumBuffers) +
                                                  " announced buffers, " + std::to_string(announced_.size()) +
                                                  " are there.");
  }
  started_ = true;
  wanted_ = frames;
  delivered_ = 0;
}

void BufferQueues::EndAcquisition() {
  MutexLock lock(mutex_);
  if (!started_) throw Error(GenTL::GC_ERR_RESOURCE_IN_USE, "The acquisition does not run.");
  started_ = false;
}

bool BufferQueues::Started() const {
  MutexLock lock(mutex_);
  return started_;
}

bool BufferQueues::WantsMore() const {
  if (!started_) return false;
  return wanted_ == GENTL_INFINITE || delivered_ + taken_ < wanted_;
}

Buffer* BufferQueues::TakeInput() {
  if (!WantsMore() || input_.empty()) return nullptr;
  Buffer* const buffer = input_.front();
  input_.pop_front();
  buffer->place = Buffer::Place::taken;
  ++taken_;
  return buffer;
}

StreamBuffer* BufferQueues::TakeQueued() {
  MutexLock lock(mutex_);
  return TakeInput();
}

// Moves the oldest frame that nobody fetched back to the input, when there is no other way to go on.
void BufferQueues::MakeRoom() {
  if (mode_ != HandlingMode::oldestFirstOverwrite || !input_.empty() || output_.empty()) return;
  Buffer& oldest = *output_.front();
  output_.pop_front();
  ToInput(oldest);
}

StreamBuffer* BufferQueues::TakeForFrame() {
  MutexLock lock(mutex_);
  if (!WantsMore()) return nullptr;
  MakeRoom();
  Buffer* const buffer = TakeInput();
  if (buffer == nullptr) {
    ++underruns_;
    return nullptr;
  }
  Start(*buffer);
  return buffer;
}

void BufferQueues::Start(Buffer& buffer) {
  if (buffer.started) return;
  buffer.started = true;
  ++fills_;
}

void BufferQueues::MarkStarted(StreamBuffer& buffer) {
  MutexLock lock(mutex_);
  Start(Own(buffer));
}

// Returns whether the consumer has something new to fetch.
bool BufferQueues::ToOutput(Buffer& buffer, FrameInfo&& info) {
  if (buffer.comesBack == Buffer::Return::toUnqueued) {
    ToUnqueued(buffer);
    return false;
  }
  if (buffer.comesBack == Buffer::Return::toInput) {
    ToInput(buffer);
    return false;
  }
  if (mode_ == HandlingMode::newestOnly) EmptyOutput(Buffer::Place::input);
  info.incomplete = info.incomplete || info.largerThanBuffer;
  info.sizeFilled = std::min(info.sizeFilled, buffer.Size());
  if (info.dataSize == 0) info.dataSize = info.sizeFilled;
  buffer.info = std::move(info);
  buffer.newData = true;
  buffer.place = Buffer::Place::output;
  output_.push_back(&buffer);
  ++delivered_;
  // Who takes ahead cannot wait for the next frame to ask for room.
  if (traits_.takesAhead && taken_ == 0 && output_.size() > 1) MakeRoom();
  return true;
}

void BufferQueues::Deliver(StreamBuffer& streamBuffer, FrameInfo&& info) {
  Buffer& buffer = Own(streamBuffer);
  const bool tooSmall = info.largerThanBuffer;
  bool delivered = false;
  {
    MutexLock lock(mutex_);
    Start(buffer);
    --taken_;
    delivered = ToOutput(buffer, std::move(info));
  }
  if (delivered) settings_.onOutput();
  if (tooSmall)
    settings_.onError(GenTL::GC_ERR_BUFFER_TOO_SMALL, "A frame was larger than its buffer and was cut.");
}

void BufferQueues::GiveBack(StreamBuffer& streamBuffer) {
  Buffer& buffer = Own(streamBuffer);
  MutexLock lock(mutex_);
  --taken_;
  if (buffer.comesBack == Buffer::Return::toUnqueued)
    ToUnqueued(buffer);
  else
    ToInput(buffer);
}

void BufferQueues::CountUnderruns(std::uint64_t frames) {
  MutexLock lock(mutex_);
  underruns_ += frames;
}

void BufferQueues::ReportError(GenTL::GC_ERROR code, const std::string& text) {
  settings_.onError(code, text);
}

// ---- asking ----

BufferQueues::Counts BufferQueues::Count() const {
  MutexLock lock(mutex_);
  Counts counts;
  counts.delivered = delivered_;
  counts.underruns = underruns_;
  counts.started = fills_;
  counts.announced = announced_.size();
  counts.queued = input_.size() + taken_;
  counts.awaiting = output_.size();
  counts.acquiring = started_ && delivered_ < wanted_;
  return counts;
}

HandlingMode BufferQueues::Mode() const {
  MutexLock lock(mutex_);
  return mode_;
}

void BufferQueues::SetMode(HandlingMode mode) {
  MutexLock lock(mutex_);
  if (started_) throw Error(GenTL::GC_ERR_ACCESS_DENIED, "The handling mode cannot change while acquiring.");
  mode_ = mode;
}

std::vector<Chunk> BufferQueues::Chunks(const Buffer& buffer) const {
  MutexLock lock(mutex_);
  const FrameInfo& info = buffer.info;
  const bool any = info.chunkTrailers != ChunkTrailers::none || !info.chunks.empty();
  if (!any || info.incomplete)
    throw Error(GenTL::GC_ERR_NO_DATA, "The buffer holds no chunk data to rely on.");
  if (!info.chunks.empty()) return info.chunks;
  return ParseChunkTrailers(info.chunkTrailers, buffer.Memory(), info.sizeFilled);
}

const std::vector<Part>& BufferQueues::PartsOf(const Buffer& buffer) const {
  if (buffer.info.payloadType != GenTL::PAYLOAD_TYPE_MULTI_PART)
    throw Error(GenTL::GC_ERR_NO_DATA, "The buffer does not hold a multi-part payload.");
  return buffer.info.parts;
}

std::size_t BufferQueues::Parts(const Buffer& buffer) const {
  MutexLock lock(mutex_);
  return PartsOf(buffer).size();
}

}  // namespace zyn::producer
