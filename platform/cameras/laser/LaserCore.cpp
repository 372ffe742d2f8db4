#include "cameras/laser/LaserCore.h"

#include <algorithm>
#include <cmath>

#include "cameras/ChunkIds.h"
#include "cameras/ChunkLayout.h"
#include "cameras/PixelFormats.h"
#include "cameras/laser/ProfileRecord.h"
#include "cameras/laser/Scene.h"

namespace zyn::cameras {

namespace {

constexpr std::int64_t kSensorRows = 1024;
constexpr double kPointPitchMm = 0.02;
constexpr double kHighestLineRate = 20'000;
constexpr double kHighestImageRate = 100;

enum Mode : std::int64_t { kContinuous = 0, kSingleFrame = 1 };

using Computed = std::function<std::int64_t()>;

}  // namespace

LaserCore::LaserCore(Identity identity, const LaserModel& model, Clock& clock)
    : CameraCore(std::move(identity), clock),
      model_(model),
      settings_{.width = model.columns},
      userSets_(settings_),
      triggers_({.names = {"FrameStart", "LineStart"},
                 .roles = {TriggerRole::series, TriggerRole::units},
                 .tip = "FrameStart: a frame, or a scan in batches. LineStart: each profile.",
                 .hasEncoder = true},
                settings_.triggers, pacer_, clock) {
  AddDeviceFeatures();
  AddImageFeatures();
  AddAcquisitionFeatures();
  AddTriggerFeatures();
  AddLineFeatures();
  AddExtractionFeatures();
  AddChunkFeatures();
  userSets_.AddFeatures(features_);
  AddEventFeatures();
  AddTransportFeatures();
  features_.RestoredBy({"UserSetLoad", "DeviceReset"});
  Finish("Simulated laser-profile camera");
}

void LaserCore::AddImageFeatures() {
  auto& f = features_;
  f.Category("ImageFormatControl", "The part of the sensor that is used.");
  f.Int("SensorWidth", "Columns of the sensor.", Computed([this] { return model_.columns; }))
      .Unit("px")
      .Expert();
  f.Int("SensorHeight", "Rows of the sensor.", Computed([] { return kSensorRows; })).Unit("px").Expert();
  if (model_.hasOutlineLengthMax) {
    f.Int("Width", "Columns that are used: points per profile.", {&settings_.width})
        .Range(
            64, [this] { return model_.columns - settings_.offsetX; }, 4)
        .Unit("px")
        .Locked();
    f.Int("OffsetX", "First column that is used.", {&settings_.offsetX})
        .Range(
            0, [this] { return model_.columns - settings_.width; }, 4)
        .Unit("px")
        .Locked();
  } else {
    f.Int("Width", "Columns of the sensor image: points per profile.",
          Computed([this] { return settings_.width; }))
        .Unit("px");
  }
  f.Int("Height", "Rows of the sensor image.", {&settings_.height})
      .Range(
          16, [this] { return kSensorRows - settings_.offsetY; }, 2)
      .Unit("px")
      .Locked();
  f.Int("OffsetY", "First row of the sensor image. Rows in profiles count from the sensor's first row.",
        {&settings_.offsetY})
      .Range(
          0, [this] { return kSensorRows - settings_.height; }, 2)
      .Unit("px")
      .Locked();
  f.Enum("PixelFormat", "Format of the sensor image.", {{"Mono8", kMono8}}, {&settings_.pixelFormat})
      .Locked();
}

void LaserCore::AddAcquisitionFeatures() {
  auto& f = features_;
  const auto repace = [this] { pacer_.SetUnitPeriod(UnitPeriodNs()); };
  f.Category("AcquisitionControl", "When and how fast profiles are taken.");
  f.Enum("AcquisitionMode",
         "Continuous: until AcquisitionStop. SingleFrame: one frame, or one scan in batches.",
         {{"Continuous", kContinuous}, {"SingleFrame", kSingleFrame}}, {&settings_.acquisitionMode})
      .Locked();
  AddAcquisitionCommands();
  if (model_.hasLineCount) {
    f.Int("AcquisitionLineCount", "Profiles of a scan.", {&settings_.lineCount}).Range(1, 65535).Locked();
  }
  if (model_.hasFrameCount) {
    f.Int("AcquisitionFrameCount", "Profiles of a scan.", {&settings_.lineCount}).Range(1, 65535).Locked();
  }
  f.Bool("AcquisitionLineRateEnable", "Off: profiles are taken as fast as they are read.",
         {&settings_.lineRateEnable})
      .Then(repace);
  f.Float("AcquisitionLineRate", "Profiles per second, while it is enabled.", &settings_.lineRateHz)
      .FloatRange(1, kHighestLineRate)
      .Unit("Hz")
      .Then(repace);
  f.Float("ResultingLineRate",
          "Profiles per second that exposure time and sensor image allow; 0: as fast as they are read.",
          std::function<double()>([this] { return ResultingLineRate(); }))
      .Unit("Hz")
      .Expert()
      .Volatile();
  f.Float("ExposureTime", "Time for which light is collected for a profile.", &settings_.exposureUs)
      .FloatRange(1, 10'000)
      .Unit("us")
      .Then(repace);
  f.Category("AnalogControl", "Amplification.");
  f.Float("Gain", "Amplification.", &settings_.gainDb).FloatRange(0, 24).Unit("dB");
}

void LaserCore::AddTriggerFeatures() {
  features_.Category("TriggerControl", "What starts scans and profiles.");
  triggers_.AddFeatures(features_);
}

void LaserCore::AddExtractionFeatures() {
  auto& f = features_;
  f.Category("ProfileControl", "What is made of the laser line.", CategoryOrigin::ownNames);
  f.Bool("EnableExtraction", "The camera finds the laser line and sends profiles.",
         {&settings_.enableExtraction})
      .Locked();
  f.Bool("EnableImage", "The sensor image is sent with each profile.", {&settings_.enableImage}).Locked();
  f.Bool("EnableCalibration", "Heights are calibrated; else they are rows of the sensor.",
         {&settings_.enableCalibration})
      .Locked();
  f.Bool("BatchEnable", "Profiles are sent in batches.", {&settings_.batchEnable}).Locked();
  f.Int("BatchNumber", "Profiles per batch.", {&settings_.batchNumber}).Range(1, 1000).Locked();
  if (model_.hasOutlineLengthMax) {
    f.Int("OutlineLengthMax", "Points of a profile with the present settings.",
          Computed([this] { return settings_.width; }))
        .Volatile();
  }
  const auto info = [&f](const char* name, const char* tip, std::function<double()> get) {
    f.Float(name, tip, std::move(get)).Unit("mm").Volatile();
  };
  info("ZUpSizeInfo", "Upper end of the measuring range.",
       [] { return (scene::kHighest - scene::kZero) / 1000.0; });
  info("ZDownSizeInfo", "Lower end of the measuring range.",
       [] { return (scene::kLowest - scene::kZero) / 1000.0; });
  info("XSizeInfo", "Length of the part of the laser line that is used.",
       [this] { return static_cast<double>(settings_.width) * kPointPitchMm; });
}

void LaserCore::AddChunkFeatures() {
  auto& f = features_;
  f.Category("ChunkDataControl", "What is sent with the profiles.");
  f.Bool("ChunkModeActive", "Profiles are sent as chunks.",
         std::function<bool()>([this] { return settings_.enableExtraction != 0; }))
      .Volatile();
  f.ChunkPort("FrameIdChunk", kFrameIdChunk);
  f.ChunkPort("EncoderChunk", kEncoderChunk);
  f.ChunkInt("ChunkFrameID", "Number of the frame; of the scan, where profiles are sent in batches.",
             "FrameIdChunk");
  f.ChunkInt("ChunkEncoderValue", "Number of the frame's first profile, from 0 at the start.",
             "EncoderChunk");
}

bool LaserCore::SendsImage() const {
  return settings_.enableExtraction == 0 || (settings_.enableImage != 0 && settings_.batchEnable == 0);
}

std::int64_t LaserCore::BatchesPerScan() const {
  return (settings_.lineCount + settings_.batchNumber - 1) / settings_.batchNumber;
}

double LaserCore::ResultingLineRate() const {
  if (settings_.lineRateEnable == 0) return 0;
  const double wanted = std::min(settings_.lineRateHz, 1e6 / settings_.exposureUs);
  return SendsImage() ? std::min(wanted, kHighestImageRate) : wanted;
}

std::int64_t LaserCore::UnitPeriodNs() const {
  const double rate = ResultingLineRate();
  return rate == 0 ? 0 : std::llround(1e9 / rate);
}

Pace LaserCore::MakePace() const {
  const std::int64_t framesOfScan = SendsBatches() ? BatchesPerScan() : 1;
  Pace pace;
  pace.frames = settings_.acquisitionMode == kSingleFrame ? static_cast<std::uint64_t>(framesOfScan) : 0;
  pace.framesPerSeries = static_cast<std::uint64_t>(framesOfScan);
  pace.seriesAreTriggered = triggers_.IsOn(TriggerRole::series);
  pace.unitsPerFrame = static_cast<std::uint64_t>(ProfilesPerFrame());
  pace.unitsAreTriggered = triggers_.IsOn(TriggerRole::units);
  pace.unitPeriodNs = UnitPeriodNs();
  return pace;
}

void LaserCore::OnStart() {
  nextProfile_ = 0;
  scan_ = 1;
  batchesOfScan_ = 0;
  triggers_.Restart();
}

void LaserCore::OnReset() {
  userSets_.LoadAtPowerUp();
}

void LaserCore::BeginNewSeries() {
  if (batchesOfScan_ == 0) return;
  batchesOfScan_ = 0;
  ++scan_;
}

void LaserCore::LayOut(Frame& frame, std::size_t shortenBy) const {
  frame.hasImage = SendsImage();
  if (frame.hasImage) {
    frame.pixelFormat = kMono8;
    frame.width = static_cast<std::uint32_t>(settings_.width);
    frame.height = static_cast<std::uint32_t>(settings_.height);
    frame.offsetX = static_cast<std::uint32_t>(settings_.offsetX);
    frame.offsetY = static_cast<std::uint32_t>(settings_.offsetY);
    frame.imageSize = std::size_t{frame.width} * frame.height;
  }
  if (settings_.enableExtraction == 0) {
    frame.intendedSize = frame.imageSize;
    return;
  }
  if (frame.hasImage) AppendChunk(frame, kImageChunk, frame.imageSize);
  const auto points = static_cast<std::size_t>(ProfilesPerFrame() * settings_.width);
  AppendChunk(frame, kProfileChunk, points * kRecordBytes - shortenBy);
  AppendChunk(frame, kFrameIdChunk, 8);
  AppendChunk(frame, kEncoderChunk, 8);
}

std::size_t LaserCore::PayloadSize() const {
  Frame frame;
  LayOut(frame, 0);
  return frame.intendedSize;
}

void LaserCore::PlanFrame(Frame& frame, std::size_t shortenBy) {
  LayOut(frame, shortenBy);
  LaserPlan& plan = painter_.plan;
  plan.firstProfile = nextProfile_;
  plan.identifier = SendsBatches() ? scan_ : frame.id;
  plan.isCalibrated = settings_.enableCalibration != 0;
  plan.width = static_cast<std::uint32_t>(settings_.width);
  plan.offsetX = static_cast<std::uint32_t>(settings_.offsetX);
  nextProfile_ += ProfilesPerFrame();
  if (!SendsBatches() || ++batchesOfScan_ < BatchesPerScan()) return;
  batchesOfScan_ = 0;
  ++scan_;
}

}  // namespace zyn::cameras
