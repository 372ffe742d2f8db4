#include <GenApi/GenApi.h>

#include <chrono>
#include <nlohmann/json.hpp>

#include "Camera.h"
#include "Failure.h"
#include "HeightFiles.h"
#include "Interrupt.h"
#include "JsonText.h"
#include "OutputFile.h"
#include "Patience.h"
#include "Verbs.h"

namespace zyncam {
namespace {

// Heights are micrometres around the middle of their range, in profiles as in range images.
constexpr Axis kHeightAxis{0.001, 32768};

/// Stops the stream on every way out.
class StreamGuard {
 public:
  explicit StreamGuard(ZYNSDK::Zyn3DCamera& camera) : camera_(camera) {}
  ~StreamGuard() { camera_.StopGrab(); }
  StreamGuard(const StreamGuard&) = delete;
  StreamGuard& operator=(const StreamGuard&) = delete;

 private:
  ZYNSDK::Zyn3DCamera& camera_;
};

struct Outcome {
  int delivered = 0;
  int incomplete = 0;
  int points = 0;
  std::vector<std::string> files;
};

// Length of the laser line, in millimetres; 0 when the camera does not tell.
double LineLength(Camera& camera) {
  auto* const node = dynamic_cast<GenApi_3_4::IFloat*>(camera.NodeMap(0).GetNode("XSizeInfo"));
  return node != nullptr && GenApi_3_4::IsReadable(node) ? node->GetValue() : 0;
}

HeightMap MakeMap(const ZYNSDK::Zyn3DIntArray& heights, const ZYNSDK::ZynImage& intensity,
                  double lineLength) {
  HeightMap map;
  map.width = heights.Length();
  map.height = 1;
  map.heights.assign(heights.Data(), heights.Data() + map.width);
  const unsigned char* const bytes = intensity.ImageData();
  map.intensities.assign(bytes, bytes + map.width);
  map.x.resolution = lineLength > 0 ? lineLength / map.width : 1;
  map.z = kHeightAxis;
  return map;
}

void WriteProfile(const HeightMap& map, const ProfileOptions& options, Outcome& outcome) {
  const std::string table = NumberedPath(options.folder, "profile", outcome.delivered, ".csv");
  WriteCsv(table, map);
  outcome.files.push_back(table);
  const std::string plot = NumberedPath(options.folder, "profile", outcome.delivered, ".png");
  WritePlot(plot, map);
  outcome.files.push_back(plot);
}

void GrabLoop(Console& console, Camera& camera, const ProfileOptions& options, Outcome& outcome) {
  ZYNSDK::Zyn3DCamera& handle = camera.For3DGrab();
  const double lineLength = LineLength(camera);
  using Clock = std::chrono::steady_clock;
  Patience patience(std::chrono::milliseconds(options.timeoutMs), Clock::now());
  ZYNSDK::Zyn3DIntArray heights;
  ZYNSDK::ZynImage intensity;
  while (!IsInterrupted() && (options.count == 0 || outcome.delivered < options.count)) {
    const long status = handle.GrabContour(&heights, &intensity);
    if (status == ZYNSDK::ZYN_ERROR_INVALID_FRAME) {
      ++outcome.incomplete;
      if (patience.OutlastsIncomplete(Clock::now())) continue;
    }
    if (IsInterrupted()) break;
    if (status != 0) {
      throw Failure::OfStatus("grab failed after " + std::to_string(outcome.delivered) + " profiles", status);
    }
    if (heights.Length() == 0 || intensity.ImageData() == nullptr)
      throw Failure(kExitFailed, "the profile has no points", "check the camera's settings");
    patience.SawGood(Clock::now());
    ++outcome.delivered;
    outcome.points = heights.Length();
    WriteProfile(MakeMap(heights, intensity, lineLength), options, outcome);
    if (console.HasProgress()) console.Progress(std::to_string(outcome.delivered) + " profiles");
  }
}

void Report(Console& console, const CommonOptions& common, const ProfileOptions& options,
            const Outcome& outcome) {
  if (common.json) {
    nlohmann::ordered_json json;
    json["profiles"] = outcome.delivered;
    json["incomplete"] = outcome.incomplete;
    json["points"] = outcome.points;
    json["files"] = outcome.files;
    console.Line(JsonText(json));
    return;
  }
  std::string line =
      std::to_string(outcome.delivered) + " profiles of " + std::to_string(outcome.points) + " points";
  if (outcome.incomplete > 0)
    line += ", " + std::to_string(outcome.incomplete) + " incomplete frames left out";
  console.Line(line + ", written to " + options.folder);
}

}  // namespace

bool GrabProfiles(Console& console, const CommonOptions& common, const ProfileOptions& options) {
  const InterruptGuard interruptGuard;
  Session session;
  Camera camera = session.Select(common.camera);
  ZYNSDK::Zyn3DCamera& handle = camera.For3DGrab();
  camera.Open(common.card);
  MakeFolder(options.folder);
  long status = handle.SetGrabTimeout(options.timeoutMs);
  if (status != 0) throw Failure::OfStatus("cannot set the time-out", status);
  status = handle.StartGrab(ZYNSDK::ZYN_3D_GRAB_CONTOUR);
  if (status != 0) throw Failure::OfStatus("cannot start the stream", status);
  Outcome outcome;
  {
    const StreamGuard streamGuard(handle);
    GrabLoop(console, camera, options, outcome);
  }
  console.EndProgress();
  Report(console, common, options, outcome);
  return !IsInterrupted();
}

}  // namespace zyncam
