#include "CameraAddress.h"

#include <algorithm>

namespace zyncam {
namespace {

using zyn::gige::ControlState;
using zyn::gige::DiscoveredDevice;
using zyn::gige::PersistentIp;
using zyn::gige::RegisterClient;
using zyn::gige::Result;
using zyn::gige::ToText;

constexpr RegisterClient::Options kCommands{std::chrono::milliseconds{150}, 3};

// The question that the library asks: is it one network, each side seen through its own mask?
bool IsInAdaptersSubnet(const DiscoveredDevice& device) {
  const auto& own = device.adapter;
  const auto& camera = device.description;
  return (own.ip.value & own.mask.value) == (camera.ip.value & camera.mask.value);
}

std::string StatusOf(const DiscoveredDevice& device) {
  if (device.control == ControlState::controlled) return "busy";
  if (device.control == ControlState::unknown) return "unreachable";
  return IsInAdaptersSubnet(device) ? "ready" : "wrong subnet";
}

std::optional<PersistentIp> StoredIn(const DiscoveredDevice& device) {
  if (device.control == ControlState::outOfReach || device.control == ControlState::unknown)
    return std::nullopt;
  const auto client = RegisterClient::Connect(device.adapter.ip, device.description.ip, kCommands);
  PersistentIp stored;
  if (!client || zyn::gige::ReadPersistentIp(*client, stored) != Result::ok) return std::nullopt;
  return stored;
}

nlohmann::ordered_json JsonOf(const zyn::gige::IpSettings& settings) {
  return {{"address", ToText(settings.ip)},
          {"mask", ToText(settings.mask)},
          {"gateway", ToText(settings.gateway)}};
}

}  // namespace

std::vector<CameraAddress> SearchAddresses() {
  std::vector<CameraAddress> cameras;
  for (DiscoveredDevice& device : zyn::gige::Discover()) {
    std::string status = StatusOf(device);
    auto stored = StoredIn(device);
    cameras.push_back({std::move(device), std::move(status), stored});
  }
  std::stable_sort(cameras.begin(), cameras.end(), [](const CameraAddress& a, const CameraAddress& b) {
    return a.device.description.serial < b.device.description.serial;
  });
  return cameras;
}

std::string MethodsText(std::uint32_t methods) {
  const struct {
    std::uint32_t bit;
    const char* name;
  } names[] = {{zyn::gige::kPersistentIpEnabled, "persistent"},
               {zyn::gige::kDhcpEnabled, "dhcp"},
               {zyn::gige::kLinkLocalEnabled, "link-local"}};
  std::string text;
  for (const auto& [bit, name] : names) {
    if ((methods & bit) != 0) text += (text.empty() ? "" : ",") + std::string(name);
  }
  return text;
}

nlohmann::ordered_json JsonOf(const CameraAddress& camera) {
  const zyn::gige::DeviceDescription& description = camera.device.description;
  const std::uint32_t methods = description.ipConfiguration;
  nlohmann::ordered_json json;
  json["serialNumber"] = description.serial;
  json["model"] = description.model;
  json["manufacturer"] = description.manufacturer;
  json["userDefinedName"] = description.userName;
  json["status"] = camera.status;
  json["mac"] = ToText(description.mac);
  json["adapter"] = camera.device.adapterName;
  json["adapterAddress"] = ToText(camera.device.adapter.ip);
  json["adapterMask"] = ToText(camera.device.adapter.mask);
  json["address"] = ToText(description.ip);
  json["mask"] = ToText(description.mask);
  json["gateway"] = ToText(description.gateway);
  json["methods"] = {{"persistent", (methods & zyn::gige::kPersistentIpEnabled) != 0},
                     {"dhcp", (methods & zyn::gige::kDhcpEnabled) != 0},
                     {"linkLocal", (methods & zyn::gige::kLinkLocalEnabled) != 0}};
  json["stored"] = camera.stored ? JsonOf(camera.stored->settings) : nlohmann::ordered_json();
  return json;
}

}  // namespace zyncam
