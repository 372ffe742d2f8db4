#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "FakeTransport.h"
#include "PhysicCamera.h"
#include "ZynCamera/Types.h"

using namespace ZYNSDK;
using KELGENICAM::GRAB_LATEST;

namespace {

class PhysicCameraStream : public testing::Test {
 protected:
  PhysicCameraStream() {
    transport.cameras[&info] = {&camera};
    device.Open(&info);
    camera.calls.Clear();
  }
  ~PhysicCameraStream() override { device.Close(); }

  fakes::FakeTransport transport;
  fakes::FakeCameraInfo info;
  fakes::FakeCamera camera;
  PhysicCamera device;
};

}  // namespace

TEST_F(PhysicCameraStream, StartsWithTheStrategyAndCountGiven) {
  EXPECT_EQ(device.StartGrab(GRAB_LATEST, 5), ZYN_OK);
  EXPECT_EQ(camera.strategy, GRAB_LATEST);
  EXPECT_EQ(camera.count, 5);
}

TEST_F(PhysicCameraStream, CountZeroIsWithoutLimit) {
  EXPECT_EQ(device.StartGrab(GRAB_LATEST, 0), ZYN_OK);
  EXPECT_EQ(camera.count, -1);
}

TEST_F(PhysicCameraStream, AnOpenRecordWithAClosedCameraDoesNotStart) {
  camera.isOpen = false;
  EXPECT_EQ(device.StartGrab(GRAB_LATEST, 0), ZYN_ERROR_START_FAILED);
  EXPECT_EQ(camera.calls.Names(), (std::vector<std::string>{"IsOpen"}));
}

TEST_F(PhysicCameraStream, SecondStartIsRefusedAndReadsNothing) {
  EXPECT_EQ(device.StartGrab(GRAB_LATEST, 0), ZYN_OK);
  camera.calls.Clear();
  EXPECT_EQ(device.StartGrab(GRAB_LATEST, 0), ZYN_ERROR_ALREADY_GRABBING);
  EXPECT_EQ(camera.calls.Names(), (std::vector<std::string>{"IsOpen", "IsGrabbing"}));
}

TEST_F(PhysicCameraStream, AFailingStartHandsTheTransportsResultThrough) {
  camera.startResult = -8;
  EXPECT_EQ(device.StartGrab(GRAB_LATEST, 0), -8);
}

TEST_F(PhysicCameraStream, AStreamThatDoesNotComeUpIsAFailure) {
  camera.comesUp = false;
  EXPECT_EQ(device.StartGrab(GRAB_LATEST, 0), ZYN_ERROR_START_FAILED);
}

TEST_F(PhysicCameraStream, ACameraWithoutNodesStartsWithTriggerSourceZero) {
  EXPECT_EQ(device.StartGrab(GRAB_LATEST, 0), ZYN_OK);
  EXPECT_EQ(device.TriggerSource(), 0);
}

TEST_F(PhysicCameraStream, AnExceptionWhileReadingTheTriggerPasses) {
  camera.hook = [](const std::string& call) {
    if (call == "RemoteDeviceNodeMap") throw std::runtime_error("lost");
  };
  EXPECT_THROW(device.StartGrab(GRAB_LATEST, 0), std::runtime_error);
  EXPECT_EQ(camera.calls.Count("StartGrabbing"), 0);
}

TEST(GrabStrategy, NumbersAreThoseOfTheTransport) {
  EXPECT_EQ(static_cast<int>(ZYN_GRAB_ONE_BY_ONE), static_cast<int>(KELGENICAM::GRAB_ONE_BY_ONE));
  EXPECT_EQ(static_cast<int>(ZYN_GRAB_LATEST_ONLY), static_cast<int>(KELGENICAM::GRAB_LATEST_ONLY));
  EXPECT_EQ(static_cast<int>(ZYN_GRAB_LATEST), static_cast<int>(KELGENICAM::GRAB_LATEST));
  EXPECT_EQ(static_cast<int>(ZYN_GRAB_UPCOMING_IMAGE), static_cast<int>(KELGENICAM::GRAB_UPCOMING_IMAGE));
}
