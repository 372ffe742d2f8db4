/// The whole chain over a virtual USB: SDK, transport, producer, libaravis, libusb, and a simulated USB3 Vision camera.
#include <GenApi/GenApi.h>
#include <ZynCamera.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

#include "Chain.h"
#include "PrivateNetwork.h"
#include "cameras/area/TestPattern.h"
#include "cameras/laser/Scene.h"
#include "usb3vision/UsbCamera.h"

namespace {

using ZYNSDK::ZynCamera;
using ZYNSDK::ZynCameraAttribute;
using ZYNSDK::ZynImage;
using ZYNSDK::ZynNode;
using zyntest::usb3::UsbCamera;
namespace scene = zyn::cameras::scene;

constexpr int kDeviceLost = -6;
constexpr int kColumns = 64;
constexpr int kRows = 48;

std::unique_ptr<ZynCameraAttribute> AttributeOf(ZynCamera camera) {
  return std::unique_ptr<ZynCameraAttribute>(camera.Attribute());
}

class Usb3 : public testing::Test {
 protected:
  void TearDown() override {
    opened_.StopGrab();
    opened_.Close();
  }

  ZynCamera Open() {
    opened_ = chain::Find("USB-2D");
    EXPECT_EQ(opened_.Open(nullptr), 0);
    chain::SetInt(opened_, "Width", kColumns);
    chain::SetInt(opened_, "Height", kRows);
    SetText("TestPattern", "GreyHorizontalRampMoving");
    chain::SetFloat(opened_, "AcquisitionFrameRate", 100.0F);
    return opened_;
  }

  void SetText(const char* name, const char* value) {
    GenApi::INodeMap* map = ZYNSDK::Get2DCameraNodeMap(&opened_, ZYNSDK::ZYN_XML_REMOTE_DEVICE);
    GenApi::CValuePtr(map->GetNode(name))->FromString(value);
  }

  // The system tells of a camera that comes or goes a moment later.
  static bool WaitUntilListed(bool isListed) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (chain::IsListed("USB-2D") != isListed) {
      if (std::chrono::steady_clock::now() > deadline) return false;
    }
    return true;
  }

  static void ExpectRamp(const ZynImage& image, std::int64_t frame) {
    ASSERT_EQ(image.Width(), kColumns);
    ASSERT_EQ(image.Height(), kRows);
    int wrong = 0;
    for (int y = 0; y < kRows; ++y) {
      for (int x = 0; x < kColumns; ++x)
        wrong += image.ImageData()[y * image.Step() + x] == static_cast<std::uint8_t>(x + frame) ? 0 : 1;
    }
    EXPECT_EQ(wrong, 0) << "frame " << frame;
  }

  UsbCamera camera_{"ZS-A1600", "USB-2D"};
  ZynCamera opened_;
};

TEST_F(Usb3, ACameraIsFoundWithProtocolStatusAndTexts) {
  const auto attribute = AttributeOf(chain::Find("USB-2D"));
  EXPECT_EQ(attribute->ProtocolType(), 2U);
  EXPECT_EQ(attribute->CameraStatus(), 0);
  EXPECT_STREQ(attribute->CameraSerialNumber(), "USB-2D");
  EXPECT_STREQ(attribute->CameraModel(), "ZS-A1600");
  EXPECT_STREQ(attribute->CameraManufactureName(), "ZynCamera Simulation");
  EXPECT_STREQ(attribute->CameraVersion(), "1.0");
  EXPECT_STREQ(attribute->CameraIp(), "");
}

TEST_F(Usb3, ByProtocolFindsUsbCamerasAndNoOthers) {
  ZYNSDK::ZynCameraArray cameras;
  ASSERT_EQ(ZYNSDK::DiscoveryCamerasByProtocolType(2, &cameras), 0);
  ASSERT_EQ(cameras.length(), 1U);
  EXPECT_STREQ(AttributeOf(cameras[0])->CameraSerialNumber(), "USB-2D");
  ASSERT_EQ(ZYNSDK::DiscoveryCamerasByProtocolType(1, &cameras), 0);
  EXPECT_EQ(cameras.length(), 0U);
}

TEST_F(Usb3, FeaturesOfEveryModuleAreThere) {
  ZynCamera camera = Open();
  EXPECT_EQ(chain::GetInt(camera, "Width"), kColumns);
  EXPECT_EQ(chain::GetInt(camera, "PayloadSize"), kColumns * kRows);
  for (int source = 0; source <= 4; ++source) {
    GenApi::INodeMap* map = ZYNSDK::Get2DCameraNodeMap(&camera, static_cast<ZYNSDK::ZynXmlSource>(source));
    ASSERT_NE(map, nullptr) << source;
    EXPECT_NE(map->GetNode("Root"), nullptr) << source;
  }
  GenApi::INodeMap* usb = ZYNSDK::Get2DCameraNodeMap(&camera, ZYNSDK::ZYN_XML_INTERFACE);
  EXPECT_STREQ(GenApi::CValuePtr(usb->GetNode("InterfaceType"))->ToString().c_str(), "USB3Vision");
  EXPECT_STREQ(GenApi::CValuePtr(usb->GetNode("U3vDeviceGUID"))->ToString().c_str(), camera_.Guid().c_str());
}

TEST_F(Usb3, ImagesHaveTheRightPixelsAfterEveryStart) {
  ZynCamera camera = Open();
  for (int round = 0; round < 3; ++round) {
    ASSERT_EQ(camera.StartGrab(ZYNSDK::ZYN_GRAB_ONE_BY_ONE, 0), 0);
    for (int frame = 1; frame <= 20; ++frame) {
      ZynImage image;
      ASSERT_EQ(camera.GrabImage(&image, nullptr), 0) << frame;
      ExpectRamp(image, frame);
    }
    ASSERT_EQ(camera.StopGrab(), 0);
  }
}

TEST_F(Usb3, ChunksAreReadFromTheFrameTheyCameWith) {
  ZynCamera camera = Open();
  SetText("ChunkModeActive", "1");
  SetText("ChunkSelector", "FrameID");
  SetText("ChunkEnable", "1");
  ASSERT_EQ(camera.StartGrab(ZYNSDK::ZYN_GRAB_ONE_BY_ONE, 0), 0);
  for (int frame = 1; frame <= 5; ++frame) {
    ZynImage image;
    ZYNSDK::ZynChunkData chunk;
    ASSERT_EQ(camera.GrabImage(&image, &chunk), 0) << frame;
    ExpectRamp(image, frame);
    ASSERT_EQ(chunk.getLength(), 8U);
    EXPECT_EQ(chunk[7], frame) << "the most significant byte is first";
  }
}

TEST_F(Usb3, ACameraPulledInMidStreamEndsTheWaitAndTheSameHandleWorksWhenItIsBack) {
  ZynCamera camera = Open();
  ASSERT_EQ(camera.SetGrabTimeout(20000), 0);
  for (int round = 0; round < 2; ++round) {
    ASSERT_EQ(camera.StartGrab(ZYNSDK::ZYN_GRAB_ONE_BY_ONE, 0), 0);
    ZynImage image;
    ASSERT_EQ(camera.GrabImage(&image, nullptr), 0);
    camera_.Unplug();
    long status = 0;
    while (status == 0) status = camera.GrabImage(&image, nullptr);  // frames that had come before
    EXPECT_EQ(status, kDeviceLost);
    EXPECT_TRUE(WaitUntilListed(false));
    camera.StopGrab();
    EXPECT_EQ(camera.Close(), 0);

    camera_.Plug();
    ASSERT_TRUE(WaitUntilListed(true));
    EXPECT_EQ(AttributeOf(camera)->CameraStatus(), 0);
    ASSERT_EQ(camera.Open(nullptr), 0);
  }
}

TEST_F(Usb3, ACameraOpenedElsewhereIsBusy) {
  ZynCamera camera = chain::Find("USB-2D");
  camera_.HoldByAnother();
  EXPECT_TRUE(chain::WaitForStatus("USB-2D", ZYNSDK::ZYN_CAMERA_IN_USE));
  EXPECT_NE(camera.Open(nullptr), 0);
  camera_.LetGo();
  EXPECT_TRUE(chain::WaitForStatus("USB-2D", ZYNSDK::ZYN_CAMERA_FREE));
  EXPECT_EQ(camera.Open(nullptr), 0);
  EXPECT_EQ(camera.Close(), 0);
}

TEST_F(Usb3, ALaserCameraDeliversTheScene) {
  const UsbCamera laser("KEL-LP2000", "USB-3D", 2);
  ZYNSDK::Zyn3DCamera camera;
  ZYNSDK::Zyn3DCameraArray cameras;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (cameras.length() == 0 && std::chrono::steady_clock::now() < deadline)
    ASSERT_EQ(ZYNSDK::Discovery3DCameras(&cameras), 0);
  ASSERT_EQ(cameras.length(), 1U);
  camera = cameras[0];
  ASSERT_EQ(camera.Open(), 0);
  ASSERT_EQ(camera.SetBatchCount(100), 0);
  ASSERT_EQ(camera.StartGrab(ZYNSDK::ZYN_3D_GRAB_BATCH), 0);
  ZYNSDK::ZynRangeImage range;
  ZynImage intensity;
  ASSERT_EQ(camera.GrabBatchData(&range, &intensity), 0);
  ASSERT_EQ(range.Height(), 100);
  const auto* height = static_cast<const std::uint16_t*>(range.Data());
  int wrong = 0;
  for (int row = 0; row < range.Height(); ++row) {
    for (int x = 0; x < range.Width(); ++x, ++height) wrong += *height == scene::SceneHeight(row, x) ? 0 : 1;
  }
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(camera.StopGrab(), 0);
  EXPECT_EQ(camera.Close(), 0);
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (!zyntest::IsPrivateNetwork() || !zyntest::usb3::HasVirtualUsb()) {
    std::fprintf(stderr, "These tests send packets and need a virtual USB. Run them through ctest.\n");
    return 2;
  }
  ZYNSDK::ZynSDKInit();
  const int result = RUN_ALL_TESTS();
  ZYNSDK::ZynSDKUnInit();
  return result;
}
