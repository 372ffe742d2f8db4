/// From what a camera sends to what a frame grabber card stores.
///
/// A camera sends a line as pixels on `taps` taps: with two, pixels 0 and 1 come first, at one time, then 2 and 3. The
/// card stores what it was told to expect. Where the two agree, it stores the camera's image, or the part of it that
/// it takes. Where they do not, the image looks as it does behind a real card:
///
/// ```
///  camera, 2 taps      0 1 | 2 3 | 4 5 | …
///  card, 2 taps        0 1   2 3   4 5
///  card, 1 tap         0     2     4          lines half as long, every other pixel lost
///  card, 4 taps        0 1 - -   2 3 - -      lines twice as long, with black in between
/// ```
///
/// The samples of a colour pixel come at one time, like pixels on taps. A sample keeps as many of its low bits as the
/// card's pixel format has. What the card expects and the camera does not send is black, and the frame is incomplete.
#ifndef ZYN_SIMULATION_CARD_IMAGE_H
#define ZYN_SIMULATION_CARD_IMAGE_H

#include <cstdint>
#include <span>
#include <vector>

#include "CardSettings.h"
#include "cameras/Frame.h"
#include "producer/Frame.h"

namespace zyn::simulation {

/// Keeps its tables from frame to frame. Not thread-safe.
class CardImage {
 public:
  /// Stores the camera's image in `memory` and tells what is there. camera: the bytes of the frame, image first;
  /// chunks behind it do not pass a Camera Link. A memory that is too small is left alone, and the frame marked so.
  producer::FrameInfo Store(const CardSettings& card, const cameras::Frame& frame,
                            std::span<const std::uint8_t> camera, std::span<std::uint8_t> memory);

 private:
  static constexpr std::int32_t kBlack = -1;

  /// Fills samples_; returns whether the camera's lines are as long as the card expects.
  bool PlanLine(const CardSettings& card, const cameras::Frame& frame);
  void StoreLine(const CardSettings& card, const cameras::Frame& frame, const std::uint8_t* camera,
                 std::uint8_t* memory) const;

  std::vector<std::int32_t>
      samples_;  // for each sample that the card stores: its number in the camera's line
};

}  // namespace zyn::simulation

#endif
