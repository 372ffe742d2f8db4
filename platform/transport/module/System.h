/// One producer in use: its library initialised and its system module open.
#ifndef ZYN_TRANSPORT_SYSTEM_H
#define ZYN_TRANSPORT_SYSTEM_H

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "../producer/ProducerLibrary.h"
#include "../producer/Worker.h"
#include "Interface.h"
#include "ModuleEvents.h"
#include "ModuleNodeMap.h"
#include "ThreadAnnotations.h"

namespace zyn::transport {

/// Ended by its last owner: the registry between Init and UnInit, and every open camera. Thread-safe.
class System {
 public:
  /// Initialises the library and opens its system. Null on failure, with the reason. Blocks on the producer.
  /// use  let go of after the library is closed again
  static std::shared_ptr<System> Open(const ProducerPtr& producer, std::shared_ptr<void> use,
                                      std::string& reason);
  System(const System&) = delete;
  System& operator=(const System&) = delete;

  const std::string& Path() const { return producer_->Path(); }
  std::string Describe() const;  ///< name and version, for people

  /// Refreshes the list of interfaces on the system's own thread and returns what is there, sorted by ID.
  /// Waits no longer than the deadline; an older list is returned when the producer does not answer in time.
  /// Asks the producer at most once a second: some leak a little with every refresh.
  std::vector<std::shared_ptr<Interface>> Interfaces(Worker::Clock::time_point deadline);

  /// The interfaces as the latest refresh found them.
  std::vector<std::shared_ptr<Interface>> KnownInterfaces() const ZYN_EXCLUDES(mutex_);

  /// Begins a refresh without waiting, so that several producers work at the same time.
  void StartRefresh();

  /// Loaded on the first call. Blocks while the description is read.
  NodeMapPtr NodeMap() ZYN_EXCLUDES(nodeMapMutex_);

  /// The events of the system module.
  ModuleEvents& Events() { return events_; }

 private:
  System(const ProducerPtr& producer, std::shared_ptr<void> handle);
  static void RefreshIfAlive(const std::weak_ptr<System>& system);
  void Refresh() ZYN_EXCLUDES(mutex_);
  std::shared_ptr<Interface> OpenInterface(const std::string& id);
  std::vector<std::string> InterfaceIds() const;

  const ProducerPtr producer_;
  const std::shared_ptr<void> handle_;
  const std::string tlType_;
  const std::string name_;
  const std::string version_;
  std::unique_ptr<Worker> worker_;  // constant after Open

  mutable Mutex mutex_;  // never held during a producer's call
  std::vector<std::shared_ptr<Interface>> interfaces_ ZYN_GUARDED_BY(mutex_);
  Worker::Clock::time_point refreshed_ ZYN_GUARDED_BY(mutex_){};
  std::uint64_t ticket_ ZYN_GUARDED_BY(mutex_) = 0;

  Mutex nodeMapMutex_;  // serialises the first loading, which reads the system's own port and no device
  NodeMapPtr nodeMap_ ZYN_GUARDED_BY(nodeMapMutex_);

  ModuleEvents events_;  // last: ends first
};

}  // namespace zyn::transport

#endif
