#include <ZynCamera.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <future>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "Chain.h"
#include "FakeGigeCamera.h"

namespace {

using ZYNSDK::ZynCamera;
using zyntest::FakeGigeCamera;

using Event = std::pair<std::string, int>;  // serial number and type

/// Keeps all events, and waits for one.
class Recorder : public ZYNSDK::ICameraEventHandler {
 public:
  void OnCameraEvent(ZynCamera camera, ZYNSDK::ZynCameraEventType type) override {
    const std::unique_ptr<ZYNSDK::ZynCameraAttribute> attribute(camera.Attribute());
    const std::lock_guard lock(mutex_);
    events_.emplace_back(attribute->CameraSerialNumber(), type);
    changed_.notify_all();
  }
  void WaitFor(const Event& event) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return std::find(events_.begin(), events_.end(), event) != events_.end(); });
  }
  std::vector<Event> Of(const std::string& serial) {
    const std::lock_guard lock(mutex_);
    std::vector<Event> events;
    std::copy_if(events_.begin(), events_.end(), std::back_inserter(events),
                 [&](const Event& event) { return event.first == serial; });
    return events;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<Event> events_;
};

/// Grabs until told to stop. Every pixel of the camera's test pattern grows by 1 from frame to frame, modulo 255, so a
/// frame that is missing shows. Returns how many came.
int GrabWithoutALoss(ZynCamera camera, const std::atomic<bool>& isDone) {
  constexpr int kPatternPeriod = 255;
  ZYNSDK::ZynImage image;
  int previous = -1;
  int frames = 0;
  for (; !isDone; ++frames) {
    const long status = camera.GrabImage(&image, nullptr);
    EXPECT_EQ(status, 0) << "frame " << frames;
    if (status != 0) break;
    const int pixel = image.ImageData()[0];
    if (previous >= 0 && pixel != (previous + 1) % kPatternPeriod) {
      ADD_FAILURE() << "frame " << frames << " follows " << previous << " with " << pixel;
      break;
    }
    previous = pixel;
  }
  return frames;
}

TEST(Events, ACameraThatComesAndGoesIsReportedOnceEachWhileAnotherStreamsWithoutALoss) {
  const FakeGigeCamera streaming(1);
  ZynCamera camera = chain::Find("GV01");
  ASSERT_EQ(camera.Open(nullptr), 0);
  chain::SetInt(camera, "Width", 320);
  chain::SetInt(camera, "Height", 240);
  chain::SetFloat(camera, "AcquisitionFrameRate", 100.0F);
  chain::SetFloat(camera, "ExposureTime", 10000.0F);
  ASSERT_EQ(camera.StartGrab(ZYNSDK::ZYN_GRAB_ONE_BY_ONE, 0), 0);
  std::atomic<bool> isDone{false};
  auto grabbing = std::async(std::launch::async, [&] { return GrabWithoutALoss(camera, isDone); });

  Recorder recorder;
  ASSERT_EQ(ZYNSDK::RegisterCameraEventHandler(&recorder), 0);
  recorder.WaitFor({"GV01", ZYNSDK::ZYN_CAMERA_APPEARED});
  FakeGigeCamera other(2);
  recorder.WaitFor({"GV02", ZYNSDK::ZYN_CAMERA_APPEARED});
  other.Kill();
  recorder.WaitFor({"GV02", ZYNSDK::ZYN_CAMERA_GONE});
  const FakeGigeCamera last(3);  // when it is reported, a search has come behind that of GV02
  recorder.WaitFor({"GV03", ZYNSDK::ZYN_CAMERA_APPEARED});
  EXPECT_EQ(ZYNSDK::RegisterCameraEventHandler(nullptr), 0);

  isDone = true;
  EXPECT_GT(grabbing.get(), 100);
  EXPECT_EQ(recorder.Of("GV02"), (std::vector<Event>{{"GV02", 1}, {"GV02", 2}}));
  EXPECT_EQ(recorder.Of("GV01"), (std::vector<Event>{{"GV01", 1}})) << "an open camera is still there";
  EXPECT_EQ(camera.StopGrab(), 0);
  EXPECT_EQ(camera.Close(), 0);
}

TEST(Events, ACameraThatWasReportedGoneWorksUnderTheSameHandleWhenItIsBack) {
  class Keeper : public Recorder {
   public:
    void OnCameraEvent(ZynCamera camera, ZYNSDK::ZynCameraEventType type) override {
      if (type == ZYNSDK::ZYN_CAMERA_GONE) kept = camera;
      Recorder::OnCameraEvent(camera, type);
    }
    ZynCamera kept;
  };
  FakeGigeCamera fake(1);
  Keeper keeper;
  ASSERT_EQ(ZYNSDK::RegisterCameraEventHandler(&keeper), 0);
  keeper.WaitFor({"GV01", ZYNSDK::ZYN_CAMERA_APPEARED});
  fake.Kill();
  keeper.WaitFor({"GV01", ZYNSDK::ZYN_CAMERA_GONE});
  EXPECT_EQ(ZYNSDK::RegisterCameraEventHandler(nullptr), 0);
  fake.Start();
  EXPECT_TRUE(chain::IsListed("GV01"));
  EXPECT_EQ(keeper.kept.Open(nullptr), 0);
  EXPECT_EQ(keeper.kept.Close(), 0);
}

TEST(Events, AProcessMayExitWithAHandlerRegistered) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const FakeGigeCamera fake(1);
  EXPECT_EXIT(
      {
        auto* recorder = new Recorder;  // outlives the library
        ZYNSDK::RegisterCameraEventHandler(recorder);
        recorder->WaitFor({"GV01", ZYNSDK::ZYN_CAMERA_APPEARED});
        std::exit(0);  // NOLINT(concurrency-mt-unsafe): that is what is tested
      },
      testing::ExitedWithCode(0), "");
}

TEST(Events, AHandlerMayExitTheProcess) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const FakeGigeCamera fake(1);
  class Exiter : public ZYNSDK::ICameraEventHandler {
   public:
    void OnCameraEvent(ZynCamera, ZYNSDK::ZynCameraEventType) override {
      std::exit(7);  // NOLINT(concurrency-mt-unsafe): that is what is tested
    }
  };
  EXPECT_EXIT(
      {
        ZYNSDK::RegisterCameraEventHandler(new Exiter);  // outlives the library
        std::promise<void>().get_future().wait();        // for the end
      },
      testing::ExitedWithCode(7), "");
}

TEST(Events, ShuttingTheTransportDownMakesCamerasGoneAndTheWatchGoesOn) {
  const FakeGigeCamera fake(1);
  Recorder recorder;
  ASSERT_EQ(ZYNSDK::RegisterCameraEventHandler(&recorder), 0);
  recorder.WaitFor({"GV01", ZYNSDK::ZYN_CAMERA_APPEARED});
  EXPECT_EQ(ZYNSDK::ZynSDKUnInit(), 0);
  recorder.WaitFor({"GV01", ZYNSDK::ZYN_CAMERA_GONE});
  EXPECT_EQ(ZYNSDK::ZynSDKInit(), 0);
  const FakeGigeCamera second(2);
  recorder.WaitFor({"GV02", ZYNSDK::ZYN_CAMERA_APPEARED});
  EXPECT_EQ(ZYNSDK::RegisterCameraEventHandler(nullptr), 0);
  EXPECT_EQ(recorder.Of("GV01"), (std::vector<Event>{{"GV01", 1}, {"GV01", 2}, {"GV01", 1}}));
}

}  // namespace
