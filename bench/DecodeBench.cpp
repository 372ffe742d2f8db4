/// Decoding of point records beside one memcpy of the same bytes. All are measured in turns, so that a busy
/// machine slows all, each several times in a row after one time that does not count, so that none is measured
/// with what another left in the caches. "ratio" is the rate of decoding divided by that of a memcpy between
/// pages, from the medians of many rounds; "vector_ratio" is the same for a memcpy into a std::vector, which
/// lies 16 bytes behind a page's start; "best_ratio" comes from the fastest round of each. Budgets: batch 1.2,
/// others 0.9.
///
/// A decoder cannot be faster than its traffic. Inside the caches a line must be fetched before it is written, so
/// a memcpy moves 2 bytes towards the processor per byte of input, batch decoding 1.75 and the others 2.25: what
/// is bound by that has the ratios 8/7 = 1.14 and 8/9 = 0.89. BatchTraffic and ProfileTraffic show it: they read
/// and write as much, and decode nothing. More comes only where memcpy does not reach its own bound. Past the
/// caches decoding writes without fetching, which memcpy does not do before it copies hundreds of MiB.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "DecodeTraffic.h"
#include "Kernels.h"
#include "PixelMemory.h"
#include "PointRecords.h"
#include "PortableDecode.h"

namespace {

using namespace ZYNSDK;
using Clock = std::chrono::steady_clock;

template <class Height>
using Function = void (*)(const std::uint8_t*, std::size_t, Height*, std::uint8_t*) noexcept;

double SecondsOf(auto&& work) {
  const auto start = Clock::now();
  work();
  benchmark::ClobberMemory();
  return std::chrono::duration<double>(Clock::now() - start).count();
}

double Median(std::vector<double>& values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

PixelMemory Records(std::size_t bytes) {
  PixelMemory records(bytes);
  std::uint32_t state = 1;
  for (std::size_t i = 0; i < bytes; ++i) {
    state = state * 1664525 + 1013904223;
    records.Data()[i] = static_cast<std::uint8_t>(state >> 24);
  }
  return records;
}

template <class Height>
bool IsRight(const PixelMemory& records, const Height* heights, const std::uint8_t* intensities,
             Function<Height> reference) {
  const std::size_t points = PointCount(records.Bytes());
  std::vector<Height> expectedHeights(points);
  std::vector<std::uint8_t> expectedIntensities(points);
  reference(records.Data(), records.Bytes(), expectedHeights.data(), expectedIntensities.data());
  return std::equal(expectedHeights.begin(), expectedHeights.end(), heights) &&
         std::equal(expectedIntensities.begin(), expectedIntensities.end(), intensities);
}

template <class Height>
void Measure(benchmark::State& state, Function<Height> decode, Function<Height> reference) {
  const auto bytes = static_cast<std::size_t>(state.range(0)) << 10U;
  const std::size_t points = PointCount(bytes);
  const PixelMemory records = Records(bytes);
  const PixelMemory copy(bytes);
  const PixelMemory heightMemory(points * sizeof(Height));
  const PixelMemory intensities(points);
  auto* heights = reinterpret_cast<Height*>(heightMemory.Data());
  std::memset(copy.Data(), 1, copy.Bytes());
  decode(records.Data(), bytes, heights, intensities.Data());
  if (!IsRight(records, heights, intensities.Data(), reference)) {
    state.SkipWithError("wrong result");
    return;
  }
  std::vector<std::uint8_t> vectorCopy(bytes);
  std::vector<double> copying;
  std::vector<double> vectorCopying;
  std::vector<double> decoding;
  // Long enough for the clock, and often enough for the last cache, which keeps little of what it sees once.
  const int repetitions = static_cast<int>(std::max<std::size_t>(4, (std::size_t{4} << 20U) / bytes));
  const auto secondsOf = [repetitions](auto&& work) {
    work();
    return SecondsOf([&] {
      for (int i = 0; i < repetitions; ++i) {
        work();
        benchmark::ClobberMemory();
      }
    });
  };
  for (auto _ : state) {
    copying.push_back(secondsOf([&] { std::memcpy(copy.Data(), records.Data(), bytes); }));
    vectorCopying.push_back(secondsOf([&] { std::memcpy(vectorCopy.data(), records.Data(), bytes); }));
    decoding.push_back(secondsOf([&] { decode(records.Data(), bytes, heights, intensities.Data()); }));
    state.SetIterationTime(decoding.back());
  }
  const double total = static_cast<double>(bytes) * repetitions;
  const double copyMedian = Median(copying);
  const double decodeMedian = Median(decoding);
  state.counters["memcpy_GBps"] = total / copyMedian / 1e9;
  state.counters["decode_GBps"] = total / decodeMedian / 1e9;
  state.counters["ratio"] = copyMedian / decodeMedian;
  state.counters["vector_ratio"] = Median(vectorCopying) / decodeMedian;
  state.counters["best_ratio"] = copying.front() / decoding.front();
}

void Batch(benchmark::State& state) {
  Measure<std::uint16_t>(state, DecodeBatch, portable::DecodeBatch);
}
void Contour(benchmark::State& state) {
  Measure<std::int32_t>(state, DecodeContour, portable::DecodeContour);
}
void Profile(benchmark::State& state) {
  Measure<std::int32_t>(state, DecodeProfile, portable::DecodeProfile);
}
void PlainBatch(benchmark::State& state) {
  Measure<std::uint16_t>(state, portable::DecodeBatch, portable::DecodeBatch);
}

void BatchTraffic(benchmark::State& state) {
  Measure<std::uint16_t>(state, zyn::bench::BatchTraffic, zyn::bench::BatchTraffic);
}
void ProfileTraffic(benchmark::State& state) {
  Measure<std::int32_t>(state, zyn::bench::ProfileTraffic, zyn::bench::ProfileTraffic);
}

// KiB of input.
constexpr int kSmallest = 256;
constexpr int kLargest = 128 << 10;

BENCHMARK(Batch)->RangeMultiplier(2)->Range(kSmallest, kLargest)->UseManualTime()->MinTime(0.3);
BENCHMARK(Contour)->RangeMultiplier(2)->Range(kSmallest, kLargest)->UseManualTime()->MinTime(0.3);
BENCHMARK(Profile)->RangeMultiplier(2)->Range(kSmallest, kLargest)->UseManualTime()->MinTime(0.3);
BENCHMARK(BatchTraffic)->RangeMultiplier(2)->Range(kSmallest, kLargest)->UseManualTime()->MinTime(0.3);
BENCHMARK(ProfileTraffic)->RangeMultiplier(2)->Range(kSmallest, kLargest)->UseManualTime()->MinTime(0.3);
BENCHMARK(PlainBatch)->Arg(kSmallest)->Arg(kLargest)->UseManualTime()->MinTime(0.3);

}  // namespace

BENCHMARK_MAIN();
