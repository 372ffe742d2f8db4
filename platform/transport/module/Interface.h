/// One open interface of a producer: an adapter, a host controller, a frame grabber.
#ifndef ZYN_TRANSPORT_INTERFACE_H
#define ZYN_TRANSPORT_INTERFACE_H

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "../discovery/CameraDescription.h"
#include "../producer/ProducerLibrary.h"
#include "../producer/Worker.h"
#include "ModuleEvents.h"
#include "ModuleNodeMap.h"
#include "ThreadAnnotations.h"

namespace zyn::transport {

/// Searches its devices on a thread of its own, which is also what serialises the producer's list functions.
/// Ended by its last owner: the system, and every open camera. Thread-safe.
class Interface {
 public:
  /// `handle` closes the interface when the last owner lets go, and keeps `system` open until then.
  /// tlType  the system's technology, for interfaces that do not tell their own.
  static std::shared_ptr<Interface> Create(const ProducerPtr& producer, const std::shared_ptr<void>& system,
                                           std::shared_ptr<void> handle, const std::string& id,
                                           const std::string& tlType);
  Interface(const Interface&) = delete;
  Interface& operator=(const Interface&) = delete;

  const ProducerPtr& Producer() const { return producer_; }
  const std::shared_ptr<void>& Handle() const { return handle_; }
  const std::string& Id() const { return id_; }

  /// False when the interface certainly carries no camera of these protocols (a mask of PROTOCOL_TYPE).
  bool MayCarry(unsigned long protocols) const;

  /// Begins a search; returns the ticket for Devices.
  std::uint64_t StartSearch() { return worker_->Request(); }
  /// The devices that the search of that ticket found, sorted by ID. Empty when it is not over by then.
  std::vector<CameraDescription> Devices(std::uint64_t ticket, Worker::Clock::time_point deadline);

  /// True when the producer no longer accepts the handle.
  bool IsStale() const { return isStale_.load(std::memory_order_relaxed); }

  /// Loaded on the first call. Blocks while the description is read.
  NodeMapPtr NodeMap() ZYN_EXCLUDES(nodeMapMutex_);

  /// The events of the interface module.
  ModuleEvents& Events() { return events_; }

 private:
  Interface(const ProducerPtr& producer, const std::shared_ptr<void>& system, std::shared_ptr<void> handle,
            const std::string& id, const std::string& tlType);
  static void SearchIfAlive(const std::weak_ptr<Interface>& interface);
  void Search() ZYN_EXCLUDES(mutex_);

  const ProducerPtr producer_;
  const std::shared_ptr<void> handle_;
  const std::string id_;
  const std::string tlType_;  // "" when neither the interface nor the system tells it
  const std::string displayName_;
  std::unique_ptr<Worker> worker_;  // constant after Create
  std::atomic<bool> isStale_{false};

  Mutex mutex_;  // never held during a producer's call
  std::vector<CameraDescription> devices_ ZYN_GUARDED_BY(mutex_);

  Mutex nodeMapMutex_;  // serialises the first loading, which reads the interface's own port and no device
  NodeMapPtr nodeMap_ ZYN_GUARDED_BY(nodeMapMutex_);

  ModuleEvents events_;  // last: ends first
};

}  // namespace zyn::transport

#endif
