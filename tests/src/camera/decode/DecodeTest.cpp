#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "GuardedMemory.h"
#include "Kernels.h"
#include "PointRecords.h"
#include "PortableDecode.h"

using namespace ZYNSDK;

namespace {

using Bytes = std::vector<std::uint8_t>;

template <class Height>
using Function = void (*)(const std::uint8_t*, std::size_t, Height*, std::uint8_t*) noexcept;

template <class Height>
struct Decoded {
  std::vector<Height> heights;
  Bytes intensities;
  bool operator==(const Decoded& other) const = default;
};

template <class Height>
Decoded<Height> DecodedBy(Function<Height> decode, const Bytes& records) {
  Decoded<Height> decoded;
  decoded.heights.resize(PointCount(records.size()));
  decoded.intensities.resize(PointCount(records.size()));
  decode(records.data(), records.size(), decoded.heights.data(), decoded.intensities.data());
  return decoded;
}

Bytes Noise(std::size_t bytes) {
  Bytes noise(bytes);
  std::uint32_t state = 12345;
  for (std::uint8_t& byte : noise) {
    state = state * 1664525 + 1013904223;
    byte = static_cast<std::uint8_t>(state >> 24);
  }
  return noise;
}

constexpr std::size_t kMostVectorBytes = 64;
constexpr std::size_t kBlockBytes = 4 * kMostVectorBytes;

// What a test runs for each way to decode and each format.
template <class Check>
void ForEveryKernelAndFormat(Check check) {
  for (const NamedKernel& named : AllKernels()) {
    const DecodeKernel& kernel = named.kernel;
    check(named.name + " profile", Function<std::int32_t>(kernel.profile),
          Function<std::int32_t>(portable::DecodeProfile));
    check(named.name + " contour", Function<std::int32_t>(kernel.contour),
          Function<std::int32_t>(portable::DecodeContour));
    check(named.name + " batch", Function<std::uint16_t>(kernel.batch),
          Function<std::uint16_t>(portable::DecodeBatch));
    if (testing::Test::HasFailure()) return;
  }
}

// Memory around an output whose every other byte must stay as it is.
struct Output {
  static constexpr std::uint8_t kUntouched = 0xEE;
  static constexpr std::size_t kMargin = 2 * kMostVectorBytes;

  explicit Output(std::size_t bytes) : memory(bytes + 3 * kMargin, kUntouched) {
    const auto address = reinterpret_cast<std::uintptr_t>(memory.data());
    first = kMargin + (kMostVectorBytes - address % kMostVectorBytes) % kMostVectorBytes;
  }
  std::uint8_t* At(std::size_t misalignment) { return memory.data() + first + misalignment; }
  void Reset() { std::memset(memory.data(), kUntouched, memory.size()); }
  // Whether it holds these bytes there and nothing else changed.
  bool HoldsOnly(const void* expected, std::size_t bytes, std::size_t misalignment) const {
    const std::size_t begin = first + misalignment;
    for (std::size_t i = 0; i < begin; ++i) {
      if (memory[i] != kUntouched) return false;
    }
    for (std::size_t i = begin + bytes; i < memory.size(); ++i) {
      if (memory[i] != kUntouched) return false;
    }
    return bytes == 0 || std::memcmp(memory.data() + begin, expected, bytes) == 0;
  }

  Bytes memory;
  std::size_t first;
};

struct PointCase {
  const char* name;
  Bytes records;
  std::vector<int> profile, contour;
  Bytes intensities;
};

class PortableDecode : public testing::TestWithParam<PointCase> {};

}  // namespace

TEST_P(PortableDecode, GivesTheHeightsAndIntensities) {
  const PointCase& point = GetParam();
  EXPECT_EQ(DecodedBy<std::int32_t>(portable::DecodeProfile, point.records),
            (Decoded<std::int32_t>{point.profile, point.intensities}));
  EXPECT_EQ(DecodedBy<std::int32_t>(portable::DecodeContour, point.records),
            (Decoded<std::int32_t>{point.contour, point.intensities}));
  EXPECT_EQ(DecodedBy<std::uint16_t>(portable::DecodeBatch, point.records),
            (Decoded<std::uint16_t>{{point.contour.begin(), point.contour.end()}, point.intensities}));
}

INSTANTIATE_TEST_SUITE_P(
    Table, PortableDecode,
    testing::Values(PointCase{"Nothing", {}, {}, {}, {}},
                    PointCase{"HighBitsAndIntensity", {0x00, 0xFF, 0x80, 0x55}, {896}, {0x8055}, {255}},
                    PointCase{"MostSignificantByteFirst", {0x00, 0x10, 0x12, 0x34}, {0x012}, {4660}, {16}},
                    PointCase{"OnlyTheLowTwoBitsReachTheHeight", {0, 0xFC, 0x01, 0}, {1}, {256}, {252}},
                    PointCase{"TheFirstByteIsNotUsed", {0xFF, 0, 0, 0}, {0}, {0}, {0}},
                    PointCase{"Maximum", {0xFF, 0xFF, 0xFF, 0xFF}, {1023}, {65535}, {255}},
                    PointCase{"TwoInOrder", {0, 1, 2, 3, 0, 5, 6, 7}, {258, 262}, {515, 1543}, {1, 5}},
                    PointCase{"OneByteOfAPoint", {0xFF}, {0}, {0}, {0}},
                    PointCase{"TwoBytesOfAPoint", {0xFF, 0x0E}, {512}, {0}, {14}},
                    PointCase{"ThreeBytesOfAPoint", {0xFF, 0x0E, 0x10}, {528}, {4096}, {14}},
                    PointCase{"OneAndAHalf", {0, 1, 2, 3, 4, 5}, {258, 256}, {515, 0}, {1, 5}}),
    [](const testing::TestParamInfo<PointCase>& tested) { return std::string(tested.param.name); });

TEST(PortableDecode, TheIntensityOfAProfileKeepsTheBitsOfTheHeight) {
  for (int byte = 0; byte < 256; ++byte) {
    const Bytes record{0, static_cast<std::uint8_t>(byte), 0, 0};
    const auto decoded = DecodedBy<std::int32_t>(portable::DecodeProfile, record);
    EXPECT_EQ(decoded.intensities[0], byte);
    EXPECT_EQ(decoded.heights[0], byte % 4 * 256);
  }
}

TEST(PointRecords, APointThatIsCutShortCounts) {
  EXPECT_EQ(PointCount(0), 0U);
  EXPECT_EQ(PointCount(1), 1U);
  EXPECT_EQ(PointCount(4), 1U);
  EXPECT_EQ(PointCount(5), 2U);
  EXPECT_EQ(PointCount(~std::size_t{0}), (std::size_t{1} << 62U));
}

TEST(DecodeKernels, EndWithThePlainLoopsAndBeginWithTheBest) {
  const std::vector<NamedKernel> all = AllKernels();
  EXPECT_EQ(all.back().name, "portable");
  EXPECT_EQ(all.back().kernel.batch, kPortableKernel.batch);
  EXPECT_EQ(all.front().kernel.batch, BestKernel(0).batch);
  EXPECT_EQ(all.front().kernel.profile, BestKernel(0).profile);
  EXPECT_EQ(all.front().kernel.contour, BestKernel(0).contour);
#if defined(__x86_64__)
  // Every processor that this can be expected to run on has more than the plain loops.
  ASSERT_GE(all.size(), 3U);
  EXPECT_EQ(all[1].kernel.batch, BestKernel(~std::size_t{0}).batch);
  EXPECT_NE(all[0].kernel.batch, all[1].kernel.batch);
#endif
}

TEST(DecodeKernels, AreRightAtEveryLength) {
  const Bytes noise = Noise(3 * kBlockBytes + 40);
  ForEveryKernelAndFormat([&](const std::string& name, auto decode, auto reference) {
    for (std::size_t bytes = 0; bytes <= noise.size(); ++bytes) {
      const Bytes records(noise.begin(), noise.begin() + static_cast<std::ptrdiff_t>(bytes));
      ASSERT_EQ(DecodedBy(decode, records), DecodedBy(reference, records))
          << name << ", " << bytes << " bytes";
    }
  });
}

TEST(DecodeKernels, AreRightForEveryRecord) {
  Bytes records(std::size_t{4} << 16U);
  for (std::size_t i = 0; i < records.size() / 4; ++i) {
    records[4 * i] = static_cast<std::uint8_t>(i * 7);
    records[4 * i + 1] = static_cast<std::uint8_t>(i * 31 >> 3U);
    records[4 * i + 2] = static_cast<std::uint8_t>(i >> 8U);
    records[4 * i + 3] = static_cast<std::uint8_t>(i);
  }
  ForEveryKernelAndFormat([&](const std::string& name, auto decode, auto reference) {
    ASSERT_TRUE(DecodedBy(decode, records) == DecodedBy(reference, records)) << name;
  });
}

TEST(DecodeKernels, TakeRecordsAtEveryMisalignmentAndReadNothingElse) {
  const Bytes noise = Noise(2 * kBlockBytes + 3 + kMostVectorBytes);
  ForEveryKernelAndFormat([&](const std::string& name, auto decode, auto reference) {
    for (std::size_t bytes : {std::size_t{3}, kBlockBytes + 11, 2 * kBlockBytes + 3}) {
      for (std::size_t misalignment = 0; misalignment < kMostVectorBytes; ++misalignment) {
        const Bytes own(noise.begin() + static_cast<std::ptrdiff_t>(misalignment),
                        noise.begin() + static_cast<std::ptrdiff_t>(misalignment + bytes));
        auto decoded = DecodedBy(reference, own);
        const auto expected = decoded;
        decoded.heights.assign(decoded.heights.size(), 1);
        decode(noise.data() + misalignment, bytes, decoded.heights.data(), decoded.intensities.data());
        ASSERT_EQ(decoded, expected) << name << ", " << bytes << " bytes at " << misalignment;
      }
    }
  });
}

TEST(DecodeKernels, WriteAtEveryMisalignmentAndNothingElse) {
  const Bytes records = Noise(3 * kBlockBytes + 6);
  const std::size_t points = PointCount(records.size());
  ForEveryKernelAndFormat([&](const std::string& name, auto decode, auto reference) {
    const auto expected = DecodedBy(reference, records);
    using Height = typename decltype(expected.heights)::value_type;
    Output heights(points * sizeof(Height) + kMostVectorBytes);
    Output intensities(points + kMostVectorBytes);
    for (std::size_t i = 0; i < kMostVectorBytes; i += sizeof(Height)) {
      for (std::size_t j = 0; j < kMostVectorBytes; ++j) {
        heights.Reset();
        intensities.Reset();
        decode(records.data(), records.size(), reinterpret_cast<Height*>(heights.At(i)), intensities.At(j));
        ASSERT_TRUE(heights.HoldsOnly(expected.heights.data(), points * sizeof(Height), i))
            << name << ", heights at " << i << ", intensities at " << j;
        ASSERT_TRUE(intensities.HoldsOnly(expected.intensities.data(), points, j))
            << name << ", heights at " << i << ", intensities at " << j;
      }
    }
  });
}

TEST(DecodeKernels, TouchNoPageBeforeOrBehindTheirRanges) {
  using Guard = GuardedMemory::Guard;
  const Bytes noise = Noise(2 * kBlockBytes + 20);
  for (const Guard guard : {Guard::kBefore, Guard::kBehind}) {
    for (std::size_t bytes = 0; bytes <= noise.size(); bytes += bytes < 24 ? 1 : 13) {
      const std::size_t points = PointCount(bytes);
      const GuardedMemory records(bytes, guard);
      const GuardedMemory heights(points * sizeof(std::int32_t), guard);
      const GuardedMemory narrow(points * sizeof(std::uint16_t), guard);
      const GuardedMemory intensities(points, guard);
      std::memcpy(records.Data(), noise.data(), bytes);
      for (const NamedKernel& named : AllKernels()) {
        named.kernel.profile(records.Data(), bytes, reinterpret_cast<std::int32_t*>(heights.Data()),
                             intensities.Data());
        named.kernel.contour(records.Data(), bytes, reinterpret_cast<std::int32_t*>(heights.Data()),
                             intensities.Data());
        named.kernel.batch(records.Data(), bytes, reinterpret_cast<std::uint16_t*>(narrow.Data()),
                           intensities.Data());
      }
    }
  }
}

TEST(DecodeKernels, TakeNullPointersForNothing) {
  for (const NamedKernel& named : AllKernels()) {
    named.kernel.profile(nullptr, 0, nullptr, nullptr);
    named.kernel.contour(nullptr, 0, nullptr, nullptr);
    named.kernel.batch(nullptr, 0, nullptr, nullptr);
  }
}

TEST(DecodeKernels, AreRightForALargeTask) {
  const Bytes records = Noise((std::size_t{3} << 20U) + 5);
  ForEveryKernelAndFormat([&](const std::string& name, auto decode, auto reference) {
    ASSERT_TRUE(DecodedBy(decode, records) == DecodedBy(reference, records)) << name;
  });
}

TEST(PointRecords, DecodeAsThePlainLoopsDoInsideAndBeyondTheCaches) {
  for (const std::size_t bytes : {std::size_t{2561}, (std::size_t{24} << 20U) + 2}) {
    const Bytes records = Noise(bytes);
    EXPECT_TRUE(DecodedBy<std::int32_t>(DecodeProfile, records) ==
                DecodedBy<std::int32_t>(portable::DecodeProfile, records));
    EXPECT_TRUE(DecodedBy<std::int32_t>(DecodeContour, records) ==
                DecodedBy<std::int32_t>(portable::DecodeContour, records));
    EXPECT_TRUE(DecodedBy<std::uint16_t>(DecodeBatch, records) ==
                DecodedBy<std::uint16_t>(portable::DecodeBatch, records));
  }
}
