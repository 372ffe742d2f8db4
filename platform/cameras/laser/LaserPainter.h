/// Writes the frames of laser cameras.
#ifndef ZYN_CAMERAS_LASER_LASER_PAINTER_H
#define ZYN_CAMERAS_LASER_LASER_PAINTER_H

#include <cstdint>
#include <span>
#include <vector>

#include "cameras/FramePainter.h"

namespace zyn::cameras {

/// What one frame shows.
struct LaserPlan {
  std::int64_t firstProfile = 0;  ///< counts from the start of the acquisition
  std::uint64_t identifier = 0;   ///< for the chunk ChunkFrameID
  bool isCalibrated = true;       ///< which kind of record
  std::uint32_t width = 0;        ///< points per profile
  std::uint32_t offsetX = 0;      ///< sensor column of the first point
};

/// The scene repeats, so each of its profiles is computed once, when it is first needed, and copied from then on: a
/// frame costs little more than copying it.
class LaserPainter final : public FramePainter {
 public:
  LaserPlan plan;

  void Paint(std::span<std::uint8_t> buffer, const Frame& frame) override;

 private:
  void PrepareTable();
  const std::uint8_t* Profile(std::int64_t row);
  void PaintRecords(std::uint8_t* at, std::size_t length);
  void PaintRuler(std::uint8_t* at, std::int64_t profile, std::size_t points) const;
  void PaintSensor(std::uint8_t* image, const Frame& frame) const;
  void StoreRecord(std::uint8_t* at, std::int64_t profile, std::int64_t column) const;

  // The table: one profile after the other, each with the records of `tableWidth_` points.
  std::vector<std::uint8_t> table_;
  std::vector<bool> isComputed_;
  bool tableIsCalibrated_ = false;
  std::uint32_t tableWidth_ = 0;
  std::uint32_t tableOffset_ = 0;
};

}  // namespace zyn::cameras

#endif
