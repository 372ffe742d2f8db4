#include "Limited.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ZYN_TEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define ZYN_TEST_SANITIZED 1
#endif
#endif

namespace zyn::genapi::test {
namespace {

#ifdef ZYN_TEST_SANITIZED
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif
#ifdef NDEBUG
constexpr double kSeconds = kIsSanitized ? 20 : 1;
#else
constexpr double kSeconds = 10;
#endif
constexpr long kMiB = 256;

void Limit(int resource, rlim_t value) {
  const rlimit limit{value, value};
  setrlimit(resource, &limit);
}

[[noreturn]] void RunChild(const std::function<std::string()>& work, int out) {
  Limit(RLIMIT_CPU, kIsSanitized ? 60 : 15);
  Limit(RLIMIT_CORE, 0);
  if (!kIsSanitized) Limit(RLIMIT_AS, rlim_t{2} << 30);
  const std::string text = work();
  const ssize_t written = write(out, text.data(), text.size());
  _exit(written == static_cast<ssize_t>(text.size()) ? 0 : 1);
}

std::string ReadAll(int descriptor) {
  std::string text;
  std::array<char, 4096> chunk{};
  while (true) {
    const ssize_t count = read(descriptor, chunk.data(), chunk.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return text;
    text.append(chunk.data(), static_cast<std::size_t>(count));
  }
}

double Seconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

}  // namespace

Outcome RunLimited(const std::function<std::string()>& work) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process");
  if (child == 0) RunChild(work, ends[1]);
  close(ends[1]);
  Outcome outcome;
  outcome.text = ReadAll(ends[0]);
  close(ends[0]);
  int status = 0;
  rusage usage{};
  while (wait4(child, &status, 0, &usage) < 0 && errno == EINTR) {
  }
  if (WIFSIGNALED(status)) outcome.text = "killed by signal " + std::to_string(WTERMSIG(status));
  outcome.cpuSeconds = Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
  outcome.peakMiB = usage.ru_maxrss / 1024;
  return outcome;
}

void ExpectModest(const Outcome& outcome, const std::string& what) {
  EXPECT_LE(outcome.cpuSeconds, kSeconds) << what;
  if (kIsSanitized) return;
  EXPECT_LE(outcome.peakMiB, kMiB) << what;
}

}  // namespace zyn::genapi::test
