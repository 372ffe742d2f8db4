/// Turns the frame numbers of the wire into numbers that only grow, and counts the frames between them.
#ifndef ZYN_ARAVIS_FRAME_COUNTER_H
#define ZYN_ARAVIS_FRAME_COUNTER_H

#include <cstdint>

namespace zyn::aravis {

/// One per acquisition. One thread at a time.
class FrameCounter {
 public:
  struct Step {
    std::uint64_t id =
        0;  ///< larger than that of the step before; equal to `wire` until the wire's numbers wrap
    std::uint64_t lost = 0;  ///< frames that are missing since the step before
  };

  /// `wire`: 1 to 65535, then 1 again; or 64 bits that never wrap. Cameras that also use 0, and cameras that start
  /// anew in the middle of an acquisition, are understood: what cannot be counted is no loss.
  Step Next(std::uint64_t wire);

  /// A frame whose number got lost: it is taken for the one that follows.
  Step NextUnnumbered();

 private:
  bool isFirst_ = true;
  std::uint64_t lastWire_ = 0;
  std::uint64_t lastId_ = 0;
};

}  // namespace zyn::aravis

#endif
