/// How fast laser profiles come through the whole chain: simulated camera, producer, transport, SDK.
/// Run it with scripts/in-namespace.sh: the search for cameras looks at the network too.
#include <ZynCamera.h>
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <GenApi/GenApi.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "PrivateNetwork.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kPoints = 2000;
constexpr int kLinesPerScan = 4000;
constexpr int kLinesPerFrame = 500;
constexpr int kContours = 20000;
constexpr double kLinesPerSecond = 20000;

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

double ProcessorSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// The simulated laser camera, open, at a given pace.
class Laser {
 public:
  explicit Laser(const char* pacing) {
    ZYNSDK::Zyn3DCameraArray cameras;
    isOpen_ = ZYNSDK::Discovery3DCameras(&cameras) == 0 &&
              ZYNSDK::Discovery3DCamera("SIM0001", &camera) == 0 && camera.Open() == 0;
    if (!isOpen_) return;
    Write(ZYNSDK::ZYN_XML_INTERFACE, "SimCameraSerialNumber", "SIM0001");
    Write(ZYNSDK::ZYN_XML_INTERFACE, "SimStreamPacing", pacing);
    Write(ZYNSDK::ZYN_XML_REMOTE_DEVICE, "ExposureTime", "20");
    Write(ZYNSDK::ZYN_XML_REMOTE_DEVICE, "AcquisitionLineRateEnable", "1");
    Write(ZYNSDK::ZYN_XML_REMOTE_DEVICE, "AcquisitionLineRate", std::to_string(kLinesPerSecond).c_str());
  }
  Laser(const Laser&) = delete;
  Laser& operator=(const Laser&) = delete;
  ~Laser() {
    camera.StopGrab();
    camera.Close();
  }
  bool IsOpen() const { return isOpen_; }
  void Write(ZYNSDK::ZynXmlSource map, const char* feature, const char* value) {
    GenApi::CValuePtr(Get3DCameraNodeMap(&camera, map)->GetNode(feature))->FromString(value);
  }
  double LostFrames() {
    return static_cast<double>(
        GenApi::CIntegerPtr(
            Get3DCameraNodeMap(&camera, ZYNSDK::ZYN_XML_DATA_STREAM)->GetNode("StreamLostFrameCount"))
            ->GetValue(false, true));
  }

  ZYNSDK::Zyn3DCamera camera;

 private:
  bool isOpen_ = false;
};

/// What a run gave: "lines_per_s"; "ratio" of that to the camera's line rate; lost frames; processors kept busy by
/// camera, transport and SDK together.
void Report(benchmark::State& state, Laser& laser, double lines, double seconds, double processorSeconds) {
  state.counters["lines_per_s"] = lines / seconds;
  state.counters["ratio"] = lines / seconds / kLinesPerSecond;
  state.counters["lost_frames"] = laser.LostFrames();
  state.counters["processors"] = processorSeconds / seconds;
}

void Scans(benchmark::State& state, const char* pacing) {
  Laser laser(pacing);
  if (!laser.IsOpen()) return state.SkipWithError("no camera");
  laser.camera.SetBatchCount(kLinesPerScan);
  laser.Write(ZYNSDK::ZYN_XML_REMOTE_DEVICE, "BatchNumber", std::to_string(kLinesPerFrame).c_str());
  ZYNSDK::ZynRangeImage range;
  ZYNSDK::ZynImage intensity;
  // The first scan is made before the clock starts: it takes the memory that the others use again.
  if (laser.camera.StartGrab(ZYNSDK::ZYN_3D_GRAB_BATCH) != 0 ||
      laser.camera.GrabBatchData(&range, &intensity) != 0) {
    return state.SkipWithError("no scan");
  }
  const double processorStart = ProcessorSeconds();
  const auto start = Clock::now();
  for (auto _ : state) {
    if (laser.camera.GrabBatchData(&range, &intensity) != 0 || range.Height() != kLinesPerScan) {
      return state.SkipWithError("no scan");
    }
  }
  Report(state, laser, static_cast<double>(state.iterations()) * kLinesPerScan, SecondsSince(start),
         ProcessorSeconds() - processorStart);
}

void Contours(benchmark::State& state, const char* pacing) {
  Laser laser(pacing);
  if (!laser.IsOpen()) return state.SkipWithError("no camera");
  ZYNSDK::Zyn3DIntArray heights;
  ZYNSDK::ZynImage intensity;
  if (laser.camera.StartGrab(ZYNSDK::ZYN_3D_GRAB_CONTOUR) != 0 ||
      laser.camera.GrabContour(&heights, &intensity) != 0) {
    return state.SkipWithError("no contour");
  }
  const double processorStart = ProcessorSeconds();
  const auto start = Clock::now();
  for (auto _ : state) {
    if (laser.camera.GrabContour(&heights, &intensity) != 0 || heights.Length() != kPoints) {
      return state.SkipWithError("no contour");
    }
  }
  Report(state, laser, static_cast<double>(state.iterations()), SecondsSince(start),
         ProcessorSeconds() - processorStart);
}

/// In real time, at 20,000 lines per second of 2,000 points: "ratio" is 1 when every line came in its time.
void ScansInRealTime(benchmark::State& state) {
  Scans(state, "Camera");
}
void ContoursInRealTime(benchmark::State& state) {
  Contours(state, "Camera");
}
/// As fast as the application takes them: "ratio" says how many times 20,000 lines per second that is.
void ScansAsFastAsRead(benchmark::State& state) {
  Scans(state, "Reader");
}
void ContoursAsFastAsRead(benchmark::State& state) {
  Contours(state, "Reader");
}
BENCHMARK(ScansInRealTime)->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(ContoursInRealTime)->UseRealTime()->Unit(benchmark::kMicrosecond)->Iterations(kContours);
BENCHMARK(ScansAsFastAsRead)->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(50);
BENCHMARK(ContoursAsFastAsRead)->UseRealTime()->Unit(benchmark::kMicrosecond)->Iterations(kContours);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (!zyntest::IsPrivateNetwork()) {
    std::fprintf(stderr, "This sends packets. Run it with scripts/in-namespace.sh.\n");
    return 2;
  }
  setenv("GENICAM_GENTL64_PATH", ZYN_SIMULATOR_FOLDER, 1);
  unsetenv("ZYN_SIMULATOR_CONFIG");
  ZYNSDK::ZynSDKInit();
  benchmark::RunSpecifiedBenchmarks();
  ZYNSDK::ZynSDKUnInit();
  return 0;
}
