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

TEST(Pointer, BecomesEmptyWhenTheNodeIsOfAnotherKind) {
  CNodeMapRef camera;
  camera._LoadXMLFromString(
      "<RegisterDescription><Integer Name=\"I\"><pCastAlias>F</pCastAlias><Value>1</Value></Integer>"
      "<Float Name=\"F\"><pCastAlias>I</pCastAlias><Value>1</Value></Float></RegisterDescription>");
  CIntegerPtr pointer(camera._GetNode("I"));
  EXPECT_TRUE(pointer.IsValid());
  EXPECT_TRUE(pointer == dynamic_cast<IInteger*>(camera._GetNode("I")));
  EXPECT_TRUE(IsWritable(pointer));
  EXPECT_EQ(pointer().GetValue() + (*pointer).GetValue(), 2);
  pointer = camera._GetNode("F");
  EXPECT_FALSE(pointer.IsValid());
  EXPECT_FALSE(pointer);
  CFloatPtr real(camera._GetNode("F"));
  EXPECT_EQ(real.GetIntAlias(), dynamic_cast<IInteger*>(camera._GetNode("I")));
  EXPECT_EQ(real.GetEnumAlias(), nullptr);
  real = camera._GetNode("I");
  EXPECT_THROW(real.GetIntAlias(), GenICam::LogicalErrorException);
}

TEST(Visibility, ShowsWhatIsNotMoreSecretThanAllowed) {
  EXPECT_TRUE(IsVisible(Beginner, Expert));
  EXPECT_TRUE(IsVisible(Guru, Guru));
  EXPECT_FALSE(IsVisible(Invisible, Guru));
  EXPECT_FALSE(IsCacheable(NoCache));
  EXPECT_TRUE(IsCacheable(WriteAround));
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
