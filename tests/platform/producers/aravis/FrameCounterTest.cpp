#include "FrameCounter.h"

#include <gtest/gtest.h>

#include <vector>

namespace zyn::aravis {
namespace {

struct CounterCase {
  const char* name;
  std::vector<std::uint64_t> wire;
  std::vector<std::uint64_t> ids;
  std::vector<std::uint64_t> lost;
};

class FrameCounterTest : public testing::TestWithParam<CounterCase> {};

TEST_P(FrameCounterTest, NumbersGrowAndGapsAreCounted) {
  FrameCounter counter;
  for (std::size_t i = 0; i < GetParam().wire.size(); ++i) {
    const FrameCounter::Step step = counter.Next(GetParam().wire[i]);
    EXPECT_EQ(step.id, GetParam().ids[i]) << i;
    EXPECT_EQ(step.lost, GetParam().lost[i]) << i;
  }
}

constexpr std::uint64_t kBig = 0x1'0000'0005;

INSTANTIATE_TEST_SUITE_P(
    Edges, FrameCounterTest,
    testing::Values(
        CounterCase{"Consecutive", {1, 2, 3}, {1, 2, 3}, {0, 0, 0}},
        CounterCase{"StartsAnywhere", {65401, 65402}, {65401, 65402}, {0, 0}},
        CounterCase{"Gap", {7, 10}, {7, 10}, {0, 2}},
        CounterCase{"WrapSkipsZero", {65534, 65535, 1, 2}, {65534, 65535, 65536, 65537}, {0, 0, 0, 0}},
        CounterCase{"WrapThroughZero", {65535, 0, 1}, {65535, 65536, 65537}, {0, 0, 0}},
        CounterCase{"GapAcrossTheWrap", {65535, 3}, {65535, 65538}, {0, 2}},
        CounterCase{
            "SecondWrap", {65535, 30000, 60000, 1}, {65535, 95535, 125535, 131071}, {0, 29999, 29999, 5535}},
        CounterCase{"CameraStartedAnew", {100, 1, 2}, {100, 101, 102}, {0, 0, 0}},
        CounterCase{"SameNumberTwice", {5, 5, 6}, {5, 6, 7}, {0, 0, 0}},
        CounterCase{
            "LongNumbersDoNotWrap", {kBig, kBig + 1, kBig + 3}, {kBig, kBig + 1, kBig + 3}, {0, 0, 1}},
        CounterCase{"LongNumbersStartedAnew", {kBig, 1}, {kBig, kBig + 1}, {0, 0}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(FrameCounterUnnumbered, AFrameWithoutNumberIsTheOneThatFollows) {
  FrameCounter counter;
  EXPECT_EQ(counter.NextUnnumbered().id, 1U);
  counter.Next(65535);
  EXPECT_EQ(counter.NextUnnumbered().id, 65536U);
  const FrameCounter::Step step = counter.Next(4);
  EXPECT_EQ(step.id, 65539U);
  EXPECT_EQ(step.lost, 2U);
}

}  // namespace
}  // namespace zyn::aravis
