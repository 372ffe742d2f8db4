/// What this process holds, to show that nothing grows.
#ifndef ZYN_TEST_PROCESS_USAGE_H
#define ZYN_TEST_PROCESS_USAGE_H

#include <cstddef>

namespace zyntest {

struct ProcessUsage {
  std::size_t threads = 0;
  std::size_t fileDescriptors = 0;
  std::size_t residentKiB = 0;
  std::size_t peakResidentKiB = 0;  ///< since the start, or since ForgetPeak
};

/// Read from /proc now.
ProcessUsage CurrentUsage();

/// The peak of the resident memory counts from now on.
void ForgetPeak();

}  // namespace zyntest

#endif
