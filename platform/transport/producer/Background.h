/// Work that nobody waits for, or not for long.
#ifndef ZYN_TRANSPORT_BACKGROUND_H
#define ZYN_TRANSPORT_BACKGROUND_H

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>

#include "ThreadAnnotations.h"

namespace zyn::transport {

/// A call on a thread of its own. Used for producer calls that may hang when a device is gone.
class Background {
 public:
  /// Starts `work`, which owns everything it uses.
  static Background Run(std::function<void()> work);

  /// Waits for its end. False when the deadline passed first; the work goes on then.
  bool WaitUntil(std::chrono::steady_clock::time_point deadline) const;

 private:
  struct State {
    Mutex mutex;
    std::condition_variable finished;
    bool isDone ZYN_GUARDED_BY(mutex) = false;
  };

  std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace zyn::transport

#endif
