#include "cameras/acquisition/Pacer.h"

#include <algorithm>

namespace zyn::cameras {

void Pacer::Start(const Pace& pace, std::int64_t nowNs) {
  *this = Pacer();
  pace_ = pace;
  isRunning_ = true;
  isOpen_ = !pace.seriesAreTriggered;
  frameStart_ = nowNs;
}

void Pacer::TriggerSeries(std::int64_t nowNs) {
  if (!isRunning_ || isOpen_) return;
  isOpen_ = true;
  framesInSeries_ = 0;
  frameStart_ = nowNs;
}

void Pacer::TriggerUnits(std::int64_t nowNs, std::uint64_t count) {
  if (!isRunning_ || !isOpen_ || !pace_.unitsAreTriggered) return;
  unitsCollected_ += count;
  while (unitsCollected_ >= pace_.unitsPerFrame && waitingCount_ < kMostWaiting) {
    unitsCollected_ -= pace_.unitsPerFrame;
    waiting_[(firstWaiting_ + waitingCount_) % kMostWaiting] = nowNs;
    ++waitingCount_;
  }
  unitsCollected_ = std::min(unitsCollected_, pace_.unitsPerFrame - 1);
}

std::optional<std::int64_t> Pacer::DueNs() const {
  if (!isRunning_ || !isOpen_) return std::nullopt;
  if (!pace_.unitsAreTriggered) {
    return frameStart_ + static_cast<std::int64_t>(pace_.unitsPerFrame) * pace_.unitPeriodNs;
  }
  if (waitingCount_ == 0) return std::nullopt;
  return waiting_[firstWaiting_] + pace_.latencyNs;
}

void Pacer::Take(std::int64_t nowNs) {
  const auto due = DueNs();
  if (!due) return;
  if (pace_.unitsAreTriggered) {
    firstWaiting_ = (firstWaiting_ + 1) % kMostWaiting;
    --waitingCount_;
  } else {
    const std::int64_t frameNs = *due - frameStart_;
    const bool canCatchUp = nowNs - *due <= std::max(kCatchUpNs, 8 * frameNs);
    frameStart_ = frameNs > 0 && canCatchUp ? *due : nowNs;
  }
  EndFrame(nowNs);
}

void Pacer::EndFrame(std::int64_t nowNs) {
  ++framesTaken_;
  if (pace_.frames != 0 && framesTaken_ == pace_.frames) {
    isRunning_ = false;
    return;
  }
  ++framesInSeries_;
  if (pace_.framesPerSeries == 0 || framesInSeries_ < pace_.framesPerSeries) return;
  framesInSeries_ = 0;
  if (!pace_.seriesAreTriggered) return;
  // What was triggered beyond the end of a series belongs to none.
  isOpen_ = false;
  waitingCount_ = 0;
  unitsCollected_ = 0;
  frameStart_ = nowNs;
}

}  // namespace zyn::cameras
