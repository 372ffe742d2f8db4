/// One at a time, without holding a mutex meanwhile: who has the turn may block on a device for as long as it
/// takes, and those who wait for it can give up.
#ifndef ZYN_PRODUCER_TURN_H
#define ZYN_PRODUCER_TURN_H

#include <chrono>
#include <condition_variable>

#include "ThreadAnnotations.h"

namespace zyn::producer {

class Turn {
 public:
  using Clock = std::chrono::steady_clock;

  /// Waits for the turn, until `deadline` at the latest. Returns false when the time ran out.
  bool TakeUntil(Clock::time_point deadline);
  void Take();
  void Give();

 private:
  Mutex mutex_;
  std::condition_variable free_;
  bool taken_ ZYN_GUARDED_BY(mutex_) = false;
};

/// Has the turn for one scope.
class TurnHolder {
 public:
  explicit TurnHolder(Turn& turn) : turn_(turn) { turn_.Take(); }
  /// Throws Error with GC_ERR_TIMEOUT when the turn does not come in time.
  TurnHolder(Turn& turn, Turn::Clock::time_point deadline);
  ~TurnHolder() { turn_.Give(); }
  TurnHolder(const TurnHolder&) = delete;
  TurnHolder& operator=(const TurnHolder&) = delete;

 private:
  Turn& turn_;
};

}  // namespace zyn::producer

#endif
