/// Knows whether the device behind a set of ports is still there.
#ifndef ZYN_TRANSPORT_DEVICE_LINK_H
#define ZYN_TRANSPORT_DEVICE_LINK_H

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "../producer/ProducerLibrary.h"
#include "ThreadAnnotations.h"

namespace zyn::transport {

/// Shared by everything that talks to one open device: whoever sees a failure reports it here, and the first
/// report that proves the device lost ends the session for all of them. Thread-safe.
class DeviceLink {
 public:
  /// `device` is the handle that DevGetInfo takes.
  DeviceLink(ProducerPtr producer, const std::shared_ptr<void>& device);

  /// True from the moment the loss was noticed; never false again.
  bool IsLost() const { return lost_.load(std::memory_order_acquire); }

  /// A call towards the device failed. Asks the producer whether the device is still there when the error can
  /// mean its loss.
  void ReportFailure(GenTL::GC_ERROR error);

  /// Asks the producer for the access status, where nothing else would tell of a loss.
  void Poll();

  void MarkLost();

  /// `action` runs once, on the thread that notices the loss, and must not block. Null takes it away; after
  /// that call the former action neither runs nor will run.
  void OnLost(std::function<void()> action) ZYN_EXCLUDES(mutex_);

 private:
  struct Status {
    GenTL::GC_ERROR error = GenTL::GC_ERR_SUCCESS;
    std::optional<std::uint64_t> value;  // a DEVICE_ACCESS_STATUS
  };

  Status AskStatus() const;
  static bool IsBusy(const Status& status);

  const ProducerPtr producer_;
  const std::weak_ptr<void> device_;
  const bool isBusyNormal_;
  std::atomic<bool> lost_{false};
  Mutex mutex_;  // held while the action runs, so that taking it away waits for it
  std::function<void()> action_ ZYN_GUARDED_BY(mutex_);
};

}  // namespace zyn::transport

#endif
