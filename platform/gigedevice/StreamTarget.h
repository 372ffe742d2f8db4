/// Where and how a device sends its stream: what the registers of the stream channel say.
#ifndef ZYN_GIGEDEVICE_STREAM_TARGET_H
#define ZYN_GIGEDEVICE_STREAM_TARGET_H

#include <cstdint>

#include "gige/Address.h"

namespace zyn::gigedevice {

struct StreamTarget {
  gige::Ipv4 ip;
  std::uint16_t port = 0;           ///< 0: the channel is closed
  std::uint16_t packetSize = 1500;  ///< IP and UDP headers included
  bool doNotFragment = false;
  bool hasExtendedIds = false;         ///< 64-bit block and 32-bit packet numbers
  std::uint32_t gapNs = 0;             ///< between packets
  std::int64_t timestampOriginNs = 0;  ///< the camera's time at which time stamps began at 0

  bool IsOpen() const { return port != 0 && ip != gige::kNoAddress; }
  friend bool operator==(const StreamTarget&, const StreamTarget&) = default;
};

/// Packets that a receiver misses.
struct ResendRequest {
  std::uint64_t blockId = 0;
  std::uint32_t firstPacket = 0;
  std::uint32_t lastPacket = 0;
  bool hasExtendedIds = false;
};

}  // namespace zyn::gigedevice

#endif
