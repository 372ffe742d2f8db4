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

TEST(LaserCamera, AChangedBatchSizeChangesTheNumberOfBatches) {
  Camera camera("KEL-LP2000");
  SetSwitches(camera, false, true, true);
  camera.Set("AcquisitionLineRateEnable", "0");
  camera.Set("AcquisitionLineCount", "250");
  EXPECT_EQ(camera.Get("AcquisitionFrameCount"), "250") << "two names of one number";
  camera.Set("BatchNumber", "100");
  camera.Set("AcquisitionMode", "SingleFrame");
  camera.Execute("AcquisitionStart");
  for (int batch = 0; batch < 3; ++batch) {
    ASSERT_EQ(camera.Take(), FrameResult::written);
    EXPECT_EQ(Identifier(camera), 1U);
  }
  EXPECT_FALSE(camera.model->IsAcquiring()) << "one scan was asked for";
}

TEST(LaserCamera, TheChunkTellsTheFirstProfile) {
  Camera camera("KEL-LP2000");
  SetSwitches(camera, false, true, true);
  camera.Set("AcquisitionLineRateEnable", "0");
  camera.Execute("AcquisitionStart");
  camera.model->GetFaults().DropFrames(2);
  EXPECT_EQ(camera.Take(), FrameResult::dropped);
  EXPECT_EQ(camera.Take(), FrameResult::dropped);
  ASSERT_EQ(camera.Take(), FrameResult::written);
  EXPECT_EQ(LoadBig(camera.buffer.data() + Chunk(camera, kEncoderChunk).offset, 8), 200U);
  EXPECT_EQ(WrongPoints(camera, 200, 100, 2000), 0) << "the belt went on";
}

TEST(LaserCamera, TheRulerTellsProfilesOfDifferentPeriodsApart) {
  EXPECT_EQ(scene::SceneHeight(0, 500), scene::SceneHeight(scene::kPeriod, 500));
  EXPECT_NE(scene::SceneHeight(0, 5), scene::SceneHeight(scene::kPeriod, 5));
}

TEST(LaserCamera, TheSceneStaysWithinTheMeasuringRange) {
  for (std::int64_t profile = 0; profile < scene::kRulerPeriod; profile += 7) {
    for (std::int64_t point = 0; point < 2000; ++point) {
      const int height = scene::SceneHeight(profile, point);
      ASSERT_GE(height, scene::kLowest);
      ASSERT_LE(height, scene::kHighest);
      const int row = scene::SceneSensorRow(profile, point);
      ASSERT_GE(row, 0);
      ASSERT_LE(row, 1023);
      const int intensity = scene::SceneIntensity(profile, point);
      ASSERT_GE(intensity, 8);
      ASSERT_LE(intensity, 255);
    }
  }
}

TEST(LaserCamera, TheSceneHasItsShapes) {
  EXPECT_EQ(scene::SceneHeight(500, 520), scene::kZero + 12000) << "top of the dome";
  EXPECT_EQ(scene::SceneHeight(500, 760), scene::kZero) << "its foot";
  EXPECT_EQ(scene::SceneHeight(199, 150), scene::kZero) << "first step";
  EXPECT_EQ(scene::SceneHeight(200, 150), scene::kZero + 2000) << "second step";
  EXPECT_EQ(scene::SceneHeight(0, 930), scene::kZero - 6000) << "groove";
  EXPECT_EQ(scene::SceneHeight(100, 1300), scene::kZero + 1400) << "ramp";
  EXPECT_EQ(scene::SceneHeight(0, 1750), scene::kZero + 1000) << "teeth";
}

TEST(LaserCamera, APartOfTheSensorShowsThatPartOfTheScene) {
  Camera camera("KEL-LP2000");
  SetSwitches(camera, true, false, false);
  camera.Set("Width", "200");
  camera.Set("OffsetX", "16");
  camera.Set("Height", "400");
  camera.Set("OffsetY", "200");
  EXPECT_EQ(camera.Get("OutlineLengthMax"), "200");
  EXPECT_FLOAT_EQ(static_cast<float>(camera.Float("XSizeInfo").GetValue()), 4.0F);
  camera.Execute("AcquisitionStart");
  camera.clock.Advance(10'000'000);
  ASSERT_EQ(camera.Take(), FrameResult::written);
  ASSERT_EQ(camera.frame.imageSize, 200U * 400U);
  for (std::uint32_t x = 0; x < 200; ++x) {
    const std::uint8_t* record = Record(camera, x);
    ASSERT_EQ(((record[1] & 3) << 8) | record[2], scene::SceneSensorRow(0, x + 16));
    ASSERT_EQ(record[1], scene::SceneSensorIntensity(0, x + 16));
    for (std::uint32_t y = 0; y < 400; ++y) {
      ASSERT_EQ(camera.buffer[y * 200 + x], scene::SceneSensorPixel(0, x + 16, static_cast<int>(y) + 200));
    }
  }
}

TEST(LaserCamera, WithoutExtractionOnlyTheSensorImageComes) {
  Camera camera("KEL-LP2000");
  camera.Set("EnableExtraction", "0");
  EXPECT_EQ(camera.Get("ChunkModeActive"), "0");
  camera.Execute("AcquisitionStart");
  camera.clock.Advance(10'000'000);
  ASSERT_EQ(camera.Take(), FrameResult::written);
  EXPECT_TRUE(camera.frame.hasImage);
  EXPECT_EQ(camera.frame.chunkCount, 0U);
  EXPECT_EQ(camera.frame.size, 2000U * 1024U);
}

TEST(LaserCamera, BatchesCarryNoImage) {
  Camera camera("KEL-LP2000");
  SetSwitches(camera, true, true, true);
  camera.Execute("AcquisitionStart");
  camera.clock.Advance(100'000'000);
  ASSERT_EQ(camera.Take(), FrameResult::written);
  EXPECT_FALSE(camera.frame.hasImage);
  EXPECT_EQ(camera.frame.imageSize, 0U);
  EXPECT_EQ(camera.frame.chunks[0].id, kProfileChunk);
}

TEST(LaserCamera, ChunksFollowEachOtherWithTheirTags) {
  Camera camera("KEL-LP2000");
  SetSwitches(camera, true, false, false);
  camera.Execute("AcquisitionStart");
  camera.clock.Advance(10'000'000);
  ASSERT_EQ(camera.Take(), FrameResult::written);
  const std::uint32_t ids[] = {kImageChunk, kProfileChunk, kFrameIdChunk, kEncoderChunk};
  ASSERT_EQ(camera.frame.chunkCount, 4U);
  std::size_t at = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    const FrameChunk& chunk = camera.frame.chunks[i];
    EXPECT_EQ(chunk.id, ids[i]);
    EXPECT_EQ(chunk.offset, at);
    at += chunk.length;
    EXPECT_EQ(LoadBig(camera.buffer.data() + at, 4), chunk.id);
    EXPECT_EQ(LoadBig(camera.buffer.data() + at + 4, 4), chunk.length);
    at += 8;
  }
  EXPECT_EQ(at, camera.frame.size);
  EXPECT_EQ(at, camera.model->PayloadSize());
}

TEST(LaserCamera, ComesAtItsLineRate) {
  Camera camera("KEL-LP2000");
  SetSwitches(camera, false, true, false);
  camera.Set("AcquisitionLineRate", "20000");
  camera.Execute("AcquisitionStart");
  EXPECT_EQ(camera.model->NextFrameDueNs(), 50'000);
  camera.Set("ExposureTime", "100");
  EXPECT_EQ(camera.model->NextFrameDueNs(), 100'000) << "the exposure takes longer";
  camera.Execute("AcquisitionStop");
  camera.Set("EnableImage", "1");
  EXPECT_EQ(camera.Float("ResultingLineRate").GetValue(), 100) << "reading the sensor out takes longer";
}

TEST(LaserCamera, ATriggerStartsAWholeScan) {
  Camera camera("KEL-LP2000");
  SetSwitches(camera, false, true, true);
  camera.Set("AcquisitionLineRateEnable", "0");
  camera.Set("AcquisitionLineCount", "200");
  camera.Set("TriggerMode", "On");
  camera.Execute("AcquisitionStart");
  for (std::uint64_t scan = 1; scan <= 2; ++scan) {
    EXPECT_EQ(camera.Take(), FrameResult::notDue);
    camera.Execute("TriggerSoftware");
    for (int batch = 0; batch < 2; ++batch) {
      ASSERT_EQ(camera.Take(), FrameResult::written);
      EXPECT_EQ(Identifier(camera), scan);
    }
  }
}

TEST(LaserCamera, TheEncoderTriggersProfiles) {
  Camera camera("KEL-LP2000");
  SetSwitches(camera, false, true, true);
  camera.Set("TriggerSelector", "LineStart");
  camera.Set("TriggerMode", "On");
  camera.Set("TriggerSource", "Encoder0");
  camera.Set("EncoderDivider", "3");
  camera.Execute("AcquisitionStart");
  camera.model->TurnEncoder(299);
  EXPECT_EQ(camera.Take(), FrameResult::notDue);
  camera.model->TurnEncoder(1);
  EXPECT_EQ(camera.Take(), FrameResult::written);
  EXPECT_EQ(camera.Take(), FrameResult::notDue);
}

TEST(LaserCamera, ModelsDifferInTheFeaturesThatToldThemApart) {
  struct Row {
    const char* model;
    bool lineCount, frameCount, outlineLength;
  };
  const Row rows[] = {
      {"KEL-LP2000", true, true, true}, {"KEL-LP1000F", false, true, true}, {"VX7-2000", true, false, false}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.model);
    Camera camera(row.model);
    EXPECT_EQ(camera.Has("AcquisitionLineCount"), row.lineCount);
    EXPECT_EQ(camera.Has("AcquisitionFrameCount"), row.frameCount);
    EXPECT_EQ(camera.Has("OutlineLengthMax"), row.outlineLength);
    EXPECT_EQ(camera.Float("ZUpSizeInfo").GetValue(), 24);
    EXPECT_EQ(camera.Float("ZDownSizeInfo").GetValue(), -24);
  }
}

TEST(LaserCamera, TheDescriptionFindsTheIdentifierInItsChunk) {
  Camera camera("KEL-LP2000");
  const std::string text(camera.model->Description());
  EXPECT_NE(text.find("<ChunkID>5A000003</ChunkID>"), std::string::npos);
  GenICam::gcstring value;
  GenICam::gcstring attribute;
  ASSERT_TRUE(camera.Node("ChunkFrameIDReg").GetProperty("pPort", value, attribute));
  EXPECT_EQ(value, "FrameIdChunk");
}

}  // namespace
