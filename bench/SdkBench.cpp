/// What the SDK itself costs, over a transport that is always ready. Each figure stands beside a yardstick
/// that was measured in the same loop, moments before, so that a busy machine slows both: "ratio" is what
/// counts.
#include <GenApi/GenApi.h>
#include <ZynCamera.h>
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <list>
#include <mutex>
#include <semaphore>
#include <thread>
#include <vector>

#include <KELGeniCam.h>

#include "ReadyTransport.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kFrameBytes = 4U << 20;

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

long PageFaults() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_minflt;
}

ZYNSDK::ZynCamera OpenCamera() {
  ready::SetCameraCount(1);
  ZYNSDK::ZynCameraArray cameras;
  ZYNSDK::DiscoveryCameras(&cameras);
  ZYNSDK::ZynCamera camera = cameras[0];
  camera.Open(nullptr);
  return camera;
}

/// One 4 MiB frame through GrabImage, beside one memcpy of it into memory that is in use already.
/// Budget: at most 1.15 times the memcpy, plus 2 microseconds; no page faults.
void GrabFourMebibytes(benchmark::State& state) {
  ready::SetFrameBytes(kFrameBytes);
  ZYNSDK::ZynCamera camera = OpenCamera();
  camera.StartGrab(ZYNSDK::ZYN_GRAB_ONE_BY_ONE, 0);
  std::vector<unsigned char> warm(kFrameBytes, 1);
  ZYNSDK::ZynImage image;
  for (int i = 0; i < 4; ++i) camera.GrabImage(&image, nullptr);
  double copying = 0;
  double grabbing = 0;
  const long faultsBefore = PageFaults();
  for (auto _ : state) {
    auto start = Clock::now();
    std::memcpy(warm.data(), ready::FrameData(), kFrameBytes);
    benchmark::ClobberMemory();
    copying += SecondsSince(start);
    start = Clock::now();
    if (camera.GrabImage(&image, nullptr) != 0) state.SkipWithError("grab failed");
    const double seconds = SecondsSince(start);
    grabbing += seconds;
    state.SetIterationTime(seconds);
  }
  const auto frames = static_cast<double>(state.iterations());
  if (std::memcmp(image.ImageData(), ready::FrameData(), kFrameBytes) != 0)
    state.SkipWithError("wrong image");
  state.counters["memcpy_us"] = copying / frames * 1e6;
  state.counters["grab_us"] = grabbing / frames * 1e6;
  state.counters["ratio"] = grabbing / copying;
  state.counters["ratio_beyond_2us"] = (grabbing - frames * 2e-6) / copying;
  state.counters["page_faults_per_frame"] = static_cast<double>(PageFaults() - faultsBefore) / frames;
  camera.StopGrab();
  camera.Close();
}
BENCHMARK(GrabFourMebibytes)->UseManualTime()->Unit(benchmark::kMicrosecond)->MinTime(2.0);

/// Notes when a handler, or whoever stands in for one, was entered.
class Entry {
 public:
  void Enter() {
    at_ = Clock::now();
    isEntered_.release();
  }
  /// Waits for the entry, and returns the seconds from `start` to it.
  double SecondsFrom(Clock::time_point start) {
    isEntered_.acquire();
    return std::chrono::duration<double>(at_ - start).count();
  }

 private:
  Clock::time_point at_;
  std::binary_semaphore isEntered_{0};
};

class EntryHandler : public ZYNSDK::IImageHandler {
 public:
  void OnImage(ZYNSDK::ZynCamera, ZYNSDK::ZynImage&) override { entry.Enter(); }
  Entry entry;
};

/// The least that passes a signal to another thread: one mutex, one condition variable.
class HandOver {
 public:
  HandOver() : thread_([this] { Run(); }) {}
  HandOver(const HandOver&) = delete;
  HandOver& operator=(const HandOver&) = delete;
  ~HandOver() {
    isEnding_ = true;
    Signal();
    thread_.join();
  }
  void Signal() {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      ++signals_;
    }
    isSignalled_.notify_one();
  }
  Entry entry;

 private:
  void Run() {
    for (;;) {
      std::unique_lock<std::mutex> lock(mutex_);
      isSignalled_.wait(lock, [&] { return signals_ > 0; });
      --signals_;
      if (isEnding_) return;
      lock.unlock();
      entry.Enter();
    }
  }
  std::mutex mutex_;
  std::condition_variable isSignalled_;
  int signals_ = 0;
  bool isEnding_ = false;  // written before the last signal
  std::thread thread_;
};

double Median(std::vector<double>& seconds) {
  const auto middle = seconds.begin() + static_cast<std::ptrdiff_t>(seconds.size() / 2);
  std::nth_element(seconds.begin(), middle, seconds.end());
  return *middle;
}

/// From a frame that is ready to the entry of the image handler, beside a bare hand-over to a waiting thread. The
/// rest is the grab: borrowing the device and copying one row. Medians, because a scheduler's outliers say nothing
/// about either.
void DeliverToHandler(benchmark::State& state) {
  ready::SetFrameBytes(2048);
  ready::SetWaiting(true);
  ZYNSDK::ZynCamera camera = OpenCamera();
  ready::SetWaiting(false);
  EntryHandler handler;
  HandOver bare;
  camera.SetGrabTimeout(50);  // how long stopping may take
  camera.RegisterImageHandler(&handler);
  camera.StartGrab(ZYNSDK::ZYN_GRAB_ONE_BY_ONE, 0);
  std::vector<double> bareSeconds;
  std::vector<double> handlerSeconds;
  for (auto _ : state) {
    auto start = Clock::now();
    bare.Signal();
    bareSeconds.push_back(bare.entry.SecondsFrom(start));
    start = Clock::now();
    ready::MakeFrameReady();
    handlerSeconds.push_back(handler.entry.SecondsFrom(start));
    state.SetIterationTime(handlerSeconds.back());
  }
  camera.StopGrab();
  camera.RegisterImageHandler(nullptr);
  camera.Close();
  const double bareMedian = Median(bareSeconds);
  const double handlerMedian = Median(handlerSeconds);
  state.counters["hand_over_us"] = bareMedian * 1e6;
  state.counters["handler_us"] = handlerMedian * 1e6;
  state.counters["beyond_hand_over_us"] = (handlerMedian - bareMedian) * 1e6;
  state.counters["ratio"] = handlerMedian / bareMedian;
}
BENCHMARK(DeliverToHandler)->UseManualTime()->Unit(benchmark::kMicrosecond)->MinTime(1.0);

/// A call through a camera handle that asks the transport one question, beside the same question asked
/// directly.
void CallThroughHandle(benchmark::State& state) {
  ZYNSDK::ZynCamera camera = OpenCamera();
  KELGENICAM::ICamera* direct = KELGENICAM::CreateCamera(nullptr);
  constexpr int kBatch = 1000;
  double handleSeconds = 0;
  double directSeconds = 0;
  for (auto _ : state) {
    auto start = Clock::now();
    for (int i = 0; i < kBatch; ++i) benchmark::DoNotOptimize(direct->IsGrabbing());
    directSeconds += SecondsSince(start);
    start = Clock::now();
    for (int i = 0; i < kBatch; ++i) benchmark::DoNotOptimize(camera.IsGrabbing());
    const double seconds = SecondsSince(start);
    handleSeconds += seconds;
    state.SetIterationTime(seconds);
  }
  const double calls = static_cast<double>(state.iterations()) * kBatch;
  state.counters["direct_ns"] = directSeconds / calls * 1e9;
  state.counters["handle_ns"] = handleSeconds / calls * 1e9;
  state.counters["ratio"] = handleSeconds / directSeconds;
  direct->Release();
  camera.Close();
}
BENCHMARK(CallThroughHandle)->UseManualTime()->Unit(benchmark::kMicrosecond);

/// A typed read of a cached feature through a node handle, beside the read of the same node in the node map.
/// The handle delivers value, minimum, maximum and increment; the yardstick reads the same four. Budget: 250
/// ns.
void CachedReadThroughNode(benchmark::State& state) {
  ZYNSDK::ZynCamera camera = OpenCamera();
  ZYNSDK::ZynNode node;
  if (camera.GetRemoteNode("Width", &node) != 0) state.SkipWithError("no such feature");
  GenApi_3_4::INodeMap* map = ZYNSDK::Get2DCameraNodeMap(&camera, ZYNSDK::ZYN_XML_REMOTE_DEVICE);
  const GenApi_3_4::CIntegerPtr raw(map->GetNode("Width"));
  constexpr int kBatch = 1000;
  double handleSeconds = 0;
  double rawSeconds = 0;
  for (auto _ : state) {
    auto start = Clock::now();
    for (int i = 0; i < kBatch; ++i) {
      benchmark::DoNotOptimize(raw->GetValue());
      benchmark::DoNotOptimize(raw->GetMin());
      benchmark::DoNotOptimize(raw->GetMax());
      benchmark::DoNotOptimize(raw->GetInc());
    }
    rawSeconds += SecondsSince(start);
    start = Clock::now();
    int value = 0;
    for (int i = 0; i < kBatch; ++i) {
      node.GetInt(&value, nullptr, nullptr, nullptr);
      benchmark::DoNotOptimize(value);
    }
    const double seconds = SecondsSince(start);
    handleSeconds += seconds;
    state.SetIterationTime(seconds);
  }
  const double reads = static_cast<double>(state.iterations()) * kBatch;
  state.counters["raw_ns"] = rawSeconds / reads * 1e9;
  state.counters["node_ns"] = handleSeconds / reads * 1e9;
  state.counters["ratio"] = handleSeconds / rawSeconds;
  camera.Close();
}
BENCHMARK(CachedReadThroughNode)->UseManualTime()->Unit(benchmark::kMicrosecond);

/// DiscoveryCameras with this many known cameras, beside the transport's own search. Budget: 1 ms beyond it.
void DiscoverKnownCameras(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  ready::SetCameraCount(count);
  ZYNSDK::ZynCameraArray cameras;
  ZYNSDK::DiscoveryCameras(&cameras);
  double sdkSeconds = 0;
  double transportSeconds = 0;
  for (auto _ : state) {
    auto start = Clock::now();
    std::list<KELGENICAM::ICameraInfo*> found;
    KELGENICAM::Discovery(nullptr, found);
    transportSeconds += SecondsSince(start);
    start = Clock::now();
    ZYNSDK::DiscoveryCameras(&cameras);
    const double seconds = SecondsSince(start);
    sdkSeconds += seconds;
    state.SetIterationTime(seconds);
  }
  if (cameras.length() != count) state.SkipWithError("cameras are missing");
  const auto searches = static_cast<double>(state.iterations());
  state.counters["transport_us"] = transportSeconds / searches * 1e6;
  state.counters["beyond_transport_us"] = (sdkSeconds - transportSeconds) / searches * 1e6;
  ready::SetCameraCount(1);
}
BENCHMARK(DiscoverKnownCameras)->Arg(1000)->UseManualTime()->Unit(benchmark::kMicrosecond);

class CountingHandler : public ZYNSDK::ICameraEventHandler {
 public:
  void OnCameraEvent(ZYNSDK::ZynCamera, ZYNSDK::ZynCameraEventType) override { ++events; }
  std::atomic<std::size_t> events{0};
};

/// How many frames come in a short while.
std::size_t FramesOfOneWindow(ZYNSDK::ZynCamera& camera, double& seconds) {
  constexpr double kWindowSeconds = 0.4;
  ZYNSDK::ZynImage image;
  std::size_t frames = 0;
  const auto start = Clock::now();
  double passed = 0;
  for (; passed < kWindowSeconds; passed = SecondsSince(start))
    if (camera.GrabImage(&image, nullptr) == 0) ++frames;
  seconds += passed;
  return frames;
}

/// The rate of a stream that never waits while an event handler watches 1,000 cameras, beside the rate without one in the
/// same run. Every registration searches at once, so here there are seven times as many searches as in real life. The ratio
/// should be 1 where a core is left for the scan thread.
void GrabWithEventHandler(benchmark::State& state) {
  constexpr std::size_t kWatched = 1000;
  ready::SetFrameBytes(1U << 20);
  ZYNSDK::ZynCamera camera = OpenCamera();
  ready::SetCameraCount(kWatched);
  camera.StartGrab(ZYNSDK::ZYN_GRAB_ONE_BY_ONE, 0);
  CountingHandler handler;
  double secondsWithout = 0;
  double secondsWith = 0;
  std::size_t framesWithout = 0;
  std::size_t framesWith = 0;
  for (auto _ : state) {
    framesWithout += FramesOfOneWindow(camera, secondsWithout);
    ZYNSDK::RegisterCameraEventHandler(&handler);
    framesWith += FramesOfOneWindow(camera, secondsWith);
    ZYNSDK::RegisterCameraEventHandler(nullptr);
  }
  if (handler.events != kWatched * static_cast<std::size_t>(state.iterations()))
    state.SkipWithError("events are missing");
  const double rateWithout = static_cast<double>(framesWithout) / secondsWithout;
  const double rateWith = static_cast<double>(framesWith) / secondsWith;
  state.counters["without_fps"] = rateWithout;
  state.counters["with_fps"] = rateWith;
  state.counters["ratio"] = rateWith / rateWithout;
  camera.StopGrab();
  camera.Close();
  ready::SetCameraCount(1);
}
BENCHMARK(GrabWithEventHandler)->UseRealTime()->Unit(benchmark::kSecond)->Iterations(16);

}  // namespace

BENCHMARK_MAIN();
