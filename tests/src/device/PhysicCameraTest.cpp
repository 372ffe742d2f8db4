#include "PhysicCamera.h"

#include <gtest/gtest.h>

#include <future>
#include <latch>
#include <stdexcept>
#include <string>
#include <vector>

#include "FakeTransport.h"

using namespace ZYNSDK;
using fakes::FakeCamera;
using fakes::FakeCameraInfo;
using fakes::FakeImage;
using fakes::FakeTransport;

namespace {

using Calls = std::vector<std::string>;

void ThrowIn(FakeCamera& camera, const std::string& where) {
  camera.hook = [where](const std::string& call) {
    if (call == where) throw std::runtime_error(where);
  };
}

// A device whose first and second opening give `camera` and `second`.
class PhysicCameraTest : public testing::Test {
 protected:
  PhysicCameraTest() { transport.cameras[&info] = {&camera, &second}; }

  void Open() { ASSERT_EQ(device.Open(&info), ZYN_OK); }

  FakeTransport transport;
  FakeCameraInfo info;
  FakeCamera camera;
  FakeCamera second;
  PhysicCamera device;
};

}  // namespace

TEST_F(PhysicCameraTest, OpensForControlAndCloses) {
  EXPECT_EQ(device.Open(&info), ZYN_OK);
  EXPECT_EQ(camera.accessMode, 1);
  EXPECT_EQ(camera.calls.Names(), (Calls{"Open"}));
  EXPECT_EQ(device.Close(), ZYN_OK);
  EXPECT_EQ(camera.calls.Names(), (Calls{"Open", "Close", "Release"}));
}

TEST_F(PhysicCameraTest, SecondOpenIsRefusedAndKeepsTheDeviceOpen) {
  Open();
  EXPECT_EQ(device.Open(&info), ZYN_ERROR_ALREADY_OPEN);
  EXPECT_EQ(device.Open(std::string()), ZYN_ERROR_ALREADY_OPEN);
  EXPECT_EQ(device.Open(std::string("SN1")), ZYN_ERROR_ALREADY_OPEN);
  EXPECT_EQ(device.Open(nullptr), ZYN_ERROR_ALREADY_OPEN);
  EXPECT_EQ(transport.calls.Names(), (Calls{"CreateCamera"}));
  EXPECT_TRUE(device.IsOpen(&info));
  EXPECT_EQ(device.Close(), ZYN_OK);
  EXPECT_EQ(camera.calls.Count("Close"), 1);  // one reference only
}

TEST_F(PhysicCameraTest, ACameraThatCannotBeMadeIsNotCreated) {
  FakeCameraInfo stranger;
  EXPECT_EQ(device.Open(&stranger), ZYN_ERROR_NOT_CREATED);
  EXPECT_FALSE(device.IsOpen(&stranger));
}

TEST_F(PhysicCameraTest, ACameraThatRefusesToOpenIsReleased) {
  camera.openResult = KELGENICAM::RESULT_ACCESS_DENIED;
  EXPECT_EQ(device.Open(&info), ZYN_ERROR_OPEN_FAILED);
  EXPECT_EQ(camera.calls.Names(), (Calls{"Open", "Release"}));
  EXPECT_EQ(device.Open(&info), ZYN_OK);  // and the next attempt makes a new one
  EXPECT_EQ(device.Close(), ZYN_OK);
}

TEST_F(PhysicCameraTest, ARefusedCameraWhoseReleaseThrowsTellsTheException) {
  camera.openResult = KELGENICAM::RESULT_ACCESS_DENIED;
  ThrowIn(camera, "Release");
  EXPECT_THROW(device.Open(&info), std::runtime_error);
  EXPECT_EQ(camera.Releases(), 1);
  EXPECT_EQ(device.Close(), ZYN_ERROR_NOT_OPEN);  // would hang if the lock were still held
}

TEST_F(PhysicCameraTest, ACameraWhoseOpenThrowsIsReleasedAndTheExceptionPasses) {
  ThrowIn(camera, "Open");
  EXPECT_THROW(device.Open(&info), std::runtime_error);
  EXPECT_EQ(camera.Releases(), 1);
  EXPECT_EQ(device.Close(), ZYN_ERROR_NOT_OPEN);  // would hang if the lock were still held
}

TEST_F(PhysicCameraTest, AnUnreadableSerialNumberReleasesTheOpenedCamera) {
  info.throwsOnSerialNumber = true;
  EXPECT_THROW(device.Open(&info), std::runtime_error);
  EXPECT_EQ(camera.Releases(), 1);
  EXPECT_EQ(device.Close(), ZYN_ERROR_NOT_OPEN);
}

TEST_F(PhysicCameraTest, TheRecordTakesTheSerialNumber) {
  Open();
  RefCamera* record = device.Ref();
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->serialNumber, "SN1");
  EXPECT_EQ(record->count, 2);
  EXPECT_EQ(record->camera, &camera);
  device.UnRef(record);
  EXPECT_EQ(record->count, 1);
  device.Close();
}

TEST_F(PhysicCameraTest, ANullSerialNumberIsAnEmptyOne) {
  info.serial = nullptr;
  Open();
  EXPECT_EQ(device.Close(), ZYN_OK);
}

TEST_F(PhysicCameraTest, OpeningBySerialNumberKeepsItsErrorsAndNeverOpens) {
  EXPECT_EQ(device.Open(std::string()), ZYN_ERROR_NOT_CREATED);
  EXPECT_EQ(transport.calls.Count("CreateCameraBySN"), 0);
  EXPECT_EQ(device.Open(std::string("nobody")), ZYN_ERROR_NOT_CREATED);
  transport.camerasBySN["busy"] = &camera;
  camera.openResult = KELGENICAM::RESULT_ACCESS_DENIED;
  EXPECT_EQ(device.Open(std::string("busy")), ZYN_ERROR_OPEN_FAILED);
  transport.camerasBySN["free"] = &second;
  EXPECT_EQ(device.Open(std::string("free")), ZYN_ERROR_NOT_CREATED);
  EXPECT_EQ(second.Releases(), 1);
  EXPECT_EQ(device.Close(), ZYN_ERROR_NOT_OPEN);
}

TEST_F(PhysicCameraTest, OpenCameraGivesTheCameraToTheCaller) {
  long result = -1;
  KELGENICAM::ICamera* opened = PhysicCamera::OpenCamera(&info, "", result);
  EXPECT_EQ(opened, &camera);
  EXPECT_EQ(result, ZYN_OK);
  EXPECT_FALSE(device.IsOpen(&info));
  opened->Release();
  second.openResult = -1;
  EXPECT_EQ(PhysicCamera::OpenCamera(&info, "", result), nullptr);
  EXPECT_EQ(result, ZYN_ERROR_OPEN_FAILED);
  EXPECT_EQ(PhysicCamera::OpenCamera(&info, "", result), nullptr);
  EXPECT_EQ(result, ZYN_ERROR_NOT_CREATED);
}

TEST_F(PhysicCameraTest, EveryOperationHasItsCodeForAClosedDevice) {
  KELGENICAM::IImage* image = nullptr;
  EXPECT_EQ(device.Close(), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(device.Grab(&image, 1), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(device.StopGrab(), ZYN_ERROR_NOT_GRABBING);
  EXPECT_EQ(device.StartGrab(KELGENICAM::GRAB_ONE_BY_ONE, 0), ZYN_ERROR_START_FAILED);
  EXPECT_EQ(device.RegisterNotify(KELGENICAM::NOTIFY_SRC_INTERFACE, KELGENICAM::NOTIFY_ERROR, nullptr),
            ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(device.SetCLCameraParam("a", "b"), ZYN_ERROR_NO_OBJECT);
  EXPECT_FALSE(device.IsOpen(&info));
  EXPECT_FALSE(device.IsOpen(nullptr));
  EXPECT_FALSE(device.IsGrabbing());
  EXPECT_FALSE(device.DeleteRefCam());
  EXPECT_EQ(device.Ref(), nullptr);
  device.UnRef(nullptr);
}

TEST_F(PhysicCameraTest, ALostGigECameraIsNotOpen) {
  Open();
  EXPECT_TRUE(device.IsOpen(&info));
  camera.isOnline = false;
  EXPECT_FALSE(device.IsOpen(&info));
  EXPECT_FALSE(device.IsOpen(nullptr));
  device.Close();
}

TEST_F(PhysicCameraTest, OtherProtocolsDoNotAskWhetherTheCameraIsOnline) {
  Open();
  info.protocol = KELGENICAM::PROTOCOL_USB3_VISION;
  camera.isOnline = false;
  EXPECT_TRUE(device.IsOpen(&info));
  EXPECT_EQ(camera.calls.Count("IsOnline"), 0);
  EXPECT_FALSE(device.IsOpen(nullptr));
  EXPECT_EQ(camera.calls.Count("IsOnline"), 1);
  device.Close();
}

TEST_F(PhysicCameraTest, OnlineIsAskedOnlyOfAnOpenCamera) {
  Open();
  camera.isOpen = false;
  EXPECT_FALSE(device.IsOpen(&info));
  EXPECT_EQ(camera.calls.Count("IsOnline"), 0);
  device.Close();
}

TEST_F(PhysicCameraTest, GrabbingIsAskedOnlyOfAnOpenCamera) {
  Open();
  camera.isGrabbing = true;
  EXPECT_TRUE(device.IsGrabbing());
  camera.isOpen = false;
  EXPECT_FALSE(device.IsGrabbing());
  EXPECT_EQ(camera.calls.Count("IsGrabbing"), 1);
  device.Close();
}

TEST_F(PhysicCameraTest, GrabWithoutAStreamDoesNotReachTheTransport) {
  Open();
  KELGENICAM::IImage* image = nullptr;
  EXPECT_EQ(device.Grab(&image, 7), ZYN_ERROR_NOT_GRABBING);
  EXPECT_EQ(camera.calls.Count("Grab"), 0);
  device.Close();
}

TEST_F(PhysicCameraTest, GrabHandsTheTransportsResultThrough) {
  Open();
  camera.isGrabbing = true;
  FakeImage frame(4, 3, 1, 4);
  camera.Deliver(0, &frame);
  KELGENICAM::IImage* image = nullptr;
  EXPECT_EQ(device.Grab(&image, 7), 0);
  EXPECT_EQ(image, &frame);
  EXPECT_EQ(camera.timeoutMs, 7);
  frame.Release();
  camera.grabResult = -3;
  EXPECT_EQ(device.Grab(&image, 7), -3);
  device.Close();
}

TEST_F(PhysicCameraTest, ResultsOfTheTransportThatDoNotCount) {
  Open();
  camera.stopResult = -3;
  EXPECT_EQ(device.StopGrab(), ZYN_OK);
  EXPECT_EQ(camera.calls.Count("StopGrabbing"), 1);
  camera.paramResult = -3;
  EXPECT_EQ(device.SetCLCameraParam("Baud", "9600"), ZYN_OK);
  EXPECT_EQ(camera.paramName, "Baud");
  EXPECT_EQ(camera.paramValue, "9600");
  camera.closeResult = -3;
  EXPECT_EQ(device.Close(), ZYN_OK);
}

TEST_F(PhysicCameraTest, RegisteringHandsTheTransportsResultThrough) {
  Open();
  camera.notifyResult = -22;
  EXPECT_EQ(device.RegisterNotify(KELGENICAM::NOTIFY_SRC_INTERFACE, KELGENICAM::NOTIFY_ERROR, nullptr), -22);
  device.Close();
}

TEST_F(PhysicCameraTest, RegisteringHandsItsArgumentsOn) {
  struct Nobody : KELGENICAM::INotify {
    void OnNotify(KELGENICAM::NOTIFY_SRC, KELGENICAM::NOTIFY_TYPE, const void*, unsigned long long) override {
    }
  };
  Nobody receiver;
  Open();
  EXPECT_EQ(device.RegisterNotify(KELGENICAM::NOTIFY_SRC_DATA_STREAM, KELGENICAM::NOTIFY_ERROR, &receiver),
            0);
  EXPECT_EQ(camera.notifySource, KELGENICAM::NOTIFY_SRC_DATA_STREAM);
  EXPECT_EQ(camera.notifyType, KELGENICAM::NOTIFY_ERROR);
  EXPECT_EQ(camera.receiver, &receiver);
  device.Close();
}

TEST_F(PhysicCameraTest, CloseThatThrowsStillReleasesAndDetaches) {
  Open();
  ThrowIn(camera, "Close");
  EXPECT_THROW(device.Close(), std::runtime_error);
  EXPECT_EQ(camera.Releases(), 1);
  EXPECT_EQ(device.Open(&info), ZYN_OK);
  device.Close();
}

TEST_F(PhysicCameraTest, ReleaseThatThrowsWhileClosingReachesTheCaller) {
  Open();
  ThrowIn(camera, "Release");
  EXPECT_THROW(device.Close(), std::runtime_error);
  EXPECT_EQ(device.Close(), ZYN_ERROR_NOT_OPEN);
}

TEST_F(PhysicCameraTest, OfTwoFailuresWhileClosingTheFirstIsReported) {
  Open();
  camera.hook = [](const std::string& call) {
    if (call == "Close") throw std::logic_error("first");
    if (call == "Release") throw std::runtime_error("second");
  };
  EXPECT_THROW(device.Close(), std::logic_error);
  EXPECT_EQ(camera.Releases(), 1);
  EXPECT_FALSE(device.IsOpen(&info));
  EXPECT_EQ(device.Close(), ZYN_ERROR_NOT_OPEN);
}

TEST_F(PhysicCameraTest, OfTwoFailuresWhileOpeningTheFirstIsReported) {
  camera.hook = [](const std::string& call) {
    if (call == "Open") throw std::logic_error("first");
    if (call == "Release") throw std::runtime_error("second");
  };
  EXPECT_THROW(device.Open(&info), std::logic_error);
  EXPECT_EQ(camera.Releases(), 1);
  EXPECT_FALSE(device.IsOpen(&info));
}

TEST_F(PhysicCameraTest, CloseDuringGrabReturnsAtOnceAndTheGrabReleasesWithoutClosing) {
  Open();
  camera.isGrabbing = true;
  std::latch entered(1);
  std::latch allowed(1);
  camera.hook = [&](const std::string& call) {
    if (call != "Grab") return;
    entered.count_down();
    allowed.wait();
  };
  KELGENICAM::IImage* image = nullptr;
  auto grab = std::async(std::launch::async, [&] { return device.Grab(&image, 5000); });
  entered.wait();
  EXPECT_EQ(device.Close(), ZYN_OK);  // would hang if the grab held the lock
  EXPECT_FALSE(device.IsOpen(nullptr));
  EXPECT_EQ(camera.Releases(), 0);
  allowed.count_down();
  EXPECT_EQ(grab.get(), KELGENICAM::RESULT_TIMEOUT);
  EXPECT_EQ(camera.Releases(), 1);
  EXPECT_EQ(camera.calls.Count("Close"), 0);
}

TEST_F(PhysicCameraTest, ReopenDuringGrabKeepsBothCounts) {
  Open();
  camera.isGrabbing = true;
  std::latch entered(1);
  std::latch allowed(1);
  camera.hook = [&](const std::string& call) {
    if (call != "Grab") return;
    entered.count_down();
    allowed.wait();
  };
  KELGENICAM::IImage* image = nullptr;
  auto grab = std::async(std::launch::async, [&] { return device.Grab(&image, 5000); });
  entered.wait();
  EXPECT_EQ(device.Close(), ZYN_OK);
  EXPECT_EQ(device.Open(&info), ZYN_OK);
  allowed.count_down();
  grab.get();
  EXPECT_EQ(camera.Releases(), 1);
  EXPECT_EQ(second.Releases(), 0);
  EXPECT_TRUE(device.IsOpen(&info));
  EXPECT_EQ(device.Close(), ZYN_OK);
  EXPECT_EQ(second.Releases(), 1);
}

TEST_F(PhysicCameraTest, ABorrowerSeesTheReleaseThatThrows) {
  Open();
  RefCamera* record = device.Ref();
  device.Close();
  ThrowIn(camera, "Release");
  EXPECT_THROW(device.UnRef(record), std::runtime_error);
  EXPECT_EQ(device.Ref(), nullptr);  // would hang if the lock were still held
}

TEST_F(PhysicCameraTest, ManyThreadsBorrowWhileTheDeviceIsClosed) {
  Open();
  camera.isGrabbing = true;
  std::vector<std::future<void>> users;
  std::latch started(4);
  for (int i = 0; i < 4; ++i) {
    users.push_back(std::async(std::launch::async, [&] {
      KELGENICAM::IImage* image = nullptr;
      started.count_down();
      while (device.Grab(&image, 1) == KELGENICAM::RESULT_TIMEOUT) device.IsOpen(nullptr);
    }));
  }
  started.wait();
  EXPECT_EQ(device.Close(), ZYN_OK);
  for (auto& user : users) user.get();
  EXPECT_EQ(camera.Releases(), 1);
}

TEST(PhysicCameraEnd, DoesNotCloseTheDevice) {
  FakeTransport transport;
  FakeCameraInfo info;
  FakeCamera camera;
  camera.mayStayMade = true;
  transport.cameras[&info] = {&camera};
  RefCamera* record = nullptr;
  {
    PhysicCamera device;
    ASSERT_EQ(device.Open(&info), ZYN_OK);
    record = device.Ref();
  }
  EXPECT_EQ(camera.calls.Names(), (Calls{"Open"}));
  delete record;
}

struct AddressCase {
  const char* name;
  int result;
  long expected;
};

class SetGevIpAddress : public testing::TestWithParam<AddressCase> {};

TEST_P(SetGevIpAddress, HandsTheTextsThroughAndFoldsTheResult) {
  FakeTransport transport;
  FakeCameraInfo info("SN9");
  transport.setIpResult = GetParam().result;
  testing::internal::CaptureStdout();
  EXPECT_EQ(PhysicCamera::SetGevIpAddress(info, "10.0.0.2", "255.0.0.0", "10.0.0.1", true),
            GetParam().expected);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "set ip: 10.0.0.2\nset mask: 255.0.0.0\nset gateway: 10.0.0.1\nSetCameraIP return: " +
                std::to_string(GetParam().result) + "\n");
  ASSERT_EQ(transport.addresses.size(), 1U);
  EXPECT_EQ(transport.addresses[0].serial, "SN9");
  EXPECT_EQ(transport.addresses[0].ip, "10.0.0.2");
  EXPECT_EQ(transport.addresses[0].mask, "255.0.0.0");
  EXPECT_EQ(transport.addresses[0].gateway, "10.0.0.1");
  EXPECT_TRUE(transport.addresses[0].persistent);
}

INSTANTIATE_TEST_SUITE_P(Results, SetGevIpAddress,
                         testing::Values(AddressCase{"Success", 0, ZYN_OK},
                                         AddressCase{"NotFound", 1, ZYN_ERROR_INVALID_ARGUMENT},
                                         AddressCase{"Negative", -1, ZYN_ERROR_INVALID_ARGUMENT}),
                         [](const auto& param) { return std::string(param.param.name); });
