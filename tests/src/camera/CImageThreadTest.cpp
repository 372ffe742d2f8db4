#include "CImageThread.h"

#include <gtest/gtest.h>
#ifdef __linux__
#include <pthread.h>
#endif

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <future>
#include <latch>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "FakeTransport.h"
#include "Handles.h"
#include "LogicCamera.h"
#include "ProcessUsage.h"
#include "ZynCamera.h"

using namespace ZYNSDK;
using fakes::FakeImage;

namespace {

/// Calls what a test gives it.
class Handler : public IImageHandler {
 public:
  Handler() = default;
  explicit Handler(std::function<void(ZynCamera, ZynImage&)> work) : onImage(std::move(work)) {}
  void OnImage(ZynCamera camera, ZynImage& image) override {
    ++calls;
    if (onImage) onImage(camera, image);
  }
  std::atomic<int> calls{0};
  std::function<void(ZynCamera, ZynImage&)> onImage;
};

#ifdef __linux__
/// While it exists the system refuses every new thread: no stack of that size can be had.
class NoMoreThreads {
 public:
  NoMoreThreads() {
    pthread_getattr_default_np(&usual_);
    pthread_attr_t huge;
    pthread_attr_init(&huge);
    pthread_attr_setstacksize(&huge, std::size_t{1} << 60);
    pthread_setattr_default_np(&huge);
    pthread_attr_destroy(&huge);
  }
  NoMoreThreads(const NoMoreThreads&) = delete;
  NoMoreThreads& operator=(const NoMoreThreads&) = delete;
  ~NoMoreThreads() {
    pthread_setattr_default_np(&usual_);
    pthread_attr_destroy(&usual_);
  }

 private:
  pthread_attr_t usual_{};
};
#endif

// A delivery thread of its own, over an open camera whose stream runs.
class CImageThreadTest : public testing::Test {
 protected:
  CImageThreadTest() {
    transport.cameras[&info] = {&device};
    camera.Open(nullptr);
    device.isGrabbing = true;
  }
  ~CImageThreadTest() override {
    thread.Stop();
    device.hook = nullptr;
    camera.Close();
  }

  /// The thread's first wait for a frame stands still between these two.
  void HoldTheFirstWait() {
    device.hook = [this, isFirst = true](const std::string& call) mutable {
      if (call != "Grab" || !isFirst) return;
      isFirst = false;
      entered.count_down();
      allowed.wait();
    };
  }

  fakes::FakeTransport transport;
  fakes::FakeCameraInfo info;
  fakes::FakeCamera device;
  std::latch entered{1};
  std::latch allowed{1};
  LogicCamera camera{&info};
  CImageThread thread{camera};
};

}  // namespace

TEST_F(CImageThreadTest, IsIdleAtFirst) {
  EXPECT_FALSE(thread.HasThread());
  EXPECT_FALSE(thread.IsRunning());
}

TEST_F(CImageThreadTest, WithoutAHandlerStartDoesNothing) {
  thread.Start();
  EXPECT_FALSE(thread.HasThread());
  EXPECT_FALSE(thread.IsRunning());
}

TEST_F(CImageThreadTest, RegisteringDoesNotStart) {
  Handler handler;
  thread.Register(&handler);
  EXPECT_FALSE(thread.HasThread());
  EXPECT_FALSE(thread.IsRunning());
}

TEST_F(CImageThreadTest, UnregisteringWhileIdleOnlyForgetsTheHandler) {
  Handler handler;
  thread.Register(&handler);
  thread.Register(nullptr);
  thread.Start();
  EXPECT_FALSE(thread.HasThread());
}

TEST_F(CImageThreadTest, DeliversEveryImageInOrderWithACopyOfTheHandle) {
  FakeImage first(4, 3, 1, 10);
  FakeImage second(5, 2, 1, 5);
  device.Deliver(0, &first);
  device.Deliver(0, &second);
  std::vector<int> widths;
  std::latch delivered(2);
  Handler handler([&](ZynCamera from, const ZynImage& image) {
    EXPECT_EQ(fakes::InternalOf(from), &camera);
    widths.push_back(image.Width());
    delivered.count_down();
  });
  thread.Register(&handler);
  thread.Start();
  EXPECT_TRUE(thread.HasThread());
  EXPECT_TRUE(thread.IsRunning());
  delivered.wait();
  thread.Stop();
  EXPECT_EQ(widths, (std::vector<int>{4, 5}));
  EXPECT_EQ(first.Releases(), 1);
  EXPECT_EQ(second.Releases(), 1);
}

TEST_F(CImageThreadTest, EveryCallGetsTheSameImageObjectAndCopiesKeepTheirPixels) {
  FakeImage first(4, 3, 1, 10);
  FakeImage second(5, 2, 1, 5);
  device.Deliver(0, &first);
  device.Deliver(0, &second);
  std::vector<const ZynImage*> objects;
  std::vector<ZynImage> kept;
  std::latch delivered(2);
  Handler handler([&](const ZynCamera&, const ZynImage& image) {
    objects.push_back(&image);
    kept.push_back(image);
    delivered.count_down();
  });
  thread.Register(&handler);
  thread.Start();
  delivered.wait();
  thread.Stop();
  EXPECT_EQ(objects[0], objects[1]);
  EXPECT_EQ(kept[0].Width(), 4);
  EXPECT_EQ(kept[1].Width(), 5);
}

TEST_F(CImageThreadTest, ThePixelsOfAnImageStayUntilTheNextOneHasArrived) {
  // Nobody keeps a copy, and memory that is free is used again at once: two images in a row at one place would mean
  // that the first was gone while the second was copied.
  FakeImage first(4, 3, 1, 10);
  FakeImage second(4, 3, 1, 10);
  device.Deliver(0, &first);
  device.Deliver(0, &second);
  std::vector<const unsigned char*> places;
  std::latch delivered(2);
  Handler handler([&](const ZynCamera&, const ZynImage& image) {
    places.push_back(image.ImageData());
    delivered.count_down();
  });
  thread.Register(&handler);
  thread.Start();
  delivered.wait();
  thread.Stop();
  EXPECT_NE(places[0], places[1]);
}

TEST_F(CImageThreadTest, CallsTheHandlerOnAThreadOfItsOwnAndNeverAsksForChunks) {
  FakeImage frame(4, 3, 1, 10);
  device.Deliver(0, &frame);
  std::thread::id worker;
  std::latch delivered(1);
  Handler handler([&](const ZynCamera&, const ZynImage&) {
    worker = std::this_thread::get_id();
    delivered.count_down();
  });
  thread.Register(&handler);
  thread.Start();
  delivered.wait();
  thread.Stop();
  EXPECT_NE(worker, std::this_thread::get_id());
  EXPECT_EQ(frame.calls.Count("Chunks"), 0);
}

TEST_F(CImageThreadTest, FailedGrabsAreNeitherReportedNorTheEnd) {
  // Every kind of failure, and more of each than anybody would count.
  FakeImage broken(4, 3, 1, 10);
  broken.isValid = false;
  FakeImage good(6, 3, 1, 10);
  for (int i = 0; i < 1000; ++i) device.Deliver(i % 2 ? -9 : KELGENICAM::RESULT_TIMEOUT, nullptr);
  device.Deliver(0, nullptr);
  device.Deliver(0, &broken);
  device.Deliver(0, &good);
  int throwing = 100;
  device.hook = [&](const std::string& call) {
    if (call == "Grab" && throwing-- > 0) throw 42;
  };
  int width = 0;
  std::latch delivered(1);
  Handler handler([&](const ZynCamera&, const ZynImage& image) {
    width = image.Width();
    delivered.count_down();
  });
  thread.Register(&handler);
  thread.Start();
  delivered.wait();
  thread.Stop();
  EXPECT_EQ(width, 6);
  EXPECT_EQ(handler.calls, 1);
}

TEST_F(CImageThreadTest, TheGrabTimeoutPacesTheWait) {
  camera.SetGrabTimeout(77);
  HoldTheFirstWait();
  Handler handler;
  thread.Register(&handler);
  thread.Start();
  entered.wait();
  allowed.count_down();
  thread.Stop();
  EXPECT_EQ(device.timeoutMs, 77);
}

TEST_F(CImageThreadTest, ASecondStartLeavesTheThreadAsItIs) {
  HoldTheFirstWait();
  Handler handler;
  thread.Register(&handler);
  const std::size_t before = zyntest::CurrentUsage().threads;
  thread.Start();
  entered.wait();
  thread.Start();
  thread.Start();
  EXPECT_LE(zyntest::CurrentUsage().threads, before + 1);
  allowed.count_down();
  thread.Stop();
}

TEST_F(CImageThreadTest, StopWaitsForTheWaitThatRunsAndDeliversItsFrame) {
  FakeImage frame(4, 3, 1, 10);
  device.Deliver(0, &frame);
  HoldTheFirstWait();
  Handler handler;
  thread.Register(&handler);
  thread.Start();
  entered.wait();
  auto stop = std::async(std::launch::async, [&] { thread.Stop(); });
  while (thread.IsRunning()) std::this_thread::yield();  // it has asked the thread to end
  EXPECT_EQ(handler.calls, 0);
  allowed.count_down();
  stop.get();
  EXPECT_FALSE(thread.HasThread());
  EXPECT_EQ(handler.calls, 1);
  EXPECT_EQ(frame.Releases(), 1);
  EXPECT_EQ(device.calls.Count("Grab"), 1);
}

TEST_F(CImageThreadTest, StopWaitsForTheCallThatRuns) {
  FakeImage frame(4, 3, 1, 10);
  device.Deliver(0, &frame);
  std::atomic<bool> isLeft{false};
  Handler handler([&](const ZynCamera&, const ZynImage&) {
    entered.count_down();
    allowed.wait();
    isLeft = true;
  });
  thread.Register(&handler);
  thread.Start();
  entered.wait();
  auto stop = std::async(std::launch::async, [&] {
    thread.Stop();
    return isLeft.load();
  });
  while (thread.IsRunning()) std::this_thread::yield();
  allowed.count_down();
  EXPECT_TRUE(stop.get());
}

TEST_F(CImageThreadTest, TwoThreadsThatStopAtOnceJoinOnceAndBothSeeTheEnd) {
  Handler handler;
  thread.Register(&handler);
  for (int round = 0; round < 100; ++round) {
    thread.Start();
    std::latch together(2);
    auto stop = [&] {
      together.arrive_and_wait();
      thread.Stop();
      return thread.HasThread();
    };
    auto other = std::async(std::launch::async, stop);
    EXPECT_FALSE(stop());
    EXPECT_FALSE(other.get());
  }
}

TEST_F(CImageThreadTest, StoppingWhileStoppedDoesNothing) {
  Handler handler;
  thread.Stop();
  thread.Register(&handler);
  thread.Start();
  thread.Stop();
  thread.Stop();
  EXPECT_FALSE(thread.HasThread());
}

TEST_F(CImageThreadTest, WithoutAStreamStartDoesNothing) {
  Handler handler;
  thread.Register(&handler);
  device.isGrabbing = false;
  thread.Start();
  EXPECT_FALSE(thread.HasThread());
  EXPECT_FALSE(thread.IsRunning());
  device.isGrabbing = true;
  thread.Start();
  EXPECT_TRUE(thread.HasThread());
}

TEST_F(CImageThreadTest, ADeviceThatCannotSayWhetherItStreamsIsServed) {
  Handler handler;
  thread.Register(&handler);
  device.hook = [](const std::string& call) {
    if (call == "IsGrabbing") throw 42;
  };
  thread.Start();
  thread.StopUnlessStreaming();
  EXPECT_TRUE(thread.HasThread());
  EXPECT_TRUE(thread.IsRunning());
  thread.Stop();
}

TEST_F(CImageThreadTest, StopUnlessStreamingJoinsOnceTheStreamHasStopped) {
  Handler handler;
  thread.StopUnlessStreaming();
  thread.Register(&handler);
  thread.Start();
  thread.StopUnlessStreaming();
  EXPECT_TRUE(thread.HasThread());
  EXPECT_TRUE(thread.IsRunning());
  device.isGrabbing = false;
  thread.StopUnlessStreaming();
  EXPECT_FALSE(thread.HasThread());
  EXPECT_FALSE(thread.IsRunning());
}

TEST_F(CImageThreadTest, StopUnlessStreamingFromTheHandlerDoesNotWait) {
  FakeImage frame(4, 3, 1, 10);
  device.Deliver(0, &frame);
  std::latch left(1);
  Handler handler([&](const ZynCamera&, const ZynImage&) {
    device.isGrabbing = false;
    thread.StopUnlessStreaming();
    left.count_down();
  });
  thread.Register(&handler);
  thread.Start();
  left.wait();
  thread.Stop();
  EXPECT_EQ(handler.calls, 1);
}

TEST_F(CImageThreadTest, StartsAgainAfterAStop) {
  Handler handler;
  thread.Register(&handler);
  for (int round = 1; round <= 3; ++round) {
    FakeImage frame(4, 3, 1, 10);
    std::latch delivered(1);
    handler.onImage = [&](const ZynCamera&, const ZynImage&) { delivered.count_down(); };
    device.Deliver(0, &frame);
    thread.Start();
    delivered.wait();
    thread.Stop();
    EXPECT_EQ(handler.calls, round);
  }
}

TEST_F(CImageThreadTest, RegisteringEndsADeliveryThatRunsBeforeItReturns) {
  FakeImage frame(4, 3, 1, 10);
  device.Deliver(0, &frame);
  HoldTheFirstWait();
  Handler old;
  Handler next;
  thread.Register(&old);
  thread.Start();
  entered.wait();
  auto change = std::async(std::launch::async, [&] { thread.Register(&next); });
  while (thread.IsRunning()) std::this_thread::yield();
  allowed.count_down();
  change.get();
  EXPECT_FALSE(thread.HasThread());
  EXPECT_EQ(old.calls, 1);  // the frame that its last wait brought
  EXPECT_EQ(next.calls, 0);
}

#ifdef __linux__
TEST_F(CImageThreadTest, WithoutAThreadToBeHadTheCallerLearnsAndTheFlagStays) {
  Handler handler;
  thread.Register(&handler);
  {
    const NoMoreThreads refused;
    try {
      thread.Start();
      ADD_FAILURE() << "no exception";
    } catch (const std::system_error& error) {
      EXPECT_NE(std::string(error.what()).find("thread constructor failed"), std::string::npos)
          << error.what();
      EXPECT_EQ(error.code(), std::errc::resource_unavailable_try_again);
    }
  }
  EXPECT_FALSE(thread.HasThread());
  EXPECT_TRUE(thread.IsRunning());
  thread.Start();
  EXPECT_TRUE(thread.HasThread());
  thread.Stop();
}
#endif

TEST_F(CImageThreadTest, AHandlerThatStopsItsOwnCameraEndsTheDeliveryWithItsReturn) {
  FakeImage frame(4, 3, 1, 10);
  FakeImage next(5, 3, 1, 10);
  next.mayStayOut = true;
  device.Deliver(0, &frame);
  device.Deliver(0, &next);
  std::latch stopped(1);
  Handler handler([&](const ZynCamera&, const ZynImage&) {
    thread.Stop();
    thread.Start();  // does nothing from here
    EXPECT_FALSE(thread.IsRunning());
    stopped.count_down();
  });
  thread.Register(&handler);
  thread.Start();
  stopped.wait();
  thread.Stop();
  EXPECT_EQ(handler.calls, 1);
}

TEST_F(CImageThreadTest, AfterAHandlerStoppedItsOwnCameraItStartsAgain) {
  FakeImage frame(4, 3, 1, 10);
  FakeImage next(5, 3, 1, 10);
  device.Deliver(0, &frame);
  device.Deliver(0, &next);
  std::latch stopped(1);
  std::latch delivered(1);
  Handler handler([&](const ZynCamera&, const ZynImage& image) {
    if (image.Width() == 5) return delivered.count_down();
    thread.Stop();
    stopped.count_down();
  });
  thread.Register(&handler);
  thread.Start();
  stopped.wait();
  thread.Start();
  delivered.wait();
  thread.Stop();
  EXPECT_EQ(handler.calls, 2);
}

TEST_F(CImageThreadTest, AHandlerMayUnregisterItself) {
  FakeImage frame(4, 3, 1, 10);
  device.Deliver(0, &frame);
  std::latch unregistered(1);
  Handler handler([&](const ZynCamera&, const ZynImage&) {
    thread.Register(nullptr);
    unregistered.count_down();
  });
  thread.Register(&handler);
  thread.Start();
  unregistered.wait();
  thread.Stop();
  thread.Start();
  EXPECT_FALSE(thread.HasThread());
  EXPECT_EQ(handler.calls, 1);
}

TEST_F(CImageThreadTest, ItsEndStopsAndJoins) {
  FakeImage frame(4, 3, 1, 10);
  device.Deliver(0, &frame);
  std::atomic<bool> isLeft{false};
  Handler handler([&](const ZynCamera&, const ZynImage&) {
    entered.count_down();
    allowed.wait();
    isLeft = true;
  });
  auto mine = std::make_unique<CImageThread>(camera);
  mine->Register(&handler);
  mine->Start();
  entered.wait();
  auto end = std::async(std::launch::async, [&] {
    mine.reset();
    return isLeft.load();
  });
  allowed.count_down();
  EXPECT_TRUE(end.get());
}

TEST_F(CImageThreadTest, StartingStoppingAndRegisteringFromManyThreadsIsNoHarm) {
  Handler first;
  Handler second;
  std::latch together(3);
  const auto repeat = [&](const std::function<void()>& work) {
    return std::async(std::launch::async, [&together, work] {
      together.arrive_and_wait();
      for (int i = 0; i < 200; ++i) work();
    });
  };
  auto starts = repeat([&] { thread.Start(); });
  auto stops = repeat([&] { thread.Stop(); });
  auto changes = repeat([&, isFirst = false]() mutable {
    isFirst = !isFirst;
    thread.Register(isFirst ? &first : &second);
  });
  starts.get();
  stops.get();
  changes.get();
  thread.Stop();
  EXPECT_FALSE(thread.HasThread());
}

TEST(CImageThreadDeathTest, AnExceptionOfTheHandlerEndsTheProgram) {
  const auto deliver = [] {
    fakes::FakeTransport transport;
    fakes::FakeCameraInfo info;
    fakes::FakeCamera device;
    transport.cameras[&info] = {&device};
    LogicCamera camera(&info);
    camera.Open(nullptr);
    FakeImage frame(4, 3, 1, 10);
    device.Deliver(0, &frame);
    Handler handler([](const ZynCamera&, const ZynImage&) { throw std::runtime_error("from the handler"); });
    camera.RegisterImageHandler(&handler);
    camera.StartGrab(ZYN_GRAB_ONE_BY_ONE, 0);
    std::latch never(1);
    never.wait();
  };
  EXPECT_DEATH(deliver(), "from the handler");
}

TEST(CImageThreadDeathTest, AHandlerMayEndTheProgram) {
  // The camera ends on its own delivery thread then, which cannot wait for itself.
  static LogicCamera* camera = nullptr;
  const auto deliver = [] {
    fakes::FakeTransport transport;
    fakes::FakeCameraInfo info;
    fakes::FakeCamera device;
    device.mayStayMade = true;
    transport.cameras[&info] = {&device};
    camera = new LogicCamera(&info);
    camera->Open(nullptr);
    FakeImage frame(4, 3, 1, 10);
    frame.mayStayOut = true;
    device.Deliver(0, &frame);
    Handler handler([](const ZynCamera&, const ZynImage&) {
      delete camera;
      std::_Exit(7);
    });
    camera->RegisterImageHandler(&handler);
    camera->StartGrab(ZYN_GRAB_ONE_BY_ONE, 0);
    std::latch never(1);
    never.wait();
  };
  EXPECT_EXIT(deliver(), testing::ExitedWithCode(7), "");
}
