#include <GenApi/GenApi.h>

#include <chrono>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "Camera.h"
#include "Failure.h"
#include "FeatureText.h"
#include "Interrupt.h"
#include "JsonText.h"
#include "OutputFile.h"
#include "PngWriter.h"
#include "Verbs.h"

namespace zyncam {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kBarWidth = 30;

/// Stops the stream on every way out.
class StreamGuard {
 public:
  explicit StreamGuard(ZYNSDK::ZynCamera& camera) : camera_(camera) {}
  ~StreamGuard() { camera_.StopGrab(); }
  StreamGuard(const StreamGuard&) = delete;
  StreamGuard& operator=(const StreamGuard&) = delete;

 private:
  ZYNSDK::ZynCamera& camera_;
};

struct Outcome {
  int delivered = 0;
  int incomplete = 0;
  int width = 0;
  int height = 0;
  double seconds = 0;
  std::string pixelFormat;
  std::vector<std::string> files;

  double FramesPerSecond() const { return seconds > 0 ? delivered / seconds : 0; }
};

std::string Number(const char* format, double value) {
  char text[32];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

std::string ProgressLine(const Outcome& outcome, int count) {
  const std::string rate = Number("%.1f", outcome.FramesPerSecond()) + " frames/s";
  if (count == 0) return std::to_string(outcome.delivered) + " frames, " + rate;
  const int filled = outcome.delivered * kBarWidth / count;
  return "[" + std::string(static_cast<std::size_t>(filled), '#') +
         std::string(static_cast<std::size_t>(kBarWidth - filled), '.') + "] " +
         std::to_string(outcome.delivered) + "/" + std::to_string(count) + "  " + rate;
}

// A frame grabber stores what its card was told, whatever the camera sends.
std::string PixelFormatOf(Camera& camera) {
  GenApi_3_4::INodeMap* const card =
      ZYNSDK::Get2DCameraNodeMap(&camera.For2DGrab(), ZYNSDK::ZYN_XML_LOCAL_DEVICE);
  GenApi_3_4::INode* node = card != nullptr ? card->GetNode("PixelFormat") : nullptr;
  if (node == nullptr) node = camera.NodeMap(0).GetNode("PixelFormat");
  return node != nullptr ? ReadValue(*node).text : "";
}

/// Writes frames as files in the way the options ask for.
class FrameWriter {
 public:
  FrameWriter(const GrabOptions& options, const std::string& pixelFormat)
      : options_(options), layout_(LayoutOf(pixelFormat)) {
    if (options.format == "none") return;
    if (options.format == "png" && !layout_.known) {
      throw Failure(kExitFailed, "the pixel format \"" + pixelFormat + "\" cannot be written as PNG",
                    "use --format raw, or set PixelFormat to a Mono, Bayer or RGB8 format");
    }
    MakeFolder(options.folder);
  }

  /// Returns the path of the file, or "" when none is asked for.
  std::string Write(ZYNSDK::ZynImage& image, int number) const {
    if (options_.format == "none") return "";
    std::string path = NumberedPath(options_.folder, "image", number, "." + options_.format);
    const unsigned char* data = image.ImageData();
    if (data == nullptr)
      throw Failure(kExitFailed, "the frame carries no image", "choose another payload on the camera");
    if (options_.format == "png" &&
        static_cast<std::size_t>(image.Step()) < RowBytes(layout_, image.Width())) {
      throw Failure(kExitFailed, "the frame has another pixel format than the camera's features tell",
                    "use --format raw");
    }
    if (options_.format == "raw") {
      WriteFile(path, data,
                static_cast<std::size_t>(image.Step()) * static_cast<std::size_t>(image.Height()));
    } else {
      WritePng(path, data, image.Width(), image.Height(), static_cast<std::size_t>(image.Step()), layout_);
    }
    return path;
  }

 private:
  const GrabOptions& options_;
  PixelLayout layout_;
};

void Report(Console& console, const CommonOptions& common, const GrabOptions& options,
            const Outcome& outcome) {
  if (common.json) {
    nlohmann::ordered_json json;
    json["frames"] = outcome.delivered;
    json["incomplete"] = outcome.incomplete;
    json["width"] = outcome.width;
    json["height"] = outcome.height;
    json["pixelFormat"] = outcome.pixelFormat;
    json["seconds"] = outcome.seconds;
    json["framesPerSecond"] = outcome.FramesPerSecond();
    json["files"] = outcome.files;
    console.Line(JsonText(json));
    return;
  }
  std::string line = std::to_string(outcome.delivered) + " frames of " + std::to_string(outcome.width) +
                     " x " + std::to_string(outcome.height) + " " + outcome.pixelFormat + " in " +
                     Number("%.2f", outcome.seconds) + " s (" + Number("%.1f", outcome.FramesPerSecond()) +
                     " frames/s)";
  if (outcome.incomplete > 0)
    line += ", " + std::to_string(outcome.incomplete) + " incomplete frames left out";
  if (!outcome.files.empty()) line += ", written to " + options.folder;
  console.Line(line);
}

void GrabLoop(Console& console, ZYNSDK::ZynCamera& camera, const GrabOptions& options,
              const FrameWriter& writer, Outcome& outcome) {
  const auto start = Clock::now();
  const std::chrono::milliseconds patience(options.timeoutMs);
  auto lastFrame = start;
  ZYNSDK::ZynImage image;
  while (!IsInterrupted() && (options.count == 0 || outcome.delivered < options.count)) {
    const long status = camera.GrabImage(&image, nullptr);
    if (status == ZYNSDK::ZYN_ERROR_INVALID_FRAME) {
      ++outcome.incomplete;
      if (Clock::now() - lastFrame < patience) continue;
    }
    if (IsInterrupted()) break;
    if (status != 0) {
      throw Failure::OfStatus("grab failed after " + std::to_string(outcome.delivered) + " frames", status);
    }
    ++outcome.delivered;
    lastFrame = Clock::now();
    outcome.seconds = std::chrono::duration<double>(lastFrame - start).count();
    outcome.width = image.Width();
    outcome.height = image.Height();
    std::string file = writer.Write(image, outcome.delivered);
    if (!file.empty()) outcome.files.push_back(std::move(file));
    if (console.HasProgress()) console.Progress(ProgressLine(outcome, options.count));
  }
}

}  // namespace

bool GrabImages(Console& console, const CommonOptions& common, const GrabOptions& options) {
  const InterruptGuard interruptGuard;
  Session session;
  Camera camera = session.Select(common.camera);
  ZYNSDK::ZynCamera& handle = camera.For2DGrab();
  camera.Open(common.card);
  Outcome outcome;
  outcome.pixelFormat = PixelFormatOf(camera);
  const FrameWriter writer(options, outcome.pixelFormat);
  long status = handle.SetGrabTimeout(options.timeoutMs);
  if (status != 0) throw Failure::OfStatus("cannot set the time-out", status);
  // Every frame in order; the transport ends the stream by itself only when it is stopped, so no count is
  // given.
  status = handle.StartGrab(static_cast<ZYNSDK::ZynGrabStrategy>(0), 0);
  if (status != 0) throw Failure::OfStatus("cannot start the stream", status);
  {
    const StreamGuard streamGuard(handle);
    GrabLoop(console, handle, options, writer, outcome);
  }
  console.EndProgress();
  Report(console, common, options, outcome);
  return !IsInterrupted();
}

}  // namespace zyncam
