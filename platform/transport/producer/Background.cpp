#include "Background.h"

#include <thread>
#include <utility>

namespace zyn::transport {

Background Background::Run(std::function<void()> work) {
  Background background;
  std::thread([state = background.state_, task = std::move(work)]() mutable {
    try {
      task();
    } catch (...) {  // NOLINT(bugprone-empty-catch): out of memory is all that the work can throw
    }
    task = nullptr;  // what it owns ends before anybody learns that it is done
    MutexLock lock(state->mutex);
    state->isDone = true;
    state->finished.notify_all();
  }).detach();
  return background;
}

bool Background::WaitUntil(std::chrono::steady_clock::time_point deadline) const {
  MutexLock lock(state_->mutex);
  while (!state_->isDone) {
    if (!lock.WaitUntil(state_->finished, deadline)) return state_->isDone;
  }
  return true;
}

}  // namespace zyn::transport
