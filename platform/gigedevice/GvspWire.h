/// The stream protocol as bytes, as a device sends it. Pure functions.
#ifndef ZYN_GIGEDEVICE_GVSP_WIRE_H
#define ZYN_GIGEDEVICE_GVSP_WIRE_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "cameras/Frame.h"

namespace zyn::gigedevice {

constexpr std::size_t kIpAndUdpBytes = 28;
constexpr std::size_t kLargestHeader = 20;
constexpr std::size_t kLargestShortPacket = 64;  ///< leader or trailer with its header

enum class PacketFormat : std::uint8_t { leader = 1, trailer = 2, payload = 3 };

/// Frames without image are chunk data; those of an image with chunks are marked as such, because receivers know
/// the chunks of no other type.
enum class PayloadType : std::uint16_t {
  image = 0x0001,
  raw = 0x0002,
  chunks = 0x0004,
  imageWithChunks = 0x4001
};

namespace stream_status {
constexpr std::uint16_t kSuccess = 0x0000;
constexpr std::uint16_t kResent = 0x0100;
constexpr std::uint16_t kUnavailable = 0x800C;
}  // namespace stream_status

struct PacketHeader {
  std::uint64_t blockId = 0;
  std::uint32_t packetId = 0;
  PacketFormat format = PacketFormat::payload;
  std::uint16_t status = stream_status::kSuccess;
  bool hasExtendedIds = false;
  bool isResent = false;
};

constexpr std::size_t HeaderBytes(bool hasExtendedIds) {
  return hasExtendedIds ? 20 : 8;
}

/// Data bytes of each payload packet but the last.
constexpr std::size_t DataBytesPerPacket(std::size_t packetSize, bool hasExtendedIds) {
  return packetSize - kIpAndUdpBytes - HeaderBytes(hasExtendedIds);
}

/// Numbers of blocks start again behind the largest; 0 is none.
constexpr std::uint64_t WireBlockId(std::uint64_t number, bool hasExtendedIds) {
  return hasExtendedIds ? number : (number - 1) % 0xFFFFU + 1;
}

PayloadType PayloadTypeOf(const cameras::Frame& frame);

/// Each writes at `out` and returns the number of bytes. `out` has room for kLargestHeader, the others for
/// kLargestShortPacket bytes.
std::size_t WriteHeader(const PacketHeader& header, std::uint8_t* out);
std::size_t WriteLeader(const cameras::Frame& frame, std::uint64_t timestamp, std::uint8_t* out);
std::size_t WriteTrailer(const cameras::Frame& frame, std::uint8_t* out);

}  // namespace zyn::gigedevice

#endif
