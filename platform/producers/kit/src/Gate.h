/// Counts the calls that are inside an object, so that closing it can wait until all have left.
#ifndef ZYN_PRODUCER_GATE_H
#define ZYN_PRODUCER_GATE_H

#include <condition_variable>

#include "ThreadAnnotations.h"

namespace zyn::producer {

class Gate {
 public:
  /// Returns false when the gate is closing or closed; otherwise Leave must follow.
  bool Enter();
  void Leave();

  /// The first caller gets true: it now owns the closing, and must call Drain and then EndClose. Everyone
  /// else waits until that is done, and gets false.
  bool BeginClose();
  /// Waits until everyone has left.
  void Drain();
  void EndClose();

 private:
  enum class State { open, closing, closed };

  Mutex mutex_;
  std::condition_variable changed_;
  State state_ ZYN_GUARDED_BY(mutex_) = State::open;
  std::size_t inside_ ZYN_GUARDED_BY(mutex_) = 0;
};

}  // namespace zyn::producer

#endif
