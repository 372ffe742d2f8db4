#include "Notifier.h"

namespace zyn::transport {

bool Notifier::Register(int source, int type, KELGENICAM::INotify* receiver) {
  const auto at = static_cast<std::size_t>(source);
  const auto kind = static_cast<std::size_t>(type);
  if (source < 0 || type < 0 || at >= kSources || kind >= kTypes) return false;
  receivers_[at][kind].store(receiver, std::memory_order_release);
  return true;
}

bool Notifier::IsWanted(KELGENICAM::NOTIFY_SRC source, KELGENICAM::NOTIFY_TYPE type) const {
  return receivers_[source][type].load(std::memory_order_acquire) != nullptr;
}

void Notifier::Send(KELGENICAM::NOTIFY_SRC source, KELGENICAM::NOTIFY_TYPE type, const void* data,
                    std::size_t length) {
  // Counted before the look-up: End first clears the receivers, then waits for the count.
  callsUnderWay_.fetch_add(1);
  KELGENICAM::INotify* receiver = receivers_[source][type].load();
  if (receiver) receiver->OnNotify(source, type, data, length);
  callsUnderWay_.fetch_sub(1);
  callsUnderWay_.notify_all();
}

void Notifier::End() {
  for (auto& source : receivers_) {
    for (auto& receiver : source) receiver.store(nullptr);
  }
  for (int calls = callsUnderWay_.load(); calls != 0; calls = callsUnderWay_.load()) {
    callsUnderWay_.wait(calls);
  }
}

}  // namespace zyn::transport
