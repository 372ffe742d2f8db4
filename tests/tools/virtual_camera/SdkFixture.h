/// What tests of the SDK against the virtual camera share.
#ifndef ZYN_TEST_SDK_FIXTURE_H
#define ZYN_TEST_SDK_FIXTURE_H

#include <ZynCamera.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "VirtualCameraProcess.h"

namespace zyntest {

/// The SDK is ready in each test. Serial numbers should differ from test to test: the SDK remembers its cameras.
class SdkFixture : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(ZYNSDK::ZynSDKInit(), 0); }
  void TearDown() override { EXPECT_EQ(ZYNSDK::ZynSDKUnInit(), 0); }

  /// Opens the camera with this serial number, from a fresh search.
  static void Open(ZYNSDK::ZynCamera& camera, const char* serial) {
    ZYNSDK::ZynCameraArray cameras;
    ASSERT_EQ(ZYNSDK::DiscoveryCameras(&cameras), 0);
    ASSERT_EQ(ZYNSDK::DiscoveryCamera(serial, &camera), 0) << serial;
    ASSERT_EQ(camera.Open(nullptr), 0) << serial;
  }
  static void Open(ZYNSDK::Zyn3DCamera& camera, const char* serial) {
    ZYNSDK::Zyn3DCameraArray cameras;
    ASSERT_EQ(ZYNSDK::Discovery3DCameras(&cameras), 0);
    ASSERT_EQ(ZYNSDK::Discovery3DCamera(serial, &camera), 0) << serial;
    ASSERT_EQ(camera.Open(), 0) << serial;
  }

  static void SetInt(ZYNSDK::ZynCamera& camera, const char* name, int value) {
    ZYNSDK::ZynNode node;
    ASSERT_EQ(camera.GetRemoteNode(name, &node), 0) << name;
    ASSERT_EQ(node.SetInt(value), 0) << name;
  }
  static int GetInt(ZYNSDK::ZynCamera& camera, const char* name) {
    ZYNSDK::ZynNode node;
    int value = -1;
    EXPECT_EQ(camera.GetRemoteNode(name, &node), 0) << name;
    EXPECT_EQ(node.GetInt(&value, nullptr, nullptr, nullptr), 0) << name;
    return value;
  }
  static void SetEnum(ZYNSDK::ZynCamera& camera, const char* name, const std::string& entry) {
    ZYNSDK::ZynNode node;
    ASSERT_EQ(camera.GetRemoteNode(name, &node), 0) << name;
    ASSERT_EQ(node.SetEnumString({entry.data(), static_cast<unsigned int>(entry.size())}), 0) << name;
  }
  static void SetBool(ZYNSDK::ZynCamera& camera, const char* name, bool value) {
    ZYNSDK::ZynNode node;
    ASSERT_EQ(camera.GetRemoteNode(name, &node), 0) << name;
    ASSERT_EQ(node.SetBool(value), 0) << name;
  }
  static void SetFloat(ZYNSDK::ZynCamera& camera, const char* name, float value) {
    ZYNSDK::ZynNode node;
    ASSERT_EQ(camera.GetRemoteNode(name, &node), 0) << name;
    ASSERT_EQ(node.SetFloat(value), 0) << name;
  }
  /// Small images in quick succession that differ from one to the next: pixel x of image n is (x + n) mod 256.
  static void ShowMovingRamp(ZYNSDK::ZynCamera& camera) {
    SetInt(camera, "Height", 48);
    SetFloat(camera, "AcquisitionFrameRateAbs", 200.0F);
    SetFloat(camera, "ExposureTimeAbs", 1000.0F);
    SetEnum(camera, "TestPattern", "GreyHorizontalRampMoving");
  }
  /// How many pixels are not those of the image that the first pixel belongs to.
  static int WrongPixels(const ZYNSDK::ZynImage& image) {
    int wrong = 0;
    const int first = image.ImageData()[0];
    for (int y = 0; y < image.Height(); ++y) {
      const unsigned char* row = image.ImageData() + static_cast<std::ptrdiff_t>(y) * image.Step();
      for (int x = 0; x < image.Width(); ++x) wrong += row[x] == (first + x) % 256 ? 0 : 1;
    }
    return wrong;
  }
};

}  // namespace zyntest

#endif
