#include "FrameTranslation.h"

#include <algorithm>

namespace zyn::aravis {
namespace {

using namespace GenTL;
using producer::FrameInfo;

std::size_t Unsigned(gint value) {
  return static_cast<std::size_t>(std::max(value, 0));
}

struct Layout {
  std::size_t rowBytes = 0;    // padding included
  std::size_t imageBytes = 0;  // padding included
};

Layout LayoutOf(const FrameInfo& info) {
  const std::size_t bitsPerPixel = *info.pixelFormat >> 16U & 0xFFU;
  const std::size_t rowBits = *info.width * bitsPerPixel;
  Layout layout;
  // Rows of packed formats share bytes when there is no padding between them.
  layout.imageBytes = (rowBits * *info.height + 7) / 8 + info.xPadding * *info.height + info.yPadding;
  if (rowBits % 8 == 0) layout.rowBytes = rowBits / 8 + info.xPadding;
  return layout;
}

void DescribeImage(ArvBuffer* buffer, FrameInfo& info) {
  gint x = 0;
  gint y = 0;
  gint width = 0;
  gint height = 0;
  arv_buffer_get_image_region(buffer, &x, &y, &width, &height);
  gint xPadding = 0;
  gint yPadding = 0;
  arv_buffer_get_image_padding(buffer, &xPadding, &yPadding);
  info.pixelFormat = arv_buffer_get_image_pixel_format(buffer);
  info.width = Unsigned(width);
  info.height = Unsigned(height);
  info.xOffset = Unsigned(x);
  info.yOffset = Unsigned(y);
  info.xPadding = Unsigned(xPadding);
  info.yPadding = Unsigned(yPadding);
}

// Cameras with a variable height announce the largest one and send what they have.
void DescribeDeliveredHeight(const Layout& layout, FrameInfo& info) {
  if (layout.rowBytes == 0) return;
  info.deliveredHeight = std::min(*info.height, info.sizeFilled / layout.rowBytes);
}

// The numbers on the wire differ from those of GenTL from 10 on.
PARTDATATYPE_ID PartDataType(ArvBufferPartDataType type) {
  switch (type) {
    case ARV_BUFFER_PART_DATA_TYPE_JPEG:
      return PART_DATATYPE_JPEG;
    case ARV_BUFFER_PART_DATA_TYPE_JPEG2000:
      return PART_DATATYPE_JPEG2000;
    default:
      break;
  }
  const bool isSame =
      type >= ARV_BUFFER_PART_DATA_TYPE_2D_IMAGE && type <= ARV_BUFFER_PART_DATA_TYPE_CONFIDENCE_MAP;
  return isSame ? static_cast<PARTDATATYPE_ID>(type) : PART_DATATYPE_UNKNOWN;
}

void DescribeParts(ArvBuffer* buffer, std::size_t capacity, FrameInfo& info) {
  info.imagePresent = false;
  const auto* base = static_cast<const std::uint8_t*>(arv_buffer_get_data(buffer, nullptr));
  const guint count = arv_buffer_get_n_parts(buffer);
  for (guint i = 0; i < count; ++i) {
    producer::Part part;
    const auto* data = static_cast<const std::uint8_t*>(arv_buffer_get_part_data(buffer, i, &part.size));
    if (data == nullptr || data < base) continue;
    part.offset = static_cast<std::size_t>(data - base);
    // Where parts lie comes from the wire; they must not reach beyond the memory.
    if (part.offset > capacity || part.size > capacity - part.offset) {
      info.incomplete = true;
      continue;
    }
    part.dataType = PartDataType(arv_buffer_get_part_data_type(buffer, i));
    part.dataFormat = arv_buffer_get_part_pixel_format(buffer, i);
    part.width = Unsigned(arv_buffer_get_part_width(buffer, i));
    part.height = Unsigned(arv_buffer_get_part_height(buffer, i));
    part.xOffset = Unsigned(arv_buffer_get_part_x(buffer, i));
    part.yOffset = Unsigned(arv_buffer_get_part_y(buffer, i));
    part.purposeId = arv_buffer_get_part_component_id(buffer, i);
    info.parts.push_back(part);
  }
}

}  // namespace

FrameInfo DescribeUnknownFrame(std::size_t payloadSize) {
  FrameInfo info;
  info.payloadType = PAYLOAD_TYPE_UNKNOWN;
  info.imagePresent = false;
  info.incomplete = true;
  info.dataSize = payloadSize;
  return info;
}

FrameInfo TranslateFrame(ArvBuffer* buffer, const FrameCircumstances& circumstances) {
  const auto [capacity, payloadSize, sawOverflow, chunkTrailers] = circumstances;
  FrameInfo info;
  // libaravis gives nanoseconds, whatever the camera's ticks are.
  info.timestamp = arv_buffer_get_timestamp(buffer);
  info.timestampNs = info.timestamp;
  info.incomplete = arv_buffer_get_status(buffer) != ARV_BUFFER_STATUS_SUCCESS;
  std::size_t received = 0;
  arv_buffer_get_data(buffer, &received);
  info.sizeFilled = std::min(received, capacity);
  info.imagePresent = false;
  info.payloadType = PAYLOAD_TYPE_UNKNOWN;

  std::size_t expected = info.incomplete ? payloadSize : 0;
  switch (arv_buffer_get_payload_type(buffer)) {
    case ARV_BUFFER_PAYLOAD_TYPE_IMAGE:
    case ARV_BUFFER_PAYLOAD_TYPE_EXTENDED_CHUNK_DATA: {
      info.payloadType = PAYLOAD_TYPE_IMAGE;
      info.imagePresent = true;
      // libaravis gives no geometry of damaged frames; a consumer takes it from the camera.
      if (info.incomplete || arv_buffer_get_n_parts(buffer) == 0) break;
      DescribeImage(buffer, info);
      const Layout layout = LayoutOf(info);
      // Extended chunk data: this version of libaravis does not see the chunks that are always there.
      const bool hasChunks =
          arv_buffer_has_chunks(buffer) != FALSE ||
          arv_buffer_get_payload_type(buffer) == ARV_BUFFER_PAYLOAD_TYPE_EXTENDED_CHUNK_DATA;
      if (hasChunks) {
        info.chunkTrailers = chunkTrailers;
      } else {
        DescribeDeliveredHeight(layout, info);
      }
      // Frames of cameras with a variable height may be shorter than announced; only longer ones do not fit.
      if (layout.imageBytes > capacity) expected = std::max(expected, layout.imageBytes);
      break;
    }
    case ARV_BUFFER_PAYLOAD_TYPE_NO_DATA:  // of a USB camera that sends nothing but chunks: they are told apart
      if (arv_buffer_has_chunks(buffer) == FALSE) break;
      info.payloadType = PAYLOAD_TYPE_CHUNK_DATA;
      info.chunkTrailers = chunkTrailers;
      break;
    case ARV_BUFFER_PAYLOAD_TYPE_CHUNK_DATA:
      info.payloadType = PAYLOAD_TYPE_CHUNK_DATA;
      info.chunkTrailers = chunkTrailers;
      break;
    case ARV_BUFFER_PAYLOAD_TYPE_MULTIPART:
      info.payloadType = PAYLOAD_TYPE_MULTI_PART;
      if (info.incomplete) break;
      if (arv_buffer_has_chunks(buffer) != FALSE) info.chunkTrailers = chunkTrailers;
      DescribeParts(buffer, capacity, info);
      break;
    case ARV_BUFFER_PAYLOAD_TYPE_RAWDATA:
      info.payloadType = PAYLOAD_TYPE_RAW_DATA;
      break;
    case ARV_BUFFER_PAYLOAD_TYPE_FILE:
      info.payloadType = PAYLOAD_TYPE_FILE;
      break;
    case ARV_BUFFER_PAYLOAD_TYPE_JPEG:
      info.payloadType = PAYLOAD_TYPE_JPEG;
      break;
    case ARV_BUFFER_PAYLOAD_TYPE_JPEG2000:
      info.payloadType = PAYLOAD_TYPE_JPEG2000;
      break;
    case ARV_BUFFER_PAYLOAD_TYPE_H264:
      info.payloadType = PAYLOAD_TYPE_H264;
      break;
    default:
      break;
  }

  if (sawOverflow && info.sizeFilled == capacity) expected = std::max({expected, payloadSize, capacity + 1});
  info.largerThanBuffer = expected > capacity;
  if (info.largerThanBuffer) {
    info.incomplete = true;
    info.deliveredHeight.reset();
  }
  info.dataSize = std::max(expected, info.sizeFilled);
  return info;
}

}  // namespace zyn::aravis
