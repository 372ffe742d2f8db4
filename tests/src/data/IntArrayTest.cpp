#include <gtest/gtest.h>

#include <climits>
#include <new>
#include <stdexcept>
#include <thread>
#include <vector>

#include "AppendForOverwrite.h"
#include "Handles.h"
#include "PixelMemory.h"
#include "ZynCamera.h"
#include "ZynVector.h"

using namespace ZYNSDK;

namespace {

Zyn3DIntArray Of(std::vector<int> values) {
  return {values.data(), static_cast<int>(values.size())};
}

std::vector<int> Values(const Zyn3DIntArray& array) {
  return {array.Data(), array.Data() + array.Length()};
}

using List = std::vector<int>;

std::size_t CapacityOf(const Zyn3DIntArray& array) {
  return (*static_cast<ZynVector<int>*>(fakes::InternalOf(array)))->Capacity();
}

}  // namespace

TEST(Zyn3DIntArray, StartsEmptyWithoutData) {
  const Zyn3DIntArray array;
  EXPECT_EQ(array.Length(), 0);
  EXPECT_EQ(array.Data(), nullptr);
}

TEST(Zyn3DIntArray, CopiesTheGivenValues) {
  List values{3, INT_MIN, INT_MAX, 0};
  const Zyn3DIntArray array(values.data(), 4);
  values.assign(4, 9);
  EXPECT_EQ(Values(array), (List{3, INT_MIN, INT_MAX, 0}));
}

TEST(Zyn3DIntArray, CountZeroIsEmptyAndReadsNothing) {
  const Zyn3DIntArray ofNull(nullptr, 0);
  EXPECT_EQ(ofNull.Length(), 0);
  int* const nowhere = reinterpret_cast<int*>(std::uintptr_t{16});
  const Zyn3DIntArray ofNothing(nowhere, 0);
  EXPECT_EQ(ofNothing.Length(), 0);
}

TEST(Zyn3DIntArray, NullDataGivesNoValues) {
  const Zyn3DIntArray array(nullptr, 5);
  EXPECT_EQ(array.Length(), 0);
}

TEST(Zyn3DIntArray, ANegativeCountRaisesLengthError) {
  int value = 0;
  EXPECT_THROW(Zyn3DIntArray(&value, -1), std::length_error);
  EXPECT_THROW(Zyn3DIntArray(nullptr, INT_MIN), std::length_error);
}

TEST(Zyn3DIntArray, ACopySharesTheValues) {
  Zyn3DIntArray first = Of({1, 2});
  Zyn3DIntArray second(first);
  second.Append(3);
  first[0] = 7;
  EXPECT_EQ(Values(first), (List{7, 2, 3}));
  EXPECT_EQ(Values(second), (List{7, 2, 3}));
}

TEST(Zyn3DIntArray, AssigningSharesTheValues) {
  Zyn3DIntArray first = Of({1, 2});
  Zyn3DIntArray second = Of({5});
  second = first;
  first.Append(3);
  EXPECT_EQ(Values(second), (List{1, 2, 3}));
  second.Clear();
  EXPECT_EQ(first.Length(), 0);
}

TEST(Zyn3DIntArray, AssigningLeavesOtherSharesOfTheOldValues) {
  Zyn3DIntArray first = Of({1, 2});
  Zyn3DIntArray keeps(first);
  first = Of({9});
  EXPECT_EQ(Values(keeps), (List{1, 2}));
  EXPECT_EQ(Values(first), (List{9}));
}

TEST(Zyn3DIntArray, KeepsItsValuesWhenAssignedToItself) {
  Zyn3DIntArray array = Of({1, 2});
  const Zyn3DIntArray& same = array;
  array = same;
  EXPECT_EQ(Values(array), (List{1, 2}));
}

TEST(Zyn3DIntArray, TheValuesLiveAsLongAsTheLastShare) {
  auto first = std::make_unique<Zyn3DIntArray>(Of({4, 5}));
  const Zyn3DIntArray second(*first);
  first.reset();
  EXPECT_EQ(Values(second), (List{4, 5}));
}

TEST(Zyn3DIntArray, ADeepCopyHasValuesOfItsOwn) {
  Zyn3DIntArray source = Of({1, 2});
  Zyn3DIntArray copy = source.DeepCopy();
  copy.Append(3);
  copy[0] = 8;
  EXPECT_EQ(Values(source), (List{1, 2}));
  EXPECT_EQ(Values(copy), (List{8, 2, 3}));
  EXPECT_EQ(Zyn3DIntArray().DeepCopy().Length(), 0);
}

TEST(Zyn3DIntArray, AppendsAtTheEnd) {
  Zyn3DIntArray array;
  List expected;
  for (int i = 0; i < 10000; ++i) {
    array.Append(i * 3);
    expected.push_back(i * 3);
  }
  EXPECT_EQ(Values(array), expected);
}

TEST(Zyn3DIntArray, GrowsAtLeastToTheDouble) {
  Zyn3DIntArray array = Of(List(100, 1));
  EXPECT_EQ(CapacityOf(array), 100U);
  array.Append(1);
  EXPECT_GE(CapacityOf(array), 200U);
}

TEST(Zyn3DIntArray, AppendsAValueOfItsOwn) {
  Zyn3DIntArray array = Of({5, 6});
  for (int i = 0; i < 100; ++i) array.Append(array[0]);
  EXPECT_EQ(array.Length(), 102);
  for (int i = 2; i < array.Length(); ++i) EXPECT_EQ(array[i], 5);
}

TEST(Zyn3DIntArray, AppendsAnotherInOrderAndLeavesItAlone) {
  Zyn3DIntArray array = Of({1});
  const Zyn3DIntArray other = Of({2, 3});
  array.Append(other);
  EXPECT_EQ(Values(array), (List{1, 2, 3}));
  EXPECT_EQ(Values(other), (List{2, 3}));
  array.Append(Zyn3DIntArray());
  EXPECT_EQ(array.Length(), 3);
}

TEST(Zyn3DIntArray, AppendingItselfOrAShareOfItDoublesIt) {
  Zyn3DIntArray array = Of({1, 2});
  array.Append(array);
  EXPECT_EQ(Values(array), (List{1, 2, 1, 2}));
  const Zyn3DIntArray share(array);
  array.Append(share);
  EXPECT_EQ(Values(share), (List{1, 2, 1, 2, 1, 2, 1, 2}));
}

TEST(Zyn3DIntArray, RemovesAndMovesTheLaterDown) {
  Zyn3DIntArray array = Of({1, 2, 3, 4});
  array.Remove(1);
  EXPECT_EQ(Values(array), (List{1, 3, 4}));
  array.Remove(2);
  array.Remove(0);
  EXPECT_EQ(Values(array), (List{3}));
  array.Remove(0);
  EXPECT_EQ(array.Length(), 0);
}

TEST(Zyn3DIntArray, SelectsOneValue) {
  const Zyn3DIntArray array = Of({1, 2});
  int out = 77;
  array.Select(1, &out);
  EXPECT_EQ(out, 2);
  array.Select(0, nullptr);
}

TEST(Zyn3DIntArray, InsertsBefore) {
  Zyn3DIntArray array = Of({1, 2, 3});
  array.Insert(0, 10);
  array.Insert(2, 11);
  array.Insert(4, 12);
  EXPECT_EQ(Values(array), (List{10, 1, 11, 2, 12, 3}));
}

TEST(Zyn3DIntArray, InsertRefusesTheEnd) {
  Zyn3DIntArray array = Of({1, 2});
  array.Insert(2, 7);
  EXPECT_EQ(Values(array), (List{1, 2}));
  Zyn3DIntArray empty;
  empty.Insert(0, 7);
  EXPECT_EQ(empty.Length(), 0);
}

TEST(Zyn3DIntArray, ReplacesAndSwaps) {
  Zyn3DIntArray array = Of({1, 2, 3});
  array.Replace(2, 9);
  array.Swap(0, 2);
  EXPECT_EQ(Values(array), (List{9, 2, 1}));
  array.Swap(1, 1);
  EXPECT_EQ(Values(array), (List{9, 2, 1}));
}

TEST(Zyn3DIntArray, InvalidIndexesChangeNothing) {
  Zyn3DIntArray array = Of({1, 2, 3});
  for (const int index : {-1, 3, 4, INT_MIN, INT_MAX}) {
    int out = 77;
    EXPECT_FALSE(array.IsValid(index));
    array.Remove(index);
    array.Select(index, &out);
    array.Insert(index, 9);
    array.Replace(index, 9);
    array.Swap(0, index);
    array.Swap(index, 0);
    EXPECT_EQ(out, 77);
    EXPECT_EQ(Values(array), (List{1, 2, 3})) << index;
  }
}

TEST(Zyn3DIntArray, AnIndexIsValidFromZeroToTheLast) {
  const Zyn3DIntArray array = Of({1, 2});
  EXPECT_TRUE(array.IsValid(0));
  EXPECT_TRUE(array.IsValid(1));
  EXPECT_FALSE(array.IsValid(2));
  EXPECT_FALSE(Zyn3DIntArray().IsValid(0));
}

TEST(Zyn3DIntArray, ReadingOutsideDoesNotFail) {
  const Zyn3DIntArray array = Of({1, 2});
  EXPECT_EQ(array[1], 2);
  EXPECT_EQ(array[2], 0);
  EXPECT_EQ(array[-1], 0);
  const Zyn3DIntArray empty;
  EXPECT_EQ(empty[0], 0);
}

TEST(Zyn3DIntArray, WritesThroughTheReferenceAndTheData) {
  Zyn3DIntArray array = Of({1, 2});
  array[0] = 5;
  array.Data()[1] = 6;
  EXPECT_EQ(Values(array), (List{5, 6}));
}

TEST(Zyn3DIntArray, ClearGivesTheMemoryBackForAllShares) {
  Zyn3DIntArray array = Of(List(1000, 1));
  const Zyn3DIntArray share(array);
  array.Clear();
  EXPECT_EQ(share.Length(), 0);
  EXPECT_EQ(share.Data(), nullptr);
  EXPECT_EQ(CapacityOf(array), 0U);
}

TEST(Zyn3DIntArray, SetSizeAppendsZerosOrCutsTheTail) {
  Zyn3DIntArray array;
  array.SetSize(3);
  EXPECT_EQ(Values(array), (List{0, 0, 0}));
  array[0] = 4;
  array[1] = 5;
  array.SetSize(1);
  EXPECT_EQ(Values(array), (List{4}));
  array.SetSize(3);  // the memory still holds the 5
  EXPECT_EQ(Values(array), (List{4, 0, 0}));
}

TEST(Zyn3DIntArray, SetSizeKeepsTheMemory) {
  Zyn3DIntArray array = Of(List(1000, 1));
  const int* data = array.Data();
  array.SetSize(0);
  EXPECT_EQ(array.Length(), 0);
  EXPECT_EQ(CapacityOf(array), 1000U);
  array.SetSize(1000);
  EXPECT_EQ(array.Data(), data);
}

TEST(Zyn3DIntArray, SetSizeMakesRoomAtOnce) {
  Zyn3DIntArray array = Of({1});
  array.SetSize(5000);
  EXPECT_GE(CapacityOf(array), 5000U);
}

TEST(Zyn3DIntArray, ANegativeSizeRaisesLengthErrorAndChangesNothing) {
  Zyn3DIntArray array = Of({1, 2});
  EXPECT_THROW(array.SetSize(-1), std::length_error);
  EXPECT_THROW(array.SetSize(INT_MIN), std::length_error);
  EXPECT_EQ(Values(array), (List{1, 2}));
}

TEST(Zyn3DIntArray, CopiesMayBeMadeAndEndedOnDifferentThreads) {
  const Zyn3DIntArray array = Of({1, 2, 3});
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&array] {
      for (int j = 0; j < 2000; ++j) {
        const Zyn3DIntArray share(array);  // NOLINT(performance-unnecessary-copy-initialization)
        EXPECT_EQ(share.Length(), 3);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Values(array), (List{1, 2, 3}));
}

TEST(Zyn3DIntArray, GetsTheMemoryOfTheProfileBefore) {
  constexpr int kPoints = 65536;
  Zyn3DIntArray array;
  const int* before = AppendForOverwrite(array, kPoints);
  array.Clear();
  EXPECT_GT(PixelMemory::IdleBuffers(), 0U);
  EXPECT_EQ(AppendForOverwrite(array, kPoints), before);
}

TEST(AppendForOverwrite, LengthensBehindWhatIsThere) {
  Zyn3DIntArray array = Of({1, 2});
  const Zyn3DIntArray share(array);
  int* added = AppendForOverwrite(array, 3);
  for (int i = 0; i < 3; ++i) added[i] = 10 + i;
  EXPECT_EQ(Values(share), (List{1, 2, 10, 11, 12}));
}

TEST(AppendForOverwrite, OfNothingChangesNothing) {
  Zyn3DIntArray array = Of({1, 2});
  AppendForOverwrite(array, 0);
  EXPECT_EQ(Values(array), (List{1, 2}));
}

TEST(AppendForOverwrite, RefusesCountsThatNoArrayHolds) {
  Zyn3DIntArray array = Of({1, 2});
  EXPECT_THROW(AppendForOverwrite(array, -1), std::length_error);
  EXPECT_THROW(AppendForOverwrite(array, INT_MAX - 1), std::length_error);
  EXPECT_EQ(Values(array), (List{1, 2}));
}
