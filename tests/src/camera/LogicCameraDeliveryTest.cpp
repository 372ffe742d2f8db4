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
#include <utility>
#include <vector>

#include "FakeTransport.h"
#include "LogicCamera.h"
#include "ProcessUsage.h"
#include "ZynCamera.h"

using namespace ZYNSDK;
using fakes::FakeImage;

namespace {

class Handler : public IImageHandler {
 public:
  Handler() = default;
  explicit Handler(std::function<void()> work) : onImage(std::move(work)) {}
  void OnImage(ZynCamera /*camera*/, ZynImage& /*image*/) override {
    ++calls;
    if (onImage) onImage();
  }
  std::atomic<int> calls{0};
  std::function<void()> onImage;
};

/// Raises its flag when the thread that set it ends.
struct EndOfThread {
  ~EndOfThread() {
    if (flag) *flag = true;
  }
  std::atomic<bool>* flag = nullptr;
};
thread_local EndOfThread endOfThisThread;

std::size_t Threads() {
  return zyntest::CurrentUsage().threads;
}

// An open camera whose stream does not run.
class LogicCameraDelivery : public testing::Test {
 protected:
  LogicCameraDelivery() {
    transport.cameras[&info] = {&device};
    camera.Open(nullptr);
  }
  ~LogicCameraDelivery() override {
    camera.RegisterImageHandler(nullptr);
    device.hook = nullptr;
    camera.StopGrab();
    camera.Close();
  }

  long Start() { return camera.StartGrab(ZYN_GRAB_ONE_BY_ONE, 0); }

  /// Delivers one frame to the handler, which must be the one that is served, and waits until it has it.
  void DeliverTo(Handler& handler) {
    std::latch delivered(1);
    handler.onImage = [&] { delivered.count_down(); };
    FakeImage frame(4, 3, 1, 10);
    device.Deliver(0, &frame);
    EXPECT_EQ(Start(), ZYN_OK);
    delivered.wait();
    EXPECT_EQ(camera.StopGrab(), ZYN_OK);
    handler.onImage = nullptr;
  }

  fakes::FakeTransport transport;
  fakes::FakeCameraInfo info;
  fakes::FakeCamera device;
  LogicCamera camera{&info};
  ZynImage image;
};

}  // namespace

TEST_F(LogicCameraDelivery, RegisteringAndUnregisteringSucceedsInEveryState) {
  Handler handler;
  EXPECT_EQ(camera.RegisterImageHandler(&handler), ZYN_OK);
  EXPECT_EQ(camera.RegisterImageHandler(nullptr), ZYN_OK);
  EXPECT_EQ(Start(), ZYN_OK);
  EXPECT_EQ(camera.RegisterImageHandler(&handler), ZYN_OK);
  LogicCamera closed(&info);
  EXPECT_EQ(closed.RegisterImageHandler(&handler), ZYN_OK);
}

TEST_F(LogicCameraDelivery, WithoutAHandlerStartingMakesNoThreadAndGrabWorksAsUsual) {
  const std::size_t before = Threads();
  EXPECT_EQ(Start(), ZYN_OK);
  EXPECT_LE(Threads(), before);
  FakeImage frame(4, 3, 1, 10);
  device.Deliver(0, &frame);
  EXPECT_EQ(camera.Grab(&image, nullptr), ZYN_OK);
  EXPECT_EQ(device.calls.Count("Grab"), 1);
}

TEST_F(LogicCameraDelivery, AHandlerReceivesImagesFromStartToStop) {
  Handler handler;
  camera.RegisterImageHandler(&handler);
  DeliverTo(handler);
  EXPECT_EQ(handler.calls, 1);
  const int grabs = device.calls.Count("Grab");
  FakeImage late(4, 3, 1, 10);
  device.Deliver(0, &late);
  EXPECT_EQ(device.calls.Count("Grab"), grabs);
  EXPECT_EQ(handler.calls, 1);
}

TEST_F(LogicCameraDelivery, AStartThatFailsMakesNoThread) {
  Handler handler;
  camera.RegisterImageHandler(&handler);
  const std::size_t before = Threads();
  device.startResult = -3;
  EXPECT_EQ(Start(), -3);
  EXPECT_LE(Threads(), before);
  device.startResult = 0;
  device.comesUp = false;
  EXPECT_EQ(Start(), ZYN_ERROR_START_FAILED);
  EXPECT_LE(Threads(), before);
  device.hook = [](const std::string& call) {
    if (call == "StartGrabbing") throw 42;
  };
  EXPECT_EQ(Start(), ZYN_ERROR_EXCEPTION);
  EXPECT_LE(Threads(), before);
}

TEST_F(LogicCameraDelivery, ASecondStartIsRefusedAndOneThatTheDeviceAcceptsMakesNoSecondThread) {
  Handler handler;
  camera.RegisterImageHandler(&handler);
  const std::size_t before = Threads();
  EXPECT_EQ(Start(), ZYN_OK);
  EXPECT_EQ(Start(), ZYN_ERROR_ALREADY_GRABBING);
  device.isGrabbing = false;  // a stream that ended by itself
  EXPECT_EQ(Start(), ZYN_OK);
  EXPECT_LE(Threads(), before + 1);
  EXPECT_EQ(camera.StopGrab(), ZYN_OK);
}

TEST_F(LogicCameraDelivery, RegisteringWhileStreamingDeliversOnlyAfterTheNextStart) {
  const std::size_t before = Threads();
  EXPECT_EQ(Start(), ZYN_OK);
  Handler handler;
  camera.RegisterImageHandler(&handler);
  EXPECT_LE(Threads(), before);
  EXPECT_EQ(Start(), ZYN_ERROR_ALREADY_GRABBING);
  EXPECT_LE(Threads(), before);
  EXPECT_TRUE(camera.IsGrabbing());
  EXPECT_EQ(handler.calls, 0);
  EXPECT_EQ(camera.StopGrab(), ZYN_OK);
  DeliverTo(handler);
  EXPECT_EQ(handler.calls, 1);
}

TEST_F(LogicCameraDelivery, ChangingTheHandlerWhileStreamingServesNeitherUntilTheNextStart) {
  Handler old;
  Handler next;
  camera.RegisterImageHandler(&old);
  EXPECT_EQ(Start(), ZYN_OK);
  camera.RegisterImageHandler(&next);
  FakeImage frame(4, 3, 1, 10);
  device.Deliver(0, &frame);
  EXPECT_TRUE(camera.IsGrabbing());
  EXPECT_EQ(camera.Grab(&image, nullptr), ZYN_OK);  // nobody took the frame
  EXPECT_EQ(camera.StopGrab(), ZYN_OK);
  DeliverTo(next);
  EXPECT_EQ(old.calls, 0);
  EXPECT_EQ(next.calls, 1);
}

TEST_F(LogicCameraDelivery, AnUnregisteredHandlerIsNeverCalledAgain) {
  auto handler = std::make_unique<Handler>();
  camera.RegisterImageHandler(handler.get());
  DeliverTo(*handler);
  camera.RegisterImageHandler(nullptr);
  handler.reset();
  FakeImage frame(4, 3, 1, 10);
  device.Deliver(0, &frame);
  EXPECT_EQ(Start(), ZYN_OK);
  EXPECT_EQ(camera.Grab(&image, nullptr), ZYN_OK);
}

TEST_F(LogicCameraDelivery, StopEndsTheDeliveryBeforeTheStream) {
  std::atomic<bool> hasEnded{false};
  bool hadEnded = false;
  std::latch entered(1);
  device.hook = [&](const std::string& call) {
    if (call == "StopGrabbing") hadEnded = hasEnded;
    if (call != "Grab") return;
    endOfThisThread.flag = &hasEnded;
    if (!entered.try_wait()) entered.count_down();
  };
  Handler handler;
  camera.RegisterImageHandler(&handler);
  EXPECT_EQ(Start(), ZYN_OK);
  entered.wait();
  EXPECT_EQ(camera.StopGrab(), ZYN_OK);
  device.hook = nullptr;
  EXPECT_EQ(device.calls.Count("StopGrabbing"), 1);
  EXPECT_TRUE(hadEnded);
}

TEST_F(LogicCameraDelivery, AStopThatFailsHasEndedTheDeliveryNevertheless) {
  Handler handler;
  camera.RegisterImageHandler(&handler);
  const std::size_t before = Threads();
  EXPECT_EQ(Start(), ZYN_OK);
  device.hook = nullptr;
  camera.RegisterImageHandler(&handler);  // the hook changes while nobody calls the device
  device.isGrabbing = false;
  device.hook = [](const std::string& call) {
    if (call == "StopGrabbing") throw 42;
  };
  EXPECT_EQ(Start(), ZYN_OK);
  EXPECT_EQ(camera.StopGrab(), ZYN_ERROR_EXCEPTION);
  const int grabs = device.calls.Count("Grab");
  EXPECT_LE(Threads(), before + 1);  // one that was just joined may still be counted
  EXPECT_TRUE(camera.IsGrabbing());
  FakeImage frame(4, 3, 1, 10);
  device.Deliver(0, &frame);
  EXPECT_EQ(camera.Grab(&image, nullptr), ZYN_OK);
  EXPECT_EQ(device.calls.Count("Grab"), grabs + 1);
  EXPECT_EQ(handler.calls, 0);
}

TEST_F(LogicCameraDelivery, TwoThreadsMayStopAtOnce) {
  Handler handler;
  camera.RegisterImageHandler(&handler);
  for (int round = 0; round < 50; ++round) {
    EXPECT_EQ(Start(), ZYN_OK);
    std::latch together(2);
    auto stop = [&] {
      together.arrive_and_wait();
      return camera.StopGrab();
    };
    auto other = std::async(std::launch::async, stop);
    EXPECT_EQ(stop(), ZYN_OK);
    EXPECT_EQ(other.get(), ZYN_OK);
  }
}

// The whole stop falls between the start of the stream and that of the delivery.
TEST_F(LogicCameraDelivery, AStopRightBehindTheStartOfTheStreamLeavesNoThread) {
  Handler handler;
  camera.RegisterImageHandler(&handler);
  const std::size_t before = Threads();
  // The second question is the start's own, whether the stream came up.
  device.afterIsGrabbing = [this, questions = 0]() mutable {
    if (++questions != 2) return;
    EXPECT_EQ(camera.StopGrab(), ZYN_OK);
  };
  EXPECT_EQ(Start(), ZYN_OK);
  EXPECT_LE(Threads(), before);
  EXPECT_FALSE(camera.IsGrabbing());
  device.afterIsGrabbing = nullptr;
  DeliverTo(handler);
}

// The delivery starts between the two halves of a stop.
TEST_F(LogicCameraDelivery, AStartInTheMiddleOfAStopLeavesNoThread) {
  Handler handler;
  camera.RegisterImageHandler(&handler);
  const std::size_t before = Threads();
  std::latch cameUp(1);
  std::latch stopping(1);
  device.afterIsGrabbing = [&, questions = std::make_shared<std::atomic<int>>(0)] {
    if (++*questions != 2) return;
    cameUp.count_down();
    stopping.wait();
  };
  auto start = std::async(std::launch::async, [&] { return Start(); });
  cameUp.wait();
  device.hook = [&](const std::string& call) {
    if (call != "StopGrabbing") return;
    stopping.count_down();
    EXPECT_EQ(start.get(), ZYN_OK);
  };
  EXPECT_EQ(camera.StopGrab(), ZYN_OK);
  EXPECT_FALSE(camera.IsGrabbing());
  while (Threads() > before) std::this_thread::yield();  // forever, when one is left
  device.hook = nullptr;
  device.afterIsGrabbing = nullptr;
  DeliverTo(handler);
}

TEST_F(LogicCameraDelivery, StartingAndStoppingFromManyThreadsEndsWithoutAThread) {
  Handler handler;
  camera.RegisterImageHandler(&handler);
  const std::size_t before = Threads();
  std::latch together(4);
  std::vector<std::future<void>> calls;
  for (int i = 0; i < 4; ++i) {
    calls.push_back(std::async(std::launch::async, [&, isStarting = i % 2 == 0] {
      together.arrive_and_wait();
      for (int round = 0; round < 200; ++round) {
        if (isStarting) {
          const long status = Start();
          EXPECT_TRUE(status == ZYN_OK || status == ZYN_ERROR_ALREADY_GRABBING ||
                      status == ZYN_ERROR_START_FAILED);
        } else {
          EXPECT_EQ(camera.StopGrab(), ZYN_OK);
        }
      }
    }));
  }
  for (auto& call : calls) call.get();
  EXPECT_EQ(camera.StopGrab(), ZYN_OK);
  while (Threads() > before) std::this_thread::yield();  // forever, when one is left
  DeliverTo(handler);
}

TEST_F(LogicCameraDelivery, AHandlerMayUseTheCamera) {
  Handler handler;
  long status = -1;
  int timeout = 0;
  FakeImage second(5, 3, 1, 10);
  std::latch done(1);
  handler.onImage = [&] {
    status = camera.Grab(&image, nullptr);
    camera.SetGrabTimeout(99);
    timeout = camera.IsGrabbing() ? 99 : 0;
    done.count_down();
  };
  FakeImage first(4, 3, 1, 10);
  device.Deliver(0, &first);
  device.Deliver(0, &second);
  camera.RegisterImageHandler(&handler);
  EXPECT_EQ(Start(), ZYN_OK);
  done.wait();
  EXPECT_EQ(camera.StopGrab(), ZYN_OK);
  EXPECT_EQ(status, ZYN_OK);
  EXPECT_EQ(image.Width(), 5);
  EXPECT_EQ(timeout, 99);
}

TEST_F(LogicCameraDelivery, AHandlerThatStopsTheCameraDoesNotHang) {
  Handler handler;
  std::latch done(1);
  long status = -1;
  handler.onImage = [&] {
    status = camera.StopGrab();
    done.count_down();
  };
  FakeImage frame(4, 3, 1, 10);
  device.Deliver(0, &frame);
  camera.RegisterImageHandler(&handler);
  EXPECT_EQ(Start(), ZYN_OK);
  done.wait();
  EXPECT_EQ(status, ZYN_OK);
  EXPECT_FALSE(camera.IsGrabbing());
  EXPECT_EQ(handler.calls, 1);
  DeliverTo(handler);
  EXPECT_EQ(handler.calls, 2);
}

TEST_F(LogicCameraDelivery, ClosingDoesNotWaitForTheDelivery) {
  std::latch entered(1);
  std::latch allowed(1);
  Handler handler([&] {
    entered.count_down();
    allowed.wait();
  });
  FakeImage frame(4, 3, 1, 10);
  device.Deliver(0, &frame);
  camera.RegisterImageHandler(&handler);
  EXPECT_EQ(Start(), ZYN_OK);
  entered.wait();
  EXPECT_EQ(camera.Close(), ZYN_OK);
  allowed.count_down();
  EXPECT_EQ(camera.StopGrab(), ZYN_ERROR_NOT_GRABBING);
  EXPECT_EQ(handler.calls, 1);
}

TEST_F(LogicCameraDelivery, ClosingDuringTheWaitForAFrameStillDeliversItAndTheThreadReleasesTheDevice) {
  std::latch entered(1);
  std::latch allowed(1);
  std::latch delivered(1);
  device.hook = [&](const std::string& call) {
    if (call != "Grab") return;
    entered.count_down();
    allowed.wait();
  };
  Handler handler([&] { delivered.count_down(); });
  FakeImage frame(4, 3, 1, 10);
  device.Deliver(0, &frame);
  camera.RegisterImageHandler(&handler);
  EXPECT_EQ(Start(), ZYN_OK);
  entered.wait();
  EXPECT_EQ(camera.Close(), ZYN_OK);  // would hang if it waited for the frame
  EXPECT_FALSE(camera.IsOpen());
  EXPECT_EQ(device.Releases(), 0);
  allowed.count_down();
  delivered.wait();
  EXPECT_EQ(camera.StopGrab(), ZYN_ERROR_NOT_GRABBING);
  EXPECT_EQ(handler.calls, 1);
  EXPECT_EQ(device.calls.Count("Close"), 0);
  EXPECT_EQ(device.Releases(), 1);
  EXPECT_EQ(device.calls.Count("Grab"), 1);  // a closed camera is not asked again
}

#ifdef __linux__
TEST_F(LogicCameraDelivery, AThreadThatTheSystemRefusesIsAnExceptionAndTheStreamRuns) {
  Handler handler;
  camera.RegisterImageHandler(&handler);
  pthread_attr_t usual;
  pthread_getattr_default_np(&usual);
  pthread_attr_t huge;
  pthread_attr_init(&huge);
  pthread_attr_setstacksize(&huge, std::size_t{1} << 60);  // no stack of that size can be had
  pthread_setattr_default_np(&huge);
  EXPECT_THROW(Start(), std::system_error);
  pthread_setattr_default_np(&usual);
  pthread_attr_destroy(&huge);
  pthread_attr_destroy(&usual);
  EXPECT_TRUE(camera.IsGrabbing());
  EXPECT_EQ(device.calls.Count("Grab"), 0);
  EXPECT_EQ(camera.StopGrab(), ZYN_OK);
  DeliverTo(handler);
}
#endif

TEST(LogicCameraEndTest, StopsAndJoinsTheDeliveryBeforeAnythingElseEnds) {
  fakes::FakeTransport transport;
  fakes::FakeCameraInfo info;
  fakes::FakeCamera device;
  transport.cameras[&info] = {&device};
  auto camera = std::make_unique<LogicCamera>(&info);
  camera->Open(nullptr);
  std::latch entered(1);
  std::latch allowed(1);
  std::atomic<bool> isLeft{false};
  long inside = -1;
  ZynImage image;
  Handler handler([&, raw = camera.get()] {
    entered.count_down();
    allowed.wait();
    // Everything that a handler may ask is still there.
    inside = raw->SetGrabTimeout(5);
    ZynNode node;
    raw->GetRemoteNode("Width", &node);
    isLeft = true;
  });
  FakeImage frame(4, 3, 1, 10);
  device.Deliver(0, &frame);
  camera->RegisterImageHandler(&handler);
  EXPECT_EQ(camera->StartGrab(ZYN_GRAB_ONE_BY_ONE, 0), ZYN_OK);
  entered.wait();
  camera->Close();
  auto end = std::async(std::launch::async, [&] {
    camera.reset();
    return isLeft.load();
  });
  allowed.count_down();
  EXPECT_TRUE(end.get());
  EXPECT_EQ(inside, ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(handler.calls, 1);
}
