#include <gtest/gtest.h>

#include <string>

#include "Base/GCException.h"

namespace {

using namespace GenICam;

TEST(GenericException, TellsEverythingItKnows) {
  const AccessException error("Node is not writable.", "/a/b/x.cpp", 5, "Integer.SetValue()", "Width",
                              "AccessException");
  EXPECT_STREQ(error.GetDescription(), "Node is not writable.");
  EXPECT_STREQ(error.GetSourceFileName(), "/a/b/x.cpp");
  EXPECT_EQ(error.GetSourceLine(), 5U);
  EXPECT_STREQ(
      error.what(),
      "Node is not writable. : AccessException thrown in node 'Width' while calling 'Integer.SetValue()' "
      "(file 'x.cpp', line 5)");
}

TEST(GenericException, LeavesUnknownClausesOut) {
  EXPECT_STREQ(RuntimeException("text", "x.cpp", 5, "RuntimeException").what(),
               "text : RuntimeException thrown (file 'x.cpp', line 5)");
  EXPECT_STREQ(GenericException("text", "x.cpp", 12).what(), "text (file 'x.cpp', line 12)");
}

TEST(ExceptionMacros, FormatLikePrintf) {
  try {
    throw RUNTIME_EXCEPTION("x %d", 5);
  } catch (const GenericException& error) {
    EXPECT_STREQ(error.GetDescription(), "x 5");
    EXPECT_NE(std::string(error.what()).find("RuntimeException thrown (file 'ExceptionTest.cpp'"),
              std::string::npos);
    EXPECT_NE(dynamic_cast<const RuntimeException*>(&error), nullptr);
  }
}

TEST(ExceptionMacros, CutLongTexts) {
  const std::string text(5000, 'x');
  EXPECT_EQ(std::string(INVALID_ARGUMENT_EXCEPTION("%s", text.c_str()).GetDescription()).size(), 2047U);
}

TEST(ExceptionMacros, RangeChecksSayWhatIsWrong) {
  try {
    CHECK_RANGE_I64(101, 0, 100, 1);
    FAIL();
  } catch (const OutOfRangeException& error) {
    EXPECT_STREQ(error.GetDescription(), "Value = 101 must be equal or smaller than Max = 100.");
  }
  EXPECT_THROW({ CHECK_RANGE_I64(8, 1, 100, 2); }, OutOfRangeException);
  EXPECT_THROW({ CHECK_RANGE_I64(8, 1, 100, 0); }, LogicalErrorException);
  EXPECT_NO_THROW({ CHECK_RANGE_I64(INT64_MAX, INT64_MIN, INT64_MAX, 1); });
  EXPECT_THROW({ CHECK_RANGE_FLT(2.6, 0, 2.5); }, OutOfRangeException);
}

}  // namespace
