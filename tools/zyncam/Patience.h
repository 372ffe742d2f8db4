/// When to give up on a camera that sends nothing but incomplete frames.
#ifndef ZYNCAM_PATIENCE_H
#define ZYNCAM_PATIENCE_H

#include <chrono>
#include <cstdint>

namespace zyncam {

/// Ends when no good frame has come for the whole limit, though incomplete ones have: a frame that does not come at all
/// ends its wait by itself. One thread.
class Patience {
 public:
  using Time = std::chrono::steady_clock::time_point;

  Patience(std::chrono::milliseconds limit, Time now) : limit_(limit), lastGood_(now) {}

  void SawGood(Time now) { lastGood_ = now; }

  /// For who sees incomplete frames only: how many frames have come altogether. The good ones among them may still wait
  /// to be looked at, and more than have ever been counted are news.
  void SawFrames(std::int64_t count, Time now) {
    if (count - incomplete_ <= mostGood_) return;
    mostGood_ = count - incomplete_;
    lastGood_ = now;
  }

  /// False when it is time to give up.
  bool OutlastsIncomplete(Time now) {
    ++incomplete_;
    return now - lastGood_ < limit_;
  }

 private:
  const std::chrono::milliseconds limit_;
  Time lastGood_;
  std::int64_t incomplete_ = 0;
  std::int64_t mostGood_ = 0;
};

}  // namespace zyncam

#endif
