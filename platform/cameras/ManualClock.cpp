#include "cameras/ManualClock.h"

#include <algorithm>

namespace zyn::cameras {

std::int64_t ManualClock::NowNs() const {
  const MutexLock lock(mutex_);
  return now_;
}

void ManualClock::Wait(MutexLock& lock, std::condition_variable& condition, std::int64_t deadlineNs) {
  {
    const MutexLock own(mutex_);
    if (now_ >= deadlineNs) return;
    ++sleepers_;
    sleepersChanged_.notify_all();
  }
  lock.Wait(condition);
  const MutexLock own(mutex_);
  --sleepers_;
}

void ManualClock::AddListener(ClockListener& listener) {
  const MutexLock lock(listenersMutex_);
  listeners_.push_back(&listener);
}

void ManualClock::RemoveListener(ClockListener& listener) {
  const MutexLock lock(listenersMutex_);
  listeners_.erase(std::remove(listeners_.begin(), listeners_.end(), &listener), listeners_.end());
}

void ManualClock::Advance(std::int64_t ns) {
  {
    const MutexLock lock(mutex_);
    now_ += ns;
  }
  const MutexLock lock(listenersMutex_);
  for (ClockListener* listener : listeners_) listener->OnClockTurned();
}

void ManualClock::AwaitSleepers(int count) {
  MutexLock lock(mutex_);
  while (sleepers_ < count) lock.Wait(sleepersChanged_);
}

}  // namespace zyn::cameras
