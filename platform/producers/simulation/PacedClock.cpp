#include "PacedClock.h"

#include <algorithm>
#include <chrono>

namespace zyn::simulation {
namespace {

using std::chrono::nanoseconds;
using std::chrono::steady_clock;

// Waits end early rather than late: it keeps far deadlines within what the system's wait takes.
constexpr std::int64_t kLongestWaitNs = 3'600'000'000'000;

std::int64_t SteadyNs() {
  return std::chrono::duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count();
}

}  // namespace

// Who sleeps until a real time must learn that it need not.
void PacedClock::SetPacing(Pacing pacing) {
  pacing_ = pacing;
  const MutexLock lock(listenersMutex_);
  for (cameras::ClockListener* const listener : listeners_) listener->OnClockTurned();
}

std::int64_t PacedClock::NowNs() const {
  return SteadyNs() + ahead_;
}

void PacedClock::JumpTo(std::int64_t deadlineNs) {
  std::int64_t ahead = ahead_;
  while (true) {
    const std::int64_t missing = deadlineNs - (SteadyNs() + ahead);
    if (missing <= 0 || ahead_.compare_exchange_weak(ahead, ahead + missing)) return;
  }
}

void PacedClock::Wait(MutexLock& lock, std::condition_variable& condition, std::int64_t deadlineNs) {
  if (deadlineNs == cameras::kForever) return lock.Wait(condition);
  if (pacing_ == Pacing::reader) return JumpTo(deadlineNs);
  const std::int64_t waitNs = std::min(deadlineNs - NowNs(), kLongestWaitNs);
  if (waitNs > 0) lock.WaitUntil(condition, steady_clock::now() + nanoseconds(waitNs));
}

void PacedClock::AddListener(cameras::ClockListener& listener) {
  const MutexLock lock(listenersMutex_);
  listeners_.push_back(&listener);
}

void PacedClock::RemoveListener(cameras::ClockListener& listener) {
  const MutexLock lock(listenersMutex_);
  listeners_.erase(std::remove(listeners_.begin(), listeners_.end(), &listener), listeners_.end());
}

}  // namespace zyn::simulation
