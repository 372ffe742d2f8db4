/// What connects an open device with its camera, until it is closed or the camera goes.
#ifndef ZYN_SIMULATION_CONNECTION_H
#define ZYN_SIMULATION_CONNECTION_H

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <string>

#include "ThreadAnnotations.h"
#include "producer/Backend.h"

namespace zyn::simulation {

/// Owned by the device, known to the camera's slot. Thread-safe.
class Connection {
 public:
  explicit Connection(producer::DeviceListener& listener) : listener_(listener) {}
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// The camera is gone, for good as far as this connection is concerned. text: the cause, for people.
  void Cut(const std::string& text) ZYN_EXCLUDES(mutex_);
  bool IsCut() const { return isCut_; }

  /// A feature changed behind the consumer's back.
  void Invalidate(const std::string& feature) { listener_.OnFeatureInvalidated(feature); }

  /// Something changed that the stream may wait for.
  void Notify() ZYN_EXCLUDES(mutex_);
  /// How often that was.
  std::uint64_t Notices() const ZYN_EXCLUDES(mutex_);
  /// Blocks until there are more notices than `seen`.
  void AwaitNotice(std::uint64_t seen) ZYN_EXCLUDES(mutex_);

 private:
  producer::DeviceListener& listener_;
  std::atomic<bool> isCut_{false};
  mutable Mutex mutex_;  // a leaf
  std::condition_variable changed_;
  std::uint64_t notices_ ZYN_GUARDED_BY(mutex_) = 0;
};

}  // namespace zyn::simulation

#endif
