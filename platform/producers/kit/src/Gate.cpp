#include "Gate.h"

namespace zyn::producer {

bool Gate::Enter() {
  MutexLock lock(mutex_);
  if (state_ != State::open) return false;
  ++inside_;
  return true;
}

// Notifies under the lock: the drainer may destroy the gate as soon as it can take it.
void Gate::Leave() {
  MutexLock lock(mutex_);
  if (--inside_ == 0) changed_.notify_all();
}

bool Gate::BeginClose() {
  MutexLock lock(mutex_);
  if (state_ == State::open) {
    state_ = State::closing;
    return true;
  }
  while (state_ != State::closed) lock.Wait(changed_);
  return false;
}

void Gate::Drain() {
  MutexLock lock(mutex_);
  while (inside_ > 0) lock.Wait(changed_);
}

void Gate::EndClose() {
  MutexLock lock(mutex_);
  state_ = State::closed;
  changed_.notify_all();
}

}  // namespace zyn::producer
