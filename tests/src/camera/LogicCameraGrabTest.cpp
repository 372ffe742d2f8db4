#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <latch>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "FakeTransport.h"
#include "Handles.h"
#include "LogicCamera.h"
#include "ZynCamera.h"

using namespace ZYNSDK;
using fakes::FakeChunk;
using fakes::FakeImage;

namespace {

// An open camera whose stream runs.
class LogicCameraGrab : public testing::Test {
 protected:
  LogicCameraGrab() {
    transport.cameras[&info] = {&device};
    camera.Open(nullptr);
    device.isGrabbing = true;
  }
  ~LogicCameraGrab() override {
    device.hook = nullptr;
    camera.Close();
  }

  void ThrowIn(const std::string& where) {
    device.hook = [where](const std::string& call) {
      if (call == where) throw std::runtime_error(where);
    };
  }

  fakes::FakeTransport transport;
  fakes::FakeCameraInfo info;
  fakes::FakeCamera device;
  LogicCamera camera{&info};
  ZynImage image;
  ZynChunkData chunk;
};

class EachFrameCall : public LogicCameraGrab, public testing::WithParamInterface<const char*> {};

struct Translation {
  long from;
  long to;
};

class ErrorCodeTrans : public testing::TestWithParam<Translation> {};

std::vector<Translation> Translations() {
  std::vector<Translation> all;
  const auto add = [&](long first, long last, bool isFolded) {
    for (long code = first; code >= last; --code) all.push_back({code, isFolded ? 101023L : code});
  };
  add(0, 0, false);
  add(-1, -5, true);
  add(-6, -9, false);
  add(-10, -15, true);
  add(-16, -20, false);
  add(-21, -26, true);
  add(-27, -30, false);
  for (long code : {-1000L, 1L, 101010L, 101011L, 101040L, 101050L}) all.push_back({code, code});
  return all;
}

}  // namespace

TEST_P(ErrorCodeTrans, FoldsOrKeeps) {
  EXPECT_EQ(LogicCamera::ErrorCodeTrans(GetParam().from), GetParam().to);
}

INSTANTIATE_TEST_SUITE_P(Table, ErrorCodeTrans, testing::ValuesIn(Translations()), [](const auto& test) {
  const long code = test.param.from;
  return (code < 0 ? "Minus" : "Plus") + std::to_string(code < 0 ? -code : code);
});

TEST(LoopGrab, AGrabMakesExactlyOneAttempt) {
  int attempts = 0;
  EXPECT_EQ(LogicCamera::LoopGrab([&](long& result) {
              ++attempts;
              EXPECT_EQ(result, 0);
              result = -7;
              return false;
            }),
            -7);
  EXPECT_EQ(attempts, 1);
}

TEST(LoopGrab, AnEmptyAttemptIsABadCall) {
  EXPECT_THROW(LogicCamera::LoopGrab(nullptr), std::bad_function_call);
}

TEST_F(LogicCameraGrab, DeliversACopyOfTheFrameAndReleasesIt) {
  FakeImage frame(4, 3, 1, 10);
  device.Deliver(0, &frame);
  EXPECT_EQ(camera.Grab(&image, nullptr), ZYN_OK);
  EXPECT_EQ(image.Width(), 4);
  EXPECT_EQ(image.Height(), 3);
  EXPECT_EQ(image.Step(), 10);
  EXPECT_EQ(image.Channels(), 1);
  EXPECT_EQ(image.BitDepth(), 0);
  EXPECT_EQ(std::vector<unsigned char>(image.ImageData(), image.ImageData() + 30), frame.Bytes());
  EXPECT_EQ(frame.Releases(), 1);
  EXPECT_EQ(frame.calls.Names().back(), "Release");
}

TEST_F(LogicCameraGrab, TheImageHeldBeforeIsReleasedOnSuccessAndKeptOnFailure) {
  FakeImage first(4, 3, 1, 10);
  device.Deliver(0, &first);
  camera.Grab(&image, nullptr);
  const ZynImage kept(image);
  EXPECT_EQ(camera.Grab(&image, nullptr), ZYN_ERROR_GRAB_FAILED);
  EXPECT_EQ(image.ImageData(), kept.ImageData());
  FakeImage next(2, 1, 1, 2);
  device.Deliver(0, &next);
  EXPECT_EQ(camera.Grab(&image, nullptr), ZYN_OK);
  EXPECT_EQ(image.Width(), 2);
  EXPECT_EQ(kept.Width(), 4);
}

TEST_F(LogicCameraGrab, NullImageIsRefusedBeforeAnything) {
  device.calls.Clear();
  EXPECT_EQ(camera.Grab(nullptr, &chunk), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_TRUE(device.calls.Names().empty());
}

TEST_F(LogicCameraGrab, WithoutAChunkContainerNobodyAsksForChunks) {
  FakeImage frame(4, 3, 1, 10);
  device.Deliver(0, &frame);
  EXPECT_EQ(camera.Grab(&image, nullptr), ZYN_OK);
  EXPECT_EQ(frame.calls.Count("Chunks"), 0);
}

TEST_F(LogicCameraGrab, CopiesTheFirstChunkOnly) {
  FakeImage frame(4, 3, 1, 10);
  FakeChunk first({1, 2, 3});
  FakeChunk second({9});
  frame.chunks = {&first, &second};
  device.Deliver(0, &frame);
  EXPECT_EQ(camera.Grab(&image, &chunk), ZYN_OK);
  ASSERT_EQ(chunk.getLength(), 3U);
  EXPECT_EQ(chunk[2], 3);
  EXPECT_NE(chunk.getData(), first.Data());
}

TEST_F(LogicCameraGrab, AFrameWithoutChunksLeavesTheContainerAlone) {
  FakeImage frame(4, 3, 1, 10);
  device.Deliver(0, &frame);
  const unsigned char byte = 5;
  chunk.setData(1, &byte);
  EXPECT_EQ(camera.Grab(&image, &chunk), ZYN_OK);
  EXPECT_EQ(chunk.getLength(), 1U);
}

TEST_F(LogicCameraGrab, AChunkWithoutDataLeavesTheContainerAlone) {
  FakeImage frame(4, 3, 1, 10);
  FakeChunk null({1, 2});
  null.isNull = true;
  frame.chunks = {&null};
  device.Deliver(0, &frame);
  const unsigned char byte = 5;
  chunk.setData(1, &byte);
  EXPECT_EQ(camera.Grab(&image, &chunk), ZYN_OK);
  EXPECT_EQ(chunk.getLength(), 1U);
}

TEST_F(LogicCameraGrab, AMissingOrEmptyFirstChunkLeavesTheContainerAlone) {
  FakeChunk empty(std::vector<unsigned char>{});
  FakeChunk second({9, 9});
  const unsigned char byte = 5;
  for (FakeChunk* first : {static_cast<FakeChunk*>(nullptr), &empty}) {
    FakeImage frame(4, 3, 1, 10);
    frame.chunks = {first, &second};
    device.Deliver(0, &frame);
    chunk.setData(1, &byte);
    EXPECT_EQ(camera.Grab(&image, &chunk), ZYN_OK);
    EXPECT_EQ(chunk.getLength(), 1U);
  }
}

TEST_F(LogicCameraGrab, ResultsPassTheTranslation) {
  device.grabResult = -7;
  EXPECT_EQ(camera.Grab(&image, nullptr), -7);
  device.grabResult = -3;
  EXPECT_EQ(camera.Grab(&image, nullptr), ZYN_ERROR_GRAB_FAILED);
}

TEST_F(LogicCameraGrab, SuccessWithoutAFrameIsNoFrame) {
  device.Deliver(0, nullptr);
  EXPECT_EQ(camera.Grab(&image, nullptr), ZYN_ERROR_NO_FRAME);
}

TEST_F(LogicCameraGrab, AnInvalidFrameIsReleasedAndReported) {
  FakeImage frame(4, 3, 1, 10);
  frame.isValid = false;
  device.Deliver(0, &frame);
  EXPECT_EQ(camera.Grab(&image, nullptr), ZYN_ERROR_INVALID_FRAME);
  EXPECT_EQ(image.ImageData(), nullptr);
  EXPECT_EQ(frame.Releases(), 1);
}

TEST_F(LogicCameraGrab, AFrameHandedOutWithAFailureIsReleasedWhileTheStreamRuns) {
  FakeImage frame(4, 3, 1, 10);
  device.Deliver(-14, &frame);
  EXPECT_EQ(camera.Grab(&image, nullptr), ZYN_ERROR_GRAB_FAILED);
  EXPECT_EQ(frame.Releases(), 1);
}

TEST_F(LogicCameraGrab, AFrameHandedOutWithAFailureIsLeftAloneOnceTheStreamStopped) {
  FakeImage frame(4, 3, 1, 10);
  frame.mayStayOut = true;
  device.Deliver(-2, &frame);
  device.hook = [this](const std::string& call) {
    if (call == "Grab") device.isGrabbing = false;
  };
  EXPECT_EQ(camera.Grab(&image, nullptr), ZYN_ERROR_GRAB_FAILED);
  EXPECT_EQ(frame.Releases(), 0);
}

TEST_F(LogicCameraGrab, AnExceptionInTheWaitIsACode) {
  ThrowIn("Grab");
  EXPECT_EQ(camera.Grab(&image, nullptr), ZYN_ERROR_EXCEPTION);
}

TEST_F(LogicCameraGrab, AFrameWhoseReleaseThrowsIsACodeToo) {
  FakeImage frame(4, 3, 1, 10);
  frame.throwsOnRelease = true;
  device.Deliver(0, &frame);
  EXPECT_EQ(camera.Grab(&image, nullptr), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(frame.Releases(), 1);
}

TEST_F(LogicCameraGrab, AFrameWhoseChunksAndReleaseThrowIsOneCodeAndOneRelease) {
  FakeImage frame(4, 3, 1, 10);
  frame.throwsOnChunks = true;
  frame.throwsOnRelease = true;
  device.Deliver(0, &frame);
  EXPECT_EQ(camera.Grab(&image, &chunk), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(frame.Releases(), 1);
}

TEST_P(EachFrameCall, ThatThrowsIsACodeAndTheFrameIsReleasedOnce) {
  FakeImage first(2, 1, 1, 2);
  device.Deliver(0, &first);
  ASSERT_EQ(camera.Grab(&image, nullptr), ZYN_OK);
  FakeImage frame(4, 3, 1, 10);
  frame.hook = [](const std::string& call) {
    if (call == GetParam()) throw 42;
  };
  device.Deliver(0, &frame);
  EXPECT_EQ(camera.Grab(&image, &chunk), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(frame.Releases(), 1);
  const bool comesAfterTheImage = std::string(GetParam()) == "Chunks";
  EXPECT_EQ(image.Width(), comesAfterTheImage ? 4 : 2);
  EXPECT_EQ(chunk.getLength(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Table, EachFrameCall,
                         testing::Values("IsValid", "Height", "Width", "Channels", "Step", "Chunks"),
                         [](const auto& test) { return std::string(test.param); });

TEST_F(LogicCameraGrab, AFrameWithoutPixelsStillGivesAnImageOfItsShape) {
  FakeImage frame(4, 3, 1, 10);
  frame.throwsOnData = true;
  device.Deliver(0, &frame);
  EXPECT_EQ(camera.Grab(&image, nullptr), ZYN_OK);
  EXPECT_EQ(image.Width(), 4);
  EXPECT_NE(image.ImageData(), nullptr);
}

TEST_F(LogicCameraGrab, TimeoutIsFiveSecondsUntilSet) {
  camera.Grab(&image, nullptr);
  EXPECT_EQ(device.timeoutMs, 5000);
  EXPECT_EQ(camera.SetGrabTimeout(0), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(camera.SetGrabTimeout(-1), ZYN_ERROR_INVALID_ARGUMENT);
  camera.Grab(&image, nullptr);
  EXPECT_EQ(device.timeoutMs, 5000);
  EXPECT_EQ(camera.SetGrabTimeout(1), ZYN_OK);
  camera.Grab(&image, nullptr);
  EXPECT_EQ(device.timeoutMs, 1);
}

TEST_F(LogicCameraGrab, TimeoutOfAClosedCameraIsRefusedFirst) {
  LogicCamera closed(&info);
  EXPECT_EQ(closed.SetGrabTimeout(0), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(closed.SetGrabTimeout(100), ZYN_ERROR_NOT_OPEN);
}

TEST_F(LogicCameraGrab, AfterStoppingThereIsNothingToGrab) {
  EXPECT_EQ(camera.StopGrab(), ZYN_OK);
  EXPECT_EQ(camera.Grab(&image, nullptr), ZYN_ERROR_NOT_GRABBING);
  camera.Close();
  EXPECT_EQ(camera.Grab(&image, nullptr), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(camera.StopGrab(), ZYN_ERROR_NOT_GRABBING);
}

TEST_F(LogicCameraGrab, StartPassesStrategyAndCountUnchanged) {
  EXPECT_EQ(camera.StartGrab(ZYN_GRAB_LATEST, 3), ZYN_ERROR_ALREADY_GRABBING);
  camera.StopGrab();
  EXPECT_EQ(camera.StartGrab(ZYN_GRAB_UPCOMING_IMAGE, 3), ZYN_OK);
  EXPECT_EQ(device.strategy, KELGENICAM::GRAB_UPCOMING_IMAGE);
  EXPECT_EQ(device.count, 3);
}

TEST_F(LogicCameraGrab, AStrategyOrCountThatMeansNothingPassesUnchangedToo) {
  // Only an enumeration with a fixed type can hold any number; without one the conversion is undefined.
  static_assert(std::is_same_v<std::underlying_type_t<KELGENICAM::GRAB_STRATEGY>, int>);
  static_assert(std::is_same_v<std::underlying_type_t<KELGENICAM::NOTIFY_SRC>, int>);
  static_assert(std::is_same_v<std::underlying_type_t<KELGENICAM::NOTIFY_TYPE>, int>);
  camera.StopGrab();
  EXPECT_EQ(camera.StartGrab(static_cast<ZynGrabStrategy>(7), 1), ZYN_OK);
  EXPECT_EQ(static_cast<int>(device.strategy), 7);
  camera.StopGrab();
  EXPECT_EQ(camera.StartGrab(static_cast<ZynGrabStrategy>(-1), -5), ZYN_OK);
  EXPECT_EQ(static_cast<int>(device.strategy), -1);
  EXPECT_EQ(device.count, -5);
}

TEST_F(LogicCameraGrab, ExceptionsInStartAndStopAreCodes) {
  ThrowIn("StopGrabbing");
  EXPECT_EQ(camera.StopGrab(), ZYN_ERROR_EXCEPTION);
  device.isGrabbing = false;
  ThrowIn("StartGrabbing");
  EXPECT_EQ(camera.StartGrab(ZYN_GRAB_LATEST, 0), ZYN_ERROR_EXCEPTION);
}

TEST_F(LogicCameraGrab, CloseDuringGrabReturnsAtOnce) {
  std::latch entered(1);
  std::latch allowed(1);
  device.hook = [&](const std::string& call) {
    if (call != "Grab") return;
    entered.count_down();
    allowed.wait();
  };
  FakeImage frame(4, 3, 1, 10);
  device.Deliver(0, &frame);
  auto grab = std::async(std::launch::async, [&] { return camera.Grab(&image, nullptr); });
  entered.wait();
  EXPECT_EQ(camera.Close(), ZYN_OK);
  allowed.count_down();
  EXPECT_EQ(grab.get(), ZYN_OK);  // the frame outlives the camera
  EXPECT_EQ(image.Width(), 4);
  EXPECT_EQ(frame.Releases(), 1);
  EXPECT_EQ(device.Releases(), 1);
}

TEST_F(LogicCameraGrab, AReleaseOfTheCameraThatThrowsAfterTheWaitIsACode) {
  // Close during the wait makes the grab the last borrower, whose give-back throws; the stream counts as stopped,
  // so the frame belongs to the transport again.
  FakeImage frame(4, 3, 1, 10);
  frame.mayStayOut = true;
  device.Deliver(0, &frame);
  device.hook = [this](const std::string& call) {
    if (call == "Grab") camera.Close();
    if (call == "Release") throw std::runtime_error("release failed");
  };
  EXPECT_EQ(camera.Grab(&image, nullptr), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(frame.Releases(), 0);
}
