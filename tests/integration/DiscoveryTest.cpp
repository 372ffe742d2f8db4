#include <ZynCamera.h>
#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <set>

#include "Chain.h"
#include "ChildProcess.h"
#include "FakeGigeCamera.h"

namespace {

using ZYNSDK::ZynCamera;
using ZYNSDK::ZynCameraAttribute;
using zyntest::FakeGigeCamera;

std::unique_ptr<ZynCameraAttribute> AttributeOf(ZynCamera camera) {
  return std::unique_ptr<ZynCameraAttribute>(camera.Attribute());
}

TEST(Discovery, FindsEveryCameraOnTheWireOnce) {
  const FakeGigeCamera first(1);
  const FakeGigeCamera second(2);
  ZYNSDK::ZynCameraArray cameras;
  ASSERT_EQ(ZYNSDK::DiscoveryCameras(&cameras), 0);
  std::multiset<std::string> serials;
  for (unsigned int i = 0; i < cameras.length(); ++i) {
    serials.insert(AttributeOf(cameras[static_cast<int>(i)])->CameraSerialNumber());
  }
  EXPECT_EQ(serials, (std::multiset<std::string>{"GV01", "GV02"}));
}

TEST(Discovery, ReportsWhatTheCameraSaysOfItself) {
  const FakeGigeCamera fake(1);
  const auto attribute = AttributeOf(chain::Find("GV01"));
  EXPECT_EQ(attribute->ProtocolType(), 1U);
  EXPECT_STREQ(attribute->CameraSerialNumber(), "GV01");
  EXPECT_STREQ(attribute->CameraManufactureName(), "Aravis");
  EXPECT_STREQ(attribute->CameraModel(), "Fake");
  EXPECT_STREQ(attribute->CameraIp(), "127.0.0.1");
  EXPECT_STREQ(attribute->CameraMac(), "02:00:00:00:00:01");
  EXPECT_STREQ(attribute->CameraMask(), "255.0.0.0");
  EXPECT_EQ(attribute->CameraStatus(), 0);
  EXPECT_STREQ(attribute->AdapterIP(), "127.0.0.1");
  EXPECT_STREQ(attribute->AdapterMask(), "255.0.0.0");
  EXPECT_STREQ(attribute->AdapterName(), "lo");
}

TEST(Discovery, ACameraOfAnotherSubnetIsListedAsSuch) {
  const FakeGigeCamera fake(1);
  fake.PretendAddress(0xC0A80909, 0xFFFFFF00);
  const auto attribute = AttributeOf(chain::Find("GV01"));
  EXPECT_STREQ(attribute->CameraIp(), "192.168.9.9");
  EXPECT_EQ(attribute->CameraStatus(), 2);
  EXPECT_FALSE(attribute->IsNetSegmentConsistent());
}

TEST(Discovery, ACameraThatIsGoneIsNoLongerListedAndComesBackUnderTheSameHandle) {
  FakeGigeCamera fake(1);
  ZynCamera before = chain::Find("GV01");
  fake.Kill();
  EXPECT_FALSE(chain::IsListed("GV01"));
  ZynCamera remembered;
  EXPECT_EQ(ZYNSDK::DiscoveryCamera("GV01", &remembered), 0) << "a known serial number keeps its handle";
  fake.Start();
  EXPECT_TRUE(chain::IsListed("GV01"));
  ASSERT_EQ(before.Open(nullptr), 0);
  EXPECT_TRUE(remembered.IsOpen());
  EXPECT_TRUE(chain::Find("GV01").IsOpen()) << "the handle from before and the new one are the same camera";
  EXPECT_EQ(before.Close(), 0);
}

TEST(Discovery, AnUnknownSerialNumberIsRefused) {
  ZynCamera camera;
  EXPECT_EQ(ZYNSDK::DiscoveryCamera("NO-SUCH-CAMERA", &camera), 101006);
  EXPECT_EQ(camera.Open(nullptr), 101001) << "the handle stays empty";
}

TEST(Discovery, ByProtocolFindsGigeCamerasAndNoOthers) {
  const FakeGigeCamera fake(1);
  ZYNSDK::ZynCameraArray cameras;
  ASSERT_EQ(ZYNSDK::DiscoveryCamerasByProtocolType(1, &cameras), 0);
  EXPECT_EQ(cameras.length(), 1U);
  ASSERT_EQ(ZYNSDK::DiscoveryCamerasByProtocolType(2, &cameras), 0);
  EXPECT_EQ(cameras.length(), 0U);
}

TEST(Access, ACameraThatAnotherProgramControlsIsBusyAndDoesNotOpen) {
  const FakeGigeCamera fake(1);
  {
    zyntest::ChildProcess other({ZYN_ZYNCAM, "grab", "-c", "GV01", "-n", "0", "-f", "none"});
    ASSERT_TRUE(chain::WaitForStatus("GV01", 1));
    ZynCamera camera = chain::Find("GV01");
    EXPECT_EQ(camera.Open(nullptr), 101008);
    EXPECT_FALSE(camera.IsOpen());
    EXPECT_EQ(camera.StartGrab(ZYNSDK::ZYN_GRAB_ONE_BY_ONE, 0), 101015);
    other.End(SIGINT);
  }
  ZynCamera camera = chain::Find("GV01");
  EXPECT_EQ(camera.Open(nullptr), 0) << "free again";
  EXPECT_EQ(camera.Close(), 0);
}

}  // namespace
