#include "CardImage.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace zyn::simulation {

namespace {

std::uint32_t FormatOf(const CardSettings& card) {
  return static_cast<std::uint32_t>(card.pixelFormat);
}

std::size_t SampleBytes(std::uint32_t pixelFormat) {
  return BitsPerSample(pixelFormat) > 8 ? 2 : 1;
}

unsigned LoadSample(const std::uint8_t* at, std::size_t bytes) {
  return bytes == 1 ? at[0] : at[0] | static_cast<unsigned>(at[1]) << 8U;
}

void StoreSample(std::uint8_t* at, std::size_t bytes, unsigned value) {
  at[0] = static_cast<std::uint8_t>(value);
  if (bytes == 2) at[1] = static_cast<std::uint8_t>(value >> 8U);
}

unsigned Amplified(unsigned value, double gain, unsigned largest) {
  return static_cast<unsigned>(std::min<double>(largest, std::round(value * gain)));
}

// Lines of the camera's image that arrived as a whole.
std::size_t LinesOf(const cameras::Frame& frame) {
  const std::size_t lineBytes = frame.height == 0 ? 0 : frame.imageSize / frame.height;
  if (lineBytes == 0) return 0;
  return std::min<std::size_t>(frame.height, frame.size / lineBytes);
}

}  // namespace

bool CardImage::PlanLine(const CardSettings& card, const cameras::Frame& frame) {
  const std::size_t cameraSamples = SamplesPerPixel(frame.pixelFormat);
  const std::size_t cardSamples = SamplesPerPixel(FormatOf(card));
  const auto cardTaps = static_cast<std::size_t>(card.taps);
  const std::size_t cameraTaps = frame.taps == 0 ? cardTaps : frame.taps;
  const std::size_t sent = cameraTaps * cameraSamples;  // samples at a time
  const std::size_t expected = cardTaps * cardSamples;
  const std::size_t times = (frame.width + cameraTaps - 1) / cameraTaps;
  const std::size_t lineSamples = frame.width * cameraSamples;

  const auto width = static_cast<std::size_t>(card.width);
  samples_.assign(width * cardSamples, kBlack);
  bool isLongEnough = true;
  for (std::size_t x = 0; x < width; ++x) {
    const std::size_t pixel = static_cast<std::size_t>(card.offsetX) + x;
    const std::size_t target = card.reverseX ? width - 1 - x : x;
    for (std::size_t channel = 0; channel < cardSamples; ++channel) {
      const std::size_t sample = pixel * cardSamples + channel;
      const std::size_t time = sample / expected;
      const std::size_t place = sample % expected;
      const std::size_t source = time * sent + place;
      if (time >= times) isLongEnough = false;
      if (time < times && place < sent && source < lineSamples)
        samples_[target * cardSamples + channel] = static_cast<std::int32_t>(source);
    }
  }
  return isLongEnough;
}

void CardImage::StoreLine(const CardSettings& card, const cameras::Frame& frame, const std::uint8_t* camera,
                          std::uint8_t* memory) const {
  const std::size_t cameraBytes = SampleBytes(frame.pixelFormat);
  const std::size_t cardBytes = SampleBytes(FormatOf(card));
  const unsigned largest = (1U << BitsPerSample(FormatOf(card))) - 1;
  const bool isAmplified = card.gain != 1;
  for (const std::int32_t source : samples_) {
    unsigned value = 0;
    if (source != kBlack)
      value = LoadSample(camera + static_cast<std::size_t>(source) * cameraBytes, cameraBytes) & largest;
    if (isAmplified) value = Amplified(value, card.gain, largest);
    StoreSample(memory, cardBytes, value);
    memory += cardBytes;
  }
}

producer::FrameInfo CardImage::Store(const CardSettings& card, const cameras::Frame& frame,
                                     std::span<const std::uint8_t> camera, std::span<std::uint8_t> memory) {
  const auto height = static_cast<std::size_t>(card.height);
  const std::size_t lineBytes = static_cast<std::size_t>(card.width) * cameras::BytesPerPixel(FormatOf(card));
  producer::FrameInfo info;
  info.frameId = frame.id;
  info.timestamp = static_cast<std::uint64_t>(frame.timestampNs);
  info.timestampNs = info.timestamp;
  info.payloadType = GenTL::PAYLOAD_TYPE_IMAGE;
  info.dataSize = lineBytes * height;
  info.pixelFormat = FormatOf(card);
  info.width = static_cast<std::size_t>(card.width);
  info.height = height;
  info.xOffset = frame.offsetX + static_cast<std::size_t>(card.offsetX);
  info.yOffset = frame.offsetY + static_cast<std::size_t>(card.offsetY);
  if (memory.size() < info.dataSize) {
    info.largerThanBuffer = true;
    info.incomplete = true;
    info.deliveredHeight = 0;
    return info;
  }
  const std::size_t cameraLines = LinesOf(frame);
  const std::size_t cameraLineBytes = frame.height == 0 ? 0 : frame.imageSize / frame.height;
  const std::size_t skipped = std::min(cameraLines, static_cast<std::size_t>(card.offsetY));
  const std::size_t lines = std::min(height, cameraLines - skipped);
  const bool isLongEnough = PlanLine(card, frame);
  for (std::size_t y = 0; y < lines; ++y)
    StoreLine(card, frame, camera.data() + (skipped + y) * cameraLineBytes, memory.data() + y * lineBytes);
  std::memset(memory.data() + lines * lineBytes, 0, (height - lines) * lineBytes);
  info.sizeFilled = lines * lineBytes;
  info.deliveredHeight = lines;
  info.incomplete = !frame.isComplete || !isLongEnough || lines < height;
  return info;
}

}  // namespace zyn::simulation
