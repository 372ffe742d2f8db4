#include "FrameTranslation.h"

namespace zyn::simulation {
namespace {

GenTL::PAYLOADTYPE_INFO_ID PayloadType(const cameras::Frame& frame, bool marksChunkPayload) {
  if (frame.chunkCount > 0 && marksChunkPayload) return GenTL::PAYLOAD_TYPE_CHUNK_DATA;
  if (frame.hasImage) return GenTL::PAYLOAD_TYPE_IMAGE;
  return frame.chunkCount > 0 ? GenTL::PAYLOAD_TYPE_CHUNK_ONLY : GenTL::PAYLOAD_TYPE_RAW_DATA;
}

// An incomplete frame holds whole lines up to where it breaks off.
std::size_t DeliveredLines(const cameras::Frame& frame) {
  const std::size_t lineBytes = frame.height == 0 ? 0 : frame.imageSize / frame.height;
  if (lineBytes == 0 || frame.size >= frame.imageSize) return frame.height;
  return frame.size / lineBytes;
}

void DescribeImage(const cameras::Frame& frame, producer::FrameInfo& info) {
  info.pixelFormat = frame.pixelFormat;
  info.width = frame.width;
  info.height = frame.height;
  info.deliveredHeight = DeliveredLines(frame);
  info.xOffset = frame.offsetX;
  info.yOffset = frame.offsetY;
  info.xPadding = frame.paddingX;
}

}  // namespace

producer::FrameInfo Translate(const cameras::Frame& frame, bool marksChunkPayload) {
  producer::FrameInfo info;
  info.frameId = frame.id;
  info.timestamp = static_cast<std::uint64_t>(frame.timestampNs);
  info.timestampNs = info.timestamp;
  info.payloadType = PayloadType(frame, marksChunkPayload);
  info.sizeFilled = frame.size;
  info.dataSize = frame.intendedSize;
  info.incomplete = !frame.isComplete;
  info.largerThanBuffer = !frame.fits;
  info.imagePresent = frame.hasImage;
  if (frame.hasImage) DescribeImage(frame, info);
  if (frame.chunkCount > 0) {
    info.chunkTrailers = producer::ChunkTrailers::bigEndian;
    info.chunkLayoutId = frame.chunkLayoutId;
  }
  return info;
}

}  // namespace zyn::simulation
