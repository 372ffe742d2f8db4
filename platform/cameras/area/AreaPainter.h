/// Writes the frames of area cameras.
#ifndef ZYN_CAMERAS_AREA_AREA_PAINTER_H
#define ZYN_CAMERAS_AREA_AREA_PAINTER_H

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "cameras/FramePainter.h"
#include "cameras/area/TestPattern.h"

namespace zyn::cameras {

/// What one frame shows.
struct AreaPlan {
  TestPattern pattern = TestPattern::off;
  double exposureUs = 0;
  double gainDb = 0;
};

class AreaPainter final : public FramePainter {
 public:
  AreaPlan plan;

  void Paint(std::span<std::uint8_t> buffer, const Frame& frame) override;

 private:
  void PaintImage(std::uint8_t* image, const Frame& frame);
  void PaintRow(std::uint8_t* row, const Frame& frame, std::uint64_t y);
  void ComputeLevels(ColorChannel channel, const Frame& frame, std::uint64_t y);
  void ComputeBayerLevels(const Frame& frame, std::uint64_t y);
  std::uint16_t* Levels(ColorChannel channel) { return levels_[static_cast<std::size_t>(channel)].data(); }

  std::array<std::vector<std::uint16_t>, 4> levels_;  // of one row, for each channel
  std::int64_t brightness_ = 0;
};

}  // namespace zyn::cameras

#endif
