/// Events that a consumer registered and waits for.
#ifndef ZYN_PRODUCER_EVENT_H
#define ZYN_PRODUCER_EVENT_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "Answer.h"
#include "Handles.h"
#include "ThreadAnnotations.h"

namespace zyn::producer {

/// One registered event: where threads wait, and a queue of what was raised. Any thread.
///
/// The waiting and the queue have a lock each, neither held while the other is used, and none held by a
/// waiter.
class Event : public HandleTarget {
 public:
  explicit Event(GenTL::EVENT_TYPE type) : type_(type) {}

  GenTL::EVENT_TYPE Type() const { return type_; }

  /// EventGetData. Waits up to timeoutMs for something in the queue and takes it. Throws Error:
  /// GC_ERR_TIMEOUT, GC_ERR_ABORT (a kill, or closed), GC_ERR_BUFFER_TOO_SMALL (the queue is as before).
  void Wait(void* buffer, std::size_t* size, std::uint64_t timeoutMs) ZYN_EXCLUDES(mutex_);

  /// EventKill: one wait, now or later, ends with GC_ERR_ABORT. Kills add up.
  void Kill() ZYN_EXCLUDES(mutex_);

  /// Unregistered: every wait ends with GC_ERR_ABORT.
  void Close() ZYN_EXCLUDES(mutex_);

  /// EventGetInfo.
  void Info(GenTL::EVENT_INFO_CMD command, const Answer& answer) ZYN_EXCLUDES(mutex_);

  /// EventFlush.
  virtual void Flush() = 0;

  /// EventGetDataInfo: looks into what Wait stored.
  virtual void DataInfo(const void* data, std::size_t size, GenTL::EVENT_DATA_INFO_CMD command,
                        const Answer& answer) const = 0;

  /// Something was added to the queue: counts it and wakes those who wait.
  void Fire() ZYN_EXCLUDES(mutex_);

 protected:
  /// Moves the oldest entry into the buffer; a null buffer drops it. Returns false when there is none. Throws
  /// Error with GC_ERR_BUFFER_TOO_SMALL.
  virtual bool Take(void* buffer, std::size_t* size) = 0;
  virtual std::size_t Queued() const = 0;
  virtual std::size_t MaximumSize() const = 0;      ///< of an entry, bytes
  virtual std::size_t MaximumDataSize() const = 0;  ///< of EVENT_DATA_VALUE, bytes

 private:
  const GenTL::EVENT_TYPE type_;

  Mutex mutex_;
  std::condition_variable changed_;
  std::uint64_t fired_ ZYN_GUARDED_BY(mutex_) = 0;
  std::uint64_t kills_ ZYN_GUARDED_BY(mutex_) = 0;
  bool closed_ ZYN_GUARDED_BY(mutex_) = false;
};

/// An event with a queue of its own: everything but EVENT_NEW_BUFFER. When nobody fetches, the oldest entries
/// make room for new ones.
class QueuedEvent : public Event {
 public:
  using Event::Event;

  static constexpr std::size_t kMaximumQueued = 1024;
  static constexpr std::size_t kMaximumData = 8192;  ///< bytes; longer texts and data are cut

  /// EVENT_ERROR.
  static std::vector<std::uint8_t> ErrorEntry(GenTL::GC_ERROR code, const std::string& text);
  /// EVENT_MODULE and EVENT_REMOTE_DEVICE.
  static std::vector<std::uint8_t> NumberedEntry(std::uint64_t id, const void* data, std::size_t size);
  /// EVENT_FEATURE_INVALIDATE.
  static std::vector<std::uint8_t> NamedEntry(const std::string& name);

  void Add(std::vector<std::uint8_t> entry) ZYN_EXCLUDES(queueMutex_);
  void Flush() override ZYN_EXCLUDES(queueMutex_);
  void DataInfo(const void* data, std::size_t size, GenTL::EVENT_DATA_INFO_CMD command,
                const Answer& answer) const override;

 protected:
  bool Take(void* buffer, std::size_t* size) override ZYN_EXCLUDES(queueMutex_);
  std::size_t Queued() const override ZYN_EXCLUDES(queueMutex_);
  std::size_t MaximumSize() const override;
  std::size_t MaximumDataSize() const override;

 private:
  mutable Mutex queueMutex_;
  std::deque<std::vector<std::uint8_t>> queue_ ZYN_GUARDED_BY(queueMutex_);
};

}  // namespace zyn::producer

#endif
