// Packets are lost, and the camera does not send them again: what is incomplete is marked, and nothing else is wrong.
#include <cstdint>

#include "SdkFixture.h"
#include "cameras/laser/Scene.h"

namespace {

using namespace ZYNSDK;
namespace scene = zyn::cameras::scene;

class WithoutResend : public zyntest::SdkFixture {
 protected:
  // Some of these must arrive, and some must be damaged, within so many frames.
  static constexpr int kEnough = 10;
  static constexpr int kMostFrames = 1000;

  bool Goes() const { return (good < kEnough || damaged < kEnough) && good + damaged < kMostFrames; }
  // True when the frame may be looked at.
  bool Count(long status) {
    ++(status == 0 ? good : damaged);
    if (status != 0) {
      EXPECT_EQ(status, ZYN_ERROR_INVALID_FRAME);
    }
    return status == 0;
  }
  void TearDown() override {
    EXPECT_GE(good, kEnough);
    EXPECT_GE(damaged, kEnough);
    SdkFixture::TearDown();
  }

  int good = 0;
  int damaged = 0;
};

TEST_F(WithoutResend, AnImageIsWholeOrMarkedIncomplete) {
  const zyntest::VirtualCameraProcess process(
      {"-m", "ZS-A640", "-s", "LOSS-1", "--loss", "10", "--no-resend"});
  ZynCamera camera;
  ASSERT_NO_FATAL_FAILURE(Open(camera, "LOSS-1"));
  ASSERT_NO_FATAL_FAILURE(ShowMovingRamp(camera));
  ASSERT_EQ(camera.StartGrab(ZYN_GRAB_ONE_BY_ONE, 0), 0);
  ZynImage image;
  while (Goes()) {
    if (!Count(camera.GrabImage(&image, nullptr))) continue;
    ASSERT_EQ(image.Height(), 48);
    ASSERT_EQ(WrongPixels(image), 0) << "frame " << good + damaged;
  }
  EXPECT_EQ(camera.StopGrab(), 0);
  EXPECT_EQ(camera.Close(), 0);
}

TEST_F(WithoutResend, AContourIsTheSceneOrMarkedIncomplete) {
  const zyntest::VirtualCameraProcess process(
      {"-m", "KEL-LP2000", "-s", "LOSS-2", "--loss", "50", "--no-resend"});
  Zyn3DCamera camera;
  ASSERT_NO_FATAL_FAILURE(Open(camera, "LOSS-2"));
  ASSERT_EQ(camera.StartGrab(ZYN_3D_GRAB_CONTOUR), 0);
  Zyn3DIntArray heights;
  ZynImage intensity;
  std::int64_t last = -1;
  while (Goes()) {
    if (!Count(camera.GrabContour(&heights, &intensity))) {
      EXPECT_EQ(heights.Length(), 0);
      continue;
    }
    ASSERT_EQ(heights.Length(), 2000);
    const std::int64_t profile = heights[0] - scene::kRulerBase;
    EXPECT_GT(profile, last);
    last = profile;
    int wrong = 0;
    for (int x = 0; x < 2000; ++x) {
      const bool isRight = heights[x] == scene::SceneHeight(profile, x) &&
                           intensity.ImageData()[x] == scene::SceneIntensity(profile, x);
      wrong += isRight ? 0 : 1;
    }
    ASSERT_EQ(wrong, 0) << "profile " << profile;
  }
  EXPECT_EQ(camera.StopGrab(), 0);
  EXPECT_EQ(camera.Close(), 0);
}

TEST_F(WithoutResend, AScanHasOnlyRowsOfTheScene) {
  const zyntest::VirtualCameraProcess process(
      {"-m", "KEL-LP2000", "-s", "LOSS-3", "--loss", "2", "--no-resend"});
  Zyn3DCamera camera;
  ASSERT_NO_FATAL_FAILURE(Open(camera, "LOSS-3"));
  ASSERT_EQ(camera.SetBatchCount(100), 0);
  ASSERT_EQ(camera.StartGrab(ZYN_3D_GRAB_BATCH), 0);
  ZynRangeImage range;
  ZynImage intensity;
  while (Goes()) {
    if (!Count(camera.GrabBatchData(&range, &intensity))) continue;
    const auto* height = static_cast<const std::uint16_t*>(range.Data());
    ASSERT_EQ(range.Height(), 100);
    for (int row = 0; row < range.Height(); ++row) {
      // A row that never came is zero; all rows of a frame that did not come stay as they were.
      const bool isThere = *height != 0;
      const std::int64_t profile = *height - scene::kRulerBase;
      int wrong = 0;
      for (int x = 0; x < range.Width(); ++x, ++height)
        wrong += *height == (isThere ? scene::SceneHeight(profile, x) : 0) ? 0 : 1;
      ASSERT_EQ(wrong, 0) << "row " << row;
    }
  }
  EXPECT_EQ(camera.StopGrab(), 0);
  EXPECT_EQ(camera.Close(), 0);
}

}  // namespace
