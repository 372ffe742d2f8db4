// What BufferQueues tells about one buffer, command by command.
#include <optional>

#include "BufferQueues.h"
#include "producer/Error.h"

namespace zyn::producer {
namespace {

using namespace GenTL;

[[noreturn]] void ThrowUnknown(const char* what, std::int32_t command) {
  throw Error(GC_ERR_NOT_IMPLEMENTED,
              "There is no " + std::string(what) + " information " + std::to_string(command) + ".");
}

[[noreturn]] void ThrowUnavailable() {
  throw Error(GC_ERR_NOT_AVAILABLE, "This is not known about the content of the buffer.");
}

void AnswerSize(const Answer& answer, const std::optional<std::size_t>& value) {
  if (!value) ThrowUnavailable();
  answer.Size(*value);
}

void AnswerUInt64(const Answer& answer, const std::optional<std::uint64_t>& value) {
  if (!value) ThrowUnavailable();
  answer.UInt64(*value);
}

// Whole seconds and the rest apart: the product of ticks and 10^9 would overflow.
std::optional<std::uint64_t> Nanoseconds(const FrameInfo& info, std::uint64_t frequency) {
  constexpr std::uint64_t kNanoseconds = 1000000000;
  if (info.timestampNs) return info.timestampNs;
  if (!info.timestamp || frequency == 0) return std::nullopt;
  const std::uint64_t ticks = *info.timestamp;
  const auto rest = static_cast<double>(ticks % frequency) * kNanoseconds / static_cast<double>(frequency);
  return ticks / frequency * kNanoseconds + static_cast<std::uint64_t>(rest);
}

bool HasChunks(const FrameInfo& info) {
  return !info.incomplete && (info.chunkTrailers != ChunkTrailers::none || !info.chunks.empty());
}

}  // namespace

void BufferQueues::Info(const Buffer& buffer, BUFFER_INFO_CMD command, const Answer& answer) const {
  MutexLock lock(mutex_);
  switch (command) {
    case BUFFER_INFO_BASE:
      return answer.Pointer(buffer.Memory());
    case BUFFER_INFO_SIZE:
      return answer.Size(buffer.Size());
    case BUFFER_INFO_USER_PTR:
      return answer.Pointer(buffer.UserPointer());
    case BUFFER_INFO_NEW_DATA:
      return answer.Bool(buffer.newData);
    case BUFFER_INFO_IS_QUEUED:
      return answer.Bool(buffer.place != Buffer::Place::unqueued);
    case BUFFER_INFO_IS_ACQUIRING:
      return answer.Bool(buffer.place == Buffer::Place::taken && buffer.started);
    case BUFFER_INFO_TLTYPE:
      return answer.Text(settings_.tlType);
    case BUFFER_INFO_IS_COMPOSITE:
      return answer.Bool(false);
    default:
      return FrameFacts(buffer, command, answer);
  }
}

// Valid for every kind of payload.
void BufferQueues::FrameFacts(const Buffer& buffer, BUFFER_INFO_CMD command, const Answer& answer) const {
  const FrameInfo& info = buffer.info;
  switch (command) {
    case BUFFER_INFO_TIMESTAMP:
      return AnswerUInt64(answer, info.timestamp);
    case BUFFER_INFO_TIMESTAMP_NS:
      return AnswerUInt64(answer, Nanoseconds(info, settings_.timestampFrequency));
    case BUFFER_INFO_IS_INCOMPLETE:
      return answer.Bool(info.incomplete);
    case BUFFER_INFO_SIZE_FILLED:
      return answer.Size(info.sizeFilled);
    case BUFFER_INFO_DATA_SIZE:
      return answer.Size(info.dataSize);
    case BUFFER_INFO_DATA_LARGER_THAN_BUFFER:
      return answer.Bool(info.largerThanBuffer);
    case BUFFER_INFO_FRAMEID:
      return answer.UInt64(info.frameId);
    case BUFFER_INFO_PAYLOADTYPE:
      return answer.Size(static_cast<std::size_t>(info.payloadType));
    case BUFFER_INFO_IMAGEPRESENT:
      return answer.Bool(info.imagePresent && info.payloadType != PAYLOAD_TYPE_MULTI_PART);
    case BUFFER_INFO_IMAGEOFFSET:
      return answer.Size(info.imageOffset);
    case BUFFER_INFO_YPADDING:
      return answer.Size(info.yPadding);
    case BUFFER_INFO_PIXEL_ENDIANNESS:
      return answer.Int32(info.pixelEndianness);
    case BUFFER_INFO_CONTAINS_CHUNKDATA:
      return answer.Bool(HasChunks(info));
    case BUFFER_INFO_DELIVERED_CHUNKPAYLOADSIZE:
      if (!HasChunks(info)) throw Error(GC_ERR_NO_DATA, "The buffer holds no chunk data.");
      return answer.Size(info.chunkPayloadSize != 0 ? info.chunkPayloadSize : info.sizeFilled);
    case BUFFER_INFO_CHUNKLAYOUTID:
      return answer.UInt64(info.chunkLayoutId);
    case BUFFER_INFO_FILENAME:
      if (info.payloadType != PAYLOAD_TYPE_FILE)
        throw Error(GC_ERR_NO_DATA, "The buffer does not hold a file.");
      return answer.Text(info.fileName);
    default:
      return ImageInfo(buffer, command, answer);
  }
}

// Valid for payloads that are not multi-part.
void BufferQueues::ImageInfo(const Buffer& buffer, BUFFER_INFO_CMD command, const Answer& answer) const {
  if (command < BUFFER_INFO_WIDTH || command > BUFFER_INFO_DELIVERED_IMAGEHEIGHT)
    ThrowUnknown("buffer", command);
  const FrameInfo& info = buffer.info;
  if (info.payloadType == PAYLOAD_TYPE_MULTI_PART)
    throw Error(GC_ERR_NO_DATA, "The payload has parts: ask about each of them.");
  switch (command) {
    case BUFFER_INFO_WIDTH:
      return AnswerSize(answer, info.width);
    case BUFFER_INFO_HEIGHT:
      return AnswerSize(answer, info.height);
    case BUFFER_INFO_DELIVERED_IMAGEHEIGHT:
      return AnswerSize(answer, info.deliveredHeight ? info.deliveredHeight : info.height);
    case BUFFER_INFO_XOFFSET:
      return AnswerSize(answer, info.xOffset);
    case BUFFER_INFO_YOFFSET:
      return AnswerSize(answer, info.yOffset);
    case BUFFER_INFO_XPADDING:
      return answer.Size(info.xPadding);
    case BUFFER_INFO_PIXELFORMAT:
      return AnswerUInt64(answer, info.pixelFormat);
    case BUFFER_INFO_PIXELFORMAT_NAMESPACE:
      if (!info.pixelFormat) ThrowUnavailable();
      return answer.UInt64(static_cast<std::uint64_t>(info.pixelFormatNamespace));
    default:
      ThrowUnknown("buffer", command);
  }
}

void BufferQueues::PartInfo(const Buffer& buffer, std::size_t index, BUFFER_PART_INFO_CMD command,
                            const Answer& answer) const {
  MutexLock lock(mutex_);
  const std::vector<Part>& parts = PartsOf(buffer);
  if (index >= parts.size()) {
    throw Error(GC_ERR_INVALID_INDEX, "The payload has " + std::to_string(parts.size()) +
                                          " parts, there is no number " + std::to_string(index) + ".");
  }
  const Part& part = parts[index];
  switch (command) {
    case BUFFER_PART_INFO_BASE:
      return answer.Pointer(buffer.Memory() + part.offset);
    case BUFFER_PART_INFO_DATA_SIZE:
      return answer.Size(part.size);
    case BUFFER_PART_INFO_DATA_TYPE:
      return answer.Size(static_cast<std::size_t>(part.dataType));
    case BUFFER_PART_INFO_DATA_FORMAT:
      return answer.UInt64(part.dataFormat);
    case BUFFER_PART_INFO_DATA_FORMAT_NAMESPACE:
      return answer.UInt64(PIXELFORMAT_NAMESPACE_PFNC_32BIT);
    case BUFFER_PART_INFO_WIDTH:
      return AnswerSize(answer, part.width);
    case BUFFER_PART_INFO_HEIGHT:
      return AnswerSize(answer, part.height);
    case BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT:
      return AnswerSize(answer, part.deliveredHeight ? part.deliveredHeight : part.height);
    case BUFFER_PART_INFO_XOFFSET:
      return AnswerSize(answer, part.xOffset);
    case BUFFER_PART_INFO_YOFFSET:
      return AnswerSize(answer, part.yOffset);
    case BUFFER_PART_INFO_XPADDING:
      return AnswerSize(answer, part.xPadding);
    case BUFFER_PART_INFO_SOURCE_ID:
      return AnswerUInt64(answer, part.sourceId);
    case BUFFER_PART_INFO_REGION_ID:
      return AnswerUInt64(answer, part.regionId);
    case BUFFER_PART_INFO_DATA_PURPOSE_ID:
      return AnswerUInt64(answer, part.purposeId);
    default:
      ThrowUnknown("part", command);
  }
}

// A contiguous buffer is one segment.
void BufferQueues::SegmentInfo(const Buffer& buffer, SEGMENT_INFO_CMD command, const Answer& answer) const {
  MutexLock lock(mutex_);
  switch (command) {
    case SEGMENT_INFO_BASE:
      return answer.Pointer(buffer.Memory());
    case SEGMENT_INFO_SIZE:
      return answer.Size(buffer.Size());
    case SEGMENT_INFO_IS_INCOMPLETE:
      return answer.Bool(buffer.info.incomplete);
    case SEGMENT_INFO_SIZE_FILLED:
      return answer.Size(buffer.info.sizeFilled);
    case SEGMENT_INFO_DATA_SIZE:
      return answer.Size(buffer.info.dataSize);
    default:
      ThrowUnknown("segment", command);
  }
}

}  // namespace zyn::producer
