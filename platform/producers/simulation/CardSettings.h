/// What a frame grabber card is told about the camera on its link.
#ifndef ZYN_SIMULATION_CARD_SETTINGS_H
#define ZYN_SIMULATION_CARD_SETTINGS_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "cameras/PixelFormats.h"

namespace zyn::simulation {

/// How many cables and channels are in use; the value is what they carry, in bits at a time.
enum class ClConfiguration : std::int64_t { base = 24, medium = 48, full = 64, eightyBit = 80 };

/// What makes the card take a frame while it waits for triggers.
enum class CardTriggerSource : std::int64_t { software = 0, line0 = 1, line1 = 2 };

/// Integers are as wide as features are.
struct CardSettings {
  std::int64_t width = 0;    ///< pixels of each line that are taken
  std::int64_t height = 0;   ///< lines of each frame that are taken
  std::int64_t offsetX = 0;  ///< the first pixel taken, as they come in
  std::int64_t offsetY = 0;
  std::int64_t pixelFormat = cameras::kMono8;  ///< PFNC code: the bits of a sample, and how many make a pixel
  std::int64_t configuration = static_cast<std::int64_t>(ClConfiguration::base);
  std::int64_t taps = 2;  ///< pixels that come at a time
  bool reverseX = false;  ///< lines are stored from right to left
  double gain = 1;        ///< every sample is multiplied by it
  bool isTriggered = false;
  std::int64_t triggerSource = static_cast<std::int64_t>(CardTriggerSource::software);
  std::string name = "simulated";
};

/// Samples of a pixel.
constexpr std::size_t SamplesPerPixel(std::uint32_t pixelFormat) {
  return pixelFormat == cameras::kRGB8 || pixelFormat == cameras::kBGR8 ? 3 : 1;
}

/// Bits of a sample that count.
constexpr unsigned BitsPerSample(std::uint32_t pixelFormat) {
  switch (pixelFormat) {
    case cameras::kMono10:
      return 10;
    case cameras::kMono12:
      return 12;
    case cameras::kMono16:
      return 16;
    default:
      return 8;
  }
}

}  // namespace zyn::simulation

#endif
