/// The GigE Vision control protocol as bytes: commands out, acknowledges in. Pure functions, no input or
/// output. All numbers are big-endian on the wire. Every parser accepts any bytes and answers "nothing" for
/// those that are no valid message of its kind.
#ifndef ZYN_GIGE_GVCP_WIRE_H
#define ZYN_GIGE_GVCP_WIRE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "gige/Address.h"

namespace zyn::gige {

using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

constexpr std::uint16_t kGvcpPort = 3956;
constexpr std::uint8_t kGvcpKey = 0x42;
constexpr std::size_t kGvcpHeaderBytes = 8;
constexpr std::size_t kMostMemoryBytes = 512;  // per READMEM or WRITEMEM; every device takes it
constexpr std::size_t kLargestDatagram = 1500;

/// Command identifiers; the acknowledge of a command has its identifier plus one.
namespace command {
constexpr std::uint16_t kDiscovery = 0x0002;
constexpr std::uint16_t kForceIp = 0x0004;
constexpr std::uint16_t kReadRegister = 0x0080;
constexpr std::uint16_t kWriteRegister = 0x0082;
constexpr std::uint16_t kReadMemory = 0x0084;
constexpr std::uint16_t kWriteMemory = 0x0086;
constexpr std::uint16_t kPendingAck = 0x0089;
}  // namespace command

namespace flag {
constexpr std::uint8_t kAckRequired = 0x01;
constexpr std::uint8_t kAllowBroadcastAck = 0x10;  // DISCOVERY and FORCEIP only
}  // namespace flag

/// Status words of acknowledges.
namespace status {
constexpr std::uint16_t kSuccess = 0x0000;
constexpr std::uint16_t kNotImplemented = 0x8001;
constexpr std::uint16_t kInvalidParameter = 0x8002;
constexpr std::uint16_t kInvalidAddress = 0x8003;
constexpr std::uint16_t kWriteProtect = 0x8004;
constexpr std::uint16_t kBadAlignment = 0x8005;
constexpr std::uint16_t kAccessDenied = 0x8006;
constexpr std::uint16_t kBusy = 0x8007;
}  // namespace status

/// Addresses of the registers that every device has.
namespace bootstrap {
constexpr std::uint32_t kIpConfiguration = 0x0014;
constexpr std::uint32_t kXmlUrl = 0x0200;
constexpr std::uint32_t kSecondXmlUrl = 0x0400;
constexpr std::uint32_t kXmlUrlBytes = 512;
constexpr std::uint32_t kPersistentIp = 0x064C;
constexpr std::uint32_t kPersistentMask = 0x065C;
constexpr std::uint32_t kPersistentGateway = 0x066C;
constexpr std::uint32_t kCapability = 0x0934;
constexpr std::uint32_t kHeartbeatTimeout = 0x0938;
constexpr std::uint32_t kTickFrequencyHigh = 0x093C;
constexpr std::uint32_t kTickFrequencyLow = 0x0940;
constexpr std::uint32_t kControlPrivilege = 0x0A00;
constexpr std::uint32_t kPrimaryPort = 0x0A04;
constexpr std::uint32_t kPrimaryIp = 0x0A14;
}  // namespace bootstrap

/// Bits of the control privilege register.
constexpr std::uint32_t kExclusiveAccess = 1;
constexpr std::uint32_t kControlAccess = 2;
/// Bits of the IP configuration register.
constexpr std::uint32_t kPersistentIpEnabled = 1;
constexpr std::uint32_t kDhcpEnabled = 2;
constexpr std::uint32_t kLinkLocalEnabled = 4;
/// Bit of the capability register: the registers of the primary application exist.
constexpr std::uint32_t kHasPrimaryApplication = 1U << 27U;

Bytes EncodeDiscovery(std::uint16_t requestId, bool allowBroadcastAck);
Bytes EncodeForceIp(std::uint16_t requestId, const MacAddress& mac, Ipv4 ip, Ipv4 mask, Ipv4 gateway);
Bytes EncodeReadRegister(std::uint16_t requestId, std::uint32_t address);
Bytes EncodeWriteRegister(std::uint16_t requestId, std::uint32_t address, std::uint32_t value);
/// `count` is a multiple of 4, at most kMostMemoryBytes.
Bytes EncodeReadMemory(std::uint16_t requestId, std::uint32_t address, std::uint16_t count);
/// `data` is a multiple of 4 bytes long, at most kMostMemoryBytes.
Bytes EncodeWriteMemory(std::uint16_t requestId, std::uint32_t address, ByteView data);

/// An acknowledge. `payload` lies in the datagram it was parsed from.
struct Ack {
  std::uint16_t status = 0;
  std::uint16_t ackId = 0;
  std::uint16_t requestId = 0;
  ByteView payload;
};

/// Nothing for a datagram that is shorter than the header, is a command, or is shorter than it says.
std::optional<Ack> ParseAck(ByteView datagram);

/// What a device tells about itself. Texts end at their first zero byte or at the end of their field; control
/// characters in them are replaced by '?', so that they can be printed.
struct DeviceDescription {
  std::uint16_t versionMajor = 0;  ///< of the GigE Vision standard
  std::uint16_t versionMinor = 0;
  MacAddress mac;
  std::uint32_t ipConfiguration = 0;  ///< enabled methods: bit 0 persistent address, 1 DHCP, 2 link-local
  Ipv4 ip;
  Ipv4 mask;
  Ipv4 gateway;
  std::string manufacturer;
  std::string model;
  std::string version;
  std::string manufacturerInfo;
  std::string serial;
  std::string userName;
  friend bool operator==(const DeviceDescription&, const DeviceDescription&) = default;
};

/// Nothing for a payload that is too short or has no address.
std::optional<DeviceDescription> ParseDiscovery(ByteView payload);

/// The value of the first register.
std::optional<std::uint32_t> ParseReadRegister(ByteView payload);

/// The data, when it is exactly what was asked for. Lies in `payload`.
std::optional<ByteView> ParseReadMemory(ByteView payload, std::uint32_t address, std::size_t count);

/// The time in ms that the device asks for.
std::optional<std::uint16_t> ParsePendingAck(ByteView payload);

}  // namespace zyn::gige

#endif
