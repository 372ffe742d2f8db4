/// Millisecond time-outs of the C interface.
#ifndef ZYN_PRODUCER_TIMEOUT_H
#define ZYN_PRODUCER_TIMEOUT_H

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace zyn::producer {

/// The longest wait: a year. Adding GENTL_INFINITE to a clock would overflow.
constexpr std::chrono::milliseconds kLongest = std::chrono::hours(24 * 365);

inline std::chrono::milliseconds Milliseconds(std::uint64_t timeoutMs) {
  return std::chrono::milliseconds(std::min(timeoutMs, static_cast<std::uint64_t>(kLongest.count())));
}

inline std::chrono::steady_clock::time_point DeadlineAfter(std::uint64_t timeoutMs) {
  return std::chrono::steady_clock::now() + Milliseconds(timeoutMs);
}

}  // namespace zyn::producer

#endif
