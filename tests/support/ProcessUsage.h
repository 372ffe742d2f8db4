/// What this process holds, to show that nothing grows.
#ifndef ZYN_TEST_PROCESS_USAGE_H
#define ZYN_TEST_PROCESS_USAGE_H

#include <cstddef>

namespace zyntest {

struct ProcessUsage {
  std::size_t threads = 0;
  std::size_t fileDescriptors = 0;
  std::size_t residentKiB = 0;
};

/// Read from /proc now.
ProcessUsage CurrentUsage();

}  // namespace zyntest

#endif
