/// A clock that stands still until it is turned: for tests.
#ifndef ZYN_CAMERAS_MANUAL_CLOCK_H
#define ZYN_CAMERAS_MANUAL_CLOCK_H

#include <cstdint>
#include <vector>

#include "cameras/Clock.h"

namespace zyn::cameras {

/// Thread-safe. Begins at 0. Whoever sleeps on it wakes when the time is turned.
class ManualClock final : public Clock {
 public:
  std::int64_t NowNs() const override;
  void Wait(MutexLock& lock, std::condition_variable& condition, std::int64_t deadlineNs) override;
  void AddListener(ClockListener& listener) override;
  void RemoveListener(ClockListener& listener) override;

  /// Turns the clock forward. `ns` is 0 or more. Returns when every listener was told.
  void Advance(std::int64_t ns);

  /// Blocks until `count` threads or more sleep on this clock.
  void AwaitSleepers(int count);

 private:
  mutable Mutex mutex_;  // never held while a listener is called
  std::condition_variable sleepersChanged_;
  std::int64_t now_ ZYN_GUARDED_BY(mutex_) = 0;
  int sleepers_ ZYN_GUARDED_BY(mutex_) = 0;

  Mutex listenersMutex_;  // held while listeners are called, so that removing one waits
  std::vector<ClockListener*> listeners_ ZYN_GUARDED_BY(listenersMutex_);
};

}  // namespace zyn::cameras

#endif
