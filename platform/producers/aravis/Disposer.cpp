#include "Disposer.h"

#include <system_error>

namespace zyn::aravis {

struct Disposer::Ticket::State {
  Mutex mutex;
  std::condition_variable changed;
  bool isDone ZYN_GUARDED_BY(mutex) = false;

  void MarkDone() {
    const MutexLock lock(mutex);
    isDone = true;
    changed.notify_all();
  }

  bool WaitUntil(std::chrono::steady_clock::time_point deadline) {
    MutexLock lock(mutex);
    while (!isDone && lock.WaitUntil(changed, deadline)) {
    }
    return isDone;
  }
};

bool Disposer::Ticket::Wait(std::chrono::milliseconds patience) const {
  return state_->WaitUntil(std::chrono::steady_clock::now() + patience);
}

Disposer::~Disposer() {
  const MutexLock lock(mutex_);
  for (Worker& worker : workers_) worker.thread.join();
}

Disposer::Ticket Disposer::DisposeObject(gpointer object) {
  const auto state = std::make_shared<Ticket::State>();
  const MutexLock lock(mutex_);
  JoinFinished();
  const auto run = [object, state] {
    g_object_unref(object);
    state->MarkDone();
  };
  workers_.push_back({{}, state});
  try {
    workers_.back().thread = std::thread(run);
  } catch (const std::system_error&) {  // no more threads: then the caller waits after all
    workers_.pop_back();
    run();
  }
  return Ticket(state);
}

void Disposer::JoinFinished() {
  for (auto worker = workers_.begin(); worker != workers_.end();) {
    if (!worker->state->WaitUntil(std::chrono::steady_clock::time_point::min())) {
      ++worker;
      continue;
    }
    worker->thread.join();
    worker = workers_.erase(worker);
  }
}

}  // namespace zyn::aravis
