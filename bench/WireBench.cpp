/// What the whole chain costs with a camera on the wire: finding a camera, and reaching its first image.
/// Run it with scripts/in-namespace.sh: it starts a fake GigE Vision camera of its own.
#include <ZynCamera.h>
#include <benchmark/benchmark.h>

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
