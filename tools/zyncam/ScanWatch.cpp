#include "ScanWatch.h"

#include <chrono>
#include <utility>

namespace zyncam {
namespace {

constexpr std::chrono::milliseconds kPeriod{100};

}  // namespace

ScanWatch::ScanWatch(Callbacks callbacks) : callbacks_(std::move(callbacks)), thread_([this] { Run(); }) {}

ScanWatch::~ScanWatch() {
  {
    const zyn::MutexLock lock(mutex_);
    isOver_ = true;
  }
  over_.notify_one();
  thread_.join();
}

void ScanWatch::Run() {
  do {
    if (callbacks_.isInterrupted()) return callbacks_.stop();
    ShowNews();
  } while (!IsOverAfterAWhile());
}

void ScanWatch::ShowNews() {
  const std::optional<std::int64_t> lines = callbacks_.lines();
  if (!lines || lines == shown_) return;
  shown_ = lines;
  callbacks_.show(*lines);
}

bool ScanWatch::IsOverAfterAWhile() {
  const auto deadline = std::chrono::steady_clock::now() + kPeriod;
  zyn::MutexLock lock(mutex_);
  while (!isOver_ && lock.WaitUntil(over_, deadline)) {
  }
  return isOver_;
}

}  // namespace zyncam
