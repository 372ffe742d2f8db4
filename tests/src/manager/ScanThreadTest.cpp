#include "ScanThread.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <stdexcept>
#include <string>
#include <utility>

#include "CameraManager.h"
#include "FakeTransport.h"
#include "Metronome.h"

using namespace ZYNSDK;
using fakes::FakeTransport;
using fakes::Metronome;

namespace {

class ScanThreadTest : public testing::Test {
 protected:
  int Searches() const { return transport.calls.Count("Discovery"); }

  FakeTransport transport;
  CameraManager manager;
  Metronome metronome;
  ScanThread::Tick tick = [this] { metronome.Tick(); };
};

}  // namespace

TEST_F(ScanThreadTest, SearchesAtOnceAndThenEvery300Ticks) {
  ScanThread thread(&manager, tick);
  metronome.Settle();
  EXPECT_EQ(Searches(), 1);
  for (int round = 1; round <= 3; ++round) {
    metronome.Advance(299);
    EXPECT_EQ(Searches(), round);
    metronome.Advance(1);
    EXPECT_EQ(Searches(), round + 1);
  }
  metronome.RunFreely();
}

TEST_F(ScanThreadTest, ATickTakes10MillisecondsAndAScanComesEvery300) {
  EXPECT_EQ(ScanThread::kTick, std::chrono::milliseconds(10));
  EXPECT_EQ(ScanThread::kTicksPerScan, 300U);
  const auto start = std::chrono::steady_clock::now();
  ScanThread::SleepOneTick();
  EXPECT_GE(std::chrono::steady_clock::now() - start, ScanThread::kTick);
}

TEST_F(ScanThreadTest, WithoutAManagerThereIsNoThread) {
  ScanThread thread(nullptr, [] { ADD_FAILURE() << "a tick"; });
  thread.Stop();
  thread.Stop();
  EXPECT_EQ(Searches(), 0);
}

TEST_F(ScanThreadTest, AThreadThatIsStoppedBeforeItBeginsDoesNothing) {
  ScanThread thread(nullptr, [] { ADD_FAILURE() << "a tick"; });
  thread.Stop();
  thread.Run();  // would use the manager that is not there
  EXPECT_EQ(Searches(), 0);
}

TEST_F(ScanThreadTest, StoppingWaitsForTheSearchThatRuns) {
  std::promise<void> entered;
  std::promise<void> allowed;
  bool isSearchDone = false;  // written and read in order, when stopping waits
  bool isFirst = true;
  transport.hook = [&](const std::string&) {
    if (!std::exchange(isFirst, false)) return;
    entered.set_value();
    allowed.get_future().wait();
    isSearchDone = true;
  };
  ScanThread thread(&manager, [] {});
  entered.get_future().wait();
  auto stopping = std::async(std::launch::async, [&] { thread.Stop(); });
  allowed.set_value();
  stopping.get();
  EXPECT_TRUE(isSearchDone);
}

// With each turn here lasting 10 milliseconds, only a test machine that stops for a second could fail by chance.
TEST_F(ScanThreadTest, StoppingWaitsForATickNotForAWholePeriod) {
  ScanThread thread(&manager, tick);
  metronome.Settle();
  auto stopping = std::async(std::launch::async, [&] { thread.Stop(); });
  unsigned int ticks = 0;
  do {
    metronome.Allow(1);
    ++ticks;
  } while (stopping.wait_for(std::chrono::milliseconds(10)) == std::future_status::timeout &&
           ticks < ScanThread::kTicksPerScan);
  EXPECT_LT(ticks, 100U);
  metronome.RunFreely();
}

TEST_F(ScanThreadTest, TheDestructorStopsAndMayFollowAStop) {
  ScanThread thread(&manager, tick);
  metronome.Settle();
  metronome.RunFreely();
  thread.Stop();
  const int searches = Searches();
  thread.Stop();
  EXPECT_EQ(Searches(), searches);
}

TEST(ScanThreadDeathTest, AFailingSearchEndsTheProcess) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_DEATH(
      {
        FakeTransport transport;
        transport.hook = [](const std::string&) { throw std::runtime_error("the wire is cut"); };
        CameraManager manager;
        ScanThread thread(&manager);
        std::promise<void>().get_future().wait();  // for the end
      },
      "the wire is cut");
}
