/// Hears from libaravis that a device is gone.
#ifndef ZYN_ARAVIS_LOSS_SIGNAL_H
#define ZYN_ARAVIS_LOSS_SIGNAL_H

#include <arv.h>

#include <functional>
#include <memory>

#include "ThreadAnnotations.h"

namespace zyn::aravis {

/// Between construction and destruction the handler is called, at most once, on any of libaravis' threads or within a
/// call on the device. GLib itself does not wait for running handlers when it takes one off; the destructor does.
class LossSignal {
 public:
  /// onLost: must not block, and destroy neither the device nor this object. The device must outlive this object.
  LossSignal(ArvDevice* device, std::function<void()> onLost);
  ~LossSignal();
  LossSignal(const LossSignal&) = delete;
  LossSignal& operator=(const LossSignal&) = delete;

 private:
  struct Relay {
    Mutex mutex;  // held while the handler runs
    std::function<void()> onLost ZYN_GUARDED_BY(mutex);
  };
  static void OnControlLost(ArvDevice* device, gpointer relay);

  ArvDevice* const device_;
  const std::shared_ptr<Relay> relay_;
  gulong handler_ = 0;
};

}  // namespace zyn::aravis

#endif
