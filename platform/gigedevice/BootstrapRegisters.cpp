#include "gigedevice/BootstrapRegisters.h"

#include <algorithm>

#include "cameras/registers/BigEndian.h"
#include "gige/GvcpWire.h"

namespace zyn::gigedevice {
namespace {

namespace bootstrap = gige::bootstrap;
using cameras::LoadBig;
using cameras::StoreBig;

constexpr std::size_t kWord = 4;
constexpr std::uint32_t kIdentityBytes = 0xF8;

}  // namespace

BootstrapRegisters::BootstrapRegisters() : bytes_(reg::kEnd), rights_(reg::kEnd / kWord, Rights::none) {
  using enum Rights;
  // The identity is read in one piece, so the reserved words between its fields are readable.
  Allow(0, kIdentityBytes, readOnly);
  Allow(bootstrap::kIpConfiguration, 4, readWrite);
  Allow(reg::kUserName, reg::kUserNameBytes, readWrite);
  Allow(bootstrap::kXmlUrl, 2 * bootstrap::kXmlUrlBytes, readOnly);
  Allow(reg::kInterfaceCount, 4, readOnly);
  Allow(bootstrap::kPersistentIp, 4, readWrite);
  Allow(bootstrap::kPersistentMask, 4, readWrite);
  Allow(bootstrap::kPersistentGateway, 4, readWrite);
  Allow(reg::kLinkSpeed, 4, readOnly);
  Allow(reg::kMessageChannelCount, 4, readOnly);
  Allow(reg::kStreamChannelCount, 4, readOnly);
  Allow(reg::kActionSignalCount, 4, readOnly);
  Allow(reg::kActiveLinkCount, 4, readOnly);
  Allow(reg::kStreamCapability, 4, readOnly);
  Allow(reg::kMessageCapability, 4, readOnly);
  Allow(bootstrap::kCapability, 4, readOnly);
  Allow(bootstrap::kHeartbeatTimeout, 4, readWrite);
  Allow(bootstrap::kTickFrequencyHigh, 8, readOnly);
  Allow(reg::kTimestampControl, 4, writeOnly);
  Allow(reg::kTimestampHigh, 8, readOnly);
  Allow(reg::kDiscoveryDelay, 4, readOnly);
  Allow(reg::kControlConfiguration, 4, readWrite);
  Allow(reg::kPendingTimeout, 4, readOnly);
  Allow(reg::kStreamConfiguration, 4, readWrite);
  Allow(bootstrap::kControlPrivilege, 4, readWrite);
  Allow(bootstrap::kPrimaryPort, 4, readOnly);
  Allow(bootstrap::kPrimaryIp, 4, readOnly);
  Allow(reg::kMessagePort, 4, readWrite);
  Allow(reg::kMessageDestination, 12, readWrite);  // address, time-out, retries
  Allow(reg::kMessageSourcePort, 4, readOnly);
  Allow(reg::kStreamPort, 12, readWrite);  // port, packet size, gap
  Allow(reg::kStreamDestination, 4, readWrite);
  Allow(reg::kStreamSourcePort, 8, readOnly);  // port, capability
  Allow(reg::kStreamChannelConfiguration, 4, readWrite);
}

void BootstrapRegisters::Allow(std::uint32_t address, std::uint32_t size, Rights rights) {
  std::fill_n(rights_.begin() + static_cast<std::ptrdiff_t>(address / kWord), size / kWord, rights);
}

Rights BootstrapRegisters::RightsAt(std::uint32_t address) const {
  return rights_[address / kWord];
}

bool BootstrapRegisters::IsReadable(std::uint32_t address, std::size_t size) const {
  for (std::size_t at = address; at < address + size; at += kWord) {
    const Rights rights = rights_[at / kWord];
    if (rights != Rights::readOnly && rights != Rights::readWrite) return false;
  }
  return true;
}

std::uint32_t BootstrapRegisters::Get(std::uint32_t address) const {
  return static_cast<std::uint32_t>(LoadBig(&bytes_[address], kWord));
}

void BootstrapRegisters::Set(std::uint32_t address, std::uint32_t value) {
  StoreBig(&bytes_[address], value, kWord);
}

std::span<const std::uint8_t> BootstrapRegisters::Bytes(std::uint32_t address, std::size_t size) const {
  return std::span(bytes_).subspan(address, size);
}

void BootstrapRegisters::SetText(std::uint32_t address, std::size_t size, std::string_view text) {
  const auto field = std::span(bytes_).subspan(address, size);
  std::fill(field.begin(), field.end(), std::uint8_t{0});
  std::copy_n(text.begin(), std::min(text.size(), size - 1), field.begin());
}

std::string_view BootstrapRegisters::Text(std::uint32_t address, std::size_t size) const {
  const auto field = Bytes(address, size);
  const auto end = std::find(field.begin(), field.end(), std::uint8_t{0});
  return {reinterpret_cast<const char*>(field.data()), static_cast<std::size_t>(end - field.begin())};
}

}  // namespace zyn::gigedevice
