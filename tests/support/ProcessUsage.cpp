#include "ProcessUsage.h"

#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

namespace zyntest {
namespace {

std::size_t EntriesOf(const char* folder) {
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    (void)entry;
    ++count;
  }
  return count;
}

std::size_t PeakResidentKiB() {
  std::ifstream status("/proc/self/status");
  std::string word;
  while (status >> word)
    if (word == "VmHWM:" && status >> word) return std::stoul(word);
  return 0;
}

}  // namespace

ProcessUsage CurrentUsage() {
  // With the first thread of a process the thread sanitizer starts one of its own, which shall not be counted as new.
  static const bool hasStartedOne = [] {
    std::thread([] {}).join();
    return true;
  }();
  (void)hasStartedOne;
  ProcessUsage usage;
  usage.threads = EntriesOf("/proc/self/task");
  usage.fileDescriptors = EntriesOf("/proc/self/fd");
  std::ifstream statm("/proc/self/statm");
  std::size_t total = 0;
  std::size_t residentPages = 0;
  statm >> total >> residentPages;
  usage.residentKiB = residentPages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) / 1024;
  usage.peakResidentKiB = PeakResidentKiB();
  return usage;
}

ProcessUsage UsageAtRest(std::size_t threads) {
  ProcessUsage usage = CurrentUsage();
  auto unchangedSince = std::chrono::steady_clock::now();
  const auto deadline = unchangedSince + std::chrono::seconds(10);
  for (auto now = unchangedSince; now < deadline; now = std::chrono::steady_clock::now()) {
    const ProcessUsage latest = CurrentUsage();
    if (latest.threads != usage.threads || latest.fileDescriptors != usage.fileDescriptors)
      unchangedSince = now;
    usage = latest;
    if (usage.threads == threads || now - unchangedSince > std::chrono::seconds(1)) break;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return usage;
}

void ForgetPeak() {
  std::ofstream("/proc/self/clear_refs") << "5";
}

}  // namespace zyntest
