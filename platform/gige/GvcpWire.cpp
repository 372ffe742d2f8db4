#include "gige/GvcpWire.h"

#include <algorithm>

namespace zyn::gige {
namespace {

constexpr std::size_t kDiscoveryBytes = 0xF8;
constexpr std::size_t kForceIpBytes = 56;

std::uint16_t Get16(ByteView bytes, std::size_t at) {
  return static_cast<std::uint16_t>(bytes[at] << 8U | bytes[at + 1]);
}

std::uint32_t Get32(ByteView bytes, std::size_t at) {
  return static_cast<std::uint32_t>(Get16(bytes, at)) << 16U | Get16(bytes, at + 2);
}

void Put16(Bytes& bytes, std::size_t at, std::uint16_t value) {
  bytes[at] = static_cast<std::uint8_t>(value >> 8U);
  bytes[at + 1] = static_cast<std::uint8_t>(value);
}

void Put32(Bytes& bytes, std::size_t at, std::uint32_t value) {
  Put16(bytes, at, static_cast<std::uint16_t>(value >> 16U));
  Put16(bytes, at + 2, static_cast<std::uint16_t>(value));
}

// A command with a payload of zeros.
Bytes Command(std::uint16_t id, std::uint8_t flags, std::uint16_t requestId, std::size_t payloadBytes) {
  Bytes bytes(kGvcpHeaderBytes + payloadBytes);
  bytes[0] = kGvcpKey;
  bytes[1] = flags;
  Put16(bytes, 2, id);
  Put16(bytes, 4, static_cast<std::uint16_t>(payloadBytes));
  Put16(bytes, 6, requestId);
  return bytes;
}

std::string Text(ByteView payload, std::size_t at, std::size_t fieldBytes) {
  const ByteView field = payload.subspan(at, fieldBytes);
  std::string text(field.begin(), std::find(field.begin(), field.end(), 0));
  for (char& c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F) c = '?';
  }
  return text;
}

}  // namespace

Bytes EncodeDiscovery(std::uint16_t requestId, bool allowBroadcastAck) {
  const auto flags =
      static_cast<std::uint8_t>(flag::kAckRequired | (allowBroadcastAck ? flag::kAllowBroadcastAck : 0));
  return Command(command::kDiscovery, flags, requestId, 0);
}

Bytes EncodeForceIp(std::uint16_t requestId, const MacAddress& mac, Ipv4 ip, Ipv4 mask, Ipv4 gateway) {
  Bytes bytes =
      Command(command::kForceIp, flag::kAckRequired | flag::kAllowBroadcastAck, requestId, kForceIpBytes);
  std::copy(mac.bytes.begin(), mac.bytes.end(), bytes.begin() + kGvcpHeaderBytes + 2);
  Put32(bytes, kGvcpHeaderBytes + 20, ip.value);
  Put32(bytes, kGvcpHeaderBytes + 36, mask.value);
  Put32(bytes, kGvcpHeaderBytes + 52, gateway.value);
  return bytes;
}

Bytes EncodeReadRegister(std::uint16_t requestId, std::uint32_t address) {
  Bytes bytes = Command(command::kReadRegister, flag::kAckRequired, requestId, 4);
  Put32(bytes, kGvcpHeaderBytes, address);
  return bytes;
}

Bytes EncodeWriteRegister(std::uint16_t requestId, std::uint32_t address, std::uint32_t value) {
  Bytes bytes = Command(command::kWriteRegister, flag::kAckRequired, requestId, 8);
  Put32(bytes, kGvcpHeaderBytes, address);
  Put32(bytes, kGvcpHeaderBytes + 4, value);
  return bytes;
}

Bytes EncodeReadMemory(std::uint16_t requestId, std::uint32_t address, std::uint16_t count) {
  Bytes bytes = Command(command::kReadMemory, flag::kAckRequired, requestId, 8);
  Put32(bytes, kGvcpHeaderBytes, address);
  Put16(bytes, kGvcpHeaderBytes + 6, count);
  return bytes;
}

Bytes EncodeWriteMemory(std::uint16_t requestId, std::uint32_t address, ByteView data) {
  Bytes bytes = Command(command::kWriteMemory, flag::kAckRequired, requestId, 4 + data.size());
  Put32(bytes, kGvcpHeaderBytes, address);
  std::copy(data.begin(), data.end(), bytes.begin() + kGvcpHeaderBytes + 4);
  return bytes;
}

std::optional<Ack> ParseAck(ByteView datagram) {
  if (datagram.size() < kGvcpHeaderBytes) return std::nullopt;
  // The first byte is the high byte of the status: 0 for success, the top bit for an error. A command has its
  // key there.
  if (datagram[0] != 0 && (datagram[0] & 0x80U) == 0) return std::nullopt;
  const std::size_t payloadBytes = Get16(datagram, 4);
  if (payloadBytes > datagram.size() - kGvcpHeaderBytes) return std::nullopt;
  Ack ack;
  ack.status = Get16(datagram, 0);
  ack.ackId = Get16(datagram, 2);
  ack.requestId = Get16(datagram, 6);
  ack.payload = datagram.subspan(kGvcpHeaderBytes, payloadBytes);
  return ack;
}

std::optional<DeviceDescription> ParseDiscovery(ByteView payload) {
  if (payload.size() < kDiscoveryBytes) return std::nullopt;
  DeviceDescription device;
  device.versionMajor = Get16(payload, 0x00);
  device.versionMinor = Get16(payload, 0x02);
  std::copy_n(payload.begin() + 0x0A, device.mac.bytes.size(), device.mac.bytes.begin());
  device.ipConfiguration = Get32(payload, 0x14);
  device.ip = Ipv4{Get32(payload, 0x24)};
  device.mask = Ipv4{Get32(payload, 0x34)};
  device.gateway = Ipv4{Get32(payload, 0x44)};
  device.manufacturer = Text(payload, 0x48, 32);
  device.model = Text(payload, 0x68, 32);
  device.version = Text(payload, 0x88, 32);
  device.manufacturerInfo = Text(payload, 0xA8, 48);
  device.serial = Text(payload, 0xD8, 16);
  device.userName = Text(payload, 0xE8, 16);
  if (device.ip == kNoAddress) return std::nullopt;
  return device;
}

std::optional<std::uint32_t> ParseReadRegister(ByteView payload) {
  if (payload.size() < 4) return std::nullopt;
  return Get32(payload, 0);
}

std::optional<ByteView> ParseReadMemory(ByteView payload, std::uint32_t address, std::size_t count) {
  if (payload.size() != 4 + count || Get32(payload, 0) != address) return std::nullopt;
  return payload.subspan(4);
}

std::optional<std::uint16_t> ParsePendingAck(ByteView payload) {
  if (payload.size() < 4) return std::nullopt;
  return Get16(payload, 2);
}

}  // namespace zyn::gige
