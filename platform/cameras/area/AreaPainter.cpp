#include "cameras/area/AreaPainter.h"

#include <algorithm>
#include <cstring>

#include "cameras/ChunkIds.h"
#include "cameras/ChunkLayout.h"
#include "cameras/PixelFormats.h"
#include "cameras/registers/BigEndian.h"

namespace zyn::cameras {

namespace {

// Patterns whose rows are all alike are computed once per frame.
bool RowsAreAlike(TestPattern pattern) {
  switch (pattern) {
    case TestPattern::black:
    case TestPattern::white:
    case TestPattern::greyHorizontalRamp:
    case TestPattern::greyHorizontalRampMoving:
    case TestPattern::verticalLineMoving:
    case TestPattern::colorBar:
      return true;
    default:
      return false;
  }
}

// 16-bit formats: least significant byte first.
void StoreWords(std::uint8_t* row, const std::uint16_t* levels, std::size_t count, unsigned shift) {
  for (std::size_t x = 0; x < count; ++x) {
    const unsigned value = static_cast<unsigned>(levels[x]) >> shift;
    row[2 * x] = static_cast<std::uint8_t>(value);
    row[2 * x + 1] = static_cast<std::uint8_t>(value >> 8U);
  }
}

void StoreBytes(std::uint8_t* row, const std::uint16_t* levels, std::size_t count, std::size_t step) {
  for (std::size_t x = 0; x < count; ++x) row[x * step] = static_cast<std::uint8_t>(levels[x] >> 8U);
}

}  // namespace

void AreaPainter::Paint(std::span<std::uint8_t> buffer, const Frame& frame) {
  PaintImage(buffer.data(), frame);
  if (auto* at = ChunkData(buffer, frame, kFrameIdChunk)) StoreBig(at, frame.id, 8);
  if (auto* at = ChunkData(buffer, frame, kTimestampChunk)) {
    StoreBig(at, static_cast<std::uint64_t>(frame.timestampNs), 8);
  }
  if (auto* at = ChunkData(buffer, frame, kExposureTimeChunk)) StoreBigDouble(at, plan.exposureUs);
  if (auto* at = ChunkData(buffer, frame, kGainChunk)) StoreBigDouble(at, plan.gainDb);
}

void AreaPainter::PaintImage(std::uint8_t* image, const Frame& frame) {
  for (auto& levels : levels_) levels.resize(frame.width);
  brightness_ = pattern::Brightness(plan.exposureUs, plan.gainDb);
  const std::size_t rowBytes = frame.imageSize / frame.height;
  // Two rows, because the colours of a mosaic alternate.
  const std::uint32_t different = RowsAreAlike(plan.pattern) ? std::min(frame.height, 2U) : frame.height;
  for (std::uint32_t y = 0; y < different; ++y) {
    PaintRow(image + y * rowBytes, frame, std::uint64_t{frame.offsetY} + y);
  }
  for (std::uint32_t y = different; y < frame.height; ++y) {
    std::memcpy(image + y * rowBytes, image + (y % 2) * rowBytes, rowBytes);
  }
}

void AreaPainter::ComputeLevels(ColorChannel channel, const Frame& frame, std::uint64_t y) {
  std::uint16_t* const levels = Levels(channel);
  for (std::uint32_t x = 0; x < frame.width; ++x) {
    levels[x] = static_cast<std::uint16_t>(
        PatternLevel(plan.pattern, std::uint64_t{frame.offsetX} + x, y, frame.id, channel, brightness_));
  }
}

void AreaPainter::ComputeBayerLevels(const Frame& frame, std::uint64_t y) {
  std::uint16_t* const levels = Levels(ColorChannel::grey);
  for (std::uint32_t i = 0; i < frame.width; ++i) {
    const std::uint64_t x = std::uint64_t{frame.offsetX} + i;
    levels[i] =
        static_cast<std::uint16_t>(PatternLevel(plan.pattern, x, y, frame.id, BayerRG(x, y), brightness_));
  }
}

void AreaPainter::PaintRow(std::uint8_t* row, const Frame& frame, std::uint64_t y) {
  const bool isColor = frame.pixelFormat == kRGB8 || frame.pixelFormat == kBGR8;
  if (isColor) {
    const bool redIsFirst = frame.pixelFormat == kRGB8;
    for (const ColorChannel channel : {ColorChannel::red, ColorChannel::green, ColorChannel::blue}) {
      ComputeLevels(channel, frame, y);
      const auto index = static_cast<std::size_t>(channel);
      StoreBytes(row + (redIsFirst ? index : 2 - index), Levels(channel), frame.width, 3);
    }
    return;
  }
  if (frame.pixelFormat == kBayerRG8) {
    ComputeBayerLevels(frame, y);
  } else {
    ComputeLevels(ColorChannel::grey, frame, y);
  }
  const std::uint16_t* const levels = Levels(ColorChannel::grey);
  switch (frame.pixelFormat) {
    case kMono10:
      StoreWords(row, levels, frame.width, 6);
      break;
    case kMono12:
      StoreWords(row, levels, frame.width, 4);
      break;
    case kMono16:
      StoreWords(row, levels, frame.width, 0);
      break;
    default:
      StoreBytes(row, levels, frame.width, 1);
      break;
  }
}

}  // namespace zyn::cameras
