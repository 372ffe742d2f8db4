/// The faults a simulated camera is told to have.
#ifndef ZYN_CAMERAS_FAULTS_H
#define ZYN_CAMERAS_FAULTS_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "ThreadAnnotations.h"
#include "cameras/RegisterStatus.h"

namespace zyn::cameras {

/// For counts: until cleared.
constexpr std::uint64_t kUntilCleared = std::numeric_limits<std::uint64_t>::max();

/// No frame is delayed longer: one hour.
constexpr std::int64_t kLongestDelayNs = 3'600'000'000'000;

/// A script of faults. Thread-safe; takes effect at the next frame or access. Counts replace what was left of
/// earlier ones; 0 clears.
class Faults {
 public:
  /// The next `count` frames are made but never handed out: their numbers are missing.
  void DropFrames(std::uint64_t count);
  /// The next `count` frames lose their second half and are marked as not complete.
  void DamageFrames(std::uint64_t count);
  /// Every frame comes `ns` later than it should. From 0, which clears, to kLongestDelayNs; beyond counts as
  /// the nearest. A thread that waits already notices a longer delay, not a shorter one.
  void DelayFrames(std::int64_t ns);
  /// The first chunk behind the image of each of the next `count` frames is one record (4 bytes) shorter.
  void ShortenChunks(std::uint64_t count);
  /// Laser cameras: the next batch begins a new scan, with the next identifier.
  void BeginNewScan();

  /// The next `count` accesses that touch an address from `first` to `last` fail with `status`.
  void FailRegisters(std::uint64_t first, std::uint64_t last, std::uint64_t count,
                     RegisterStatus status = RegisterStatus::noAnswer);
  /// The same for every register.
  void FailAllRegisters(std::uint64_t count, RegisterStatus status = RegisterStatus::noAnswer);
  /// While busy, every access ends with RegisterStatus::busy. Frames go on.
  void SetBusy(bool busy);

  /// Ends all faults.
  void Clear();

  /// What is still to come; for display.
  std::uint64_t FramesToDrop() const;
  std::uint64_t FramesToDamage() const;
  std::uint64_t ChunksToShorten() const;
  std::int64_t FrameDelayNs() const;
  bool IsBusy() const;

  // For the camera: each of these uses up one of the count.
  bool TakeDrop();
  bool TakeDamage();
  bool TakeShortening();
  bool TakeNewScan();
  /// What an access to `length` bytes at `address` is to end with before the camera looks at it.
  RegisterStatus TakeAccess(std::uint64_t address, std::size_t length);

 private:
  struct FailingRange {
    std::uint64_t first;
    std::uint64_t last;
    std::uint64_t left;
    RegisterStatus status;
  };

  mutable Mutex mutex_;  // a leaf: nothing is called under it
  std::uint64_t drops_ ZYN_GUARDED_BY(mutex_) = 0;
  std::uint64_t damages_ ZYN_GUARDED_BY(mutex_) = 0;
  std::uint64_t shortenings_ ZYN_GUARDED_BY(mutex_) = 0;
  std::int64_t delayNs_ ZYN_GUARDED_BY(mutex_) = 0;
  bool newScan_ ZYN_GUARDED_BY(mutex_) = false;
  bool isBusy_ ZYN_GUARDED_BY(mutex_) = false;
  std::vector<FailingRange> failing_ ZYN_GUARDED_BY(mutex_);
};

}  // namespace zyn::cameras

#endif
