#include "cameras/area/AreaPainter.h"

#include <algorithm>
#include <cstring>
#include <utility>

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

struct RowPlace {
  std::uint64_t firstColumn;
  std::uint64_t y;
  std::uint64_t frame;
  ColorChannel channel;
  std::int64_t brightness;
};

// The pattern is known to the compiler, which leaves nothing of the choice in the loop: several times as fast.
template <TestPattern kPattern>
void FillRow(std::uint16_t* levels, std::uint32_t width, const RowPlace& row) {
  for (std::uint32_t x = 0; x < width; ++x) {
    levels[x] = static_cast<std::uint16_t>(
        PatternLevel(kPattern, row.firstColumn + x, row.y, row.frame, row.channel, row.brightness));
  }
}

using RowFiller = void (*)(std::uint16_t*, std::uint32_t, const RowPlace&);

template <std::size_t... kValues>
constexpr std::array<RowFiller, sizeof...(kValues)> MakeRowFillers(std::index_sequence<kValues...>) {
  return {FillRow<static_cast<TestPattern>(kValues)>...};
}

// One for each pattern, in the order of their values.
constexpr auto kRowFillers =
    MakeRowFillers(std::make_index_sequence<static_cast<std::size_t>(TestPattern::colorBar) + 1>());

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
  kRowFillers[static_cast<std::size_t>(plan.pattern)](
      Levels(channel), frame.width, RowPlace{frame.offsetX, y, frame.id, channel, brightness_});
}

void AreaPainter::ComputeBayerLevels(const Frame& frame, std::uint64_t y) {
  // A row of a mosaic alternates between two colours.
  const ColorChannel first = BayerRG(frame.offsetX, y);
  const ColorChannel second = BayerRG(std::uint64_t{frame.offsetX} + 1, y);
  ComputeLevels(first, frame, y);
  ComputeLevels(second, frame, y);
  std::uint16_t* const levels = Levels(ColorChannel::grey);
  for (std::uint32_t x = 0; x < frame.width; ++x) levels[x] = Levels(x % 2 == 0 ? first : second)[x];
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
