#include "ModuleEvents.h"

#include <algorithm>
#include <utility>

namespace zyn::transport {

ModuleEvents::ModuleEvents(ProducerPtr producer, const std::shared_ptr<void>& module,
                           KELGENICAM::NOTIFY_SRC source)
    : producer_(std::move(producer)), module_(module), source_(source) {}

ModuleEvents::~ModuleEvents() {
  for (const auto& pump : pumps_) pump->BeginEnd();
}

void ModuleEvents::Send(Listeners& listeners, KELGENICAM::NOTIFY_SRC source, KELGENICAM::NOTIFY_TYPE type,
                        const GenTLEvent& event) {
  MutexLock lock(listeners.mutex);
  const std::vector<std::shared_ptr<Notifier>> notifiers = listeners.notifiers;
  lock.Unlock();
  for (const auto& notifier : notifiers) notifier->Send(source, type, event.value.data(), event.value.size());
}

std::unique_ptr<EventPump> ModuleEvents::Start(GenTL::EVENT_TYPE type, KELGENICAM::NOTIFY_TYPE as) const {
  const std::shared_ptr<void> module = module_.lock();
  if (!module) return nullptr;
  return EventPump::Start(producer_, module, type,
                          [listeners = listeners_, source = source_, as](const GenTLEvent& event) {
                            Send(*listeners, source, as, event);
                          });
}

void ModuleEvents::Add(const std::shared_ptr<Notifier>& notifier) {
  MutexLock lock(listeners_->mutex);
  listeners_->notifiers.push_back(notifier);
  if (std::exchange(listeners_->isStarted, true)) return;
  lock.Unlock();
  for (const auto& [type, as] : {std::pair(GenTL::EVENT_ERROR, KELGENICAM::NOTIFY_ERROR),
                                 std::pair(GenTL::EVENT_MODULE, KELGENICAM::NOTIFY_DEVICE_EVENT)}) {
    if (auto pump = Start(type, as)) pumps_.push_back(std::move(pump));
  }
}

void ModuleEvents::Remove(const std::shared_ptr<Notifier>& notifier) {
  MutexLock lock(listeners_->mutex);
  auto& notifiers = listeners_->notifiers;
  const auto it = std::find(notifiers.begin(), notifiers.end(), notifier);
  if (it != notifiers.end()) notifiers.erase(it);
}

}  // namespace zyn::transport
