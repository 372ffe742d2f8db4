#include "gigedevice/GvspWire.h"

#include <algorithm>

#include "cameras/registers/BigEndian.h"

namespace zyn::gigedevice {
namespace {

using cameras::StoreBig;

constexpr std::size_t kImageLeader = 36;
constexpr std::size_t kChunkLeader = 12;
constexpr std::size_t kRawLeader = 20;
constexpr std::uint8_t kExtendedIdBit = 0x80;

bool HasImage(PayloadType type) {
  return type == PayloadType::image || type == PayloadType::imageWithChunks;
}

void WriteGeometry(const cameras::Frame& frame, std::uint8_t* out) {
  StoreBig(out + 12, frame.pixelFormat, 4);
  StoreBig(out + 16, frame.width, 4);
  StoreBig(out + 20, frame.height, 4);
  StoreBig(out + 24, frame.offsetX, 4);
  StoreBig(out + 28, frame.offsetY, 4);
  StoreBig(out + 32, frame.paddingX, 2);
}

}  // namespace

PayloadType PayloadTypeOf(const cameras::Frame& frame) {
  if (frame.hasImage) return frame.chunkCount > 0 ? PayloadType::imageWithChunks : PayloadType::image;
  return frame.chunkCount > 0 ? PayloadType::chunks : PayloadType::raw;
}

std::size_t WriteHeader(const PacketHeader& header, std::uint8_t* out) {
  const std::size_t bytes = HeaderBytes(header.hasExtendedIds);
  std::fill_n(out, bytes, std::uint8_t{0});
  StoreBig(out, header.status, 2);
  out[4] = static_cast<std::uint8_t>(header.format);
  if (!header.hasExtendedIds) {
    StoreBig(out + 2, header.blockId, 2);
    StoreBig(out + 5, header.packetId, 3);
    return bytes;
  }
  out[3] = header.isResent ? 1 : 0;
  out[4] |= kExtendedIdBit;
  StoreBig(out + 8, header.blockId, 8);
  StoreBig(out + 16, header.packetId, 4);
  return bytes;
}

std::size_t WriteLeader(const cameras::Frame& frame, std::uint64_t timestamp, std::uint8_t* out) {
  const PayloadType type = PayloadTypeOf(frame);
  std::fill_n(out, kImageLeader, std::uint8_t{0});
  StoreBig(out + 2, static_cast<std::uint16_t>(type), 2);
  StoreBig(out + 4, timestamp, 8);
  if (HasImage(type)) {
    WriteGeometry(frame, out);
    return kImageLeader;
  }
  if (type == PayloadType::chunks) return kChunkLeader;
  StoreBig(out + 12, frame.intendedSize, 8);
  return kRawLeader;
}

std::size_t WriteTrailer(const cameras::Frame& frame, std::uint8_t* out) {
  const PayloadType type = PayloadTypeOf(frame);
  std::fill_n(out, 16, std::uint8_t{0});
  StoreBig(out + 2, static_cast<std::uint16_t>(type), 2);
  if (type == PayloadType::raw) return 4;
  StoreBig(out + 4, HasImage(type) ? frame.height : frame.intendedSize, 4);
  if (type != PayloadType::imageWithChunks) return 8;
  StoreBig(out + 8, frame.intendedSize, 4);
  StoreBig(out + 12, frame.chunkLayoutId, 4);
  return 16;
}

}  // namespace zyn::gigedevice
