#include "BufferSet.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

#include "Modules.h"

namespace zyn::producercheck {

using namespace GenTL;

Event::Event(Bench& bench, EVENTSRC_HANDLE module, EVENT_TYPE type)
    : bench_(bench), module_(module), type_(type) {
  bench.ExpectSuccess("GCRegisterEvent", bench.F().GCRegisterEvent(module, type, &handle_));
  Expect(handle_ != nullptr, "GCRegisterEvent succeeded without a handle");
  isRegistered_ = true;
}

Event::~Event() {
  if (isRegistered_) bench_.F().GCUnregisterEvent(module_, type_);
}

GC_ERROR Event::Fetch(EVENT_NEW_BUFFER_DATA& data, std::uint64_t timeoutMs) const {
  std::size_t size = sizeof data;
  return bench_.F().EventGetData(handle_, &data, &size, timeoutMs);
}

GC_ERROR Event::Fetch(std::uint64_t timeoutMs) const {
  EVENT_NEW_BUFFER_DATA data = {};
  return Fetch(data, timeoutMs);
}

std::uint64_t Event::Queued() const {
  const Answer answer = Get([&](INFO_DATATYPE* type, void* buffer, std::size_t* size) {
    return bench_.F().EventGetInfo(handle_, EVENT_NUM_IN_QUEUE, type, buffer, size);
  });
  bench_.ExpectSuccess("EventGetInfo(EVENT_NUM_IN_QUEUE)", answer.error);
  return answer.Number();
}

GC_ERROR Event::Unregister() {
  isRegistered_ = false;
  return bench_.F().GCUnregisterEvent(module_, type_);
}

std::optional<std::uint64_t> StreamNumber(Bench& bench, STREAM_INFO_CMD command) {
  const Answer answer = Get(StreamInfo(bench).Bound(command));
  if (!answer.IsThere()) return std::nullopt;
  return answer.Number();
}

void ExpectStreamNumber(Bench& bench, STREAM_INFO_CMD command, std::uint64_t number,
                        const std::string& what) {
  const auto told = StreamNumber(bench, command);
  Expect(!told || *told == number, "the stream says " + std::to_string(told.value_or(0)) + " instead of " +
                                       std::to_string(number) + " for the number of " + what);
}

std::size_t FewestBuffers(Bench& bench) {
  return std::max<std::size_t>(
      1, static_cast<std::size_t>(StreamNumber(bench, STREAM_INFO_BUF_ANNOUNCE_MIN).value_or(1)));
}

std::size_t Alignment(Bench& bench) {
  const auto told = StreamNumber(bench, STREAM_INFO_BUF_ALIGNMENT).value_or(1);
  return std::max<std::size_t>(64, std::bit_ceil(static_cast<std::size_t>(std::max<std::uint64_t>(told, 1))));
}

void BufferSet::FreeMemory::operator()(unsigned char* memory) const {
  std::free(memory);
}

BufferSet::BufferSet(Bench& bench, std::size_t count, std::size_t bytes, bool own)
    : bench_(bench), stream_(bench.Stream()), bytes_(bytes) {
  count = std::max(count, FewestBuffers(bench));
  const std::size_t alignment = Alignment(bench);
  const std::size_t rounded = (bytes + alignment - 1) / alignment * alignment;
  for (std::size_t i = 0; i < count; ++i) {
    BUFFER_HANDLE handle = nullptr;
    if (own) {
      memory_.emplace_back(static_cast<unsigned char*>(std::aligned_alloc(alignment, rounded)));
      std::fill_n(memory_.back().get(), rounded, 0);
      bench.ExpectSuccess("DSAnnounceBuffer", bench.F().DSAnnounceBuffer(stream_, memory_.back().get(), bytes,
                                                                         UserOf(i), &handle));
    } else {
      bench.ExpectSuccess("DSAllocAndAnnounceBuffer",
                          bench.F().DSAllocAndAnnounceBuffer(stream_, bytes, UserOf(i), &handle));
    }
    Expect(handle != nullptr, "a buffer was announced without a handle");
    handles_.push_back(handle);
  }
}

BufferSet::~BufferSet() {
  if (handles_.empty()) return;
  bench_.F().DSFlushQueue(stream_, ACQ_QUEUE_ALL_DISCARD);
  for (std::size_t i = 0; i < handles_.size(); ++i) Revoke(i);
}

void* BufferSet::UserOf(std::size_t index) {
  const std::uintptr_t number = 0x1000 + index;
  return reinterpret_cast<void*>(number);  // NOLINT(performance-no-int-to-ptr): only a number
}

std::optional<std::size_t> BufferSet::IndexOf(BUFFER_HANDLE handle) const {
  const auto it = std::find(handles_.begin(), handles_.end(), handle);
  if (it == handles_.end()) return std::nullopt;
  return static_cast<std::size_t>(it - handles_.begin());
}

GC_ERROR BufferSet::Queue(std::size_t index) const {
  return bench_.F().DSQueueBuffer(stream_, handles_[index]);
}

void BufferSet::QueueAll() const {
  for (std::size_t i = 0; i < handles_.size(); ++i) bench_.ExpectSuccess("DSQueueBuffer", Queue(i));
}

GC_ERROR BufferSet::Revoke(std::size_t index, void** memory, void** user) const {
  return bench_.F().DSRevokeBuffer(stream_, handles_[index], memory, user);
}

InfoFunction BufferSet::Info(std::size_t index) const {
  return {"DSGetBufferInfo",
          [&f = bench_.F(), stream = stream_, buffer = handles_[index]](
              std::int32_t command, INFO_DATATYPE* type, void* out, std::size_t* size) {
            return f.DSGetBufferInfo(stream, buffer, command, type, out, size);
          },
          &BufferCommands()};
}

bool BufferSet::IsTrue(std::size_t index, BUFFER_INFO_CMD command) const {
  const Answer answer = Get(Info(index).Bound(command));
  bench_.ExpectSuccess("DSGetBufferInfo with command " + std::to_string(command), answer.error);
  return answer.Number() != 0;
}

}  // namespace zyn::producercheck
