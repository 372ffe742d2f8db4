/// What 3D acquisition costs, over a transport that is always ready. Each figure stands beside the work that cannot
/// be avoided, done in the same loop, moments before, on the same records: "ratio" is what counts, taken from the
/// medians of all rounds, so that a busy machine slows both.
#include <ZynCamera.h>
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <KELGeniCam.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <list>
#include <memory>
#include <vector>

#include "AllocationCount.h"
#include "PointRecords.h"
#include "ReadyTransport.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kPoints = 2000;
constexpr std::size_t kSensorBytes = 1U << 20;

long PageFaults() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_minflt;
}

/// What one kind of work cost, round by round.
class Cost {
 public:
  template <class Work>
  double Measure(Work work) {
    const long faults = PageFaults();
    const long allocations = AllocationCount();
    const auto start = Clock::now();
    work();
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    allocations_ += AllocationCount() - allocations;
    faults_ += PageFaults() - faults;
    seconds_.push_back(seconds);
    return seconds;
  }
  double Median() {
    auto middle = seconds_.begin() + static_cast<std::ptrdiff_t>(seconds_.size() / 2);
    std::nth_element(seconds_.begin(), middle, seconds_.end());
    return *middle;
  }
  double Allocations() const { return static_cast<double>(allocations_) / Rounds(); }
  double Faults() const { return static_cast<double>(faults_) / Rounds(); }

 private:
  double Rounds() const { return static_cast<double>(seconds_.size()); }

  std::vector<double> seconds_;
  long allocations_ = 0;
  long faults_ = 0;
};

ZYNSDK::Zyn3DCamera Started(const ready::Laser& laser, ZYNSDK::Zyn3DGrabType type) {
  ready::SetFrameBytes(kSensorBytes);
  ready::SetLaser(laser);
  ZYNSDK::Zyn3DCameraArray cameras;
  ZYNSDK::Discovery3DCameras(&cameras);
  ZYNSDK::Zyn3DCamera camera = cameras[0];
  camera.Open();
  camera.StartGrab(type);
  return camera;
}

void Finish(ZYNSDK::Zyn3DCamera& camera) {
  camera.StopGrab();
  camera.Close();
}

/// The transport's camera, used as the SDK uses it.
class Direct {
 public:
  explicit Direct() {
    std::list<KELGENICAM::ICameraInfo*> found;
    KELGENICAM::Discovery(nullptr, found);
    camera_ = KELGENICAM::CreateCamera(found.back());
  }
  Direct(const Direct&) = delete;
  Direct& operator=(const Direct&) = delete;
  ~Direct() { camera_->Release(); }

  /// Waits for a frame and hands its image and its first chunk to `use`.
  template <class Use>
  void Frame(Use use) {
    KELGENICAM::IImage* image = nullptr;
    camera_->Grab(&image, 1000);
    std::list<KELGENICAM::IChunk*> chunks;
    image->Chunks(chunks);
    use(*image, chunks.front()->Data(), static_cast<std::size_t>(chunks.front()->Length()));
    image->Release();
  }

 private:
  KELGENICAM::ICamera* camera_;
};

void Report(benchmark::State& state, Cost& direct, Cost& grab) {
  state.counters["direct_us"] = direct.Median() * 1e6;
  state.counters["grab_us"] = grab.Median() * 1e6;
  state.counters["ratio"] = grab.Median() / direct.Median();
  state.counters["direct_allocations"] = direct.Allocations();
  state.counters["allocations"] = grab.Allocations();
  state.counters["page_faults"] = grab.Faults();
}

/// A scan of 2,000 x 4,000 points through GrabBatchData. Beside it: decoding the frames into two buffers, and copying
/// those, all in memory that is in use already. Budget: at most 1.3 times that; no page faults.
void GrabScan(benchmark::State& state) {
  constexpr int kLines = 4000;
  constexpr int kLinesPerFrame = 100;
  constexpr std::size_t kScan = std::size_t{kPoints} * kLines;
  ZYNSDK::Zyn3DCamera camera = Started({kPoints, kLinesPerFrame, kLines}, ZYNSDK::ZYN_3D_GRAB_BATCH);
  Direct transport;
  std::vector<std::uint16_t> heights(kScan);
  std::vector<std::uint8_t> intensities(kScan);
  std::vector<std::uint16_t> heightCopy(kScan);
  std::vector<std::uint8_t> intensityCopy(kScan);
  ZYNSDK::ZynRangeImage range;
  ZYNSDK::ZynImage intensity;
  for (int i = 0; i < 3; ++i) camera.GrabBatchData(&range, &intensity);
  Cost direct;
  Cost grab;
  for (auto _ : state) {
    direct.Measure([&] {
      for (std::size_t point = 0; point < kScan; point += std::size_t{kPoints} * kLinesPerFrame) {
        transport.Frame([&](KELGENICAM::IImage&, const unsigned char* records, std::size_t bytes) {
          ZYNSDK::DecodeBatch(records, bytes, heights.data() + point, intensities.data() + point);
        });
      }
      std::memcpy(heightCopy.data(), heights.data(), kScan * sizeof(std::uint16_t));
      std::memcpy(intensityCopy.data(), intensities.data(), kScan);
      benchmark::ClobberMemory();
    });
    state.SetIterationTime(grab.Measure([&] {
      if (camera.GrabBatchData(&range, &intensity) != 0) state.SkipWithError("grab failed");
    }));
  }
  if (std::memcmp(range.Data(), heightCopy.data(), kScan * sizeof(std::uint16_t)) != 0 ||
      std::memcmp(intensity.ImageData(), intensityCopy.data(), kScan) != 0) {
    state.SkipWithError("wrong scan");
  }
  Report(state, direct, grab);
  Finish(camera);
}
BENCHMARK(GrabScan)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);

constexpr int kBatch = 100;  // profiles per round: the clock is not finer

/// A profile of 2,000 points through GrabContour. Beside it: taking the frame and decoding it into memory that is in
/// use already. The difference is what the caller's own objects cost. Budget: allocations for the results alone, of
/// recycled memory: no page faults.
void GrabContourProfile(benchmark::State& state) {
  ZYNSDK::Zyn3DCamera camera = Started({kPoints, 1, 1000}, ZYNSDK::ZYN_3D_GRAB_CONTOUR);
  Direct transport;
  std::vector<std::int32_t> heights(kPoints);
  std::vector<std::uint8_t> intensities(kPoints);
  ZYNSDK::Zyn3DIntArray array;
  ZYNSDK::ZynImage intensity;
  for (int i = 0; i < 1000; ++i) camera.GrabContour(&array, &intensity);
  Cost direct;
  Cost grab;
  for (auto _ : state) {
    direct.Measure([&] {
      for (int i = 0; i < kBatch; ++i) {
        transport.Frame([&](KELGENICAM::IImage&, const unsigned char* records, std::size_t bytes) {
          ZYNSDK::DecodeContour(records, bytes, heights.data(), intensities.data());
        });
        benchmark::ClobberMemory();
      }
    });
    state.SetIterationTime(grab.Measure([&] {
      for (int i = 0; i < kBatch; ++i) {
        if (camera.GrabContour(&array, &intensity) != 0) state.SkipWithError("grab failed");
      }
    }));
  }
  if (array.Length() != kPoints || intensity.Width() != kPoints) state.SkipWithError("wrong profile");
  Report(state, direct, grab);
  Finish(camera);
}
BENCHMARK(GrabContourProfile)->UseManualTime()->Unit(benchmark::kMicrosecond);

/// The same through GrabData, with a sensor image of 1 MiB.
void GrabDataProfile(benchmark::State& state) {
  ZYNSDK::Zyn3DCamera camera = Started({kPoints, 1, 1000}, ZYNSDK::ZYN_3D_GRAB_PROFILE);
  Direct transport;
  std::vector<std::int32_t> heights(kPoints);
  std::vector<std::uint8_t> intensities(kPoints);
  std::vector<unsigned char> pixels(kSensorBytes);
  ZYNSDK::ZynImage image;
  ZYNSDK::Zyn3DIntArray array;
  ZYNSDK::ZynImage intensity;
  for (int i = 0; i < 100; ++i) camera.GrabData(&image, &array, &intensity);
  Cost direct;
  Cost grab;
  for (auto _ : state) {
    direct.Measure([&] {
      for (int i = 0; i < kBatch; ++i) {
        transport.Frame([&](KELGENICAM::IImage& frame, const unsigned char* records, std::size_t bytes) {
          std::memcpy(pixels.data(), frame.Data(), kSensorBytes);
          ZYNSDK::DecodeProfile(records, bytes, heights.data(), intensities.data());
        });
        benchmark::ClobberMemory();
      }
    });
    state.SetIterationTime(grab.Measure([&] {
      for (int i = 0; i < kBatch; ++i) {
        if (camera.GrabData(&image, &array, &intensity) != 0) state.SkipWithError("grab failed");
      }
    }));
  }
  if (array.Length() != kPoints || image.Height() == 0) state.SkipWithError("wrong profile");
  Report(state, direct, grab);
  Finish(camera);
}
BENCHMARK(GrabDataProfile)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace
