#include "FrameCounter.h"

namespace zyn::aravis {
namespace {

constexpr std::uint64_t kLargestShort = 0xFFFF;

// How far the wire's number has moved on. 0: backwards, or not at all.
std::uint64_t Distance(std::uint64_t from, std::uint64_t to) {
  if (to > from) return to - from;
  const bool isWrap = from <= kLargestShort && from - to > kLargestShort / 2;
  if (!isWrap) return 0;
  // 65535 is followed by 1; a camera that sends 0 as well counts it as a number of its own.
  return to == 0 ? kLargestShort - from + 1 : kLargestShort - from + to;
}

}  // namespace

FrameCounter::Step FrameCounter::NextUnnumbered() {
  return Next(lastWire_ == kLargestShort ? 1 : lastWire_ + 1);
}

FrameCounter::Step FrameCounter::Next(std::uint64_t wire) {
  Step step;
  if (isFirst_) {
    step.id = wire;
  } else {
    const std::uint64_t distance = Distance(lastWire_, wire);
    // A number that runs backwards comes from a camera that started anew: the identifiers go on from here.
    step.id = lastId_ + (distance == 0 ? 1 : distance);
    step.lost = distance == 0 ? 0 : distance - 1;
  }
  isFirst_ = false;
  lastWire_ = wire;
  lastId_ = step.id;
  return step;
}

}  // namespace zyn::aravis
