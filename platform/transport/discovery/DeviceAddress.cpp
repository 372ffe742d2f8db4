#include "DeviceAddress.h"

#include <array>
#include <cstdio>
#include <optional>

#include <GenICam.h>

#include "../module/Features.h"

namespace zyn::transport {

namespace {

constexpr std::int64_t kMostSubnets = 64;

std::string ReadIp(GenApi_3_4::INodeMap* map, const char* name) {
  const auto address = ReadInteger(map, name);
  return address ? FormatIp(*address) : std::string();
}

void ReadDeviceFields(GenApi_3_4::INodeMap* map, CameraDescription& camera) {
  camera.texts[KELGENICAM::TEXT_IP_ADDRESS] = ReadIp(map, "GevDeviceIPAddress");
  camera.texts[KELGENICAM::TEXT_SUBNET_MASK] = ReadIp(map, "GevDeviceSubnetMask");
  camera.texts[KELGENICAM::TEXT_GATEWAY] = ReadIp(map, "GevDeviceGateway");
  const auto mac = ReadInteger(map, "GevDeviceMACAddress");
  if (mac) camera.texts[KELGENICAM::TEXT_MAC_ADDRESS] = FormatMac(*mac);
}

struct Subnet {
  std::int64_t address = 0;
  std::int64_t mask = 0;
};

std::optional<Subnet> ReadSubnet(GenApi_3_4::INodeMap* map) {
  const auto address = ReadInteger(map, "GevInterfaceSubnetIPAddress");
  if (!address) return std::nullopt;
  return Subnet{*address, ReadInteger(map, "GevInterfaceSubnetMask").value_or(0)};
}

// An adapter may have several addresses. The one in the device's subnet counts, else the first.
std::optional<Subnet> FindSubnet(GenApi_3_4::INodeMap* map, std::int64_t device) {
  const auto former = ReadInteger(map, "GevInterfaceSubnetSelector");
  if (!former) return ReadSubnet(map);
  std::optional<Subnet> first;
  std::optional<Subnet> matching;
  for (std::int64_t i = 0; i < kMostSubnets && !matching; ++i) {
    if (WriteInteger(map, "GevInterfaceSubnetSelector", i) != FeatureResult::kOk) break;
    const auto subnet = ReadSubnet(map);
    if (!subnet) break;
    if (!first) first = subnet;
    if (subnet->mask != 0 && (subnet->address & subnet->mask) == (device & subnet->mask)) matching = subnet;
  }
  WriteInteger(map, "GevInterfaceSubnetSelector", *former);
  return matching ? matching : first;
}

void ReadAdapterFields(GenApi_3_4::INodeMap* map, CameraDescription& camera) {
  const std::int64_t device = ReadInteger(map, "GevDeviceIPAddress").value_or(0);
  const auto subnet = FindSubnet(map, device);
  if (!subnet) return;
  camera.texts[KELGENICAM::TEXT_ADAPTER_IP_ADDRESS] = FormatIp(subnet->address);
  camera.texts[KELGENICAM::TEXT_ADAPTER_SUBNET_MASK] = FormatIp(subnet->mask);
}

}  // namespace

struct DeviceSelection::Locked {
  explicit Locked(GenApi_3_4::INodeMap& map) : lock(map.GetLock()) {}
  GenApi_3_4::AutoLock lock;
};

DeviceSelection::DeviceSelection(GenApi_3_4::INodeMap* map, std::uint32_t index, const std::string& deviceId)
    : map_(map) {
  if (!map) return;
  lock_ = std::make_unique<Locked>(*map);
  const auto former = ReadInteger(map, "DeviceSelector");
  if (!former) return;
  former_ = *former;
  isSelected_ = Select(index, deviceId);
}

DeviceSelection::~DeviceSelection() {
  if (former_ >= 0) WriteInteger(map_, "DeviceSelector", former_);
}

bool DeviceSelection::Select(std::uint32_t index, const std::string& deviceId) {
  const auto matches = [&](std::int64_t at) {
    if (WriteInteger(map_, "DeviceSelector", at) != FeatureResult::kOk) return false;
    const auto id = ReadText(map_, "DeviceID");
    return id ? *id == deviceId : at == static_cast<std::int64_t>(index);
  };
  if (matches(index)) return true;
  // The rules say that selector and list agree. Where they do not, the ID decides.
  for (std::int64_t at = 0; at < static_cast<std::int64_t>(index); ++at) {
    if (matches(at)) return true;
  }
  return false;
}

void ReadAddressFields(GenApi_3_4::INodeMap* map, const DeviceSelection& selection,
                       CameraDescription& camera) {
  if (const auto name = ReadText(map, "InterfaceDisplayName")) {
    camera.texts[KELGENICAM::TEXT_ADAPTER_NAME] = *name;
  }
  if (!selection) return;
  if (camera.protocol == KELGENICAM::PROTOCOL_GIGE_VISION) {
    ReadDeviceFields(map, camera);
    ReadAdapterFields(map, camera);
  }
  if (camera.protocol == KELGENICAM::PROTOCOL_USB3_VISION) {
    camera.texts[KELGENICAM::TEXT_USB_GUID] = ReadText(map, "U3vDeviceGUID").value_or("");
    camera.texts[KELGENICAM::TEXT_USB_SPEED_SUPPORT] = ReadText(map, "U3vDeviceSpeedSupport").value_or("");
  }
}

bool LiesOutsideSubnet(GenApi_3_4::INodeMap* map, const DeviceSelection& selection) {
  if (!selection) return false;
  const auto device = ReadInteger(map, "GevDeviceIPAddress");
  if (!device) return false;
  const auto subnet = FindSubnet(map, *device);
  if (!subnet || subnet->mask == 0) return false;
  const std::int64_t network = subnet->address & subnet->mask;
  const std::int64_t deviceMask = ReadInteger(map, "GevDeviceSubnetMask").value_or(0);
  return (*device & subnet->mask) != network && (*device & deviceMask) != network;
}

std::string FormatIp(std::int64_t address) {
  const auto bits = static_cast<std::uint32_t>(address);
  return std::to_string(bits >> 24U) + "." + std::to_string((bits >> 16U) & 255U) + "." +
         std::to_string((bits >> 8U) & 255U) + "." + std::to_string(bits & 255U);
}

std::string FormatMac(std::int64_t address) {
  const auto bits = static_cast<std::uint64_t>(address);
  std::array<char, 18> text{};
  std::snprintf(text.data(), text.size(), "%02x:%02x:%02x:%02x:%02x:%02x",
                static_cast<unsigned>((bits >> 40U) & 255U), static_cast<unsigned>((bits >> 32U) & 255U),
                static_cast<unsigned>((bits >> 24U) & 255U), static_cast<unsigned>((bits >> 16U) & 255U),
                static_cast<unsigned>((bits >> 8U) & 255U), static_cast<unsigned>(bits & 255U));
  return text.data();
}

}  // namespace zyn::transport
