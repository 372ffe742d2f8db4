/// Decides when a camera's frames are due.
#ifndef ZYN_CAMERAS_ACQUISITION_PACER_H
#define ZYN_CAMERAS_ACQUISITION_PACER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace zyn::cameras {

/// How an acquisition runs. A frame consists of units: the profiles of a laser camera, or the one exposure of an
/// area camera. Frames come in series: a scan of a laser camera, or everything until the stop.
struct Pace {
  std::uint64_t frames = 0;           ///< the acquisition ends after so many; 0: with Stop
  std::uint64_t framesPerSeries = 0;  ///< 0: a series has no end
  bool seriesAreTriggered = false;    ///< each series waits for a trigger
  std::uint64_t unitsPerFrame = 1;
  bool unitsAreTriggered = false;  ///< each unit waits for a trigger
  std::int64_t unitPeriodNs = 0;   ///< else this is the time of a unit; 0: as fast as frames are taken
  std::int64_t latencyNs = 0;      ///< from the trigger of a unit to its end
};

/// Not thread-safe. Times are those of the camera's clock, and never run backwards.
class Pacer {
 public:
  /// Frames that are complete and not taken yet, at most. Triggers beyond are lost.
  static constexpr std::size_t kMostWaiting = 64;
  /// A reader that is late by more does not catch up: later frames move. Or 8 frames, where these are longer.
  static constexpr std::int64_t kCatchUpNs = 100'000'000;

  void Start(const Pace& pace, std::int64_t nowNs);
  void Stop() { isRunning_ = false; }
  bool IsRunning() const { return isRunning_; }
  /// Frames are due as soon as the one before was taken.
  bool IsFreeRunning() const { return isRunning_ && !pace_.unitsAreTriggered && pace_.unitPeriodNs == 0; }

  /// The next frame takes its time from here on.
  void SetUnitPeriod(std::int64_t ns) { pace_.unitPeriodNs = ns; }
  void SetLatency(std::int64_t ns) { pace_.latencyNs = ns; }

  void TriggerSeries(std::int64_t nowNs);
  void TriggerUnits(std::int64_t nowNs, std::uint64_t count);

  /// Empty: nothing is due before a trigger or a start.
  std::optional<std::int64_t> DueNs() const;

  /// Takes the frame that is due. Only while DueNs() is not after `nowNs`.
  void Take(std::int64_t nowNs);

 private:
  void EndFrame(std::int64_t nowNs);

  Pace pace_;
  bool isRunning_ = false;
  bool isOpen_ = false;            // a series is going on
  std::uint64_t framesTaken_ = 0;  // since the start
  std::uint64_t framesInSeries_ = 0;
  std::int64_t frameStart_ = 0;  // where units are not triggered
  std::uint64_t unitsCollected_ = 0;
  std::array<std::int64_t, kMostWaiting> waiting_{};  // a ring: when triggered frames are due
  std::size_t firstWaiting_ = 0;
  std::size_t waitingCount_ = 0;
};

}  // namespace zyn::cameras

#endif
