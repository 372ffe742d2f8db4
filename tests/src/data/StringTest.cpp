#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "Handles.h"
#include "SetWrapperValue.h"
#include "ZynCamera.h"

using ZYNSDK::ZynString;

namespace {

ZynString Text(const char* text) {
  ZynString string;
  string = text;
  return string;
}

// The one way to store a NUL: length 1, text "".
ZynString Nul() {
  ZynString string;
  string = '\0';
  return string;
}

}  // namespace

TEST(ZynString, StartsEmpty) {
  const ZynString string;
  EXPECT_EQ(string.length(), 0U);
  EXPECT_STREQ(string.getStr(), "");
}

TEST(ZynString, WithoutATextMayEnd) {
  ZynString string;
  delete static_cast<std::string*>(fakes::InternalOf(string));
  ZYNSDK::SetWrapperValue(&string, nullptr, false);
}

TEST(ZynString, NullWithALengthIsEmpty) {
  EXPECT_EQ(ZynString(nullptr, 5).length(), 0U);
}

TEST(ZynString, LengthArgumentNeitherCutsNorExtends) {
  EXPECT_EQ(ZynString("abc", 1).length(), 3U);
  EXPECT_STREQ(ZynString("abc", 1).getStr(), "abc");
  EXPECT_STREQ(ZynString("abc", 1000000).getStr(), "abc");
}

TEST(ZynString, CopiesAreIndependent) {
  ZynString first = Text("one");
  ZynString second(first);
  first = "changed";
  EXPECT_STREQ(second.getStr(), "one");
  second = first;
  first.clear();
  EXPECT_STREQ(second.getStr(), "changed");
}

TEST(ZynString, CopyingStopsAtTheFirstNul) {
  const ZynString nul = Nul();
  EXPECT_EQ(nul.length(), 1U);
  EXPECT_EQ(ZynString(nul).length(), 0U);
  ZynString assigned = Text("x");
  assigned = nul;
  EXPECT_EQ(assigned.length(), 0U);
}

TEST(ZynString, MovingCopiesAndLeavesTheSource) {
  ZynString source = Text("kept");
  ZynString target;
  target = std::move(source);
  EXPECT_STREQ(target.getStr(), "kept");
  EXPECT_STREQ(source.getStr(), "kept");  // NOLINT(bugprone-use-after-move): that is the promise
}

TEST(ZynString, AssigningItselfOrAPartOfItselfIsSafe) {
  ZynString string = Text("a text longer than any small buffer holds");
  ZynString& alias = string;
  string = alias;
  EXPECT_STREQ(string.getStr(), "a text longer than any small buffer holds");
  string = string.getStr() + 7;
  EXPECT_STREQ(string.getStr(), "longer than any small buffer holds");
  string += alias;
  EXPECT_STREQ(string.getStr(), "longer than any small buffer holdslonger than any small buffer holds");
}

TEST(ZynString, ACharacterBecomesTheWholeText) {
  ZynString string = Text("abc");
  string = 'z';
  EXPECT_STREQ(string.getStr(), "z");
  EXPECT_EQ(string.length(), 1U);
}

TEST(ZynString, SetStrReplaces) {
  ZynString string = Text("abc");
  string.setStr("xy");
  EXPECT_STREQ(string.getStr(), "xy");
}

TEST(ZynString, EqualMeansLengthAndBytesOfTheOthersText) {
  EXPECT_TRUE(Text("abc") == Text("abc"));
  EXPECT_FALSE(Text("abc") == Text("abd"));
  EXPECT_FALSE(Text("abc") == Text("ab"));
  EXPECT_TRUE(Text("abc") != Text("ab"));
  const ZynString nul = Nul();
  EXPECT_FALSE(nul == nul);  // stored length 1, text of length 0
  EXPECT_TRUE(ZynString() == nul);
}

TEST(ZynString, JoiningChangesNeitherOperand) {
  const ZynString left = Text("ab");
  const ZynString right = Text("cd");
  EXPECT_STREQ((left + right).getStr(), "abcd");
  EXPECT_STREQ(left.getStr(), "ab");
  EXPECT_STREQ(right.getStr(), "cd");
  EXPECT_EQ((Nul() + right).length(), 3U);  // all of the left operand
  EXPECT_EQ((right + Nul()).length(), 2U);  // the right one up to its NUL
}

TEST(ZynString, AppendingReturnsTheString) {
  ZynString string = Text("ab");
  EXPECT_EQ(&(string += Text("cd")), &string);
  EXPECT_STREQ(string.getStr(), "abcd");
}

TEST(ZynString, ClearEmpties) {
  ZynString string = Text("ab");
  string.clear();
  EXPECT_EQ(string.length(), 0U);
}
