// The time of a simulated camera.
#include "PacedClock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>

namespace zyn::simulation {
namespace {

using cameras::kForever;

constexpr std::int64_t kHourNs = 3'600'000'000'000;

void WaitOn(PacedClock& clock, std::int64_t deadlineNs) {
  Mutex mutex;
  std::condition_variable condition;
  MutexLock lock(mutex);
  clock.Wait(lock, condition, deadlineNs);
}

TEST(PacedClock, AtTheReadersPaceTheTimeOfADeadlineComesAtOnce) {
  PacedClock clock(Pacing::reader);
  const std::int64_t deadline = clock.NowNs() + kHourNs;
  WaitOn(clock, deadline);
  EXPECT_GE(clock.NowNs(), deadline);
}

TEST(PacedClock, TimeNeverGoesBack) {
  PacedClock clock(Pacing::reader);
  const std::int64_t deadline = clock.NowNs() + kHourNs;
  WaitOn(clock, deadline);
  WaitOn(clock, deadline - kHourNs);  // long past
  EXPECT_GE(clock.NowNs(), deadline);
  clock.SetPacing(Pacing::camera);
  EXPECT_GE(clock.NowNs(), deadline);
}

TEST(PacedClock, AtTheCamerasPaceADeadlineIsWaitedFor) {
  PacedClock clock(Pacing::camera);
  const std::int64_t deadline = clock.NowNs() + 20'000'000;
  const auto before = std::chrono::steady_clock::now();
  while (clock.NowNs() < deadline) WaitOn(clock, deadline);
  EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(19));
}

TEST(PacedClock, PastDeadlinesAreNotWaitedForAtAnyPace) {
  for (const Pacing pacing : {Pacing::camera, Pacing::reader}) {
    PacedClock clock(pacing);
    WaitOn(clock, clock.NowNs() - kHourNs);  // would hang
  }
}

struct Listener final : cameras::ClockListener {
  void OnClockTurned() override { ++turns; }
  int turns = 0;
};

TEST(PacedClock, WhoSleepsHearsOfANewPace) {
  PacedClock clock(Pacing::camera);
  Listener listener;
  clock.AddListener(listener);
  clock.SetPacing(Pacing::reader);
  EXPECT_EQ(listener.turns, 1);
  clock.RemoveListener(listener);
  clock.SetPacing(Pacing::camera);
  EXPECT_EQ(listener.turns, 1);
}

TEST(PacedClock, WithoutADeadlineOnlyTheConditionWakes) {
  PacedClock clock(Pacing::reader);
  Mutex mutex;
  std::condition_variable condition;
  bool happened = false;
  std::future<std::int64_t> sleeper = std::async(std::launch::async, [&] {
    MutexLock lock(mutex);
    while (!happened) clock.Wait(lock, condition, kForever);
    return clock.NowNs();
  });
  {
    const MutexLock lock(mutex);
    happened = true;
    condition.notify_all();
  }
  EXPECT_LT(sleeper.get(), clock.NowNs() + kHourNs) << "kForever is no time to jump to";
}

}  // namespace
}  // namespace zyn::simulation
