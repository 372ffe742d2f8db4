#include "cameras/area/AreaCore.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "cameras/ChunkIds.h"
#include "cameras/ChunkLayout.h"

namespace zyn::cameras {

namespace {

constexpr double kHighestFrameRate = 1000;
constexpr double kGainDbPerRaw = 0.1;
enum Mode : std::int64_t { kContinuous = 0, kSingleFrame = 1, kMultiFrame = 2 };

struct ChunkKind {
  const char* name;
  std::uint32_t id;
};
constexpr std::array<ChunkKind, kAreaChunks> kChunks = {{{"FrameID", kFrameIdChunk},
                                                         {"Timestamp", kTimestampChunk},
                                                         {"ExposureTime", kExposureTimeChunk},
                                                         {"Gain", kGainChunk}}};

using Computed = std::function<std::int64_t()>;

std::vector<Choice> Formats(const AreaModel& model) {
  if (model.hasOldNames) return {{"Mono8", kMono8}, {"Mono16", kMono16}};
  if (model.isCameraLink) return {{"Mono8", kMono8}, {"Mono10", kMono10}, {"Mono12", kMono12}};
  return {{"Mono8", kMono8},       {"Mono16", kMono16}, {"Mono10", kMono10}, {"Mono12", kMono12},
          {"BayerRG8", kBayerRG8}, {"RGB8", kRGB8},     {"BGR8", kBGR8}};
}

std::vector<Choice> Patterns() {
  const char* const names[] = {"Off",
                               "Black",
                               "White",
                               "GreyHorizontalRamp",
                               "GreyVerticalRamp",
                               "GreyHorizontalRampMoving",
                               "GreyVerticalRampMoving",
                               "HorizontalLineMoving",
                               "VerticalLineMoving",
                               "ColorBar"};
  std::vector<Choice> choices;
  for (const char* name : names) choices.push_back({name, static_cast<std::int64_t>(choices.size())});
  return choices;
}

}  // namespace

AreaCore::AreaCore(Identity identity, const AreaModel& model, Clock& clock)
    : CameraCore(std::move(identity), clock),
      model_(model),
      settings_{.width = model.columns, .height = model.rows},
      userSets_(settings_),
      triggers_({.names = {"FrameStart", "AcquisitionStart"},
                 .roles = {TriggerRole::units, TriggerRole::series},
                 .tip = "FrameStart: each frame. AcquisitionStart: all frames of the acquisition.",
                 .hasEncoder = false},
                settings_.triggers, pacer_, clock) {
  AddDeviceFeatures();
  AddImageFeatures();
  AddAcquisitionFeatures();
  AddExposureFeatures();
  AddLineFeatures();
  if (model_.isCameraLink) {
    AddLinkFeatures();
  } else {
    AddChunkFeatures();
  }
  userSets_.AddFeatures(features_);
  AddEventFeatures();
  AddTransportFeatures();
  features_.RestoredBy({"UserSetLoad", "DeviceReset"});
  Finish("Simulated area camera");
}

void AreaCore::AddImageFeatures() {
  auto& f = features_;
  f.Category("ImageFormatControl", "Size and format of the image.");
  f.Int("SensorWidth", "Columns of the sensor.", Computed([this] { return model_.columns; }))
      .Unit("px")
      .Expert();
  f.Int("SensorHeight", "Rows of the sensor.", Computed([this] { return model_.rows; })).Unit("px").Expert();
  f.Int("WidthMax", "Widest image.", Computed([this] { return model_.columns; })).Unit("px").Expert();
  f.Int("HeightMax", "Highest image.", Computed([this] { return model_.rows; })).Unit("px").Expert();
  f.Int("Width", "Columns of the image.", {&settings_.width})
      .Range(
          16, [this] { return model_.columns - settings_.offsetX; }, 4)
      .Unit("px")
      .Locked();
  f.Int("Height", "Rows of the image.", {&settings_.height})
      .Range(
          2, [this] { return model_.rows - settings_.offsetY; }, 2)
      .Unit("px")
      .Locked();
  f.Int("OffsetX", "First column of the image on the sensor.", {&settings_.offsetX})
      .Range(
          0, [this] { return model_.columns - settings_.width; }, 4)
      .Unit("px");
  f.Int("OffsetY", "First row of the image on the sensor.", {&settings_.offsetY})
      .Range(
          0, [this] { return model_.rows - settings_.height; }, 2)
      .Unit("px");
  f.Enum("PixelFormat", "Format of the pixels.", Formats(model_), {&settings_.pixelFormat}).Locked();
  f.Enum("TestPattern", "What is sent instead of what the sensor sees.", Patterns(),
         {&settings_.testPattern});
}

void AreaCore::AddAcquisitionFeatures() {
  auto& f = features_;
  f.Category("AcquisitionControl", "When and how fast frames are taken.");
  f.Enum(
       "AcquisitionMode",
       "Continuous: until AcquisitionStop. SingleFrame: one frame. MultiFrame: AcquisitionFrameCount frames.",
       {{"Continuous", kContinuous}, {"SingleFrame", kSingleFrame}, {"MultiFrame", kMultiFrame}},
       {&settings_.acquisitionMode})
      .Locked();
  AddAcquisitionCommands();
  f.Int("AcquisitionFrameCount", "Frames of an acquisition in the mode MultiFrame.", {&settings_.frameCount})
      .Range(1, 65535)
      .Locked();
  f.Bool("AcquisitionFrameRateEnable", "Off: frames are taken as fast as they are read.",
         {&settings_.frameRateEnable})
      .Then([this] { Repace(); });
  auto& rate = f.Float(model_.hasOldNames ? "AcquisitionFrameRateAbs" : "AcquisitionFrameRate",
                       "Frames per second, while it is enabled.", &settings_.frameRateHz)
                   .FloatRange(0.1, kHighestFrameRate)
                   .Unit("Hz")
                   .Then([this] { Repace(); });
  if (model_.hasOldNames) rate.OwnName();
  f.Float("ResultingFrameRate",
          "Frames per second that the exposure time allows; 0: as fast as they are read.",
          std::function<double()>([this] { return ResultingFrameRate(); }))
      .Unit("Hz")
      .Expert()
      .Volatile();
  triggers_.AddFeatures(f);
}

void AreaCore::AddExposureFeatures() {
  auto& f = features_;
  auto& exposure = f.Float(model_.hasOldNames ? "ExposureTimeAbs" : "ExposureTime",
                           "Time for which light is collected for a frame.", &settings_.exposureUs)
                       .FloatRange(10, 1'000'000)
                       .Unit("us")
                       .Then([this] { Repace(); });
  if (model_.hasOldNames) exposure.OwnName();
  f.Category("AnalogControl", "Amplification.");
  if (model_.hasOldNames) {
    f.Int("GainRaw", "Amplification in steps of 0.1 dB.", {&settings_.gainRaw}).Range(0, 240).OwnName();
  } else {
    f.Float("Gain", "Amplification.", &settings_.gainDb).FloatRange(0, 24).Unit("dB");
  }
}

void AreaCore::AddChunkFeatures() {
  auto& f = features_;
  std::vector<std::string> names;
  std::vector<std::int64_t*> enables;
  for (std::size_t i = 0; i < kChunks.size(); ++i) {
    names.emplace_back(kChunks[i].name);
    enables.push_back(&settings_.chunkEnable[i]);
    f.ChunkPort(std::string(kChunks[i].name) + "Chunk", kChunks[i].id);
  }
  f.Category("ChunkDataControl", "What is sent with each image.");
  f.Bool("ChunkModeActive", "Frames carry chunks.", {&settings_.chunkModeActive}).Locked();
  f.Selector("ChunkSelector", "The chunk that is enabled or disabled.", names);
  f.Bool("ChunkEnable", "Frames carry the selected chunk.", enables).SelectedBy("ChunkSelector").Locked();
  f.ChunkInt("ChunkFrameID", "Number of the frame.", "FrameIDChunk");
  f.ChunkInt("ChunkTimestamp", "When the exposure ended.", "TimestampChunk").Unit("ns");
  f.ChunkFloat("ChunkExposureTime", "The frame's exposure time.", "ExposureTimeChunk").Unit("us");
  f.ChunkFloat("ChunkGain", "The frame's amplification.", "GainChunk").Unit("dB");
}

void AreaCore::AddLinkFeatures() {
  features_.Category("CameraLinkControl", "How pixels are sent.", CategoryOrigin::ownNames);
  features_
      .Enum("DeviceTapGeometry", "How many neighbouring pixels are sent at a time: one on each tap.",
            {{"Geometry_1X_1Y", 1}, {"Geometry_1X2_1Y", 2}, {"Geometry_1X4_1Y", 4}, {"Geometry_1X8_1Y", 8}},
            {&settings_.taps})
      .Locked();
}

double AreaCore::GainDb() const {
  return model_.hasOldNames ? static_cast<double>(settings_.gainRaw) * kGainDbPerRaw : settings_.gainDb;
}

double AreaCore::ResultingFrameRate() const {
  if (settings_.frameRateEnable == 0) return 0;
  return std::min(settings_.frameRateHz, 1e6 / settings_.exposureUs);
}

std::int64_t AreaCore::FramePeriodNs() const {
  const double rate = ResultingFrameRate();
  return rate == 0 ? 0 : std::llround(1e9 / rate);
}

std::int64_t AreaCore::ExposureNs() const {
  return std::llround(settings_.exposureUs * 1000);
}

void AreaCore::Repace() {
  pacer_.SetUnitPeriod(FramePeriodNs());
  pacer_.SetLatency(ExposureNs());
}

std::uint64_t AreaCore::FrameLimit() const {
  switch (settings_.acquisitionMode) {
    case kSingleFrame:
      return 1;
    case kMultiFrame:
      return static_cast<std::uint64_t>(settings_.frameCount);
    default:
      return 0;
  }
}

Pace AreaCore::MakePace() const {
  Pace pace;
  pace.frames = FrameLimit();
  pace.seriesAreTriggered = triggers_.IsOn(TriggerRole::series);
  pace.unitsAreTriggered = triggers_.IsOn(TriggerRole::units);
  pace.unitPeriodNs = FramePeriodNs();
  pace.latencyNs = ExposureNs();
  return pace;
}

void AreaCore::LayOut(Frame& frame, std::size_t shortenBy) const {
  frame.hasImage = true;
  frame.pixelFormat = static_cast<std::uint32_t>(settings_.pixelFormat);
  frame.width = static_cast<std::uint32_t>(settings_.width);
  frame.height = static_cast<std::uint32_t>(settings_.height);
  frame.offsetX = static_cast<std::uint32_t>(settings_.offsetX);
  frame.offsetY = static_cast<std::uint32_t>(settings_.offsetY);
  frame.imageSize = std::size_t{frame.width} * frame.height * BytesPerPixel(frame.pixelFormat);
  if (model_.isCameraLink) frame.taps = static_cast<std::uint32_t>(settings_.taps);
  if (settings_.chunkModeActive == 0) {
    frame.intendedSize = frame.imageSize;
    return;
  }
  AppendChunk(frame, kImageChunk, frame.imageSize);
  for (std::size_t i = 0; i < kChunks.size(); ++i) {
    if (settings_.chunkEnable[i] == 0) continue;
    AppendChunk(frame, kChunks[i].id, 8 - std::exchange(shortenBy, 0));
  }
}

std::size_t AreaCore::PayloadSize() const {
  Frame frame;
  LayOut(frame, 0);
  return frame.intendedSize;
}

void AreaCore::PlanFrame(Frame& frame, std::size_t shortenBy) {
  LayOut(frame, shortenBy);
  painter_.plan = AreaPlan{static_cast<TestPattern>(settings_.testPattern), settings_.exposureUs, GainDb()};
}

}  // namespace zyn::cameras
