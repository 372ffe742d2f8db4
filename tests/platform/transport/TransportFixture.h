/// Runs the transport over mock producers.
#ifndef ZYN_TESTS_TRANSPORT_FIXTURE_H
#define ZYN_TESTS_TRANSPORT_FIXTURE_H

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include <KELGeniCam.h>

#include "mock/MockProducer.h"

namespace zyn::transport_test {

using mock::MockDevice;
using mock::MockFrame;
using mock::MockInterface;
using mock::MockProducer;
using InfoList = std::list<KELGENICAM::ICameraInfo*>;

/// The mock inside a .cti file; the process keeps it loaded.
inline MockProducer& LoadMock(const char* path) {
  void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (!library) throw std::runtime_error(dlerror());
  ZynMockFunction function = nullptr;
  void* symbol = dlsym(library, "ZynMock");
  std::memcpy(&function, &symbol, sizeof(function));
  return *function();
}

struct ReleaseCamera {
  void operator()(KELGENICAM::ICamera* camera) const { camera->Release(); }
};
using CameraPtr = std::unique_ptr<KELGENICAM::ICamera, ReleaseCamera>;

struct ReleaseImage {
  void operator()(KELGENICAM::IImage* image) const { image->Release(); }
};
using ImagePtr = std::unique_ptr<KELGENICAM::IImage, ReleaseImage>;

/// Each test begins with clean mocks and ends with a check that the transport made no mistake and left nothing
/// open.
class TransportTest : public testing::Test {
 protected:
  void SetUp() override {
    for (MockProducer* producer : {&mock_, &old_, &allocating_}) producer->Reset();
    SetPath(ZYN_MOCK_CTI);
  }

  void TearDown() override {
    while (KELGENICAM::UnInit() == KELGENICAM::RESULT_OK) {
    }
    for (MockProducer* producer : {&mock_, &old_, &allocating_}) {
      EXPECT_TRUE(producer->AwaitClosed());  // lost devices are closed in the background
      EXPECT_EQ(producer->Mistakes(), 0) << producer->FirstMistake();
    }
  }

  static void SetPath(const std::string& path) { setenv("GENICAM_GENTL64_PATH", path.c_str(), 1); }

  static InfoList Discover(const char* filter = nullptr) {
    InfoList found;
    EXPECT_EQ(KELGENICAM::Discovery(filter, found), KELGENICAM::RESULT_OK);
    return found;
  }

  /// One interface with one camera, initialised and found.
  KELGENICAM::ICameraInfo* OneCamera(MockProducer& producer, const MockDevice& device = {"cam", "SN1"}) {
    producer.SetInterfaces({MockInterface{"if0", "GEV", {device}}});
    EXPECT_EQ(KELGENICAM::Init(), KELGENICAM::RESULT_OK);
    const InfoList found = Discover();
    EXPECT_EQ(found.size(), 1U);
    return found.empty() ? nullptr : found.front();
  }

  CameraPtr OpenOne(MockProducer& producer, const MockDevice& device = {"cam", "SN1"}) {
    CameraPtr camera(KELGENICAM::CreateCamera(OneCamera(producer, device)));
    EXPECT_EQ(camera->Open(KELGENICAM::ACCESS_CONTROL), KELGENICAM::RESULT_OK);
    return camera;
  }

  static ImagePtr GrabOne(KELGENICAM::ICamera& camera, int timeoutMs = 10000) {
    KELGENICAM::IImage* image = nullptr;
    EXPECT_EQ(camera.Grab(&image, timeoutMs), KELGENICAM::RESULT_OK);
    return ImagePtr(image);
  }

  static int GrabResult(KELGENICAM::ICamera& camera, int timeoutMs) {
    KELGENICAM::IImage* image = nullptr;
    const int result = camera.Grab(&image, timeoutMs);
    if (image) image->Release();
    return result;
  }

  static MockFrame Frame(std::uint64_t id) {
    MockFrame frame;
    frame.frameId = id;
    frame.fill = static_cast<unsigned char>(id);
    return frame;
  }

  MockProducer& mock_ = LoadMock(ZYN_MOCK_CTI);
  MockProducer& old_ = LoadMock(ZYN_MOCK_OLD_CTI);
  MockProducer& allocating_ = LoadMock(ZYN_MOCK_ALLOCATING_CTI);
};

}  // namespace zyn::transport_test

#endif
