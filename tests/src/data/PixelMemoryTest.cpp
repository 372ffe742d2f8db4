#include "PixelMemory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <thread>
#include <utility>
#include <vector>

using ZYNSDK::PixelMemory;

namespace {
constexpr std::size_t kFrame = 4U << 20;
}

TEST(PixelMemory, StartsWithoutMemory) {
  const PixelMemory memory;
  EXPECT_EQ(memory.Data(), nullptr);
  EXPECT_EQ(memory.Bytes(), 0U);
}

TEST(PixelMemory, ZeroBytesAreNotNull) {
  const PixelMemory memory(0);
  EXPECT_NE(memory.Data(), nullptr);
  EXPECT_EQ(memory.Bytes(), 0U);
}

TEST(PixelMemory, AFrameGetsTheMemoryOfTheFrameBefore) {
  const unsigned char* before = nullptr;
  {
    const PixelMemory memory(kFrame);
    before = memory.Data();
  }
  const PixelMemory memory(kFrame);
  EXPECT_EQ(memory.Data(), before);
}

TEST(PixelMemory, ASlightlySmallerFrameGetsItTooAMuchSmallerOneDoesNot) {
  const unsigned char* before = nullptr;
  {
    const PixelMemory memory(kFrame);
    before = memory.Data();
  }
  const std::size_t idle = PixelMemory::IdleBuffers();
  {
    const PixelMemory small(kFrame / 16 + 4096 * 13);
    EXPECT_NE(small.Data(), before);
    EXPECT_EQ(PixelMemory::IdleBuffers(), idle);
  }
  const PixelMemory similar(kFrame - 1000);
  EXPECT_EQ(similar.Data(), before);
  EXPECT_EQ(similar.Bytes(), kFrame - 1000);
}

TEST(PixelMemory, TwoAtATimeAreTwoBuffers) {
  const PixelMemory first(kFrame);
  const PixelMemory second(kFrame);
  EXPECT_NE(first.Data(), second.Data());
}

TEST(PixelMemory, MovingHandsTheMemoryOn) {
  PixelMemory first(kFrame);
  const unsigned char* data = first.Data();
  PixelMemory second(std::move(first));
  EXPECT_EQ(second.Data(), data);
  EXPECT_EQ(first.Data(), nullptr);  // NOLINT(bugprone-use-after-move)
  PixelMemory third(100);
  third = std::move(second);
  EXPECT_EQ(third.Data(), data);
  EXPECT_EQ(third.Bytes(), kFrame);
}

TEST(PixelMemory, KeepsABoundedNumberOfIdleBuffers) {
  {
    std::vector<PixelMemory> many;
    for (std::size_t i = 0; i < PixelMemory::kMostIdleBuffers + 10; ++i) many.emplace_back(40000);
  }
  EXPECT_LE(PixelMemory::IdleBuffers(), PixelMemory::kMostIdleBuffers);
  EXPECT_GT(PixelMemory::IdleBuffers(), 0U);
  EXPECT_LE(PixelMemory::IdleBytes(), PixelMemory::kMostIdleBytes);
}

TEST(PixelMemory, KeepsABoundedNumberOfIdleBytes) {
  {
    std::vector<PixelMemory> large;
    for (std::size_t i = 0; i < 6; ++i) large.emplace_back(PixelMemory::kMostIdleBytes / 5);
  }
  EXPECT_LE(PixelMemory::IdleBytes(), PixelMemory::kMostIdleBytes);
  { const PixelMemory larger(PixelMemory::kMostIdleBytes + 1); }
  EXPECT_LE(PixelMemory::IdleBytes(), PixelMemory::kMostIdleBytes);
}

TEST(PixelMemory, MoreThanThereIsRaisesBadAlloc) {
  EXPECT_THROW(PixelMemory{std::numeric_limits<std::size_t>::max()}, std::bad_alloc);
}

TEST(PixelMemory, MayBeGivenBackOnAnotherThread) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([mine = static_cast<unsigned char>(i)] {
      for (int j = 0; j < 200; ++j) {
        PixelMemory memory(kFrame / 16);
        std::memset(memory.Data(), mine, memory.Bytes());
        std::thread([taken = std::move(memory), mine] {
          const unsigned char* end = taken.Data() + taken.Bytes();
          EXPECT_EQ(std::count(static_cast<const unsigned char*>(taken.Data()), end, mine), kFrame / 16);
        }).join();
      }
    });
  }
  for (auto& thread : threads) thread.join();
}
