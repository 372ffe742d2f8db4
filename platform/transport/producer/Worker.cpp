#include "Worker.h"

#include <thread>
#include <utility>

namespace zyn::transport {

namespace {

// A task that fails leaves the former result in place; the next request tries again.
void RunGuarded(const std::function<void()>& task) {
  try {
    task();
  } catch (...) {  // NOLINT(bugprone-empty-catch): out of memory is all that a task can throw
  }
}

}  // namespace

Worker::Worker(std::function<void()> task) : state_(std::make_shared<State>()) {
  state_->task = std::move(task);
}

Worker::~Worker() {
  MutexLock lock(state_->mutex);
  state_->ended = true;
  state_->wake.notify_all();
}

std::uint64_t Worker::Request() {
  MutexLock lock(state_->mutex);
  const std::uint64_t ticket = ++state_->requested;
  if (!state_->threadRuns) {
    state_->threadRuns = true;
    std::thread([state = state_] { Run(state); }).detach();
  }
  state_->wake.notify_all();
  return ticket;
}

bool Worker::WaitUntil(std::uint64_t ticket, Clock::time_point deadline) {
  MutexLock lock(state_->mutex);
  while (state_->served < ticket) {
    if (state_->overdue) return false;
    if (!lock.WaitUntil(state_->finished, deadline) && state_->served < ticket) {
      state_->overdue = true;
      return false;
    }
  }
  return true;
}

void Worker::Run(const std::shared_ptr<State>& state) {
  MutexLock lock(state->mutex);
  while (!state->ended) {
    if (state->served == state->requested) {
      lock.Wait(state->wake);
      continue;
    }
    const std::uint64_t serving = state->requested;
    lock.Unlock();
    RunGuarded(state->task);
    lock.Lock();
    state->served = serving;
    state->overdue = false;
    state->finished.notify_all();
  }
}

}  // namespace zyn::transport
