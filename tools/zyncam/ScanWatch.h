/// What happens while a scan is waited for.
#ifndef ZYNCAM_SCAN_WATCH_H
#define ZYNCAM_SCAN_WATCH_H

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <optional>
#include <thread>

#include "ThreadAnnotations.h"

namespace zyncam {

/// Accompanies the wait for a scan, which returns only when the scan is whole: looks several times per second, on a
/// thread of its own, how far the scan is and whether it shall end. One thread makes and ends it.
class ScanWatch {
 public:
  /// All are called on the watch's thread, and only while the watch lives.
  struct Callbacks {
    std::function<std::optional<std::int64_t>()>
        lines;                                     ///< that came so far; nothing when that cannot be told
    std::function<void(std::int64_t lines)> show;  ///< when the number has changed
    std::function<bool()> isInterrupted;
    std::function<void()> stop;  ///< when interrupted; once, and the last call
  };

  explicit ScanWatch(Callbacks callbacks);
  ~ScanWatch();  ///< waits for a callback that runs
  ScanWatch(const ScanWatch&) = delete;
  ScanWatch& operator=(const ScanWatch&) = delete;

 private:
  void Run();
  void ShowNews();
  bool IsOverAfterAWhile() ZYN_EXCLUDES(mutex_);

  const Callbacks callbacks_;
  std::optional<std::int64_t> shown_;  // the watch's thread only
  zyn::Mutex mutex_;                   // held for looking at the flag only
  std::condition_variable over_;
  bool isOver_ ZYN_GUARDED_BY(mutex_) = false;
  std::thread thread_;  // last: it uses everything else
};

}  // namespace zyncam

#endif
