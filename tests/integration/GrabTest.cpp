#include <GenApi/GenApi.h>
#include <KELGeniCam.h>
#include <ZynCamera.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <future>
#include <list>
#include <string>
#include <vector>

#include "Chain.h"
#include "FakeGigeCamera.h"

namespace {

using ZYNSDK::ZynCamera;
using ZYNSDK::ZynImage;
using zyntest::FakeGigeCamera;

constexpr int kDeviceLost = -6;
constexpr int kFrames = 1000;

/// A fake camera on the wire, opened and set to small fast frames.
class Grab : public testing::Test {
 protected:
  void SetUp() override {
    camera_ = chain::Find("GV01");
    ASSERT_EQ(camera_.Open(nullptr), 0);
    SetUpFrames();
  }
  void TearDown() override {
    camera_.StopGrab();
    camera_.Close();
  }
  void SetUpFrames() {
    chain::SetInt(camera_, "Width", 320);
    chain::SetInt(camera_, "Height", 240);
    chain::SetFloat(camera_, "AcquisitionFrameRate", 100.0F);
    chain::SetFloat(camera_, "ExposureTime", 10000.0F);
  }

  FakeGigeCamera fake_{1};
  ZynCamera camera_;
};

TEST_F(Grab, DeliversImagesOfTheSizeThatWasSet) {
  ASSERT_EQ(camera_.StartGrab(ZYNSDK::ZYN_GRAB_ONE_BY_ONE, 0), 0);
  EXPECT_TRUE(camera_.IsGrabbing());
  ZynImage image;
  ASSERT_EQ(camera_.GrabImage(&image, nullptr), 0);
  EXPECT_EQ(image.Width(), 320);
  EXPECT_EQ(image.Height(), 240);
  EXPECT_EQ(image.Step(), 320);
  EXPECT_EQ(image.Channels(), 1);
  EXPECT_EQ(image.BitDepth(), 0);
  ASSERT_NE(image.ImageData(), nullptr);
  // The camera's test pattern is a ramp that moves on with every frame: it is not one grey.
  const unsigned char* row = image.ImageData();
  EXPECT_NE(std::vector<unsigned char>(row, row + 320), std::vector<unsigned char>(320, row[0]));
  EXPECT_EQ(camera_.StopGrab(), 0);
  EXPECT_FALSE(camera_.IsGrabbing());
}

TEST_F(Grab, AThousandFramesArriveWithoutALoss) {
  ASSERT_EQ(camera_.StartGrab(ZYNSDK::ZYN_GRAB_ONE_BY_ONE, 0), 0);
  ZynImage image;
  for (int i = 0; i < kFrames; ++i) ASSERT_EQ(camera_.GrabImage(&image, nullptr), 0) << "frame " << i;
}

TEST_F(Grab, CodesOfAStoppedAndAClosedCameraDiffer) {
  ZynImage image;
  EXPECT_EQ(camera_.GrabImage(&image, nullptr), 101011);
  EXPECT_EQ(camera_.GrabImage(nullptr, nullptr), 101050);
  ASSERT_EQ(camera_.StartGrab(ZYNSDK::ZYN_GRAB_ONE_BY_ONE, 0), 0);
  EXPECT_EQ(camera_.StartGrab(ZYNSDK::ZYN_GRAB_ONE_BY_ONE, 0), 101012);
  EXPECT_EQ(camera_.StopGrab(), 0);
  EXPECT_EQ(camera_.Close(), 0);
  EXPECT_EQ(camera_.GrabImage(&image, nullptr), 101010);
  EXPECT_EQ(camera_.StopGrab(), 101011);
}

TEST_F(Grab, ACountedGrabDeliversThatManyFrames) {
  ASSERT_EQ(camera_.StartGrab(ZYNSDK::ZYN_GRAB_ONE_BY_ONE, 5), 0);
  ZynImage image;
  for (int i = 0; i < 5; ++i) EXPECT_EQ(camera_.GrabImage(&image, nullptr), 0) << i;
  EXPECT_EQ(camera_.GrabImage(&image, nullptr), KELGENICAM::RESULT_FINISHED);
}

TEST_F(Grab, AnImageOutlivesTheStreamAndTheCamera) {
  ASSERT_EQ(camera_.StartGrab(ZYNSDK::ZYN_GRAB_ONE_BY_ONE, 0), 0);
  ZynImage image;
  ASSERT_EQ(camera_.GrabImage(&image, nullptr), 0);
  const std::vector<unsigned char> before(image.ImageData(),
                                          image.ImageData() + image.Step() * image.Height());
  ASSERT_EQ(camera_.StopGrab(), 0);
  ASSERT_EQ(camera_.Close(), 0);
  EXPECT_EQ(std::memcmp(image.ImageData(), before.data(), before.size()), 0);
}

TEST_F(Grab, TheCameraKilledInMidStreamEndsTheWaitAndTheSameHandleWorksAfterItsRestart) {
  ASSERT_EQ(camera_.SetGrabTimeout(20000), 0);
  ASSERT_EQ(camera_.StartGrab(ZYNSDK::ZYN_GRAB_ONE_BY_ONE, 0), 0);
  ZynImage image;
  ASSERT_EQ(camera_.GrabImage(&image, nullptr), 0);

  const auto killed = std::chrono::steady_clock::now();
  fake_.Kill();
  long result = 0;
  while (result == 0 || result == 101084)
    result = camera_.GrabImage(&image, nullptr);  // frames still on their way
  const auto noticed = std::chrono::steady_clock::now() - killed;
  EXPECT_EQ(result, kDeviceLost);
  EXPECT_LT(noticed, std::chrono::seconds(3));
  EXPECT_FALSE(camera_.IsOpen()) << "open, but no longer online";
  EXPECT_EQ(camera_.GrabImage(&image, nullptr), kDeviceLost) << "and again, without waiting";
  camera_.StopGrab();
  EXPECT_EQ(camera_.Close(), 0);

  fake_.Start();
  ASSERT_TRUE(chain::WaitForStatus("GV01", 0));
  ASSERT_EQ(camera_.Open(nullptr), 0);
  SetUpFrames();
  ASSERT_EQ(camera_.StartGrab(ZYNSDK::ZYN_GRAB_ONE_BY_ONE, 0), 0);
  EXPECT_EQ(camera_.GrabImage(&image, nullptr), 0);
}

TEST_F(Grab, CloseEndsAWaitOnAnotherThread) {
  ASSERT_EQ(camera_.SetGrabTimeout(20000), 0);
  chain::SetFloat(camera_, "AcquisitionFrameRate", 1.0F);
  ASSERT_EQ(camera_.StartGrab(ZYNSDK::ZYN_GRAB_ONE_BY_ONE, 0), 0);
  auto waiting = std::async(std::launch::async, [this] {
    ZynImage image;
    long result = 0;
    while (result == 0) result = camera_.GrabImage(&image, nullptr);
    return result;
  });
  EXPECT_EQ(camera_.StopGrab(), 0);
  EXPECT_NE(waiting.get(), 0) << "aborted, or no longer grabbing";
}

/// The same stream one layer below, where frames have identifiers.
TEST(TransportGrab, IdentifiersOfAThousandFramesAreInOrder) {
  const FakeGigeCamera fake(1);
  std::list<KELGENICAM::ICameraInfo*> found;
  ASSERT_EQ(KELGENICAM::Discovery("GV01", found), 0);
  ASSERT_EQ(found.size(), 1U);
  KELGENICAM::ICamera* camera = KELGENICAM::CreateCamera(found.front());
  ASSERT_NE(camera, nullptr);
  ASSERT_EQ(camera->Open(KELGENICAM::ACCESS_CONTROL), 0);
  const GenApi_3_4::CFloatPtr rate(camera->RemoteDeviceNodeMap()->NodeMap()->GetNode("AcquisitionFrameRate"));
  if (rate.IsValid()) rate->SetValue(100.0);
  ASSERT_EQ(camera->StartGrabbing(KELGENICAM::GRAB_ONE_BY_ONE, -1), 0);
  long long previous = -1;
  for (int i = 0; i < kFrames; ++i) {
    KELGENICAM::IImage* image = nullptr;
    ASSERT_EQ(camera->Grab(&image, 5000), 0) << "frame " << i;
    EXPECT_TRUE(image->IsValid());
    const long long id = image->FrameID();
    image->Release();
    // The camera counts in 16 bits and begins near their end: the producer counts on where it wraps.
    if (i > 0) {
      ASSERT_EQ(id, previous + 1) << "frame " << i;
    }
    previous = id;
  }
  EXPECT_EQ(camera->StopGrabbing(), 0);
  camera->Release();
}

}  // namespace
