/// The time by which simulated cameras work, so that tests can turn it.
#ifndef ZYN_CAMERAS_CLOCK_H
#define ZYN_CAMERAS_CLOCK_H

#include <condition_variable>
#include <cstdint>

#include "ThreadAnnotations.h"

namespace zyn::cameras {

/// "No deadline" for every function that takes one.
constexpr std::int64_t kForever = INT64_MAX;

/// Called by clocks whose time is turned by hand, after each turn, on the thread that turns.
class ClockListener {
 public:
  virtual void OnClockTurned() = 0;

 protected:
  ~ClockListener() = default;
};

/// Monotonic nanoseconds from an arbitrary start. Thread-safe. Must outlive every camera that uses it.
class Clock {
 public:
  Clock() = default;
  Clock(const Clock&) = delete;
  Clock& operator=(const Clock&) = delete;
  virtual ~Clock() = default;

  virtual std::int64_t NowNs() const = 0;

  /// Sleeps until `condition` is notified or the clock reaches `deadlineNs`; may also return early for no reason.
  /// `lock` is held before and after.
  virtual void Wait(MutexLock& lock, std::condition_variable& condition, std::int64_t deadlineNs) = 0;

  /// A listener hears of turns until it is removed; removing waits for a running call to end. Clocks that run by
  /// themselves never call.
  virtual void AddListener(ClockListener& listener) = 0;
  virtual void RemoveListener(ClockListener& listener) = 0;
};

/// The machine's steady clock. Lives as long as the process.
Clock& SteadyClock();

}  // namespace zyn::cameras

#endif
