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

/// The usage once what the last close left to a thread in the background is done: when it has come down to `threads`, or
/// has not changed for a second; after 10 seconds in any case.
ProcessUsage UsageAtRest(std::size_t threads);

/// The peak of the resident memory counts from now on.
void ForgetPeak();

}  // namespace zyntest

#endif
