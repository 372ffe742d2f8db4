#include "LogicCamera.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <future>
#include <latch>
#include <memory>
#include <stdexcept>
#include <string>

#include "CameraAttribute.h"
#include "FakeTransport.h"
#include "Handles.h"
#include "ZynCamera.h"

using namespace ZYNSDK;
using fakes::FakeCamera;
using fakes::FakeCameraInfo;

namespace {

class LogicCameraTest : public testing::Test {
 protected:
  LogicCameraTest() { transport.cameras[&info] = {&device, &second}; }

  void ThrowIn(const std::string& where) {
    device.hook = [where](const std::string& call) {
      if (call == where) throw 42;  // not even a standard exception
    };
  }
  std::unique_ptr<ZynCameraAttribute> Attribute() {
    return std::unique_ptr<ZynCameraAttribute>(camera.Attribute());
  }

  fakes::FakeTransport transport;
  FakeCameraInfo info{"SN1", "Area-1"};
  FakeCamera device;
  FakeCamera second;
  LogicCamera camera{&info};
};

}  // namespace

TEST_F(LogicCameraTest, StartsOnlineUnmarkedAndClosed) {
  EXPECT_TRUE(camera.IsOnline());
  EXPECT_FALSE(camera.IsUnseen());
  EXPECT_FALSE(camera.IsOpen());
  EXPECT_FALSE(camera.IsGrabbing());
  EXPECT_FALSE(camera.Is3DCamera());
}

TEST_F(LogicCameraTest, OpensWithoutAConfigurationFile) {
  EXPECT_EQ(camera.Open(nullptr), ZYN_OK);
  EXPECT_TRUE(camera.IsOpen());
  EXPECT_EQ(camera.Close(), ZYN_OK);
  EXPECT_EQ(camera.Open(""), ZYN_OK);
  EXPECT_EQ(camera.Close3D(), ZYN_OK);
}

TEST_F(LogicCameraTest, Open3DAndClose3DWorkOnTheSameDevice) {
  EXPECT_EQ(camera.Open3D(), ZYN_OK);
  EXPECT_EQ(camera.Open(nullptr), ZYN_ERROR_ALREADY_OPEN);
  EXPECT_EQ(camera.Close(), ZYN_OK);
  EXPECT_EQ(camera.Close3D(), ZYN_ERROR_NOT_OPEN);
}

TEST_F(LogicCameraTest, AnExceptionWhileOpeningIsACode) {
  ThrowIn("Open");
  EXPECT_EQ(camera.Open(nullptr), ZYN_ERROR_EXCEPTION);
  second.hook = device.hook;
  EXPECT_EQ(camera.Open3D(), ZYN_ERROR_EXCEPTION);
}

TEST_F(LogicCameraTest, TheUnguardedOpenLetsTheExceptionThrough) {
  ThrowIn("Open");
  EXPECT_THROW(camera.Open3DAction(), int);
}

TEST_F(LogicCameraTest, AnExceptionWhileClosingIsACode) {
  camera.Open(nullptr);
  ThrowIn("Close");
  EXPECT_EQ(camera.Close(), ZYN_ERROR_EXCEPTION);
}

TEST_F(LogicCameraTest, AnExceptionInAQueryIsNo) {
  camera.Open(nullptr);
  ThrowIn("IsOpen");
  EXPECT_FALSE(camera.IsOpen());
  EXPECT_FALSE(camera.IsGrabbing());
  device.hook = nullptr;
  EXPECT_TRUE(camera.IsOpen());
  device.isGrabbing = true;
  EXPECT_TRUE(camera.IsGrabbing());
  camera.Close();
}

TEST_F(LogicCameraTest, IsOpenLooksAtTheProtocolOfTheCamerasOwnDescription) {
  camera.Open(nullptr);
  device.isOnline = false;
  EXPECT_FALSE(camera.IsOpen());
  info.protocol = KELGENICAM::PROTOCOL_USB3_VISION;
  EXPECT_TRUE(camera.IsOpen());
  camera.Close();
}

TEST_F(LogicCameraTest, AttributeIsANewHandleEveryTime) {
  const auto first = Attribute();
  const auto other = Attribute();
  EXPECT_NE(first, other);
  EXPECT_EQ(fakes::InternalOf(*first), fakes::InternalOf(*other));
  EXPECT_STREQ(first->CameraSerialNumber(), "SN1");
}

TEST_F(LogicCameraTest, ReplacingTheAttributeAnswersFromTheNewDescription) {
  FakeCameraInfo newer("SN1", "VX7-3000");
  const auto before = Attribute();
  camera.replaceAttribute(&newer);
  EXPECT_TRUE(camera.Is3DCamera());
  EXPECT_STREQ(Attribute()->CameraModel(), "VX7-3000");
  EXPECT_EQ(info.calls.Count("CopyFrom"), 1);
  EXPECT_STREQ(before->CameraModel(), "VX7-3000");  // the old record stays readable, and present
}

TEST_F(LogicCameraTest, TheSameDescriptionKeepsItsRecord) {
  const auto before = Attribute();
  camera.replaceAttribute(&info);
  EXPECT_EQ(fakes::InternalOf(*Attribute()), fakes::InternalOf(*before));
}

TEST_F(LogicCameraTest, ADescriptionThatComesBackGetsItsRecordBack) {
  FakeCameraInfo newer("SN1", "VX7-3000");
  const void* first = fakes::InternalOf(*Attribute());
  camera.replaceAttribute(&newer);
  const void* other = fakes::InternalOf(*Attribute());
  EXPECT_NE(first, other);
  camera.replaceAttribute(&info);
  EXPECT_EQ(fakes::InternalOf(*Attribute()), first);
  camera.replaceAttribute(&newer);
  EXPECT_EQ(fakes::InternalOf(*Attribute()), other);
}

TEST_F(LogicCameraTest, DescriptionsMayBeReadWhileTheyAreReplaced) {
  // The transport takes over a description in one step; this fake must not write at all.
  struct Unchanging : FakeCameraInfo {
    using FakeCameraInfo::FakeCameraInfo;
    void CopyFrom(const KELGENICAM::ICameraInfo&) override {}
  };
  Unchanging first("SN1", "Area-1");
  Unchanging other("SN1", "Area-2");
  LogicCamera replaced(&first);
  std::latch started(1);
  std::atomic<bool> isDone{false};
  auto reader = std::async(std::launch::async, [&] {
    const std::unique_ptr<ZynCameraAttribute> mine(replaced.Attribute());
    started.count_down();
    while (!isDone) {
      EXPECT_FALSE(replaced.Is3DCamera());
      const std::unique_ptr<ZynCameraAttribute> present(replaced.Attribute());
      EXPECT_EQ(std::string(present->CameraModel()).substr(0, 5), "Area-");
      EXPECT_EQ(std::string(mine->CameraModel()).substr(0, 5), "Area-");
    }
  });
  started.wait();
  for (int i = 0; i < 1000; ++i) replaced.replaceAttribute(i % 2 ? &first : &other);
  isDone = true;
  reader.get();
}

TEST_F(LogicCameraTest, ACameraWithoutADescriptionIsNoCrash) {
  LogicCamera nobody(nullptr);
  EXPECT_FALSE(nobody.Is3DCamera());
  EXPECT_FALSE(nobody.IsOpen());
  EXPECT_EQ(nobody.Open(nullptr), ZYN_ERROR_NOT_CREATED);
}

TEST_F(LogicCameraTest, SettingTheAddressIsTrueOnlyOnSuccess) {
  testing::internal::CaptureStdout();
  EXPECT_TRUE(camera.SetGevIpAddress(info, "10.0.0.2", "255.0.0.0", "10.0.0.1", false));
  transport.setIpResult = 4;
  EXPECT_FALSE(camera.SetGevIpAddress(info, "10.0.0.2", "255.0.0.0", "10.0.0.1", false));
  transport.hook = [](const std::string&) { throw 42; };
  EXPECT_FALSE(camera.SetGevIpAddress(info, "10.0.0.2", "255.0.0.0", "10.0.0.1", false));
  testing::internal::GetCapturedStdout();
}

TEST(LogicCameraEnd, NeitherClosesNorStopsTheDevice) {
  fakes::FakeTransport transport;
  FakeCameraInfo info;
  FakeCamera device;
  device.mayStayMade = true;
  transport.cameras[&info] = {&device};
  // In a process of its own: the record of a camera that nobody closed is not freed, by design.
  EXPECT_EXIT(
      {
        {
          LogicCamera camera(&info);
          camera.Open(nullptr);
        }
        const bool isUntouched = device.calls.Count("Close") + device.calls.Count("StopGrabbing") +
                                     device.calls.Count("Release") ==
                                 0;
        std::_Exit(isUntouched ? 7 : 8);
      },
      testing::ExitedWithCode(7), "");
}
