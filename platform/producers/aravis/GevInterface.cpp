#include "GevInterface.h"

#include <algorithm>
#include <set>

#include "DeviceTexts.h"
#include "GevDevice.h"
#include "GevObserver.h"
#include "gige/ForceIp.h"

namespace zyn::aravis {
namespace {

using namespace GenTL;
using producer::Error;
using std::chrono::milliseconds;

constexpr milliseconds kForcePatience{2500};
// libaravis gives the time stamps of all cameras in nanoseconds.
constexpr std::uint64_t kTimestampFrequency = 1'000'000'000;
constexpr std::uint32_t kLinkLocalNetwork = 0xA9FE0000;  // 169.254.0.0/16
constexpr std::uint32_t kLinkLocalMask = 0xFFFF0000;

std::uint64_t Number(const gige::MacAddress& mac) {
  std::uint64_t value = 0;
  for (const std::uint8_t byte : mac.bytes) value = value << 8U | byte;
  return value;
}

gige::MacAddress MacOf(std::uint64_t number) {
  gige::MacAddress mac;
  for (auto byte = mac.bytes.rbegin(); byte != mac.bytes.rend(); ++byte, number >>= 8U) {
    *byte = static_cast<std::uint8_t>(number);
  }
  return mac;
}

DEVICE_ACCESS_STATUS StatusOf(gige::ControlState control) {
  switch (control) {
    case gige::ControlState::free:
      return DEVICE_ACCESS_STATUS_READWRITE;
    case gige::ControlState::controlled:
      return DEVICE_ACCESS_STATUS_BUSY;
    case gige::ControlState::outOfReach:
      return DEVICE_ACCESS_STATUS_NOACCESS;
    case gige::ControlState::unknown:
      break;
  }
  return DEVICE_ACCESS_STATUS_UNKNOWN;
}

// Devices tell which methods are enabled, not which one gave the address; they try them in this order.
producer::IpConfiguration ConfigurationOf(const gige::DeviceDescription& device) {
  if ((device.ipConfiguration & gige::kPersistentIpEnabled) != 0)
    return producer::IpConfiguration::persistentIp;
  if ((device.ip.value & kLinkLocalMask) == kLinkLocalNetwork) return producer::IpConfiguration::linkLocal;
  if ((device.ipConfiguration & gige::kDhcpEnabled) != 0) return producer::IpConfiguration::dhcp;
  return producer::IpConfiguration::none;
}

}  // namespace

producer::InterfaceInfo DescribeAdapter(const gige::Adapter& adapter) {
  producer::InterfaceInfo info;
  info.id = "GigE:" + adapter.name;
  info.displayName = adapter.name;
  info.tlType = GENTL_TLTYPE_GEV;
  info.tlVersionMajor = 2;
  info.tlVersionMinor = 0;
  producer::AdapterInfo network;
  network.mac = Number(adapter.mac);
  for (const gige::AdapterAddress& address : adapter.addresses) {
    network.subnets.push_back({address.ip.value, address.mask.value});
  }
  info.adapter = network;
  return info;
}

producer::DeviceInfo DescribeDevice(const gige::DiscoveredDevice& device) {
  const gige::DeviceDescription& said = device.description;
  producer::DeviceInfo info;
  info.id = DeviceId(said);
  info.vendor = CleanUtf8(said.manufacturer);
  info.model = CleanUtf8(said.model);
  info.userDefinedName = CleanUtf8(said.userName);
  info.serialNumber = CleanUtf8(said.serial);
  info.version = CleanUtf8(said.version);
  info.manufacturerInfo = CleanUtf8(said.manufacturerInfo);
  info.tlType = GENTL_TLTYPE_GEV;
  info.tlVersionMajor = said.versionMajor;
  info.tlVersionMinor = said.versionMinor;
  info.accessStatus = StatusOf(device.control);
  info.timestampFrequency = kTimestampFrequency;
  producer::GevDeviceInfo gev;
  gev.mac = Number(said.mac);
  gev.address = said.ip.value;
  gev.mask = said.mask.value;
  gev.gateway = said.gateway.value;
  gev.configuration = ConfigurationOf(said);
  info.gev = gev;
  return info;
}

GevInterface::GevInterface(std::string adapterName, Disposer& disposer)
    : adapterName_(std::move(adapterName)), disposer_(disposer) {}

// An adapter that is gone has no addresses.
gige::Adapter GevInterface::FindAdapter() const {
  std::vector<gige::Adapter> adapters = gige::ListAdapters();
  const auto found = std::find_if(adapters.begin(), adapters.end(),
                                  [&](const gige::Adapter& adapter) { return adapter.name == adapterName_; });
  return found == adapters.end() ? gige::Adapter{} : std::move(*found);
}

std::vector<producer::DeviceInfo> GevInterface::FindDevices(milliseconds timeout) {
  const gige::Adapter adapter = FindAdapter();
  gige::DiscoveryOptions options;
  options.duration = std::min(options.duration, timeout);
  std::vector<producer::DeviceInfo> devices;
  std::set<std::string> ids;
  for (const gige::DiscoveredDevice& device : gige::Discover({&adapter, 1}, options)) {
    producer::DeviceInfo info = DescribeDevice(device);
    // Virtual cameras may share MAC address and serial number.
    if (!ids.insert(info.id).second) info.id += "@" + ToText(device.description.ip);
    ids.insert(info.id);
    devices.push_back(std::move(info));
  }
  std::sort(devices.begin(), devices.end(), [](const auto& a, const auto& b) { return a.id < b.id; });
  return devices;
}

std::unique_ptr<producer::Device> GevInterface::OpenDevice(const producer::DeviceInfo& info,
                                                           producer::Access access,
                                                           producer::DeviceListener& listener) {
  if (!info.gev) throw Error(GC_ERR_INVALID_ID, info.id + " is no GigE Vision camera.");
  const gige::Ipv4 ip{info.gev->address};
  const gige::Adapter adapter = FindAdapter();
  const gige::AdapterAddress* local = adapter.AddressFor(ip);
  if (local == nullptr) {
    throw Error(GC_ERR_ACCESS_DENIED, info.id + " has the address " + ToText(ip) +
                                          ", which lies in no subnet of the adapter " + adapterName_ +
                                          ": give it another one.");
  }
  const GevRoute route{local->ip, ip};
  if (access == producer::Access::readOnly) return std::make_unique<GevObserver>(info, route);
  return std::make_unique<GevDevice>(info, route, access == producer::Access::exclusive, disposer_, listener);
}

void GevInterface::ForceAddress(const producer::DeviceInfo& info, const producer::ForcedAddress& address) {
  const gige::IpSettings settings{gige::Ipv4{address.address}, gige::Ipv4{address.mask},
                                  gige::Ipv4{address.gateway}};
  if (!info.gev || info.gev->mac == 0)
    throw Error(GC_ERR_NOT_AVAILABLE, info.id + " has no MAC address to call it by.");
  if (!gige::IsHostAddress(settings.ip, settings.mask)) {
    throw Error(GC_ERR_INVALID_VALUE, "No camera can have the address " + ToText(settings.ip) +
                                          " with the mask " + ToText(settings.mask) + ".");
  }
  switch (gige::ForceIp(FindAdapter(), MacOf(info.gev->mac), settings, kForcePatience)) {
    case gige::ForceIpResult::confirmed:
      return;
    case gige::ForceIpResult::refused:
      throw Error(GC_ERR_INVALID_VALUE, info.id + " refused the address.");
    case gige::ForceIpResult::noAnswer:
      throw Error(GC_ERR_TIMEOUT, info.id + " did not take the address.");
    case gige::ForceIpResult::systemError:
      break;
  }
  throw Error(GC_ERR_IO, "The adapter " + adapterName_ + " is gone.");
}

}  // namespace zyn::aravis
