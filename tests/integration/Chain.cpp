#include "Chain.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <vector>

namespace chain {

using ZYNSDK::ZynCamera;

bool IsListed(const std::string& serial) {
  ZYNSDK::ZynCameraArray cameras;
  EXPECT_EQ(ZYNSDK::DiscoveryCameras(&cameras), 0);
  for (unsigned int i = 0; i < cameras.length(); ++i) {
    const std::unique_ptr<ZYNSDK::ZynCameraAttribute> attribute(cameras[static_cast<int>(i)].Attribute());
    if (serial == attribute->CameraSerialNumber()) return true;
  }
  return false;
}

ZynCamera Find(const std::string& serial) {
  EXPECT_TRUE(IsListed(serial)) << serial;
  ZynCamera camera;
  EXPECT_EQ(ZYNSDK::DiscoveryCamera(serial.c_str(), &camera), 0) << serial;
  return camera;
}

bool WaitForStatus(const std::string& serial, int status) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (std::chrono::steady_clock::now() < deadline) {
    ZynCamera camera = Find(serial);
    const std::unique_ptr<ZYNSDK::ZynCameraAttribute> attribute(camera.Attribute());
    if (attribute->CameraStatus() == status) return true;
  }
  return false;
}

void SetInt(ZynCamera& camera, const char* name, int value) {
  ZYNSDK::ZynNode node;
  ASSERT_EQ(camera.GetRemoteNode(name, &node), 0) << name;
  ASSERT_EQ(node.SetInt(value), 0) << name;
}

void SetFloat(ZynCamera& camera, const char* name, float value) {
  ZYNSDK::ZynNode node;
  ASSERT_EQ(camera.GetRemoteNode(name, &node), 0) << name;
  ASSERT_EQ(node.SetFloat(value), 0) << name;
}

int GetInt(ZynCamera& camera, const char* name) {
  ZYNSDK::ZynNode node;
  int value = -1;
  EXPECT_EQ(camera.GetRemoteNode(name, &node), 0) << name;
  EXPECT_EQ(node.GetInt(&value, nullptr, nullptr, nullptr), 0) << name;
  return value;
}

}  // namespace chain
