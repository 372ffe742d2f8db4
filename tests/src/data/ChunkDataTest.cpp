#include <gtest/gtest.h>

#include <new>
#include <vector>

#include "ZynCamera.h"

using ZYNSDK::ZynChunkData;

namespace {

ZynChunkData Of(const std::vector<unsigned char>& bytes) {
  return {bytes.data(), bytes.size()};
}

// Return values are made by elision, so Of gives the very object; a copy would be empty.
std::vector<unsigned char> Content(const ZynChunkData& chunk) {
  return {chunk.getData(), chunk.getData() + chunk.getLength()};
}

using Bytes = std::vector<unsigned char>;

}  // namespace

TEST(ZynChunkData, IsEmptyWithoutDataOrLength) {
  const unsigned char byte = 1;
  EXPECT_EQ(ZynChunkData().getData(), nullptr);
  EXPECT_EQ(ZynChunkData().getLength(), 0U);
  EXPECT_EQ(ZynChunkData(nullptr, 4).getLength(), 0U);
  EXPECT_EQ(ZynChunkData(nullptr, 4).getData(), nullptr);
  EXPECT_EQ(ZynChunkData(&byte, 0).getData(), nullptr);
}

TEST(ZynChunkData, CopiesItsBytes) {
  Bytes bytes{1, 2, 3};
  const ZynChunkData chunk(bytes.data(), bytes.size());
  bytes[0] = 9;
  EXPECT_EQ(Content(chunk), (Bytes{1, 2, 3}));
}

TEST(ZynChunkData, CopyConstructingGivesLengthZero) {
  const ZynChunkData source = Of(Bytes(16, 7));
  const ZynChunkData copy(
      source);  // NOLINT(performance-unnecessary-copy-initialization): it is what is tested
  EXPECT_EQ(copy.getLength(), 0U);
  EXPECT_NE(copy.getData(), nullptr);
  EXPECT_EQ(source.getLength(), 16U);
  const ZynChunkData empty;
  const ZynChunkData copyOfEmpty(empty);  // NOLINT(performance-unnecessary-copy-initialization)
  EXPECT_EQ(copyOfEmpty.getData(), nullptr);
}

TEST(ZynChunkData, AssigningCopiesTheBytes) {
  const ZynChunkData source = Of({1, 2, 3});
  ZynChunkData target = Of({9, 9, 9, 9, 9});
  target = source;
  EXPECT_EQ(target.getLength(), 3U);
  EXPECT_EQ(target[2], 3);
  EXPECT_NE(target.getData(), source.getData());
}

TEST(ZynChunkData, AssigningAnEmptyChunkLeavesLengthZeroAndThePointer) {
  ZynChunkData target = Of({1, 2, 3});
  const unsigned char* before = target.getData();
  target = ZynChunkData();
  EXPECT_EQ(target.getLength(), 0U);
  EXPECT_EQ(target.getData(), before);
  target.setData(2, Bytes{4, 5}.data());  // and the chunk stays usable
  EXPECT_EQ(Content(target), (Bytes{4, 5}));
}

TEST(ZynChunkData, AssigningAChunkToItselfEmptiesIt) {
  ZynChunkData chunk = Of({1, 2, 3});
  const ZynChunkData& alias = chunk;
  chunk = alias;
  EXPECT_EQ(chunk.getLength(), 0U);
}

TEST(ZynChunkData, SetDataReplacesOrDoesNothing) {
  ZynChunkData chunk = Of({1, 2, 3});
  const unsigned char byte = 9;
  chunk.setData(0, &byte);
  chunk.setData(4, nullptr);
  EXPECT_EQ(Content(chunk), (Bytes{1, 2, 3}));
  chunk.setData(1, &byte);
  EXPECT_EQ(Content(chunk), (Bytes{9}));
}

TEST(ZynChunkData, SetDataTakesAPartOfItself) {
  ZynChunkData chunk = Of({1, 2, 3});
  chunk.setData(2, chunk.getData() + 1);
  EXPECT_EQ(Content(chunk), (Bytes{2, 3}));
}

TEST(ZynChunkData, IndexingReadsAndWrites) {
  ZynChunkData chunk = Of({1, 2, 3});
  chunk[1] = 8;
  const ZynChunkData& constant = chunk;
  EXPECT_EQ(constant[1], 8);
}

TEST(ZynChunkData, ComparingStopsAtTheFirstZeroByte) {
  EXPECT_TRUE(Of({0, 1, 2, 3}) == Of({0, 9, 9, 9}));
  EXPECT_FALSE(Of({0, 1, 2, 3}) != Of({0, 9, 9, 9}));
  EXPECT_TRUE(Of({5, 0, 2, 3}) != Of({6, 0, 2, 3}));
  EXPECT_TRUE(Of({1, 2, 3}) != Of({1, 2, 3, 4}));
}

TEST(ZynChunkData, ComparingWithoutAZeroByteStaysInside) {
  EXPECT_TRUE(ZynChunkData() == ZynChunkData());
  EXPECT_TRUE(Of({1, 2, 3}) == Of({1, 2, 3}));
  EXPECT_TRUE(Of({1, 2, 3}) != Of({1, 2, 4}));
  const ZynChunkData source = Of({1});
  const ZynChunkData copy(source);  // NOLINT(performance-unnecessary-copy-initialization)
  EXPECT_TRUE(copy == ZynChunkData());
}
