#include "TraceLine.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <iterator>
#include <string>

using ZYNSDK::TraceLine;

namespace {

std::string ContentOf(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Ends the process: with 0 when the file holds the line although nobody flushed standard output since.
[[noreturn]] void TraceIntoAFile(const std::string& path) {
  const int file =
      open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);  // NOLINT(cppcoreguidelines-pro-type-vararg)
  std::fflush(stdout);
  dup2(file, STDOUT_FILENO);
  static char buffer[4096];
  std::setvbuf(stdout, buffer, _IOFBF, sizeof(buffer));
  std::fputs("before ", stdout);
  TraceLine("the line");
  std::_Exit(ContentOf(path) == "before the line\n" ? 0 : 1);
}

}  // namespace

TEST(TraceLine, IsWrittenWholeAndFlushedAtOnce) {
  const std::string path = testing::TempDir() + "zyn-trace-line-" + std::to_string(getpid());
  EXPECT_EXIT(TraceIntoAFile(path), testing::ExitedWithCode(0), "");
  std::remove(path.c_str());
}

TEST(TraceLine, TheStateOfTheApplicationsCoutDoesNotMatter) {
  testing::internal::CaptureStdout();
  std::cout << std::setw(20) << std::setfill('*');
  std::cout.setstate(std::ios::failbit);
  EXPECT_NO_THROW(TraceLine("text"));
  std::cout.clear();
  std::cout.width(0);
  std::cout.fill(' ');
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "text\n");
}
