#include <gtest/gtest.h>

#include <vector>

#include "CameraFixture.h"
#include "cameras/CameraEvents.h"

namespace {

using namespace zyn::cameras;
using test::Camera;

class Recorder final : public CameraEventListener {
 public:
  void OnCameraEvent(const CameraEvent& event) override { events.push_back(event); }
  std::vector<CameraEvent> events;
};

void Notify(Camera& camera, const char* event, const char* state) {
  camera.As<GenApi::IEnumeration>("EventSelector").FromString(event);
  camera.As<GenApi::IEnumeration>("EventNotification").FromString(state);
}

Frame TakeFrame(Camera& camera) {
  std::vector<std::uint8_t> buffer(camera.model->PayloadSize());
  Frame frame;
  camera.clock.Advance(1'000'000'000);
  EXPECT_EQ(camera.model->TakeFrame(buffer, frame), FrameResult::written);
  return frame;
}

class EventsOf : public testing::TestWithParam<const char*> {};

INSTANTIATE_TEST_SUITE_P(Kinds, EventsOf, testing::Values("ZS-A640", "KEL-LP1000F"),
                         [](const auto& one) { return one.index == 0 ? "Area" : "Laser"; });

TEST_P(EventsOf, ACameraReportsWhatWasSwitchedOn) {
  Camera camera(GetParam());
  Recorder recorder;
  camera.model->SetEventListener(&recorder);
  auto& start = camera.As<GenApi::ICommand>("AcquisitionStart");
  auto& stop = camera.As<GenApi::ICommand>("AcquisitionStop");
  start.Execute();
  TakeFrame(camera);
  stop.Execute();
  EXPECT_TRUE(recorder.events.empty());

  Notify(camera, "AcquisitionStart", "On");
  Notify(camera, "ExposureEnd", "On");
  start.Execute();
  const Frame frame = TakeFrame(camera);
  stop.Execute();
  ASSERT_EQ(recorder.events.size(), 2U);
  EXPECT_EQ(recorder.events[0].id, camera.As<GenApi::IInteger>("EventAcquisitionStart").GetValue());
  EXPECT_EQ(recorder.events[0].frameId, 0U);
  EXPECT_EQ(recorder.events[1].id, camera.As<GenApi::IInteger>("EventExposureEnd").GetValue());
  EXPECT_EQ(recorder.events[1].frameId, frame.id);
  EXPECT_EQ(recorder.events[1].timestampNs, frame.timestampNs);

  Notify(camera, "ExposureEnd", "Off");
  start.Execute();
  TakeFrame(camera);
  stop.Execute();
  EXPECT_EQ(recorder.events.size(), 3U) << "only the start";
  camera.As<GenApi::ICommand>("DeviceReset").Execute();
  start.Execute();
  EXPECT_EQ(recorder.events.size(), 3U) << "after a reset all are off";
  camera.model->SetEventListener(nullptr);
}

}  // namespace
