#include <gtest/gtest.h>

#include <future>

#include "CameraFixture.h"

namespace {

using namespace zyn::cameras;
using zyn::cameras::test::Camera;

constexpr std::int64_t kMs = 1'000'000;

std::future<FrameWait> WaitElsewhere(Camera& camera, std::int64_t timeoutNs = kForever) {
  auto result =
      std::async(std::launch::async, [&camera, timeoutNs] { return camera.model->WaitForFrame(timeoutNs); });
  return result;
}

TEST(Waiting, EndsWhenTheClockReachesTheFrame) {
  Camera camera("KEL-LP2000");
  camera.Execute("AcquisitionStart");
  auto wait = WaitElsewhere(camera);
  camera.clock.AwaitSleepers(1);
  EXPECT_EQ(camera.model->NextFrameDueNs(), kMs);
  camera.clock.Advance(kMs);
  EXPECT_EQ(wait.get(), FrameWait::ready);
}

TEST(Waiting, EndsWithTheTime) {
  Camera camera("KEL-LP2000");
  EXPECT_EQ(camera.model->WaitForFrame(0), FrameWait::timedOut);
  auto wait = WaitElsewhere(camera, 5 * kMs);
  camera.clock.AwaitSleepers(1);
  camera.clock.Advance(5 * kMs);
  EXPECT_EQ(wait.get(), FrameWait::timedOut);
}

TEST(Waiting, IsCancelledAtOnceAndUntilItIsResumed) {
  Camera camera("KEL-LP2000");
  camera.Set("AcquisitionLineRateEnable", "0");
  auto wait = WaitElsewhere(camera);
  camera.clock.AwaitSleepers(1);
  camera.model->CancelWait();
  EXPECT_EQ(wait.get(), FrameWait::cancelled);
  camera.Execute("AcquisitionStart");
  EXPECT_EQ(camera.model->WaitForFrame(kForever), FrameWait::cancelled);
  camera.model->ResumeWaiting();
  EXPECT_EQ(camera.model->WaitForFrame(kForever), FrameWait::ready);
}

TEST(Waiting, HearsOfTheStart) {
  Camera camera("KEL-LP2000");
  camera.Set("AcquisitionLineRateEnable", "0");
  auto wait = WaitElsewhere(camera);
  camera.clock.AwaitSleepers(1);
  camera.Execute("AcquisitionStart");
  EXPECT_EQ(wait.get(), FrameWait::ready);
}

TEST(Waiting, HearsOfTriggers) {
  Camera camera("KEL-LP2000");
  camera.Set("TriggerSelector", "LineStart");
  camera.Set("TriggerMode", "On");
  camera.Set("TriggerSource", "Line1");
  camera.Execute("AcquisitionStart");
  EXPECT_EQ(camera.model->NextFrameDueNs(), std::nullopt);
  auto wait = WaitElsewhere(camera);
  camera.clock.AwaitSleepers(1);
  camera.model->PulseLine(1);
  EXPECT_EQ(wait.get(), FrameWait::ready);
}

TEST(Waiting, WorksOnTheSteadyClockToo) {
  const auto model = MakeCamera("VX7-2000", "1");
  EXPECT_EQ(model->WaitForFrame(1), FrameWait::timedOut);
  auto wait = std::async(std::launch::async, [&] { return model->WaitForFrame(kForever); });
  model->CancelWait();
  EXPECT_EQ(wait.get(), FrameWait::cancelled);
}

TEST(Waiting, ManyThreadsMayUseACameraAtOnce) {
  const auto model = MakeCamera("KEL-LP2000", "1");
  zyn::cameras::test::ModelPort port(*model);
  GenApi::CNodeMapRef map;
  map._LoadXMLFromString(std::string(model->Description()).c_str());
  map._Connect(&port);
  const auto set = [&](const char* name, const char* value) {
    dynamic_cast<GenApi::IValue&>(*map._GetNode(name)).FromString(value);
  };
  const auto execute = [&](const char* name) {
    dynamic_cast<GenApi::ICommand&>(*map._GetNode(name)).Execute();
  };
  set("AcquisitionLineRateEnable", "0");
  execute("AcquisitionStart");
  auto reader = std::async(std::launch::async, [&] {
    std::vector<std::uint8_t> buffer(model->PayloadSize());
    Frame frame;
    std::uint64_t frames = 0;
    while (frames < 500 && model->WaitForFrame(kForever) == FrameWait::ready) {
      if (model->TakeFrame(buffer, frame) == FrameResult::written) ++frames;
    }
    return frames;
  });
  for (int i = 0; i < 500; ++i) {
    set("Gain", i % 2 == 0 ? "1" : "2");
    model->TurnEncoder(1);
    model->GetFaults().DropFrames(1);
  }
  EXPECT_EQ(reader.get(), 500U);
}

}  // namespace
