/// The formats of USB3 Vision: packets of the control and stream endpoints, and the bootstrap registers.
#ifndef ZYN_TEST_USB3VISION_WIRE_H
#define ZYN_TEST_USB3VISION_WIRE_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zyntest::usb3 {

using Bytes = std::vector<std::uint8_t>;

/// Everything on this wire has its least significant byte first.
inline std::uint64_t Load(const std::uint8_t* bytes, std::size_t count) {
  std::uint64_t value = 0;
  for (std::size_t i = count; i > 0; --i) value = value << 8U | bytes[i - 1];
  return value;
}

inline void Store(std::uint8_t* bytes, std::uint64_t value, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i, value >>= 8U) bytes[i] = static_cast<std::uint8_t>(value);
}

inline void Append(Bytes& bytes, std::uint64_t value, std::size_t count) {
  bytes.resize(bytes.size() + count);
  Store(bytes.data() + bytes.size() - count, value, count);
}

// Control packets: magic, flags or status, command, bytes behind the header, request number.
constexpr std::uint32_t kControlMagic = 0x43563355;  // "U3VC"
constexpr std::size_t kControlHeaderBytes = 12;
constexpr std::uint16_t kReadMemory = 0x0800;
constexpr std::uint16_t kWriteMemory = 0x0802;
constexpr std::uint16_t kPendingAck = 0x0805;
constexpr std::uint16_t kAckBit = 0x0001;

enum class Status : std::uint16_t {
  success = 0,
  notImplemented = 0x8001,
  invalidParameter = 0x8002,
  invalidAddress = 0x8003,
  writeProtect = 0x8004,
  badAlignment = 0x8005,
  accessDenied = 0x8006,
  busy = 0x8007,
};

constexpr std::uint32_t kLeaderMagic = 0x4C563355;   // "U3VL"
constexpr std::uint32_t kTrailerMagic = 0x54563355;  // "U3VT"
constexpr std::size_t kLeaderBytes = 52;
constexpr std::size_t kTrailerBytes = 36;
constexpr std::uint16_t kImagePayload = 0x0001;
constexpr std::uint16_t kChunkPayload = 0x4000;
constexpr std::uint16_t kImageWithChunksPayload = 0x4001;

// Technology-agnostic registers, from address 0.
constexpr std::uint64_t kGenCpVersion = 0x000;
constexpr std::uint64_t kManufacturerName = 0x004;
constexpr std::uint64_t kModelName = 0x044;
constexpr std::uint64_t kFamilyName = 0x084;
constexpr std::uint64_t kDeviceVersion = 0x0C4;
constexpr std::uint64_t kManufacturerInfo = 0x104;
constexpr std::uint64_t kSerialNumber = 0x144;
constexpr std::uint64_t kUserDefinedName = 0x184;
constexpr std::size_t kTextBytes = 64;
constexpr std::uint64_t kDeviceCapability = 0x1C4;
constexpr std::uint64_t kMaximumResponseTime = 0x1CC;
constexpr std::uint64_t kManifestAddress = 0x1D0;
constexpr std::uint64_t kTechnologyAddress = 0x1D8;
constexpr std::uint64_t kDeviceConfiguration = 0x1E0;
constexpr std::uint64_t kTimestampIncrement = 0x1FC;

// Technology-specific registers: where and how the device takes commands.
constexpr std::uint64_t kTechnologyMap = 0x1000;
constexpr std::uint64_t kUsbVersion = kTechnologyMap + 0x00;
constexpr std::uint64_t kProtocolCapability = kTechnologyMap + 0x04;
constexpr std::uint64_t kMaximumCommand = kTechnologyMap + 0x14;
constexpr std::uint64_t kMaximumAck = kTechnologyMap + 0x18;
constexpr std::uint64_t kStreamChannels = kTechnologyMap + 0x1C;
constexpr std::uint64_t kStreamMapAddress = kTechnologyMap + 0x20;
constexpr std::uint64_t kStreamMapLength = kTechnologyMap + 0x28;
constexpr std::uint64_t kCurrentSpeed = kTechnologyMap + 0x40;

// Stream registers.
constexpr std::uint64_t kStreamMap = 0x2000;
constexpr std::size_t kStreamMapBytes = 0x30;
constexpr std::uint64_t kStreamInfo = kStreamMap + 0x00;
constexpr std::uint64_t kStreamControl = kStreamMap + 0x04;
constexpr std::uint64_t kRequiredPayload = kStreamMap + 0x08;
constexpr std::uint64_t kRequiredLeader = kStreamMap + 0x10;
constexpr std::uint64_t kRequiredTrailer = kStreamMap + 0x14;
constexpr std::uint64_t kMaximumLeader = kStreamMap + 0x18;
constexpr std::uint64_t kMaximumTrailer = kStreamMap + 0x2C;

// A list of the description files: their number, then an entry of 64 bytes each.
constexpr std::uint64_t kManifest = 0x3000;
constexpr std::uint64_t kManifestEntry = kManifest + 8;

constexpr std::size_t kBootstrapBytes = 0x4000;
constexpr std::uint64_t kDescription = 0x1'0000'0000;

}  // namespace zyntest::usb3

#endif
