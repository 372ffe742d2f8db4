#include "GenApi/Pointer.h"

#include <gtest/gtest.h>

#include <string>

#include "GenApi/NodeMapRef.h"

namespace {

using namespace GenApi;

TEST(Pointer, DereferencingNullThrows) {
  const CIntegerPtr pointer;
  EXPECT_FALSE(pointer.IsValid());
  EXPECT_TRUE(pointer == 0);
  try {
    pointer->GetValue();
    FAIL();
  } catch (const GenICam::LogicalErrorException& error) {
    EXPECT_STREQ(error.GetDescription(), "NULL pointer dereferenced");
  }
  EXPECT_THROW(*pointer, GenICam::LogicalErrorException);
  EXPECT_THROW(static_cast<void>(static_cast<IInteger*>(pointer)), GenICam::LogicalErrorException);
  EXPECT_THROW(static_cast<void>(pointer == 1), GenICam::LogicalErrorException);
  EXPECT_FALSE(IsReadable(pointer));
  EXPECT_FALSE(IsImplemented(static_cast<IBase*>(nullptr)));
}

TEST(CombineAccessModes, FollowsTheTable) {
  const EAccessMode table[5][5] = {{NI, NI, NI, NI, NI},
                                   {NI, NA, NA, NA, NA},
                                   {NI, NA, WO, NA, WO},
                                   {NI, NA, NA, RO, RO},
                                   {NI, NA, WO, RO, RW}};
  for (int a = NI; a <= RW; ++a)
    for (int b = NI; b <= RW; ++b)
      EXPECT_EQ(Combine(static_cast<EAccessMode>(a), static_cast<EAccessMode>(b)), table[a][b])
          << a << " " << b;
}

TEST(CombineCachingModes, NoCacheWins) {
  EXPECT_EQ(Combine(WriteThrough, NoCache), NoCache);
  EXPECT_EQ(Combine(WriteAround, WriteThrough), WriteAround);
  EXPECT_EQ(Combine(WriteThrough, WriteThrough), WriteThrough);
  EXPECT_EQ(Combine(Guru, Beginner), Guru);
}

TEST(NodeMapRef, WithoutAMapEveryQuestionThrows) {
  const CNodeMapRef camera;
  EXPECT_THROW(camera._GetNode("Width"), GenICam::AccessException);
  EXPECT_EQ(camera._Ptr, nullptr);
}

}  // namespace
