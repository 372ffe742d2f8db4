#include <GenApi/GenApi.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <nlohmann/json.hpp>

#include "Camera.h"
#include "Failure.h"
#include "HeightFiles.h"
#include "Interrupt.h"
#include "JsonText.h"
#include "OutputFile.h"
#include "Patience.h"
#include "ScanWatch.h"
#include "Verbs.h"

namespace zyncam {
namespace {

constexpr int kBarWidth = 30;

/// One kind of file that a scan becomes.
struct Product {
  const char* ending;
  const char* what;
  void (*write)(const std::string& path, const HeightMap& map);
};

constexpr std::array kProducts = {
    Product{".png", "height map", &WriteHeightPng}, Product{".json", "scale", &WriteSidecar},
    Product{"_colours.png", "coloured picture", &WriteColours}, Product{".ply", "point cloud", &WritePly}};

/// A bar over the steps of a scan: grabbing it, then writing each file.
class StepBar {
 public:
  explicit StepBar(Console& console) : console_(console) {}

  void Next(const std::string& what) {
    ++begun_;
    Show(0, what);
  }

  /// How much of the present step is done, 0 to 1.
  void Show(double part, const std::string& what) {
    if (!console_.HasProgress()) return;
    constexpr auto kSteps = static_cast<double>(kProducts.size() + 1);
    const auto filled = static_cast<std::size_t>((begun_ - 1 + part) * kBarWidth / kSteps);
    console_.Progress("[" + std::string(filled, '#') + std::string(kBarWidth - filled, '.') + "] " + what);
  }

 private:
  Console& console_;
  int begun_ = 0;
};

/// How many lines of a scan have come, as the stream tells it: the library itself tells only when all have.
class LineCounter {
 public:
  /// The camera is open, and stays so.
  explicit LineCounter(ZYNSDK::Zyn3DCamera& camera) {
    GenApi_3_4::INodeMap* const stream = Get3DCameraNodeMap(&camera, ZYNSDK::ZYN_XML_DATA_STREAM);
    if (stream != nullptr)
      frames_ = dynamic_cast<GenApi_3_4::IInteger*>(stream->GetNode("StreamDeliveredFrameCount"));
    ZYNSDK::ZynNode batchNumber;
    if (camera.GetNode("BatchNumber", &batchNumber) == 0) batchNumber.GetInt(&linesPerFrame_);
    camera.GetBatchCount(&total_);
  }

  int Total() const { return total_; }

  /// All frames that came. Nothing when the stream does not tell. Any thread.
  std::optional<std::int64_t> Frames() const {
    if (frames_ == nullptr) return std::nullopt;
    try {
      return frames_->GetValue(false, true);
    } catch (const GenICam_3_4::GenericException&) {  // the camera is lost, as the grab will tell
      return std::nullopt;
    }
  }

  /// Nothing when camera or stream do not tell. Any thread.
  std::optional<std::int64_t> Lines() const {
    if (total_ < 1 || linesPerFrame_ < 1) return std::nullopt;
    const auto frames = Frames();
    if (!frames) return std::nullopt;
    return std::min<std::int64_t>(total_, *frames * linesPerFrame_);
  }

 private:
  GenApi_3_4::IInteger* frames_ = nullptr;
  int linesPerFrame_ = 0;
  int total_ = 0;
};

HeightMap MakeMap(const ZYNSDK::ZynRangeImage& range, const ZYNSDK::ZynImage& intensity) {
  HeightMap map;
  map.width = range.Width();
  map.height = range.Height();
  map.x = {range.ResolutionX(), range.OffsetX()};
  map.y = {range.ResolutionY(), range.OffsetY()};
  map.z = {range.ResolutionZ(), range.OffsetZ()};
  const std::size_t points = static_cast<std::size_t>(map.width) * static_cast<std::size_t>(map.height);
  if (points == 0 || range.Data() == nullptr || intensity.ImageData() == nullptr)
    throw Failure(kExitFailed, "the scan has no points", "check the camera's settings");
  map.heights.resize(points);
  std::memcpy(map.heights.data(), range.Data(), points * sizeof(std::uint16_t));
  map.intensities.assign(intensity.ImageData(), intensity.ImageData() + points);
  return map;
}

// Shows the lines that come, and stops the stream on Ctrl-C: the wait for the scan then ends.
ScanWatch::Callbacks WatchOver(ZYNSDK::Zyn3DCamera& camera, const LineCounter& counter, StepBar& bar) {
  ScanWatch::Callbacks callbacks;
  callbacks.lines = [&counter] { return counter.Lines(); };
  callbacks.show = [&counter, &bar](std::int64_t lines) {
    bar.Show(static_cast<double>(lines) / counter.Total(),
             "scanning, " + std::to_string(lines) + " of " + std::to_string(counter.Total()) + " lines");
  };
  callbacks.isInterrupted = &IsInterrupted;
  callbacks.stop = [&camera] { camera.StopGrab(); };
  return callbacks;
}

// An incomplete frame does not end the scan: its lines are missing. Where frames are not counted nothing tells whether
// others come as well.
long WaitForScan(ZYNSDK::Zyn3DCamera& camera, const LineCounter& counter, Patience patience,
                 ZYNSDK::ZynRangeImage& range, ZYNSDK::ZynImage& intensity) {
  for (;;) {
    const long status = camera.GrabBatchData(&range, &intensity);
    if (status != ZYNSDK::ZYN_ERROR_INVALID_FRAME || IsInterrupted()) return status;
    const auto now = std::chrono::steady_clock::now();
    const bool goesOn = patience.OutlastsIncomplete(now);
    const auto frames = counter.Frames();
    if (frames && !goesOn) return status;
    if (frames) patience.SawFrames(*frames, now);
  }
}

HeightMap Grab(ZYNSDK::Zyn3DCamera& camera, const ScanOptions& options, StepBar& bar) {
  ZYNSDK::ZynRangeImage range;
  ZYNSDK::ZynImage intensity;
  const LineCounter counter(camera);
  long status = camera.StartGrab(ZYNSDK::ZYN_3D_GRAB_BATCH);
  if (status != 0) throw Failure::OfStatus("cannot start the stream", status);
  {
    const ScanWatch watch(WatchOver(camera, counter, bar));
    const Patience patience(std::chrono::milliseconds(options.timeoutMs), std::chrono::steady_clock::now());
    status = WaitForScan(camera, counter, patience, range, intensity);
  }
  camera.StopGrab();
  if (status != 0 && !IsInterrupted()) throw Failure::OfStatus("the scan failed", status);
  return status != 0 ? HeightMap() : MakeMap(range, intensity);
}

void Report(Console& console, const CommonOptions& common, const ScanOptions& options, const HeightMap& map,
            const std::vector<std::string>& files) {
  if (common.json) {
    nlohmann::ordered_json json;
    json["width"] = map.width;
    json["height"] = map.height;
    json["files"] = files;
    console.Line(JsonText(json));
    return;
  }
  console.Line("a scan of " + std::to_string(map.height) + " profiles of " + std::to_string(map.width) +
               " points, written to " + options.folder);
}

}  // namespace

bool GrabScan(Console& console, const CommonOptions& common, const ScanOptions& options) {
  const InterruptGuard interruptGuard;
  Session session;
  Camera camera = session.Select(common.camera);
  ZYNSDK::Zyn3DCamera& handle = camera.For3DGrab();
  camera.Open(common.card);
  MakeFolder(options.folder);
  long status = handle.SetGrabTimeout(options.timeoutMs);
  if (status != 0) throw Failure::OfStatus("cannot set the time-out", status);
  if (options.lines > 0) status = handle.SetBatchCount(options.lines);
  if (status != 0) throw Failure::OfStatus("cannot set the number of lines", status);
  StepBar bar(console);
  bar.Next("scanning");
  const HeightMap map = Grab(handle, options, bar);
  std::vector<std::string> files;
  for (const Product& product : kProducts) {
    if (IsInterrupted()) break;
    bar.Next(std::string("writing the ") + product.what);
    files.push_back(options.folder + "/scan" + product.ending);
    product.write(files.back(), map);
  }
  console.EndProgress();
  if (IsInterrupted()) return false;
  Report(console, common, options, map, files);
  return true;
}

}  // namespace zyncam
