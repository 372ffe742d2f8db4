/// The description that a device on the wire shows: the camera's, and the features of its stream channel.
#ifndef ZYN_GIGEDEVICE_TRANSPORT_DESCRIPTION_H
#define ZYN_GIGEDEVICE_TRANSPORT_DESCRIPTION_H

#include <cstdint>
#include <string>
#include <string_view>

namespace zyn::gigedevice {

/// Bytes of a packet with its IP and UDP headers.
constexpr std::uint32_t kSmallestPacket = 576;
constexpr std::uint32_t kLargestPacket = 16384;

/// Adds GevSCPSPacketSize, GevSCPSDoNotFragment, GevSCPSFireTestPacket, GevSCPD and GevGVSPExtendedIDMode, in the
/// category TransportLayerControl. `description` as it is when it has no such category.
std::string WithTransportFeatures(std::string_view description);

}  // namespace zyn::gigedevice

#endif
