#include "Kernels.h"

#include <cstdio>
#include <memory>

#include "PointRecords.h"
#include "PortableDecode.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Kernels.cpp"  // what follows is compiled once for every set of instructions
#include <hwy/foreach_target.h>
// must come behind it
#include <hwy/cache_control.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace ZYNSDK {
namespace HWY_NAMESPACE {
namespace {

#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128 || __BYTE_ORDER__ != __ORDER_LITTLE_ENDIAN__

HWY_MAYBE_UNUSED KernelPair GetPair() {
  return {kPortableKernel, kPortableKernel};
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<std::uint8_t>;
using Dwords = hn::Repartition<std::uint32_t, Bytes>;
using Qwords = hn::Repartition<std::uint64_t, Bytes>;
using Vector = hn::Vec<Bytes>;

// A block is what is decoded at once: four vectors of records, a to d, which give one whole vector of
// intensities.
HWY_INLINE std::size_t BlockPoints() {
  return hn::Lanes(Bytes());
}

// Measured with 256 KiB to 8 MiB of records: 2 KiB ahead gives 1.05 to 1.7 times the rate of none, as 1 KiB
// and 4 KiB do within the noise. Beyond, where memory answers late, 16 KiB ahead gives 1.1 to 1.3 times.
constexpr std::size_t kCachedAhead = 2048;
constexpr std::size_t kStreamedAhead = 16384;
constexpr std::size_t kLineBytes = 64;

// Picks bytes within every 16; 0x80 picks 0.
HWY_INLINE Vector Pick(Vector v, const std::uint8_t* order) {
  return hn::TableLookupBytesOr0(v, hn::LoadDup128(Bytes(), order));
}

alignas(16) constexpr std::uint8_t kBatchOrder[16] = {3, 2, 7, 6,  11,   10,   15,   14,
                                                      1, 5, 9, 13, 0x80, 0x80, 0x80, 0x80};
alignas(16) constexpr std::uint8_t kContourOrder[16] = {3,  2,  0x80, 0x80, 7,  6,  0x80, 0x80,
                                                        11, 10, 0x80, 0x80, 15, 14, 0x80, 0x80};
alignas(16) constexpr std::uint8_t kProfileOrder[16] = {2,  1, 0x80, 0x80, 6,  5,  0x80, 0x80,
                                                        10, 9, 0x80, 0x80, 14, 13, 0x80, 0x80};

// Byte 1 of every record: the odd bytes, and of these the even ones.
HWY_INLINE Vector Intensities(Vector a, Vector b, Vector c, Vector d) {
  const Bytes bytes;
  return hn::ConcatEven(bytes, hn::ConcatOdd(bytes, d, c), hn::ConcatOdd(bytes, b, a));
}

struct ToCache {
  HWY_INLINE void operator()(Vector v, std::uint8_t* to) const { hn::StoreU(v, Bytes(), to); }
};
struct ToMemory {  // `to` aligned to a vector
  HWY_INLINE void operator()(Vector v, std::uint8_t* to) const { hn::Stream(v, Bytes(), to); }
};

// Separates every 16 bytes into four heights and four intensities; then collects first halves and third
// quarters:
//
// a  H0 H1 H2 H3 I0I1I2I3 -   b  H4 H5 H6 H7 I4I5I6I7 -   heights  H0 ... H7   intensities  I0 ... I7
//
// Measured with 256 KiB, which the second cache holds: 1.7 (AVX2) to 2.0 times (SSE4) the rate of
// collecting bytes from whole records; as fast with AVX-512. There it is the traffic between the caches
// that counts.
struct Batch {
  using Height = std::uint16_t;
  static constexpr auto kPortable = portable::DecodeBatch;
  template <class StoreHeights, class StoreIntensities>
  static HWY_INLINE void Store(Vector a, Vector b, Vector c, Vector d, std::uint8_t* heights,
                               std::uint8_t* intensities, StoreHeights storeHeights,
                               StoreIntensities storeIntensities) {
    const Qwords qwords;
    const Dwords dwords;
    const auto ab = hn::BitCast(qwords, Pick(a, kBatchOrder));
    const auto bb = hn::BitCast(qwords, Pick(b, kBatchOrder));
    const auto cb = hn::BitCast(qwords, Pick(c, kBatchOrder));
    const auto db = hn::BitCast(qwords, Pick(d, kBatchOrder));
    storeHeights(hn::BitCast(Bytes(), hn::ConcatEven(qwords, bb, ab)), heights);
    storeHeights(hn::BitCast(Bytes(), hn::ConcatEven(qwords, db, cb)), heights + hn::Lanes(Bytes()));
    const auto low = hn::BitCast(dwords, hn::ConcatOdd(qwords, bb, ab));
    const auto high = hn::BitCast(dwords, hn::ConcatOdd(qwords, db, cb));
    storeIntensities(hn::BitCast(Bytes(), hn::ConcatEven(dwords, high, low)), intensities);
  }
};

// For heights that take as much room as their record.
template <class StoreHeights>
HWY_INLINE void StoreFour(Vector a, Vector b, Vector c, Vector d, std::uint8_t* heights, StoreHeights store) {
  const std::size_t n = hn::Lanes(Bytes());
  store(a, heights);
  store(b, heights + n);
  store(c, heights + 2 * n);
  store(d, heights + 3 * n);
}

struct Contour {
  using Height = std::int32_t;
  static constexpr auto kPortable = portable::DecodeContour;
  template <class StoreHeights, class StoreIntensities>
  static HWY_INLINE void Store(Vector a, Vector b, Vector c, Vector d, std::uint8_t* heights,
                               std::uint8_t* intensities, StoreHeights storeHeights,
                               StoreIntensities storeIntensities) {
    StoreFour(Pick(a, kContourOrder), Pick(b, kContourOrder), Pick(c, kContourOrder), Pick(d, kContourOrder),
              heights, storeHeights);
    storeIntensities(Intensities(a, b, c, d), intensities);
  }
};

struct Profile {
  using Height = std::int32_t;
  static constexpr auto kPortable = portable::DecodeProfile;
  static HWY_INLINE Vector Heights(Vector v) {
    const Dwords dwords;
    return hn::BitCast(Bytes(), hn::And(hn::BitCast(dwords, Pick(v, kProfileOrder)), hn::Set(dwords, 0x3FF)));
  }
  template <class StoreHeights, class StoreIntensities>
  static HWY_INLINE void Store(Vector a, Vector b, Vector c, Vector d, std::uint8_t* heights,
                               std::uint8_t* intensities, StoreHeights storeHeights,
                               StoreIntensities storeIntensities) {
    StoreFour(Heights(a), Heights(b), Heights(c), Heights(d), heights, storeHeights);
    storeIntensities(Intensities(a, b, c, d), intensities);
  }
};

template <class Format>
struct Task {
  const std::uint8_t* records;
  typename Format::Height* heights;
  std::uint8_t* intensities;

  template <class StoreHeights, class StoreIntensities>
  HWY_INLINE void DecodeBlock(std::size_t point, StoreHeights storeHeights,
                              StoreIntensities storeIntensities) const {
    const Bytes bytes;
    const std::size_t n = hn::Lanes(bytes);
    const std::uint8_t* from = records + point * kRecordBytes;
    const Vector a = hn::LoadU(bytes, from);
    const Vector b = hn::LoadU(bytes, from + n);
    const Vector c = hn::LoadU(bytes, from + 2 * n);
    const Vector d = hn::LoadU(bytes, from + 3 * n);
    Format::Store(a, b, c, d, reinterpret_cast<std::uint8_t*>(heights + point), intensities + point,
                  storeHeights, storeIntensities);
  }

  // Decodes the whole blocks from `point` on and returns the point behind them. `ahead` bytes of records are
  // asked for in advance, which carries the processor's own prefetching over the borders of pages.
  template <class StoreHeights, class StoreIntensities>
  HWY_INLINE std::size_t DecodeBlocks(std::size_t point, std::size_t points, std::size_t ahead,
                                      StoreHeights storeHeights, StoreIntensities storeIntensities) const {
    for (; point + BlockPoints() + ahead / kRecordBytes <= points; point += BlockPoints()) {
      for (std::size_t i = 0; i < BlockPoints() * kRecordBytes; i += kLineBytes) {
        hwy::Prefetch(records + point * kRecordBytes + ahead + i);
      }
      DecodeBlock(point, storeHeights, storeIntensities);
    }
    for (; point + BlockPoints() <= points; point += BlockPoints()) {
      DecodeBlock(point, storeHeights, storeIntensities);
    }
    return point;
  }

  // Past the caches as far as the addresses allow. The points before the first aligned height are decoded
  // by a block that overlaps what follows.
  std::size_t StreamBlocks(std::size_t points) const {
    const std::size_t misaligned = reinterpret_cast<std::uintptr_t>(heights) % BlockPoints();
    if (misaligned % sizeof(*heights) != 0)
      return DecodeBlocks(0, points, kCachedAhead, ToCache(), ToCache());
    DecodeBlock(0, ToCache(), ToCache());
    const std::size_t start = misaligned == 0 ? 0 : (BlockPoints() - misaligned) / sizeof(*heights);
    const bool areBothAligned = reinterpret_cast<std::uintptr_t>(intensities + start) % BlockPoints() == 0;
    const std::size_t end = areBothAligned
                                ? DecodeBlocks(start, points, kStreamedAhead, ToMemory(), ToMemory())
                                : DecodeBlocks(start, points, kStreamedAhead, ToMemory(), ToCache());
    hwy::FlushStream();
    return end;
  }
};

template <class Format, bool kStreams>
void Decode(const std::uint8_t* records, std::size_t bytes, typename Format::Height* heights,
            std::uint8_t* intensities) noexcept {
  const std::size_t points = bytes / kRecordBytes;  // whole ones
  if (points < BlockPoints()) return Format::kPortable(records, bytes, heights, intensities);
  const Task<Format> task{records, heights, intensities};
  const std::size_t done =
      kStreams ? task.StreamBlocks(points) : task.DecodeBlocks(0, points, kCachedAhead, ToCache(), ToCache());
  // The rest is one more block, which overlaps what is done and writes the same there.
  if (done != points) task.DecodeBlock(points - BlockPoints(), ToCache(), ToCache());
  if (bytes % kRecordBytes == 0) return;
  Format::kPortable(records + points * kRecordBytes, bytes % kRecordBytes, heights + points,
                    intensities + points);
}

HWY_MAYBE_UNUSED KernelPair GetPair() {
  return {{Decode<Profile, false>, Decode<Contour, false>, Decode<Batch, false>},
          {Decode<Profile, true>, Decode<Contour, true>, Decode<Batch, true>}};
}

#endif

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace ZYNSDK
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace ZYNSDK {

namespace {

HWY_EXPORT(GetPair);

// For the best of these targets.
KernelPair PairFor(std::int64_t targets) {
  hwy::ChosenTarget chosen;
  chosen.Update(targets);
  return HWY_DISPATCH_TABLE(GetPair)[chosen.GetIndex()]();
}

// Bytes of the last cache that one processor can fill, or 0. Where the system is asked by sysconf, it may
// answer with the sum over a whole machine (402 MiB for groups of 32 MiB).
std::size_t ReportedLastCache() noexcept {
#ifdef __linux__
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
      std::fopen("/sys/devices/system/cpu/cpu0/cache/index3/size", "re"), &std::fclose);
  unsigned long kibibytes = 0;
  if (file && std::fscanf(file.get(), "%luK", &kibibytes) == 1) return std::size_t{kibibytes} << 10U;
#endif
  return 0;
}

// What is larger is better written past the caches. Measured with a last cache of 32 MiB: up to 18 MiB of
// records and results streaming costs up to two thirds of the speed, from 21 MiB on it gains a third.
std::size_t LargestCachedTask() noexcept {
  constexpr std::size_t kUsual = 32U << 20U;
  const std::size_t reported = ReportedLastCache();
  return (reported > 0 ? reported : kUsual) / 8 * 5;
}

}  // namespace

const DecodeKernel& BestKernel(std::size_t bytesTouched) noexcept {
  static const KernelPair best = PairFor(hwy::SupportedTargets());
  static const std::size_t largestCachedTask = LargestCachedTask();
  return bytesTouched > largestCachedTask ? best.streaming : best.cached;
}

std::vector<NamedKernel> AllKernels() {
  std::vector<NamedKernel> kernels;
  for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
    const KernelPair pair = PairFor(target);
    if (pair.cached.batch == kPortableKernel.batch) continue;  // no vectors: the plain loops, which come last
    kernels.push_back({hwy::TargetName(target), pair.cached});
    kernels.push_back({std::string(hwy::TargetName(target)) + "+stream", pair.streaming});
  }
  kernels.push_back({"portable", kPortableKernel});
  return kernels;
}

}  // namespace ZYNSDK
#endif
