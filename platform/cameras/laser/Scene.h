/// What stands before the simulated laser cameras: heights and brightness as formulas, so that every delivered value
/// can be checked. Integers only: the same everywhere. Picture: docs/camera-models.md
#ifndef ZYN_CAMERAS_LASER_SCENE_H
#define ZYN_CAMERAS_LASER_SCENE_H

#include <algorithm>
#include <cstdint>

namespace zyn::cameras::scene {

/// Calibrated heights are micrometres with this offset: kZero is the reference plane.
constexpr int kZero = 32768;
/// The measuring range around it: 24 mm to both sides.
constexpr int kLowest = kZero - 24000;
constexpr int kHighest = kZero + 24000;

/// The scene repeats after so many profiles, all but the ruler.
constexpr std::int64_t kPeriod = 1000;
/// The first points of each profile show a ruler that tells profiles apart: it climbs by 1 per profile and starts
/// again after kRulerPeriod.
constexpr int kRulerPoints = 32;
constexpr std::int64_t kRulerPeriod = 8192;
constexpr int kRulerBase = 40000;

namespace detail {

constexpr std::int64_t Square(std::int64_t value) {
  return value * value;
}

constexpr bool IsWithin(std::int64_t value, std::int64_t first, std::int64_t behind) {
  return value >= first && value < behind;
}

// A cap of a paraboloid: 12 mm high, 240 profiles and 240 points in radius.
constexpr int Dome(std::int64_t row, std::int64_t point) {
  const std::int64_t distance = Square(row - 500) + Square(point - 520);
  constexpr std::int64_t kRadius = std::int64_t{240} * 240;
  return distance >= kRadius ? 0 : static_cast<int>(12000 * (kRadius - distance) / kRadius);
}

// Five steps of 2 mm, each 200 profiles long.
constexpr int Steps(std::int64_t row) {
  return static_cast<int>(row / 200) * 2000;
}

// Rises by 10 um per point, and by 4 um per profile.
constexpr int Ramp(std::int64_t row, std::int64_t point) {
  return static_cast<int>(10 * (point - 1200) + 4 * row);
}

}  // namespace detail

/// The calibrated height of a point: contour and batch records carry it. `profile` counts from the start of the
/// acquisition, 0 or more; `point` is the sensor's column, 0 or more.
constexpr int SceneHeight(std::int64_t profile, std::int64_t point) {
  if (point < kRulerPoints) return kRulerBase + static_cast<int>(profile % kRulerPeriod);
  const std::int64_t row = profile % kPeriod;
  if (detail::IsWithin(point, 100, 200)) return kZero + detail::Steps(row);
  if (detail::IsWithin(point, 900, 960)) return kZero - 6000;  // a groove
  if (detail::IsWithin(point, 1200, 1600)) return kZero + detail::Ramp(row, point);
  if (detail::IsWithin(point, 1700, 1900)) return kZero + 3000 - 40 * static_cast<int>(point % 100);  // teeth
  return kZero + detail::Dome(row, point);
}

/// The brightness of the laser line at a point, 0 to 255.
constexpr int SceneIntensity(std::int64_t profile, std::int64_t point) {
  if (point < kRulerPoints) return (profile / 10) % 2 == 0 ? 255 : 64;
  const std::int64_t row = profile % kPeriod;
  if (detail::IsWithin(point, 900, 960)) return 40;  // little light comes back from the groove
  const bool isBright = (row / 50 + point / 50) % 2 == 0;
  return (isBright ? 200 : 120) + static_cast<int>((row * 7 + point * 3) % 32);
}

/// The sensor's row on which the laser line lies, 0 (high objects) to 1021: profile records without calibration carry
/// it.
constexpr int SceneSensorRow(std::int64_t profile, std::int64_t point) {
  return (kHighest - SceneHeight(profile, point)) / 47;
}

/// The intensity as records without calibration carry it: its two low bits are the high bits of the sensor's row.
constexpr int SceneSensorIntensity(std::int64_t profile, std::int64_t point) {
  return (SceneIntensity(profile, point) & 0xFC) | (SceneSensorRow(profile, point) >> 8);
}

/// Away from the laser line the sensor sees this; the line reaches so many rows up and down.
constexpr int kSensorBackground = 4;
constexpr int kSensorLineReach = 2;

/// A pixel of the sensor image: brightest where the record says the line is.
constexpr int SceneSensorPixel(std::int64_t profile, std::int64_t column, int row) {
  const int away = row - SceneSensorRow(profile, column);
  const int distance = away < 0 ? -away : away;
  if (distance > kSensorLineReach) return kSensorBackground;
  return std::max(kSensorBackground + 1, SceneSensorIntensity(profile, column) >> distance);
}

}  // namespace zyn::cameras::scene

#endif
