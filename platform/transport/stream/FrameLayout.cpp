#include "FrameLayout.h"

#include <algorithm>
#include <limits>

#include <KELGeniCam.h>

#include "PixelFormat.h"

namespace zyn::transport {

namespace {

constexpr std::uint64_t kMostPixels = static_cast<std::uint64_t>(std::numeric_limits<int>::max());

bool IsUnsupported(std::uint64_t payload) {
  switch (payload) {
    case GenTL::PAYLOAD_TYPE_FILE:
    case GenTL::PAYLOAD_TYPE_JPEG:
    case GenTL::PAYLOAD_TYPE_JPEG2000:
    case GenTL::PAYLOAD_TYPE_H264:
    case GenTL::PAYLOAD_TYPE_DEVICE_SPECIFIC:
    case GenTL::PAYLOAD_TYPE_GENDC:
      return true;
    default:
      return false;
  }
}

bool IsRaw(std::uint64_t payload) {
  return payload == GenTL::PAYLOAD_TYPE_RAW_DATA || payload == GenTL::PAYLOAD_TYPE_UNKNOWN;
}

bool IsComplete(const BufferFacts& facts) {
  if (const auto incomplete = facts.Get(GenTL::BUFFER_INFO_IS_INCOMPLETE)) return *incomplete == 0;
  // Producers without the command: less data than intended means a loss.
  const auto filled = facts.Get(GenTL::BUFFER_INFO_SIZE_FILLED);
  const auto intended = facts.Get(GenTL::BUFFER_INFO_DATA_SIZE);
  return !filled || !intended || *filled >= *intended;
}

bool HasImage(const BufferFacts& facts, std::uint64_t payload) {
  if (payload == GenTL::PAYLOAD_TYPE_CHUNK_ONLY) return false;
  if (const auto present = facts.Get(GenTL::BUFFER_INFO_IMAGEPRESENT)) return *present != 0;
  return true;
}

// The bytes from one row to the next; 0, which no frame has, when the padding is garbage.
std::uint64_t StepOf(std::uint64_t rowBytes, std::uint64_t padding) {
  return padding <= kMostPixels ? rowBytes + padding : 0;
}

// Stores the size, cut to what the buffer really holds. A frame that had to be cut is not valid.
void Place(FrameLayout& frame, std::uint64_t width, std::uint64_t height, std::uint64_t step,
           std::uint64_t offset, std::size_t capacity) {
  const bool isPossible =
      offset <= capacity && width <= kMostPixels && step <= kMostPixels && height <= kMostPixels;
  if (!isPossible || step == 0 || width == 0) {
    frame.isValid = false;
    return;
  }
  const std::uint64_t rows = std::min<std::uint64_t>(height, (capacity - offset) / step);
  if (rows < height) frame.isValid = false;
  frame.hasImage = rows > 0;
  frame.width = rows > 0 ? static_cast<int>(width) : 0;
  frame.height = static_cast<int>(rows);
  frame.step = rows > 0 ? static_cast<int>(step) : 0;
  frame.imageOffset = rows > 0 ? static_cast<std::size_t>(offset) : 0;
}

void PlaceImage(FrameLayout& frame, const BufferFacts& facts, const CameraSettings& settings,
                std::size_t capacity) {
  const std::uint64_t format = facts.GetOr(GenTL::BUFFER_INFO_PIXELFORMAT, settings.pixelFormat);
  const std::uint64_t width = facts.GetOr(GenTL::BUFFER_INFO_WIDTH, settings.width);
  const std::uint64_t expected = facts.GetOr(GenTL::BUFFER_INFO_HEIGHT, settings.height);
  const std::uint64_t delivered = facts.GetOr(GenTL::BUFFER_INFO_DELIVERED_IMAGEHEIGHT, 0);
  const std::uint64_t height = delivered != 0 ? delivered : expected;
  if (width > kMostPixels || height > kMostPixels) {
    frame.isValid = false;
    return;
  }
  std::uint64_t step = StepOf(RowBytes(format, width), facts.GetOr(GenTL::BUFFER_INFO_XPADDING, 0));
  // A format of the camera's own: the rows share what was delivered.
  if (BitsPerPixel(format) == 0 && height != 0) step = ValidBytes(facts, capacity) / height;
  frame.channels = ChannelsOf(format);
  Place(frame, width, height, step, facts.GetOr(GenTL::BUFFER_INFO_IMAGEOFFSET, 0), capacity);
}

void PlaceRaw(FrameLayout& frame, const BufferFacts& facts, std::size_t capacity) {
  const std::size_t size = ValidBytes(facts, capacity);
  frame.channels = 1;
  Place(frame, size, 1, size, 0, capacity);
}

}  // namespace

std::size_t ValidBytes(const BufferFacts& facts, std::size_t capacity) {
  const std::uint64_t filled =
      facts.GetOr(GenTL::BUFFER_INFO_SIZE_FILLED, facts.GetOr(GenTL::BUFFER_INFO_DATA_SIZE, capacity));
  return static_cast<std::size_t>(std::min<std::uint64_t>(filled, capacity));
}

FrameLayout LayOutFrame(const BufferFacts& facts, const CameraSettings& settings, std::size_t capacity) {
  FrameLayout frame;
  frame.frameId = static_cast<long long>(facts.GetOr(GenTL::BUFFER_INFO_FRAMEID, 0));
  const std::uint64_t payload = facts.GetOr(GenTL::BUFFER_INFO_PAYLOADTYPE, GenTL::PAYLOAD_TYPE_IMAGE);
  if (facts.GetOr(GenTL::BUFFER_INFO_NEW_DATA, 1) == 0) {
    frame.result = KELGENICAM::RESULT_NO_DATA;
  } else if (facts.IsTrue(GenTL::BUFFER_INFO_DATA_LARGER_THAN_BUFFER)) {
    frame.result = KELGENICAM::RESULT_BUFFER_TOO_SMALL;
  } else if (IsUnsupported(payload)) {
    frame.result = KELGENICAM::RESULT_PAYLOAD_UNSUPPORTED;
  }
  if (frame.result != KELGENICAM::RESULT_OK) return frame;
  frame.isValid = IsComplete(facts);
  if (payload == GenTL::PAYLOAD_TYPE_MULTI_PART) return frame;
  const bool isRaw = IsRaw(payload) && !facts.IsTrue(GenTL::BUFFER_INFO_IMAGEPRESENT);
  if (isRaw) {
    PlaceRaw(frame, facts, capacity);
  } else if (HasImage(facts, payload)) {
    PlaceImage(frame, facts, settings, capacity);
  }
  return frame;
}

void PlacePart(FrameLayout& frame, const PartFacts& part) {
  const std::uint64_t rowBytes = RowBytes(part.format, part.width);
  std::uint64_t step = StepOf(rowBytes, part.padding);
  // The size of the part settles what the padding leaves open.
  const bool isDivisible = part.isSizeTold && part.height != 0 && part.size % part.height == 0;
  if (isDivisible && part.size / part.height >= rowBytes) step = part.size / part.height;
  frame.channels = ChannelsOf(part.format);
  Place(frame, part.width, part.height, step, part.offset, static_cast<std::size_t>(part.offset + part.size));
}

}  // namespace zyn::transport
