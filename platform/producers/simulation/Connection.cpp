#include "Connection.h"

namespace zyn::simulation {

void Connection::Cut(const std::string& text) {
  if (isCut_.exchange(true)) return;
  Notify();
  listener_.OnLost(text);
}

void Connection::Notify() {
  const MutexLock lock(mutex_);
  ++notices_;
  changed_.notify_all();
}

std::uint64_t Connection::Notices() const {
  const MutexLock lock(mutex_);
  return notices_;
}

void Connection::AwaitNotice(std::uint64_t seen) {
  MutexLock lock(mutex_);
  while (notices_ == seen) lock.Wait(changed_);
}

}  // namespace zyn::simulation
