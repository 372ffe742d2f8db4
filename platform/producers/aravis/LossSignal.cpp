#include "LossSignal.h"

#include <utility>

namespace zyn::aravis {

LossSignal::LossSignal(ArvDevice* device, std::function<void()> onLost)
    : device_(device), relay_(std::make_shared<Relay>()) {
  {
    const MutexLock lock(relay_->mutex);
    relay_->onLost = std::move(onLost);
  }
  const auto forget = [](gpointer shared, GClosure*) { delete static_cast<std::shared_ptr<Relay>*>(shared); };
  handler_ = g_signal_connect_data(device_, "control-lost", G_CALLBACK(&LossSignal::OnControlLost),
                                   new std::shared_ptr<Relay>(relay_), forget, GConnectFlags{});
}

LossSignal::~LossSignal() {
  {
    const MutexLock lock(relay_->mutex);
    relay_->onLost = nullptr;
  }
  g_signal_handler_disconnect(device_, handler_);
}

void LossSignal::OnControlLost(ArvDevice*, gpointer shared) {
  const std::shared_ptr<Relay> relay = *static_cast<std::shared_ptr<Relay>*>(shared);
  const MutexLock lock(relay->mutex);
  if (const auto onLost = std::exchange(relay->onLost, nullptr)) onLost();
}

}  // namespace zyn::aravis
