#include <gtest/gtest.h>

#include "CameraFixture.h"
#include "cameras/ChunkIds.h"
#include "cameras/PixelFormats.h"
#include "cameras/area/TestPattern.h"
#include "cameras/registers/BigEndian.h"

namespace {

using namespace zyn::cameras;
using zyn::cameras::test::Camera;

constexpr std::int64_t kMs = 1'000'000;
constexpr std::int64_t kUnitBrightness = 256;

std::unique_ptr<Camera> SmallCamera() {
  auto camera = std::make_unique<Camera>("ZS-A1600");
  camera->Set("Width", "64");
  camera->Set("Height", "40");
  camera->Set("OffsetX", "300");
  camera->Set("OffsetY", "230");
  camera->Set("AcquisitionFrameRateEnable", "0");
  return camera;
}

// The value that a pixel must have in a format: the formula's upper bits.
struct FormatRow {
  const char* name;
  std::uint32_t code;
  unsigned bytes;     // per channel
  unsigned shift;     // from 16 bits
  const char* order;  // channels; m: grey, x: the mosaic's
};

const FormatRow kFormats[] = {
    {"Mono8", kMono8, 1, 8, "m"},       {"Mono10", kMono10, 2, 6, "m"}, {"Mono12", kMono12, 2, 4, "m"},
    {"Mono16", kMono16, 2, 0, "m"},     {"RGB8", kRGB8, 1, 8, "rgb"},   {"BGR8", kBGR8, 1, 8, "bgr"},
    {"BayerRG8", kBayerRG8, 1, 8, "x"},
};

ColorChannel ChannelOf(char letter, std::uint64_t x, std::uint64_t y) {
  switch (letter) {
    case 'r':
      return ColorChannel::red;
    case 'g':
      return ColorChannel::green;
    case 'b':
      return ColorChannel::blue;
    case 'x':
      return BayerRG(x, y);
    default:
      return ColorChannel::grey;
  }
}

int WrongValues(const Camera& camera, const FormatRow& format, TestPattern pattern, std::int64_t brightness) {
  const std::string order = format.order;
  const Frame& frame = camera.frame;
  const std::uint8_t* at = camera.buffer.data();
  int wrong = 0;
  for (std::uint64_t y = frame.offsetY; y < frame.offsetY + frame.height; ++y) {
    for (std::uint64_t x = frame.offsetX; x < frame.offsetX + frame.width; ++x) {
      for (const char letter : order) {
        const int level = PatternLevel(pattern, x, y, frame.id, ChannelOf(letter, x, y), brightness);
        const int value = format.bytes == 1 ? at[0] : at[0] + at[1] * 256;
        wrong += value == (level >> format.shift) ? 0 : 1;
        at += format.bytes;
      }
    }
  }
  return wrong;
}

TEST(AreaCamera, EveryPatternInEveryFormatIsAsItsFormulaSays) {
  const auto camera = SmallCamera();
  GenICam::gcstring_vector patterns;
  camera->As<GenApi::IEnumeration>("TestPattern").GetSymbolics(patterns);
  ASSERT_EQ(patterns.size(), 10U);
  for (const FormatRow& format : kFormats) {
    camera->Set("PixelFormat", format.name);
    for (const auto& name : patterns) {
      SCOPED_TRACE(std::string(format.name) + " " + name.c_str());
      camera->Set("TestPattern", name.c_str());
      const auto pattern =
          static_cast<TestPattern>(camera->As<GenApi::IEnumeration>("TestPattern").GetIntValue());
      camera->Execute("AcquisitionStart");
      for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(camera->Take(), FrameResult::written);
        EXPECT_EQ(camera->frame.pixelFormat, format.code);
        EXPECT_EQ(camera->frame.imageSize, 64U * 40U * std::string(format.order).size() * format.bytes);
        EXPECT_EQ(camera->frame.size, camera->frame.imageSize);
        EXPECT_EQ(WrongValues(*camera, format, pattern, kUnitBrightness), 0);
      }
      camera->Execute("AcquisitionStop");
    }
  }
}

TEST(AreaCamera, PatternsHaveTheirNamesInTheOrderOfTheirValues) {
  // Spot checks of the formula itself.
  const auto grey = ColorChannel::grey;
  EXPECT_EQ(PatternLevel(TestPattern::black, 1, 2, 3, grey, 256), 0);
  EXPECT_EQ(PatternLevel(TestPattern::white, 1, 2, 3, grey, 256), 65535);
  EXPECT_EQ(PatternLevel(TestPattern::greyHorizontalRamp, 257, 2, 3, grey, 256), 256);
  EXPECT_EQ(PatternLevel(TestPattern::greyVerticalRamp, 0, 2, 3, grey, 256), 512);
  EXPECT_EQ(PatternLevel(TestPattern::greyHorizontalRampMoving, 1, 2, 3, grey, 256), 1024);
  EXPECT_EQ(PatternLevel(TestPattern::horizontalLineMoving, 0, 259, 3, grey, 256), 65535);
  EXPECT_EQ(PatternLevel(TestPattern::horizontalLineMoving, 0, 4, 3, grey, 256), 0);
  EXPECT_EQ(PatternLevel(TestPattern::verticalLineMoving, 3, 0, 3, grey, 256), 65535);
  EXPECT_EQ(PatternLevel(TestPattern::colorBar, 0, 0, 1, ColorChannel::blue, 256), 65535) << "white";
  EXPECT_EQ(PatternLevel(TestPattern::colorBar, 32, 0, 1, ColorChannel::blue, 256), 0) << "yellow";
  EXPECT_EQ(PatternLevel(TestPattern::colorBar, 64, 0, 1, ColorChannel::red, 256), 0) << "cyan";
  EXPECT_EQ(PatternLevel(TestPattern::colorBar, 224, 0, 1, ColorChannel::green, 256), 0) << "black";
  EXPECT_EQ(PatternLevel(TestPattern::off, 320, 240, 1, grey, 256), 256) << "the middle of the rings";
  Camera camera("ZS-A1600");
  auto& patterns = camera.As<GenApi::IEnumeration>("TestPattern");
  EXPECT_EQ(patterns.GetEntryByName("Off")->GetValue(), static_cast<std::int64_t>(TestPattern::off));
  EXPECT_EQ(patterns.GetEntryByName("ColorBar")->GetValue(),
            static_cast<std::int64_t>(TestPattern::colorBar));
  EXPECT_EQ(patterns.GetEntryByName("GreyVerticalRampMoving")->GetValue(),
            static_cast<std::int64_t>(TestPattern::greyVerticalRampMoving));
}

TEST(AreaCamera, TheSceneGetsBrighterWithExposureAndGain) {
  const auto camera = SmallCamera();
  camera->Set("PixelFormat", "Mono16");
  camera->Set("ExposureTime", "5000");
  camera->Set("Gain", "20");
  camera->Execute("AcquisitionStart");
  ASSERT_EQ(camera->Take(), FrameResult::written);
  EXPECT_EQ(WrongValues(*camera, kFormats[3], TestPattern::off, 5 * kUnitBrightness), 0);
}

TEST(AreaCamera, OffsetAndSizeShareTheSensor) {
  Camera camera("ZS-A1600");
  EXPECT_EQ(camera.Integer("Width").GetMax(), 1600);
  EXPECT_EQ(camera.Integer("OffsetX").GetMax(), 0);
  EXPECT_THROW(camera.Set("OffsetX", "4"), GenICam::OutOfRangeException);
  camera.Set("Width", "1000");
  EXPECT_EQ(camera.Integer("OffsetX").GetMax(), 600);
  camera.Set("OffsetX", "400");
  EXPECT_EQ(camera.Integer("Width").GetMax(), 1200);
  camera.Set("Height", "200");
  camera.Set("OffsetY", "1000");
  EXPECT_EQ(camera.Integer("Height").GetMax(), 200);
  EXPECT_THROW(camera.Set("Width", "1002"), GenICam::OutOfRangeException);
}

TEST(AreaCamera, PayloadSizeFollowsSizeFormatAndChunks) {
  Camera camera("ZS-A1600");
  EXPECT_EQ(camera.Get("PayloadSize"), "1920000");
  camera.Set("PixelFormat", "RGB8");
  EXPECT_EQ(camera.Get("PayloadSize"), "5760000");
  camera.Set("Width", "16");
  camera.Set("Height", "2");
  EXPECT_EQ(camera.Get("PayloadSize"), "96");
  camera.Set("ChunkSelector", "Gain");
  camera.Set("ChunkEnable", "1");
  EXPECT_EQ(camera.Get("PayloadSize"), "96");
  camera.Set("ChunkModeActive", "1");
  EXPECT_EQ(camera.Get("PayloadSize"), "120");
}

TEST(AreaCamera, ChunksFollowTheImageWithTheirTags) {
  const auto camera = SmallCamera();
  camera->Set("ChunkModeActive", "1");
  for (const char* name : {"FrameID", "Timestamp", "ExposureTime", "Gain"}) {
    camera->Set("ChunkSelector", name);
    EXPECT_EQ(camera->Get("ChunkEnable"), "0");
    camera->Set("ChunkEnable", "1");
  }
  camera->Set("ExposureTime", "2500");
  camera->Set("Gain", "6.5");
  camera->clock.Advance(77);
  camera->Execute("AcquisitionStart");
  ASSERT_EQ(camera->Take(), FrameResult::written);
  ASSERT_EQ(camera->Take(), FrameResult::written);
  const Frame& frame = camera->frame;
  ASSERT_EQ(frame.chunkCount, 5U);
  EXPECT_EQ(frame.size, camera->model->PayloadSize());

  const std::uint32_t ids[] = {kImageChunk, kFrameIdChunk, kTimestampChunk, kExposureTimeChunk, kGainChunk};
  std::size_t at = 0;
  for (std::size_t i = 0; i < 5; ++i) {
    const FrameChunk& chunk = frame.chunks[i];
    EXPECT_EQ(chunk.id, ids[i]);
    EXPECT_EQ(chunk.offset, at);
    at += chunk.length;
    EXPECT_EQ(LoadBig(camera->buffer.data() + at, 4), chunk.id);
    EXPECT_EQ(LoadBig(camera->buffer.data() + at + 4, 4), chunk.length);
    at += 8;
  }
  EXPECT_EQ(at, frame.size);
  EXPECT_EQ(LoadBig(camera->buffer.data() + frame.chunks[1].offset, 8), 2U);
  EXPECT_EQ(LoadBig(camera->buffer.data() + frame.chunks[2].offset, 8), 77U);
  EXPECT_EQ(LoadBigDouble(camera->buffer.data() + frame.chunks[3].offset), 2500);
  EXPECT_EQ(LoadBigDouble(camera->buffer.data() + frame.chunks[4].offset), 6.5);
}

TEST(AreaCamera, ComesAtItsRateOrAsItsExposureAllows) {
  Camera camera("ZS-A1600");
  camera.Set("AcquisitionFrameRate", "50");
  camera.Execute("AcquisitionStart");
  EXPECT_EQ(camera.model->NextFrameDueNs(), 20 * kMs);
  EXPECT_EQ(camera.Take(), FrameResult::notDue);
  camera.Set("ExposureTime", "40000");
  EXPECT_EQ(camera.model->NextFrameDueNs(), 40 * kMs);
  EXPECT_EQ(camera.Float("ResultingFrameRate").GetValue(), 25);
  camera.Set("AcquisitionFrameRateEnable", "0");
  EXPECT_EQ(camera.model->NextFrameDueNs(), 0);
}

TEST(AreaCamera, ModesEndTheAcquisition) {
  const auto camera = SmallCamera();
  camera->Set("AcquisitionMode", "SingleFrame");
  camera->Execute("AcquisitionStart");
  EXPECT_EQ(camera->Take(), FrameResult::written);
  EXPECT_FALSE(camera->model->IsAcquiring());
  camera->Set("AcquisitionMode", "MultiFrame");
  camera->Set("AcquisitionFrameCount", "3");
  camera->Execute("AcquisitionStart");
  for (int i = 0; i < 3; ++i) EXPECT_EQ(camera->Take(), FrameResult::written);
  EXPECT_EQ(camera->Take(), FrameResult::notDue);
}

TEST(AreaCamera, ASoftwareTriggerTakesOneFrame) {
  const auto camera = SmallCamera();
  camera->Set("TriggerMode", "On");
  camera->Execute("AcquisitionStart");
  EXPECT_EQ(camera->Take(), FrameResult::notDue);
  camera->Execute("TriggerSoftware");
  EXPECT_EQ(camera->model->NextFrameDueNs(), 10 * kMs) << "when its exposure has ended";
  camera->clock.Advance(10 * kMs);
  EXPECT_EQ(camera->Take(), FrameResult::written);
  EXPECT_EQ(camera->frame.timestampNs, 10 * kMs);
  EXPECT_EQ(camera->Take(), FrameResult::notDue);
}

TEST(AreaCamera, ALineTriggersWithItsEdge) {
  const auto camera = SmallCamera();
  camera->Set("TriggerMode", "On");
  camera->Set("TriggerSource", "Line0");
  camera->Set("TriggerActivation", "FallingEdge");
  camera->Execute("AcquisitionStart");
  camera->Execute("TriggerSoftware");
  camera->model->PulseLine(1);
  camera->model->SetLine(0, true);
  EXPECT_EQ(camera->Get("LineStatusAll"), "0x1");
  EXPECT_EQ(camera->model->NextFrameDueNs(), std::nullopt);
  camera->model->SetLine(0, false);
  camera->model->SetLine(0, false);
  camera->clock.Advance(10 * kMs);
  EXPECT_EQ(camera->Take(), FrameResult::written);
  EXPECT_EQ(camera->Take(), FrameResult::notDue);
}

TEST(AreaCamera, AnAcquisitionTriggerLetsAllFramesCome) {
  const auto camera = SmallCamera();
  camera->Set("TriggerSelector", "AcquisitionStart");
  camera->Set("TriggerMode", "On");
  camera->Execute("AcquisitionStart");
  EXPECT_EQ(camera->Take(), FrameResult::notDue);
  camera->Execute("TriggerSoftware");
  for (int i = 0; i < 5; ++i) EXPECT_EQ(camera->Take(), FrameResult::written);
}

TEST(AreaCamera, TriggersKeepTheirSettingsApart) {
  Camera camera("ZS-A1600");
  EXPECT_EQ(camera.Get("TriggerSelector"), "FrameStart");
  camera.Set("TriggerSource", "Line1");
  camera.Set("TriggerSelector", "AcquisitionStart");
  EXPECT_EQ(camera.Get("TriggerSource"), "Software");
  camera.Set("TriggerSelector", "FrameStart");
  EXPECT_EQ(camera.Get("TriggerSource"), "Line1");
}

TEST(AreaCamera, ASmallBufferStaysUntouched) {
  const auto camera = SmallCamera();
  camera->Execute("AcquisitionStart");
  std::vector<std::uint8_t> small(64 * 40 - 1, 0xEE);
  ASSERT_EQ(camera->model->TakeFrame(small, camera->frame), FrameResult::written);
  EXPECT_FALSE(camera->frame.fits);
  EXPECT_FALSE(camera->frame.isComplete);
  EXPECT_EQ(camera->frame.size, 0U);
  EXPECT_EQ(camera->frame.intendedSize, 64U * 40U);
  EXPECT_EQ(small, std::vector<std::uint8_t>(64 * 40 - 1, 0xEE));
}

TEST(AreaCamera, ASkippedFrameIsMissingInTheNumbers) {
  const auto camera = SmallCamera();
  EXPECT_FALSE(camera->model->SkipFrame());
  camera->Execute("AcquisitionStart");
  EXPECT_TRUE(camera->model->SkipFrame());
  EXPECT_EQ(camera->Take(), FrameResult::written);
  EXPECT_EQ(camera->frame.id, 2U);
}

TEST(OlderAreaCamera, HasTheOlderNamesOnly) {
  Camera camera("ZS-A640");
  for (const char* name : {"ExposureTime", "Gain", "AcquisitionFrameRate"})
    EXPECT_FALSE(camera.Has(name)) << name;
  camera.Set("ExposureTimeAbs", "5000");
  camera.Set("GainRaw", "200");
  camera.Set("AcquisitionFrameRateAbs", "100");
  camera.Set("PixelFormat", "Mono16");
  camera.Set("ChunkModeActive", "1");
  camera.Set("ChunkSelector", "Gain");
  camera.Set("ChunkEnable", "1");
  camera.Execute("AcquisitionStart");
  camera.clock.Advance(10 * kMs);
  ASSERT_EQ(camera.Take(), FrameResult::written);
  EXPECT_EQ(WrongValues(camera, kFormats[3], TestPattern::off, 5 * kUnitBrightness), 0);
  EXPECT_EQ(LoadBigDouble(camera.buffer.data() + camera.frame.chunks[1].offset), 20);
}

TEST(CameraLinkCamera, TellsOnHowManyTapsItSends) {
  Camera camera("ZS-CL1280");
  camera.Set("AcquisitionFrameRateEnable", "0");
  const std::pair<const char*, unsigned> geometries[] = {
      {"Geometry_1X_1Y", 1}, {"Geometry_1X2_1Y", 2}, {"Geometry_1X4_1Y", 4}, {"Geometry_1X8_1Y", 8}};
  EXPECT_EQ(camera.Get("DeviceTapGeometry"), "Geometry_1X2_1Y");
  for (const auto& [name, taps] : geometries) {
    camera.Set("DeviceTapGeometry", name);
    camera.Execute("AcquisitionStart");
    ASSERT_EQ(camera.Take(), FrameResult::written);
    EXPECT_EQ(camera.frame.taps, taps);
    EXPECT_EQ(camera.frame.chunkCount, 0U);
    EXPECT_THROW(camera.Set("DeviceTapGeometry", "Geometry_1X_1Y"), GenICam::GenericException)
        << "the shape of frames is locked";
    camera.Execute("AcquisitionStop");
  }
}

TEST(CameraLinkCamera, SendsPixelsAndNoChunks) {
  Camera camera("ZS-CL1280");
  EXPECT_FALSE(camera.Has("ChunkModeActive"));
  EXPECT_FALSE(camera.Has("ChunkSelector"));
  EXPECT_EQ(camera.Get("Width"), "1280");
  EXPECT_EQ(camera.Get("Height"), "1024");
  GenICam::gcstring_vector formats;
  camera.As<GenApi::IEnumeration>("PixelFormat").GetSymbolics(formats);
  EXPECT_EQ(formats.size(), 3U);
  for (const char* format : {"Mono8", "Mono10", "Mono12"}) camera.Set("PixelFormat", format);
}

TEST(AreaCamera, OtherCamerasHaveNoTaps) {
  const auto camera = SmallCamera();
  camera->Execute("AcquisitionStart");
  ASSERT_EQ(camera->Take(), FrameResult::written);
  EXPECT_EQ(camera->frame.taps, 0U);
}

}  // namespace
