#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "HandleArrayStorage.h"
#include "Handles.h"
#include "SetWrapperValue.h"
#include "ZynCamera.h"

using ZYNSDK::ZynString;
using ZYNSDK::ZynStringArray;

namespace {

ZynString Text(const char* text) {
  ZynString string;
  string = text;
  return string;
}

ZynStringArray Of(const std::vector<const char*>& texts) {
  ZynStringArray array;
  for (const char* text : texts) array.push_back(Text(text));
  return array;
}

std::vector<std::string> Content(const ZynStringArray& array) {
  std::vector<std::string> content;
  for (unsigned int i = 0; i < array.length(); ++i) content.emplace_back(array[static_cast<int>(i)].getStr());
  return content;
}

using Texts = std::vector<std::string>;

}  // namespace

TEST(ZynStringArray, StartsEmptyOrWithOneElement) {
  EXPECT_EQ(ZynStringArray().length(), 0U);
  EXPECT_EQ(Content(ZynStringArray(Text("a"))), (Texts{"a"}));
}

TEST(ZynStringArray, AssigningCopiesTheElements) {
  ZynStringArray first = Of({"a", "b"});
  ZynStringArray second = Of({"x"});
  second = first;
  first[0] = "changed";
  first.push_back(Text("c"));
  EXPECT_EQ(Content(second), (Texts{"a", "b"}));
  const ZynStringArray& alias = second;
  second = alias;
  EXPECT_EQ(Content(second), (Texts{"a", "b"}));
}

TEST(ZynStringArray, WithoutAStorageMayEnd) {
  ZynStringArray array;
  static_cast<ZYNSDK::ZynCameraBaseDataTemplate1<ZynString>*>(fakes::InternalOf(array))->Leave();
  ZYNSDK::SetWrapperValue(&array, nullptr, false);
}

TEST(ZynStringArray, CopyIsIndependent) {
  ZynStringArray first = Of({"a"});
  const ZynStringArray copy(first);
  first[0] = "changed";
  EXPECT_EQ(Content(copy), (Texts{"a"}));
}

TEST(ZynStringArray, ComparesElementByElement) {
  EXPECT_TRUE(Of({"a", "b"}) == Of({"a", "b"}));
  EXPECT_TRUE(Of({"a", "b"}) != Of({"b", "a"}));
  EXPECT_TRUE(Of({"a"}) != Of({"a", "b"}));
  EXPECT_TRUE(ZynStringArray() == ZynStringArray());
}

TEST(ZynStringArray, IndexingGivesTheElementInPlaceOrACopy) {
  ZynStringArray array = Of({"a", "b"});
  array[1] = "c";
  const ZynStringArray& constant = array;
  ZynString copy = constant[1];
  copy = "d";
  EXPECT_EQ(Content(array), (Texts{"a", "c"}));
}

TEST(ZynStringArray, JoiningLengthensTheLeftOperand) {
  const ZynStringArray left = Of({"a", "b"});
  const ZynStringArray joined = left += Of({"c"});
  EXPECT_EQ(Content(joined), (Texts{"a", "b", "c"}));
  EXPECT_EQ(Content(left), (Texts{"a", "b", "c"}));
  left += left;
  EXPECT_EQ(left.length(), 6U);
  EXPECT_EQ(joined.length(), 3U);
}

TEST(ZynStringArray, PushBackAppendsAnArrayInOrder) {
  ZynStringArray array = Of({"a"});
  array.push_back(Of({"b", "c"}));
  EXPECT_EQ(Content(array), (Texts{"a", "b", "c"}));
}

TEST(ZynStringArray, EditsReportWhetherTheIndexWasValid) {
  ZynStringArray array = Of({"a", "b", "c"});
  EXPECT_TRUE(array.removeAt(0));
  EXPECT_FALSE(array.removeAt(2));
  EXPECT_TRUE(array.insert(1, Text("x")));
  EXPECT_FALSE(array.insert(3, Text("y")));
  EXPECT_TRUE(array.swap(0, 2));
  EXPECT_TRUE(array.swap(1, 1));
  EXPECT_FALSE(array.swap(0, 3));
  EXPECT_FALSE(array.replace(0, Text("z")));
  EXPECT_FALSE(array.replace(9, Text("z")));
  EXPECT_EQ(Content(array), (Texts{"z", "x", "b"}));
}

TEST(ZynStringArray, SelectCopiesTheText) {
  ZynStringArray array = Of({"a"});
  ZynString out;
  EXPECT_TRUE(array.select(0, &out));
  array[0] = "b";
  EXPECT_STREQ(out.getStr(), "a");
  EXPECT_FALSE(array.select(1, &out));
  EXPECT_FALSE(array.select(0, nullptr));
}

TEST(ZynStringArray, SetSizeAppendsEmptyStringsOrCuts) {
  ZynStringArray array = Of({"a"});
  array.setSize(3);
  EXPECT_EQ(Content(array), (Texts{"a", "", ""}));
  array.setSize(1);
  EXPECT_EQ(Content(array), (Texts{"a"}));
  array.clear();
  EXPECT_EQ(array.length(), 0U);
}
