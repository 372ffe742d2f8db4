#include "Turn.h"

#include "producer/Error.h"

namespace zyn::producer {

bool Turn::TakeUntil(Clock::time_point deadline) {
  MutexLock lock(mutex_);
  while (taken_) {
    if (!lock.WaitUntil(free_, deadline) && taken_) return false;
  }
  taken_ = true;
  return true;
}

void Turn::Take() {
  MutexLock lock(mutex_);
  while (taken_) lock.Wait(free_);
  taken_ = true;
}

void Turn::Give() {
  MutexLock lock(mutex_);
  taken_ = false;
  free_.notify_one();
}

TurnHolder::TurnHolder(Turn& turn, Turn::Clock::time_point deadline) : turn_(turn) {
  if (!turn_.TakeUntil(deadline))
    throw Error(GenTL::GC_ERR_TIMEOUT, "Another call is still searching or opening here.");
}

}  // namespace zyn::producer
