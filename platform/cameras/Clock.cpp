#include "cameras/Clock.h"

#include <chrono>

namespace zyn::cameras {

namespace {

class Steady final : public Clock {
 public:
  std::int64_t NowNs() const override {
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(sinceStart).count();
  }

  void Wait(MutexLock& lock, std::condition_variable& condition, std::int64_t deadlineNs) override {
    if (deadlineNs == kForever) {
      lock.Wait(condition);
      return;
    }
    lock.WaitUntil(condition, std::chrono::steady_clock::time_point(
                                  std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                                      std::chrono::nanoseconds(deadlineNs))));
  }

  void AddListener(ClockListener&) override {}
  void RemoveListener(ClockListener&) override {}
};

}  // namespace

Clock& SteadyClock() {
  static Steady clock;
  return clock;
}

}  // namespace zyn::cameras
