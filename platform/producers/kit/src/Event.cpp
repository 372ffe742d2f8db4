#include "Event.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "Timeout.h"
#include "producer/Error.h"

namespace zyn::producer {
namespace {

using GenTL::EVENT_ERROR;
using GenTL::EVENT_FEATURE_INVALIDATE;

// Entries begin with their identification: an error code, or a number, or (for names) nothing.
std::size_t HeaderBytes(GenTL::EVENT_TYPE type) {
  if (type == EVENT_ERROR) return sizeof(GenTL::GC_ERROR);
  if (type == EVENT_FEATURE_INVALIDATE) return 0;
  return sizeof(std::uint64_t);
}

// Even number of digits, no prefix: the way consumers compare it with the EventID of a description.
std::string Hexadecimal(std::uint64_t id) {
  char digits[24];
  std::snprintf(digits, sizeof digits, "%llX", static_cast<unsigned long long>(id));
  const std::string text = digits;
  return text.size() % 2 == 0 ? text : "0" + text;
}

template <class T>
std::vector<std::uint8_t> Entry(const T& header, const void* data, std::size_t size) {
  std::vector<std::uint8_t> entry(sizeof header + size);
  std::memcpy(entry.data(), &header, sizeof header);
  if (size > 0) std::memcpy(entry.data() + sizeof header, data, size);
  return entry;
}

template <class T>
T Header(const std::uint8_t* data) {
  T header;
  std::memcpy(&header, data, sizeof header);
  return header;
}

[[noreturn]] void ThrowAborted() {
  throw Error(GenTL::GC_ERR_ABORT, "The wait was ended.");
}

[[noreturn]] void ThrowUnknownCommand() {
  throw Error(GenTL::GC_ERR_NOT_IMPLEMENTED, "There is no such information about this event.");
}

}  // namespace

void Event::Wait(void* buffer, std::size_t* size, std::uint64_t timeoutMs) {
  const auto deadline = DeadlineAfter(timeoutMs);
  while (true) {
    std::uint64_t seen = 0;
    {
      MutexLock lock(mutex_);
      if (closed_) ThrowAborted();
      if (kills_ > 0) {
        --kills_;
        ThrowAborted();
      }
      seen = fired_;
    }
    if (Take(buffer, size)) return;
    MutexLock lock(mutex_);
    while (!closed_ && kills_ == 0 && fired_ == seen) {
      if (lock.WaitUntil(changed_, deadline)) continue;
      if (closed_ || kills_ > 0 || fired_ != seen) break;
      throw Error(GenTL::GC_ERR_TIMEOUT, "No event came in time.");
    }
  }
}

void Event::Kill() {
  MutexLock lock(mutex_);
  ++kills_;
  changed_.notify_all();
}

void Event::Close() {
  MutexLock lock(mutex_);
  closed_ = true;
  changed_.notify_all();
}

void Event::Fire() {
  MutexLock lock(mutex_);
  ++fired_;
  changed_.notify_all();
}

void Event::Info(GenTL::EVENT_INFO_CMD command, const Answer& answer) {
  switch (command) {
    case GenTL::EVENT_EVENT_TYPE:
      return answer.Int32(type_);
    case GenTL::EVENT_NUM_IN_QUEUE:
      return answer.Size(Queued());
    case GenTL::EVENT_NUM_FIRED: {
      MutexLock lock(mutex_);
      return answer.UInt64(fired_);
    }
    case GenTL::EVENT_SIZE_MAX:
      return answer.Size(MaximumSize());
    case GenTL::EVENT_INFO_DATA_SIZE_MAX:
      return answer.Size(MaximumDataSize());
    default:
      ThrowUnknownCommand();
  }
}

std::vector<std::uint8_t> QueuedEvent::ErrorEntry(GenTL::GC_ERROR code, const std::string& text) {
  return Entry(code, text.data(), std::min(text.size(), kMaximumData - 1));
}

std::vector<std::uint8_t> QueuedEvent::NumberedEntry(std::uint64_t id, const void* data, std::size_t size) {
  return Entry(id, data, std::min(size, kMaximumData));
}

std::vector<std::uint8_t> QueuedEvent::NamedEntry(const std::string& name) {
  return {name.begin(), name.begin() + static_cast<std::ptrdiff_t>(std::min(name.size(), kMaximumData - 1))};
}

void QueuedEvent::Add(std::vector<std::uint8_t> entry) {
  {
    MutexLock lock(queueMutex_);
    if (queue_.size() == kMaximumQueued) queue_.pop_front();
    queue_.push_back(std::move(entry));
  }
  Fire();
}

void QueuedEvent::Flush() {
  MutexLock lock(queueMutex_);
  queue_.clear();
}

bool QueuedEvent::Take(void* buffer, std::size_t* size) {
  MutexLock lock(queueMutex_);
  if (queue_.empty()) return false;
  const std::vector<std::uint8_t>& entry = queue_.front();
  if (buffer != nullptr) {
    if (*size < entry.size())
      throw Error(GenTL::GC_ERR_BUFFER_TOO_SMALL,
                  "The event needs " + std::to_string(entry.size()) + " bytes.");
    if (!entry.empty()) std::memcpy(buffer, entry.data(), entry.size());
  }
  *size = entry.size();
  queue_.pop_front();
  return true;
}

std::size_t QueuedEvent::Queued() const {
  MutexLock lock(queueMutex_);
  return queue_.size();
}

std::size_t QueuedEvent::MaximumSize() const {
  return HeaderBytes(Type()) + kMaximumData;
}

std::size_t QueuedEvent::MaximumDataSize() const {
  return kMaximumData;
}

void QueuedEvent::DataInfo(const void* data, std::size_t size, GenTL::EVENT_DATA_INFO_CMD command,
                           const Answer& answer) const {
  const std::size_t header = HeaderBytes(Type());
  if (size < header)
    throw Error(GenTL::GC_ERR_INVALID_PARAMETER, "The data is shorter than any event of this type.");
  const auto* bytes = static_cast<const std::uint8_t*>(data);
  const std::uint8_t* const value = bytes + header;
  const std::string text(value, bytes + size);

  if (command != GenTL::EVENT_DATA_ID && command != GenTL::EVENT_DATA_VALUE &&
      command != GenTL::EVENT_DATA_NUMID)
    ThrowUnknownCommand();
  if (Type() == EVENT_FEATURE_INVALIDATE) {
    if (command == GenTL::EVENT_DATA_ID) return answer.Text(text);
    throw Error(GenTL::GC_ERR_NOT_AVAILABLE, "This event carries a name only.");
  }
  if (Type() == EVENT_ERROR) {
    const auto code = Header<GenTL::GC_ERROR>(bytes);
    if (command == GenTL::EVENT_DATA_ID) return answer.Int32(code);
    if (command == GenTL::EVENT_DATA_VALUE) return answer.Text(text);
    return answer.UInt64(static_cast<std::uint64_t>(static_cast<std::int64_t>(code)));
  }
  const auto id = Header<std::uint64_t>(bytes);
  if (command == GenTL::EVENT_DATA_ID) return answer.Text(Hexadecimal(id));
  if (command == GenTL::EVENT_DATA_VALUE) return answer.Bytes(value, size - header);
  return answer.UInt64(id);
}

}  // namespace zyn::producer
