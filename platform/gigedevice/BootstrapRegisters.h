/// The registers below 0x10000 that every GigE Vision device has, as memory with rights. What a write causes is
/// the command handler's business.
#ifndef ZYN_GIGEDEVICE_BOOTSTRAP_REGISTERS_H
#define ZYN_GIGEDEVICE_BOOTSTRAP_REGISTERS_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace zyn::gigedevice {

/// Addresses beyond those that the client (gige/GvcpWire.h) knows.
namespace reg {
constexpr std::uint32_t kVersion = 0x0000;
constexpr std::uint32_t kDeviceMode = 0x0004;
constexpr std::uint32_t kMacHigh = 0x0008;
constexpr std::uint32_t kMacLow = 0x000C;
constexpr std::uint32_t kSupportedIpConfiguration = 0x0010;
constexpr std::uint32_t kCurrentIp = 0x0024;
constexpr std::uint32_t kCurrentMask = 0x0034;
constexpr std::uint32_t kCurrentGateway = 0x0044;
constexpr std::uint32_t kManufacturer = 0x0048;
constexpr std::uint32_t kModel = 0x0068;
constexpr std::uint32_t kDeviceVersion = 0x0088;
constexpr std::uint32_t kManufacturerInfo = 0x00A8;
constexpr std::uint32_t kSerial = 0x00D8;
constexpr std::uint32_t kUserName = 0x00E8;
constexpr std::uint32_t kUserNameBytes = 16;
constexpr std::uint32_t kInterfaceCount = 0x0600;
constexpr std::uint32_t kLinkSpeed = 0x0670;
constexpr std::uint32_t kMessageChannelCount = 0x0900;
constexpr std::uint32_t kStreamChannelCount = 0x0904;
constexpr std::uint32_t kActionSignalCount = 0x0908;
constexpr std::uint32_t kActiveLinkCount = 0x0910;
constexpr std::uint32_t kStreamCapability = 0x092C;
constexpr std::uint32_t kMessageCapability = 0x0930;
constexpr std::uint32_t kTimestampControl = 0x0944;
constexpr std::uint32_t kTimestampHigh = 0x0948;
constexpr std::uint32_t kTimestampLow = 0x094C;
constexpr std::uint32_t kDiscoveryDelay = 0x0950;
constexpr std::uint32_t kControlConfiguration = 0x0954;
constexpr std::uint32_t kPendingTimeout = 0x0958;
constexpr std::uint32_t kStreamConfiguration = 0x0960;
constexpr std::uint32_t kMessagePort = 0x0B00;
constexpr std::uint32_t kMessageDestination = 0x0B10;
constexpr std::uint32_t kMessageTimeout = 0x0B14;
constexpr std::uint32_t kMessageRetries = 0x0B18;
constexpr std::uint32_t kMessageSourcePort = 0x0B1C;
constexpr std::uint32_t kStreamPort = 0x0D00;
constexpr std::uint32_t kStreamPacketSize = 0x0D04;
constexpr std::uint32_t kStreamPacketDelay = 0x0D08;
constexpr std::uint32_t kStreamDestination = 0x0D18;
constexpr std::uint32_t kStreamSourcePort = 0x0D1C;
constexpr std::uint32_t kStreamChannelCapability = 0x0D20;
constexpr std::uint32_t kStreamChannelConfiguration = 0x0D24;
constexpr std::uint32_t kEnd = 0x10000;  ///< here the camera's own registers begin
}  // namespace reg

enum class Rights : std::uint8_t { none, readOnly, readWrite, writeOnly };

/// One thread at a time. Addresses and sizes are multiples of 4 and lie below reg::kEnd: callers check.
class BootstrapRegisters {
 public:
  /// Every register there is, most of them 0.
  BootstrapRegisters();

  Rights RightsAt(std::uint32_t address) const;
  bool IsReadable(std::uint32_t address, std::size_t size) const;

  std::uint32_t Get(std::uint32_t address) const;
  void Set(std::uint32_t address, std::uint32_t value);
  std::span<const std::uint8_t> Bytes(std::uint32_t address, std::size_t size) const;
  /// A zero-terminated text in a field of `size` bytes; a longer one is cut.
  void SetText(std::uint32_t address, std::size_t size, std::string_view text);
  /// The text at `address`, up to its first zero byte.
  std::string_view Text(std::uint32_t address, std::size_t size) const;

 private:
  void Allow(std::uint32_t address, std::uint32_t size, Rights rights);

  std::vector<std::uint8_t> bytes_;
  std::vector<Rights> rights_;  // one for each word
};

}  // namespace zyn::gigedevice

#endif
