#include "StreamingDevice.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <stdexcept>
#include <string>

namespace zyn::test {
namespace {

using gige::Bytes;

constexpr std::uint32_t kXmlAddress = 0x20000;
constexpr std::uint32_t kStreamPort = 0x0D00;
constexpr std::uint32_t kPacketSize = 0x0D04;
constexpr std::uint32_t kStreamAddress = 0x0D18;
constexpr std::uint8_t kLeader = 1;
constexpr std::uint8_t kTrailer = 2;
constexpr std::uint8_t kData = 3;

void Put(Bytes& bytes, std::uint64_t value, std::size_t count) {
  for (std::size_t i = count; i > 0; --i) bytes.push_back(static_cast<std::uint8_t>(value >> (8 * (i - 1))));
}

Bytes Header(const WireFrame& frame, std::uint8_t format, std::size_t packet) {
  Bytes bytes;
  Put(bytes, 0, 2);
  Put(bytes, frame.id, 2);
  Put(bytes, format, 1);
  Put(bytes, packet, 3);
  return bytes;
}

Bytes Leader(const WireFrame& frame) {
  Bytes bytes = Header(frame, kLeader, 0);
  Put(bytes, 0, 2);
  Put(bytes, frame.payloadType, 2);
  Put(bytes, frame.timestamp, 8);
  for (const std::uint32_t field :
       {frame.pixelFormat, frame.width, frame.height, frame.xOffset, frame.yOffset}) {
    Put(bytes, field, 4);
  }
  Put(bytes, frame.xPadding, 2);
  Put(bytes, frame.yPadding, 2);
  return bytes;
}

Bytes Trailer(const WireFrame& frame, std::size_t packet) {
  Bytes bytes = Header(frame, kTrailer, packet);
  Put(bytes, 0, 2);
  Put(bytes, frame.payloadType, 2);
  Put(bytes, frame.height, 4);
  if ((frame.payloadType & 0x4000U) != 0) {
    Put(bytes, frame.data.size(), 4);
    Put(bytes, 1, 4);
  }
  return bytes;
}

void StoreText(ScriptedDevice& device, std::uint32_t address, std::string text) {
  text.resize((text.size() + 4) / 4 * 4);
  for (std::size_t i = 0; i < text.size(); i += 4) {
    Bytes word(text.begin() + static_cast<std::ptrdiff_t>(i),
               text.begin() + static_cast<std::ptrdiff_t>(i) + 4);
    device.SetRegister(address + static_cast<std::uint32_t>(i),
                       static_cast<std::uint32_t>(word[0]) << 24U |
                           static_cast<std::uint32_t>(word[1]) << 16U |
                           static_cast<std::uint32_t>(word[2]) << 8U | word[3]);
  }
}

std::string Description(std::uint32_t payloadBytes) {
  return R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Streaming" VendorName="Test" StandardNameSpace="GEV" SchemaMajorVersion="1"
 SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
 ProductGuid="11111111-1111-1111-1111-111111111111" VersionGuid="11111111-1111-1111-1111-111111111111"
 xmlns="http://www.genicam.org/GenApi/Version_1_1">
 <Category Name="Root"><pFeature>PayloadSize</pFeature></Category>
 <Integer Name="PayloadSize"><Value>)" +
         std::to_string(payloadBytes) + R"(</Value></Integer>
 <Port Name="Device"/>
</RegisterDescription>)";
}

}  // namespace

Bytes Chunk(std::uint32_t id, const Bytes& data) {
  Bytes bytes = data;
  Put(bytes, id, 4);
  Put(bytes, data.size(), 4);
  return bytes;
}

StreamingDevice::StreamingDevice(std::uint32_t payloadBytes)
    : control_(LoopbackIdentity(2, "STREAM")), socket_(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
  const std::string xml = Description(payloadBytes);
  StoreText(control_, kXmlAddress, xml);
  std::array<char, 64> url{};
  std::snprintf(url.data(), url.size(), "Local:streaming.xml;%x;%zx", kXmlAddress, xml.size());
  StoreText(control_, gige::bootstrap::kXmlUrl, url.data());
  control_.SetRegister(0x0004, 0x80000001);
  control_.SetRegister(0x0904, 1);
  control_.SetRegister(gige::bootstrap::kCapability, 2);
  control_.SetRegister(gige::bootstrap::kTickFrequencyHigh, 0);
  control_.SetRegister(gige::bootstrap::kTickFrequencyLow, 1'000'000);
  control_.SetRegister(kStreamPort, 0);
  control_.SetRegister(kPacketSize, 1500);
  control_.SetRegister(kStreamAddress, 0);
  control_.SetRegister(0x0D1C, 0);
  sockaddr_in own{};
  own.sin_family = AF_INET;
  own.sin_addr.s_addr = htonl(control_.Identity().ip.value);
  if (bind(socket_, reinterpret_cast<const sockaddr*>(&own), sizeof own) != 0) {
    throw std::runtime_error("the streaming device has no socket");
  }
}

StreamingDevice::~StreamingDevice() {
  close(socket_);
}

void StreamingDevice::Send(const WireFrame& frame) {
  if (!frame.dropped.contains(0)) SendPacket(Leader(frame));
  std::size_t packet = 1;
  for (std::size_t at = 0; at < frame.data.size(); at += kPacketDataBytes, ++packet) {
    if (frame.dropped.contains(packet)) continue;
    const auto first = frame.data.begin() + static_cast<std::ptrdiff_t>(at);
    const std::size_t count = std::min(kPacketDataBytes, frame.data.size() - at);
    Bytes bytes = Header(frame, kData, packet);
    bytes.insert(bytes.end(), first, first + static_cast<std::ptrdiff_t>(count));
    SendPacket(bytes);
  }
  if (!frame.dropped.contains(packet)) SendPacket(Trailer(frame, packet));
}

void StreamingDevice::SendPacket(const Bytes& packet) {
  sockaddr_in to{};
  to.sin_family = AF_INET;
  to.sin_port = htons(static_cast<std::uint16_t>(control_.Register(kStreamPort)));
  to.sin_addr.s_addr = htonl(control_.Register(kStreamAddress));
  sendto(socket_, packet.data(), packet.size(), 0, reinterpret_cast<const sockaddr*>(&to), sizeof to);
}

}  // namespace zyn::test
