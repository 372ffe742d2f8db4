#include "ScanWatch.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <thread>
#include <vector>

namespace {

using zyncam::ScanWatch;

// A scan of which nothing is known and that nobody interrupts.
ScanWatch::Callbacks Quiet() {
  ScanWatch::Callbacks callbacks;
  callbacks.lines = [] { return std::optional<std::int64_t>(); };
  callbacks.show = [](std::int64_t) { ADD_FAILURE() << "shown"; };
  callbacks.isInterrupted = [] { return false; };
  callbacks.stop = [] { ADD_FAILURE() << "stopped"; };
  return callbacks;
}

TEST(ScanWatch, ShowsEveryNewNumberOnce) {
  const std::vector<std::optional<std::int64_t>> told = {std::nullopt, 0, 0, 100, std::nullopt, 100, 300};
  std::vector<std::int64_t> shown;
  std::latch allTold(1);
  std::size_t next = 0;
  ScanWatch::Callbacks callbacks = Quiet();
  callbacks.lines = [&] {
    const auto lines = told[next];
    if (next + 1 < told.size()) ++next;
    return lines;
  };
  callbacks.show = [&](std::int64_t lines) {
    shown.push_back(lines);
    if (lines == 300) allTold.count_down();
  };
  {
    const ScanWatch watch(callbacks);
    allTold.wait();
  }
  EXPECT_EQ(shown, (std::vector<std::int64_t>{0, 100, 300}));
}

TEST(ScanWatch, StopsAnInterruptedScanOnceAndThenLooksNoMore) {
  std::atomic<bool> isInterrupted{false};
  std::latch hasLooked(1);
  std::latch stopped(1);
  int stops = 0;
  int looksBehind = 0;
  ScanWatch::Callbacks callbacks = Quiet();
  callbacks.lines = [&] {
    hasLooked.count_down(hasLooked.try_wait() ? 0 : 1);
    if (stops > 0) ++looksBehind;
    return std::optional<std::int64_t>();
  };
  callbacks.isInterrupted = [&] { return isInterrupted.load(); };
  callbacks.stop = [&] {
    ++stops;
    stopped.count_down();
  };
  {
    const ScanWatch watch(callbacks);
    hasLooked.wait();
    isInterrupted = true;
    stopped.wait();
  }
  EXPECT_EQ(stops, 1);
  EXPECT_EQ(looksBehind, 0);
}

TEST(ScanWatch, EndingWaitsForACallbackThatRuns) {
  std::latch entered(1);
  std::latch allowed(1);
  std::atomic<bool> isLooking{false};
  ScanWatch::Callbacks callbacks = Quiet();
  callbacks.lines = [&] {
    isLooking = true;
    entered.count_down(entered.try_wait() ? 0 : 1);
    allowed.wait();
    isLooking = false;
    return std::optional<std::int64_t>();
  };
  auto watch = std::make_unique<ScanWatch>(callbacks);
  entered.wait();
  std::thread allowing([&] { allowed.count_down(); });
  watch.reset();
  EXPECT_FALSE(isLooking);
  allowing.join();
}

}  // namespace
