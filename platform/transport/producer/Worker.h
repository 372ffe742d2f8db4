/// Runs one task on a thread of its own, whenever asked.
#ifndef ZYN_TRANSPORT_WORKER_H
#define ZYN_TRANSPORT_WORKER_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>

#include "ThreadAnnotations.h"

namespace zyn::transport {

/// A producer's call may hang. Each place that can hang gets a worker, so that whoever needs the answer can
/// give up waiting and the hung thread is never more than one. Requests that pile up are served by one run.
class Worker {
 public:
  using Clock = std::chrono::steady_clock;

  explicit Worker(std::function<void()> task);
  /// Lets the thread end after the run in progress, without waiting for it.
  ~Worker();
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  /// Asks for a run that begins after this call. Returns a ticket for WaitUntil. Does not block.
  std::uint64_t Request();

  /// Waits for the run that serves the ticket. False when the deadline passed first. A worker that already
  /// missed a deadline and has been busy ever since is not waited for again.
  bool WaitUntil(std::uint64_t ticket, Clock::time_point deadline);

 private:
  struct State {
    Mutex mutex;
    std::condition_variable wake;      // for the thread: a request, or the end
    std::condition_variable finished;  // for the callers: a run is over
    std::function<void()> task;        // constant after construction
    std::uint64_t requested ZYN_GUARDED_BY(mutex) = 0;
    std::uint64_t served ZYN_GUARDED_BY(mutex) = 0;
    bool threadRuns ZYN_GUARDED_BY(mutex) = false;
    bool overdue ZYN_GUARDED_BY(mutex) = false;
    bool ended ZYN_GUARDED_BY(mutex) = false;
  };

  static void Run(const std::shared_ptr<State>& state);

  std::shared_ptr<State> state_;
};

}  // namespace zyn::transport

#endif
