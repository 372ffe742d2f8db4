#ifndef ZYN_FAKES_METRONOME_H
#define ZYN_FAKES_METRONOME_H

#include <condition_variable>

#include "ThreadAnnotations.h"

namespace fakes {

/// The ticks of one scan thread, in the hands of a test: the thread stands still in its tick until the test
/// lets it pass. Call RunFreely before whatever waits for the thread's end.
class Metronome {
 public:
  /// What the thread calls.
  void Tick() {
    zyn::MutexLock lock(mutex_);
    isInTick_ = true;
    changed_.notify_all();
    while (allowed_ == 0 && !isFree_) lock.Wait(changed_);
    if (allowed_ > 0) --allowed_;
    isInTick_ = false;
  }

  /// Returns when the thread stands in a tick: what it did before is done.
  void Settle() {
    zyn::MutexLock lock(mutex_);
    while (!isInTick_ || allowed_ > 0) lock.Wait(changed_);
  }

  /// Lets so many ticks pass, and returns when the thread stands in the one behind them.
  void Advance(unsigned int ticks) {
    Settle();
    zyn::MutexLock lock(mutex_);
    allowed_ = ticks;
    changed_.notify_all();
    while (!isInTick_ || allowed_ > 0) lock.Wait(changed_);
  }

  /// Lets so many more ticks pass, whenever they come.
  void Allow(unsigned int ticks) {
    zyn::MutexLock lock(mutex_);
    allowed_ += ticks;
    changed_.notify_all();
  }

  /// From now on no tick holds the thread.
  void RunFreely() { SetFree(true); }
  /// From now on every tick holds the thread again.
  void Hold() { SetFree(false); }

 private:
  void SetFree(bool isFree) {
    zyn::MutexLock lock(mutex_);
    isFree_ = isFree;
    changed_.notify_all();
  }

  zyn::Mutex mutex_;
  std::condition_variable changed_;
  bool isInTick_ ZYN_GUARDED_BY(mutex_) = false;
  unsigned int allowed_ ZYN_GUARDED_BY(mutex_) = 0;
  bool isFree_ ZYN_GUARDED_BY(mutex_) = false;
};

}  // namespace fakes

#endif
