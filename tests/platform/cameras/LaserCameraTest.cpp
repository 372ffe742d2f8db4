#include <gtest/gtest.h>

#include "CameraFixture.h"
#include "cameras/ChunkIds.h"
#include "cameras/laser/Scene.h"
#include "cameras/registers/BigEndian.h"

namespace {

using namespace zyn::cameras;
using zyn::cameras::test::Camera;

// The four switches, as an application sets them for each kind of acquisition.
void SetSwitches(Camera& camera, bool image, bool calibration, bool batches) {
  camera.Set("EnableExtraction", "1");
  camera.Set("EnableImage", image ? "1" : "0");
  camera.Set("EnableCalibration", calibration ? "1" : "0");
  camera.Set("BatchEnable", batches ? "1" : "0");
}

const FrameChunk& Chunk(const Camera& camera, std::uint32_t id) {
  for (std::size_t i = 0; i < camera.frame.chunkCount; ++i) {
    if (camera.frame.chunks[i].id == id) return camera.frame.chunks[i];
  }
  throw std::runtime_error("no such chunk");
}

std::uint64_t Identifier(const Camera& camera) {
  return LoadBig(camera.buffer.data() + Chunk(camera, kFrameIdChunk).offset, 8);
}

const std::uint8_t* Record(const Camera& camera, std::size_t index) {
  return camera.buffer.data() + Chunk(camera, kProfileChunk).offset + index * 4;
}

// Number of points of a calibrated frame that are not as the scene's formula says.
int WrongPoints(const Camera& camera, std::int64_t firstProfile, std::int64_t profiles, std::int64_t width) {
  int wrong = 0;
  for (std::int64_t i = 0; i < profiles * width; ++i) {
    const std::uint8_t* record = Record(camera, static_cast<std::size_t>(i));
    const std::int64_t profile = firstProfile + i / width;
    const bool isRight = record[2] * 256 + record[3] == scene::SceneHeight(profile, i % width) &&
                         record[1] == scene::SceneIntensity(profile, i % width);
    wrong += isRight ? 0 : 1;
  }
  return wrong;
}

TEST(LaserCamera, AContourIsAProfileOfCalibratedHeightsWithoutImage) {
  Camera camera("KEL-LP2000");
  SetSwitches(camera, false, true, false);
  camera.Execute("AcquisitionStart");
  for (std::int64_t profile = 0; profile < 3; ++profile) {
    camera.clock.Advance(1'000'000);
    ASSERT_EQ(camera.Take(), FrameResult::written);
    EXPECT_FALSE(camera.frame.hasImage);
    EXPECT_EQ(camera.frame.chunks[0].id, kProfileChunk);
    EXPECT_EQ(camera.frame.chunks[0].length, 8000U);
    EXPECT_EQ(Identifier(camera), static_cast<std::uint64_t>(profile) + 1);
    EXPECT_EQ(WrongPoints(camera, profile, 1, 2000), 0);
  }
}

TEST(LaserCamera, TheSensorImageIsBrightestWhereItsProfileLies) {
  Camera camera("VX7-2000");
  SetSwitches(camera, true, false, false);
  camera.Execute("AcquisitionStart");
  camera.clock.Advance(10'000'000);
  ASSERT_EQ(camera.Take(), FrameResult::written);
  ASSERT_TRUE(camera.frame.hasImage);
  ASSERT_EQ(camera.frame.imageSize, 2000U * 1024U);
  ASSERT_EQ(camera.frame.chunks[1].id, kProfileChunk);
  for (std::size_t x = 0; x < 2000; ++x) {
    const std::uint8_t* record = Record(camera, x);
    const std::size_t row = ((record[1] & 3U) << 8U) | record[2];
    std::size_t brightest = 0;
    for (std::size_t y = 1; y < 1024; ++y) {
      if (camera.buffer[y * 2000 + x] > camera.buffer[brightest * 2000 + x]) brightest = y;
    }
    ASSERT_EQ(row, brightest) << "column " << x;
    ASSERT_EQ(camera.buffer[row * 2000 + x], record[1]) << "column " << x;
  }
}

TEST(LaserCamera, AScanConsistsOfFullBatchesWithOneIdentifier) {
  Camera camera("KEL-LP1000F");
  SetSwitches(camera, false, true, true);
  camera.Set("AcquisitionFrameCount", "1000");
  camera.Set("BatchNumber", "300");
  camera.Execute("AcquisitionStart");
  for (int batch = 0; batch < 9; ++batch) {
    camera.clock.Advance(300'000'000);
    ASSERT_EQ(camera.Take(), FrameResult::written);
    EXPECT_EQ(camera.frame.chunks[0].length, 300U * 1000U * 4U);
    EXPECT_EQ(Identifier(camera), static_cast<std::uint64_t>(batch / 4) + 1);
    EXPECT_EQ(WrongPoints(camera, batch * 300, 300, 1000), 0);
  }
}

}  // namespace
