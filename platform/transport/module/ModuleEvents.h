/// Passes the events of a module that cameras share to all of them.
#ifndef ZYN_TRANSPORT_MODULE_EVENTS_H
#define ZYN_TRANSPORT_MODULE_EVENTS_H

#include <memory>
#include <vector>

#include <KELGeniCam.h>

#include "../camera/Notifier.h"
#include "../producer/EventPump.h"
#include "ThreadAnnotations.h"

namespace zyn::transport {

/// An event is registered once per module, and a system or an interface has many cameras. The waiting begins with
/// the first of them and ends with this object. Thread-safe.
class ModuleEvents {
 public:
  /// Begins nothing yet. source  what the notifications name.
  ModuleEvents(ProducerPtr producer, const std::shared_ptr<void>& module, KELGENICAM::NOTIFY_SRC source);
  /// Ends the waiting, see EventPump.
  ~ModuleEvents();
  ModuleEvents(const ModuleEvents&) = delete;
  ModuleEvents& operator=(const ModuleEvents&) = delete;

  /// From now on the notifier gets the module's events. The first call registers them with the producer; what the
  /// producer does not offer is left out.
  void Add(const std::shared_ptr<Notifier>& notifier);
  /// Ends that. A notification under way may still come.
  void Remove(const std::shared_ptr<Notifier>& notifier);

 private:
  // What the pumps' threads use: they may be busy in a receiver when this object goes.
  struct Listeners {
    Mutex mutex;  // never held while a receiver runs
    std::vector<std::shared_ptr<Notifier>> notifiers ZYN_GUARDED_BY(mutex);
    bool isStarted ZYN_GUARDED_BY(mutex) = false;
  };

  static void Send(Listeners& listeners, KELGENICAM::NOTIFY_SRC source, KELGENICAM::NOTIFY_TYPE type,
                   const GenTLEvent& event);
  std::unique_ptr<EventPump> Start(GenTL::EVENT_TYPE type, KELGENICAM::NOTIFY_TYPE as) const;

  const ProducerPtr producer_;
  const std::weak_ptr<void> module_;
  const KELGENICAM::NOTIFY_SRC source_;
  const std::shared_ptr<Listeners> listeners_ = std::make_shared<Listeners>();
  std::vector<std::unique_ptr<EventPump>> pumps_;  // written by the first Add only
};

}  // namespace zyn::transport

#endif
