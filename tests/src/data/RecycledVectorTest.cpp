#include "RecycledVector.h"

#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>
#include <vector>

#include "GridBytes.h"
#include "InitMatData.h"

using namespace ZYNSDK;

namespace {

using Bytes = RecycledVector<unsigned char>;

std::vector<unsigned char> Content(const Bytes& bytes) {
  return {bytes.Data(), bytes.Data() + bytes.Size()};
}

}  // namespace

TEST(RecycledVector, CopiesHaveMemoryOfTheirOwn) {
  const unsigned char data[] = {1, 2, 3};
  const Bytes first(data, 3);
  const Bytes second(first);
  first[0] = 9;
  EXPECT_EQ(Content(second), (std::vector<unsigned char>{1, 2, 3}));
}

TEST(RecycledVector, MovingLeavesTheSourceEmpty) {
  const unsigned char data[] = {1, 2, 3};
  Bytes first(data, 3);
  const Bytes second(std::move(first));
  EXPECT_EQ(first.Size(), 0U);  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(first.Capacity(), 0U);
  EXPECT_EQ(second.Size(), 3U);
}

TEST(RecycledVector, ClearKeepsTheMemoryAndFreeGivesItBack) {
  Bytes bytes;
  bytes.Resize(100000);
  const unsigned char* data = bytes.Data();
  bytes.Clear();
  EXPECT_EQ(bytes.Size(), 0U);
  bytes.ResizeForOverwrite(100000);
  EXPECT_EQ(bytes.Data(), data);
  bytes.Free();
  EXPECT_EQ(bytes.Data(), nullptr);
}

TEST(RecycledVector, ForgettingItsElementsStaysWhereItIsWhenThereIsRoom) {
  Bytes bytes;
  bytes.ResizeAndForget(100000);
  EXPECT_EQ(bytes.Size(), 100000U);
  const unsigned char* data = bytes.Data();
  bytes.ResizeAndForget(10);
  bytes.ResizeAndForget(100000);
  EXPECT_EQ(bytes.Data(), data);
  EXPECT_THROW(bytes.ResizeAndForget(Bytes::kMostElements + 1), std::length_error);
  EXPECT_EQ(bytes.Size(), 100000U);
  bytes.ResizeAndForget(300000);
  EXPECT_GE(bytes.Capacity(), 300000U);
}

TEST(RecycledVector, KeepsItsElementsWhenItGrows) {
  RecycledVector<std::uint16_t> numbers;
  for (std::uint16_t i = 0; i < 60000; ++i) numbers.Append(i);
  ASSERT_EQ(numbers.Size(), 60000U);
  for (std::uint16_t i = 0; i < 60000; ++i) ASSERT_EQ(numbers[i], i);
}

TEST(RecycledVector, RefusesMoreElementsThanAnIntCounts) {
  Bytes bytes;
  bytes.Append(5);
  EXPECT_THROW(bytes.AppendForOverwrite(INT_MAX), std::length_error);
  EXPECT_THROW(bytes.Reserve(std::size_t{INT_MAX} + 1), std::length_error);
  EXPECT_THROW(bytes.Resize(~std::size_t{0}), std::length_error);
  EXPECT_EQ(Content(bytes), (std::vector<unsigned char>{5}));
}

TEST(InitMatData, FillsEveryByteWithTheGroupAndCutsTheLast) {
  const unsigned char group[] = {0x0D, 0xF0, 0xAD, 0xBA};
  for (const std::size_t size : {0U, 1U, 2U, 3U, 4U, 5U, 7U, 4095U, 4096U, 4097U, 4098U, 8192U, 100003U}) {
    Bytes bytes;
    bytes.Resize(size);
    InitMatData(bytes);
    ASSERT_EQ(bytes.Size(), size);
    for (std::size_t i = 0; i < size; ++i) ASSERT_EQ(bytes[i], group[i % 4]) << i << " of " << size;
  }
}

TEST(GridBytes, CountsUpToWhatAnIntHolds) {
  EXPECT_EQ(GridBytes(3, 2, 8), 48U);
  EXPECT_EQ(GridBytes(0, INT_MAX, 8), 0U);
  EXPECT_EQ(GridBytes(INT_MAX, 0, 8), 0U);
  EXPECT_EQ(GridBytes(INT_MAX, 1, 1), static_cast<std::size_t>(INT_MAX));
  EXPECT_THROW(GridBytes(INT_MAX, 1, 2), std::length_error);
  EXPECT_THROW(GridBytes(32768, 32768, 2), std::length_error);
  EXPECT_THROW(GridBytes(65536, 65536, 1), std::length_error);
  EXPECT_THROW(GridBytes(INT_MAX, INT_MAX, 8), std::length_error);
}
