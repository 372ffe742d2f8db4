#include <array>
#include <cstring>
#include <nlohmann/json.hpp>

#include "Camera.h"
#include "Failure.h"
#include "HeightFiles.h"
#include "Interrupt.h"
#include "JsonText.h"
#include "OutputFile.h"
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
    const auto steps = static_cast<int>(kProducts.size()) + 1;
    const int filled = done_ * kBarWidth / steps;
    ++done_;
    if (!console_.HasProgress()) return;
    console_.Progress("[" + std::string(static_cast<std::size_t>(filled), '#') +
                      std::string(static_cast<std::size_t>(kBarWidth - filled), '.') + "] " + what);
  }

 private:
  Console& console_;
  int done_ = 0;
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

HeightMap Grab(ZYNSDK::Zyn3DCamera& camera) {
  ZYNSDK::ZynRangeImage range;
  ZYNSDK::ZynImage intensity;
  long status = camera.StartGrab(ZYNSDK::ZYN_3D_GRAB_BATCH);
  if (status != 0) throw Failure::OfStatus("cannot start the stream", status);
  do {
    status = camera.GrabBatchData(&range, &intensity);
  } while (status == ZYNSDK::ZYN_ERROR_INVALID_FRAME && !IsInterrupted());
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
  const HeightMap map = Grab(handle);
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
