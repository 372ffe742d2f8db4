// Runs a piece of work in a process of its own, and says what it took.
#ifndef ZYN_TESTS_GENAPI_HOSTILE_LIMITED_H
#define ZYN_TESTS_GENAPI_HOSTILE_LIMITED_H

#include <functional>
#include <ostream>
#include <string>

namespace zyn::genapi::test {

struct Outcome {
  /// What the work returned. "killed by signal N" when it did not end by itself.
  std::string text;
  double cpuSeconds = 0;
  long peakMiB = 0;
};

/// The work runs in a child process that is stopped when it takes far too much time or memory.
Outcome RunLimited(const std::function<std::string()>& work);

/// The promise for any description: one second and 256 MiB. Builds for finding mistakes are slower and larger.
void ExpectModest(const Outcome& outcome, const std::string& what);

}  // namespace zyn::genapi::test

#endif
