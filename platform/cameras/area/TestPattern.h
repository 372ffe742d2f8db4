/// The images of the simulated area cameras as formulas, so that every pixel can be checked.
#ifndef ZYN_CAMERAS_AREA_TEST_PATTERN_H
#define ZYN_CAMERAS_AREA_TEST_PATTERN_H

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace zyn::cameras {

/// The values of the feature TestPattern. `off` shows the scene, which gets brighter with exposure time and gain.
enum class TestPattern : std::int64_t {
  off = 0,
  black,
  white,
  greyHorizontalRamp,        ///< from left to right, again every 256 columns
  greyVerticalRamp,          ///< from top to bottom, again every 256 rows
  greyHorizontalRampMoving,  ///< moves by one column per frame
  greyVerticalRampMoving,
  horizontalLineMoving,  ///< a white row in every 256, one row further down with each frame
  verticalLineMoving,
  colorBar,  ///< bars of 32 columns: white, yellow, cyan, green, magenta, red, blue, black
};

enum class ColorChannel { red = 0, green = 1, blue = 2, grey = 3 };

namespace pattern {

constexpr int kWhite = 65535;

constexpr int Ramp(std::uint64_t position) {
  return static_cast<int>(position % 256) * 256;
}

constexpr int Line(std::uint64_t position, std::uint64_t frame) {
  return position % 256 == frame % 256 ? kWhite : 0;
}

constexpr int Bar(std::uint64_t x, ColorChannel channel) {
  const unsigned bar = static_cast<unsigned>(x / 32 % 8);
  const bool red = (bar & 2U) == 0;
  const bool green = (bar & 4U) == 0;
  const bool blue = (bar & 1U) == 0;
  switch (channel) {
    case ColorChannel::red:
      return red ? kWhite : 0;
    case ColorChannel::green:
      return green ? kWhite : 0;
    case ColorChannel::blue:
      return blue ? kWhite : 0;
    case ColorChannel::grey:
      break;
  }
  return (red ? 77 * 255 : 0) + (green ? 150 * 255 : 0) + (blue ? 29 * 255 : 0);
}

/// The light that the scene sends: rings around the point (320, 240), 256 to 32896. Each colour has its own.
constexpr int Scene(std::uint64_t x, std::uint64_t y, ColorChannel channel) {
  const std::int64_t dx = static_cast<std::int64_t>(x) - 320;
  const std::int64_t dy = static_cast<std::int64_t>(y) - 240;
  const int phase = channel == ColorChannel::grey ? 0 : static_cast<int>(channel) * 40;
  const int ring = static_cast<int>(static_cast<std::uint64_t>(dx * dx + dy * dy) / 128 % 256);
  const int wave = (ring + phase) % 256;
  return 256 + (wave < 128 ? wave : 255 - wave) * 257;
}

/// How much brighter or darker than at 10 ms and 0 dB, as a multiple of 1/256; at most 256.
inline std::int64_t Brightness(double exposureUs, double gainDb) {
  const double factor = exposureUs / 10'000 * std::pow(10.0, gainDb / 20);
  return static_cast<std::int64_t>(std::lround(std::min(factor, 256.0) * 256));
}

}  // namespace pattern

/// The level of a pixel, 0 to 65535; formats with fewer bits carry the upper ones. `x` and `y` are sensor
/// coordinates, `frame` is the number of the frame.
constexpr int PatternLevel(TestPattern pattern, std::uint64_t x, std::uint64_t y, std::uint64_t frame,
                           ColorChannel channel, std::int64_t brightness) {
  switch (pattern) {
    case TestPattern::black:
      return 0;
    case TestPattern::white:
      return pattern::kWhite;
    case TestPattern::greyHorizontalRamp:
      return pattern::Ramp(x);
    case TestPattern::greyVerticalRamp:
      return pattern::Ramp(y);
    case TestPattern::greyHorizontalRampMoving:
      return pattern::Ramp(x + frame);
    case TestPattern::greyVerticalRampMoving:
      return pattern::Ramp(y + frame);
    case TestPattern::horizontalLineMoving:
      return pattern::Line(y, frame);
    case TestPattern::verticalLineMoving:
      return pattern::Line(x, frame);
    case TestPattern::colorBar:
      return pattern::Bar(x, channel);
    case TestPattern::off:
      break;
  }
  const auto light = static_cast<std::uint64_t>(pattern::Scene(x, y, channel));
  const std::uint64_t level = light * static_cast<std::uint64_t>(brightness) / 256;
  return static_cast<int>(std::min<std::uint64_t>(level, pattern::kWhite));
}

/// The colour that a pixel of a BayerRG sensor sees.
constexpr ColorChannel BayerRG(std::uint64_t x, std::uint64_t y) {
  const bool isEvenRow = y % 2 == 0;
  const bool isEvenColumn = x % 2 == 0;
  if (isEvenRow == isEvenColumn) return isEvenRow ? ColorChannel::red : ColorChannel::blue;
  return ColorChannel::green;
}

}  // namespace zyn::cameras

#endif
