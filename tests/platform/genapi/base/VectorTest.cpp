#include <gtest/gtest.h>

#include <algorithm>

#include "Base/GCException.h"
#include "Base/GCStringVector.h"
#include "Base/GCUtilities.h"
#include "GenApi/Autovector.h"
#include "GenApi/Container.h"

namespace {

using GenICam::gcstring;
using GenICam::gcstring_vector;

TEST(GCStringVector, BehavesAsAStandardVector) {
  gcstring_vector list;
  list.push_back("b");
  list.insert(0, "a");
  list.insert(list.end(), "c");
  ASSERT_EQ(list.size(), 3U);
  EXPECT_EQ(list.front(), "a");
  EXPECT_EQ(list.back(), "c");
  EXPECT_TRUE(list.contains("b"));
  EXPECT_FALSE(list.contains("d"));
  EXPECT_EQ(*list.erase(list.begin()), "b");
  EXPECT_EQ(std::find(list.begin(), list.end(), gcstring("c")) - list.begin(), 1);
}

TEST(GCStringVector, IndexOutOfRangeThrows) {
  gcstring_vector list(2, "x");
  EXPECT_EQ(list.at(1), "x");
  EXPECT_THROW(list.at(2), GenICam::OutOfRangeException);
  EXPECT_THROW(list.erase(2), GenICam::OutOfRangeException);
}

TEST(GCStringVector, CopiesAreIndependent) {
  gcstring_vector list(1, "x");
  gcstring_vector copy(list);
  copy[0] = "y";
  EXPECT_EQ(list[0], "x");
  list = copy;
  EXPECT_EQ(list[0], "y");
}

TEST(NodeVector, ResizesWithNullNodes) {
  GenApi::node_vector list;
  list.resize(2);
  EXPECT_EQ(list.at(1), nullptr);
  EXPECT_THROW(list.at(2), GenICam::OutOfRangeException);
  GenApi::value_vector values(3);
  values.pop_back();
  EXPECT_EQ(values.size(), 2U);
}

TEST(Autovector, CopiesShareTheirElements) {
  GenApi::int64_autovector_t list(2);
  GenApi::int64_autovector_t copy(list);
  list[1] = 7;
  EXPECT_EQ(copy[1], 7);
  EXPECT_EQ(copy.size(), 2U);
  EXPECT_THROW(copy[2], GenICam::OutOfRangeException);
}

TEST(Tokenize, LeavesOutEmptyParts) {
  gcstring_vector tokens(1, "old");
  GenICam::Tokenize(" a  b ", tokens);
  ASSERT_EQ(tokens.size(), 2U);
  EXPECT_EQ(tokens[0], "a");
  EXPECT_EQ(tokens[1], "b");
}

TEST(IntegralCast, ThrowsWhenTheValueDoesNotFit) {
  EXPECT_EQ(GenICam::INTEGRAL_CAST<int8_t>(-128), -128);
  EXPECT_THROW(GenICam::INTEGRAL_CAST<int8_t>(128), GenICam::RuntimeException);
  EXPECT_THROW(GenICam::INTEGRAL_CAST<uint64_t>(-1), GenICam::RuntimeException);
}

}  // namespace
