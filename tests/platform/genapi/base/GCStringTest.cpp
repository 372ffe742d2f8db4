#include "Base/GCString.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>

namespace {

using GenICam::gcstring;

TEST(GCString, NullTextIsEmptyEverywhere) {
  const char* const null = nullptr;
  EXPECT_TRUE(gcstring(null).empty());
  EXPECT_TRUE(gcstring(null, 5).empty());
  EXPECT_EQ(gcstring("a") + null, "a");
  gcstring text("abc");
  text = null;
  EXPECT_TRUE(text.empty());
  EXPECT_TRUE(text == null);
  EXPECT_STREQ(text.c_str(), "");
}

TEST(GCString, KeepsItsTextWhenGrowingPastTheInlineBuffer) {
  gcstring text;
  std::string expected;
  for (int i = 0; i < 300; ++i) {
    text += static_cast<char>('a' + i % 26);
    expected += static_cast<char>('a' + i % 26);
    ASSERT_STREQ(text.c_str(), expected.c_str());
    ASSERT_EQ(text.size(), expected.size());
  }
}

TEST(GCString, AppendsAndAssignsPartsOfItself) {
  gcstring text("0123456789012345678901234567890");
  text.append(text);
  EXPECT_EQ(text, "01234567890123456789012345678900123456789012345678901234567890");
  text.assign(text.c_str() + 60, 2);
  EXPECT_EQ(text, "90");
}

TEST(GCString, SwapsShortWithLongTexts) {
  gcstring shortText("short");
  gcstring longText(100, 'x');
  shortText.swap(longText);
  EXPECT_EQ(shortText, gcstring(100, 'x'));
  EXPECT_EQ(longText, "short");
  gcstring moved(std::move(shortText));
  EXPECT_EQ(moved.size(), 100U);
}

TEST(GCString, FindsAsStandardStringsDo) {
  const gcstring text("one two one");
  EXPECT_EQ(text.find("one"), 0U);
  EXPECT_EQ(text.find("one", 1), 8U);
  EXPECT_EQ(text.find("onex", 1, 3), 8U);
  EXPECT_EQ(text.find('x'), gcstring::npos);
  EXPECT_EQ(text.find_first_of(gcstring("tw")), 4U);
  EXPECT_EQ(text.find_first_not_of(gcstring("on")), 2U);
  EXPECT_EQ(text.find_last_of('o'), 8U);
  EXPECT_EQ(text.find_last_not_of(gcstring("one")), 7U);
}

TEST(GCString, SubstringBeyondTheEndThrows) {
  const gcstring text("abc");
  EXPECT_EQ(text.substr(1), "bc");
  EXPECT_EQ(text.substr(3), "");
  EXPECT_THROW(text.substr(4), std::out_of_range);
}

TEST(GCString, ErasesAndResizes) {
  gcstring text("abcdef");
  EXPECT_EQ(text.erase(1, 2), "adef");
  EXPECT_EQ(text.erase(2), "ad");
  text.resize(4);
  EXPECT_EQ(text.size(), 4U);
  EXPECT_EQ(text.c_str()[3], '\0');
}

TEST(GCString, ComparesByBytes) {
  EXPECT_TRUE(gcstring("a") < gcstring("b"));
  EXPECT_TRUE(gcstring("b") > gcstring("ab"));
  EXPECT_TRUE(gcstring("a") != "b");
  EXPECT_LT(gcstring("a").compare("b"), 0);
}

TEST(GCString, ConvertsToPlainText) {
  const gcstring text("node");
  const std::string copy(text);
  EXPECT_EQ(copy, "node");
  EXPECT_EQ(text[1], 'o');
  std::ostringstream out;
  out << text;
  EXPECT_EQ(out.str(), "node");
}

TEST(GCString, ReadsWordsAndLines) {
  std::istringstream in("word rest of line\nnext");
  gcstring text;
  in >> text;
  EXPECT_EQ(text, "word");
  getline(in, text);
  EXPECT_EQ(text, " rest of line");
  getline(in, text, 'x');
  EXPECT_EQ(text, "ne");
}

}  // namespace
