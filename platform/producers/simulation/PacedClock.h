/// The time of one simulated camera.
#ifndef ZYN_SIMULATION_PACED_CLOCK_H
#define ZYN_SIMULATION_PACED_CLOCK_H

#include <atomic>
#include <cstdint>
#include <vector>

#include "Configuration.h"
#include "cameras/Clock.h"

namespace zyn::simulation {

/// Runs like the machine's steady clock. With Pacing::reader, whoever would sleep on it finds that the time has
/// come already: the clock jumps ahead, so a camera produces as fast as its frames are taken, and its time stamps
/// still differ by the time that its settings ask for. Thread-safe. One clock per camera.
class PacedClock final : public cameras::Clock {
 public:
  explicit PacedClock(Pacing pacing) : pacing_(pacing) {}

  Pacing GetPacing() const { return pacing_; }
  void SetPacing(Pacing pacing);

  std::int64_t NowNs() const override;
  void Wait(MutexLock& lock, std::condition_variable& condition, std::int64_t deadlineNs) override;
  void AddListener(cameras::ClockListener& listener) override;
  void RemoveListener(cameras::ClockListener& listener) override;

 private:
  void JumpTo(std::int64_t deadlineNs);

  std::atomic<Pacing> pacing_;
  std::atomic<std::int64_t> ahead_{0};  // of the steady clock, ns; only grows

  Mutex listenersMutex_;  // held while listeners are called, so that removing one waits
  std::vector<cameras::ClockListener*> listeners_ ZYN_GUARDED_BY(listenersMutex_);
};

}  // namespace zyn::simulation

#endif
