/// The producers in use between Init and UnInit.
#ifndef ZYN_TRANSPORT_PRODUCER_REGISTRY_H
#define ZYN_TRANSPORT_PRODUCER_REGISTRY_H

#include <condition_variable>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <KELGeniCam.h>

#include "../module/System.h"
#include "SearchPath.h"
#include "ThreadAnnotations.h"

namespace zyn::transport {

/// Thread-safe. Producers start on threads of their own: one that hangs is given up after ten seconds and
/// the others are used. They end so too: after five seconds UnInit waits no longer.
class ProducerRegistry {
 public:
  static ProducerRegistry& Instance();

  int Init() ZYN_EXCLUDES(mutex_);
  int UnInit() ZYN_EXCLUDES(mutex_);
  bool IsInitialized() ZYN_EXCLUDES(mutex_);

  /// The producers in use, in search order.
  std::vector<std::shared_ptr<System>> Systems() ZYN_EXCLUDES(mutex_);
  /// The producer of that canonical path; null when it is not in use.
  std::shared_ptr<System> Find(const std::string& path) ZYN_EXCLUDES(mutex_);
  std::list<KELGENICAM::LoadReportEntry> Report() ZYN_EXCLUDES(mutex_);

 private:
  // What the loading of all files leads to.
  struct Loaded {
    std::vector<std::shared_ptr<System>> systems;
    std::list<KELGENICAM::LoadReportEntry> report;
  };

  // One producer file. Never freed, so that a file is loaded once per process.
  struct Slot {
    Mutex mutex;
    std::condition_variable closed;
    ProducerPtr library ZYN_GUARDED_BY(mutex);
    bool isInUse ZYN_GUARDED_BY(mutex) = false;  // from the start of opening to the end of closing
    std::weak_ptr<System> system ZYN_GUARDED_BY(mutex);
  };

  Slot& SlotOf(const std::string& canonical) ZYN_EXCLUDES(mutex_);
  static std::shared_ptr<System> OpenSlot(Slot& slot, const std::string& canonical, std::string& reason);
  static std::shared_ptr<System> StartProducer(Slot& slot, const std::string& canonical, std::string& reason);
  Loaded LoadAll();

  Mutex mutex_;  // never held during a producer's call
  std::condition_variable loaded_;
  int users_ ZYN_GUARDED_BY(mutex_) = 0;
  bool isLoading_ ZYN_GUARDED_BY(mutex_) = false;
  Loaded current_ ZYN_GUARDED_BY(mutex_);
  std::map<std::string, Slot*> slots_ ZYN_GUARDED_BY(mutex_);
};

}  // namespace zyn::transport

#endif
