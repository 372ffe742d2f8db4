/// What the whole chain costs with a camera on the wire: finding a camera, reaching its first image, and watching for others
/// while it streams.
/// Run it with scripts/in-namespace.sh: it starts a fake GigE Vision camera of its own.
#include <ZynCamera.h>
#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cstdio>

#include "FakeGigeCamera.h"
#include "PrivateNetwork.h"
#include "gige/Discovery.h"

namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

/// DiscoveryCameras, beside the bare search on the adapters that lies beneath it. The bare search listens for a fixed time,
/// so the difference is what the layers above it cost.
void DiscoverOnTheWire(benchmark::State& state) {
  const zyntest::FakeGigeCamera fake(1);
  ZYNSDK::ZynCameraArray cameras;
  double bareSeconds = 0;
  double sdkSeconds = 0;
  for (auto _ : state) {
    auto start = Clock::now();
    benchmark::DoNotOptimize(zyn::gige::Discover());
    bareSeconds += SecondsSince(start);
    start = Clock::now();
    ZYNSDK::DiscoveryCameras(&cameras);
    const double seconds = SecondsSince(start);
    sdkSeconds += seconds;
    state.SetIterationTime(seconds);
    if (cameras.length() != 1) state.SkipWithError("the camera was not found");
  }
  const auto searches = static_cast<double>(state.iterations());
  state.counters["bare_ms"] = bareSeconds / searches * 1e3;
  state.counters["sdk_ms"] = sdkSeconds / searches * 1e3;
  state.counters["ratio"] = sdkSeconds / bareSeconds;
}
BENCHMARK(DiscoverOnTheWire)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

/// From a search result to the first image, and back to closed.
void OpenGrabClose(benchmark::State& state) {
  const zyntest::FakeGigeCamera fake(1);
  ZYNSDK::ZynCameraArray cameras;
  ZYNSDK::DiscoveryCameras(&cameras);
  ZYNSDK::ZynCamera camera;
  if (ZYNSDK::DiscoveryCamera("GV01", &camera) != 0) state.SkipWithError("the camera was not found");
  ZYNSDK::ZynImage image;
  for (auto _ : state) {
    long status = camera.Open(nullptr);
    if (status == 0) status = camera.StartGrab(ZYNSDK::ZYN_GRAB_ONE_BY_ONE, 0);
    if (status == 0) status = camera.GrabImage(&image, nullptr);
    if (status != 0) state.SkipWithError("no image");
    camera.StopGrab();
    camera.Close();
  }
}
BENCHMARK(OpenGrabClose)->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(20);

class CountingHandler : public ZYNSDK::ICameraEventHandler {
 public:
  void OnCameraEvent(ZYNSDK::ZynCamera, ZYNSDK::ZynCameraEventType) override { ++events; }
  std::atomic<int> events{0};
};

/// How many frames come in a short while; those that are damaged do not count.
int FramesOfOneWindow(ZYNSDK::ZynCamera& camera, double& seconds) {
  constexpr double kWindowSeconds = 0.4;
  ZYNSDK::ZynImage image;
  int frames = 0;
  const auto start = Clock::now();
  double passed = 0;
  for (; passed < kWindowSeconds; passed = SecondsSince(start))
    if (camera.GrabImage(&image, nullptr) == 0) ++frames;
  seconds += passed;
  return frames;
}

/// The rate of a stream of 200 frames per second while an event handler is registered, which searches on the same adapter,
/// beside the rate without one in the same run. Every registration searches at once, so here there are seven times as many
/// searches as in real life. The ratio should be 1.
void StreamWithEventHandler(benchmark::State& state) {
  const zyntest::FakeGigeCamera fake(1);
  ZYNSDK::ZynCameraArray cameras;
  ZYNSDK::DiscoveryCameras(&cameras);
  ZYNSDK::ZynCamera camera;
  ZYNSDK::ZynNode rate;
  if (ZYNSDK::DiscoveryCamera("GV01", &camera) != 0 || camera.Open(nullptr) != 0 ||
      camera.GetRemoteNode("AcquisitionFrameRate", &rate) != 0 || rate.SetFloat(200.0F) != 0 ||
      camera.StartGrab(ZYNSDK::ZYN_GRAB_ONE_BY_ONE, 0) != 0) {
    state.SkipWithError("no stream");
  }
  CountingHandler handler;
  double secondsWithout = 0;
  double secondsWith = 0;
  int framesWithout = 0;
  int framesWith = 0;
  for (auto _ : state) {
    framesWithout += FramesOfOneWindow(camera, secondsWithout);
    ZYNSDK::RegisterCameraEventHandler(&handler);
    framesWith += FramesOfOneWindow(camera, secondsWith);
    ZYNSDK::RegisterCameraEventHandler(nullptr);
  }
  if (handler.events != static_cast<int>(state.iterations())) state.SkipWithError("events are missing");
  const double rateWithout = framesWithout / secondsWithout;
  const double rateWith = framesWith / secondsWith;
  state.counters["without_fps"] = rateWithout;
  state.counters["with_fps"] = rateWith;
  state.counters["ratio"] = rateWith / rateWithout;
  camera.StopGrab();
  camera.Close();
}
BENCHMARK(StreamWithEventHandler)->UseRealTime()->Unit(benchmark::kSecond)->Iterations(16);

}  // namespace

int main(int argc, char** argv) {
  if (!zyntest::IsPrivateNetwork()) {
    std::fprintf(stderr, "This sends packets. Run it with scripts/in-namespace.sh.\n");
    return 2;
  }
  benchmark::Initialize(&argc, argv);
  ZYNSDK::ZynSDKInit();
  benchmark::RunSpecifiedBenchmarks();
  ZYNSDK::ZynSDKUnInit();
  benchmark::Shutdown();
  return 0;
}
