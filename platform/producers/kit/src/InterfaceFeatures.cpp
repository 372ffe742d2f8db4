// The features of the interface module. What they show about devices is the state of the latest search.
#include <algorithm>

#include "DeviceModule.h"
#include "InterfaceModule.h"
#include "producer/Error.h"

namespace zyn::producer {
namespace {

constexpr std::int64_t kLongestTimeoutMs = 3600000;

FeatureOptions Represented(FeatureOptions options, const char* representation) {
  options.representation = representation;
  return options;
}

}  // namespace

void InterfaceModule::AddInterfaceFeatures() {
  FeatureTable& table = *features_;
  table.Category("InterfaceInformation");
  table.Text("InterfaceID", [this] { return info_.id; });
  table.Text("InterfaceDisplayName", [this] { return info_.displayName; });
  table.Enumeration("InterfaceType", TechnologyEntries(), [this] { return TechnologyEntry(info_.tlType); });
  table.Integer("InterfaceTLVersionMajor", [this] { return info_.tlVersionMajor; });
  table.Integer("InterfaceTLVersionMinor", [this] { return info_.tlVersionMinor; });
}

std::size_t InterfaceModule::SelectorValue(std::size_t Selectors::*selector) const {
  MutexLock lock(listMutex_);
  return selectors_.*selector;
}

void InterfaceModule::AddSelector(const std::string& name, std::size_t Selectors::*selector,
                                  std::function<std::size_t()> count) {
  FeatureOptions options;
  options.maximum = [count = std::move(count)] {
    return static_cast<std::int64_t>(std::max<std::size_t>(1, count())) - 1;
  };
  features_->Integer(
      name, [this, selector] { return static_cast<std::int64_t>(SelectorValue(selector)); },
      [this, selector](std::int64_t chosen) {
        MutexLock lock(listMutex_);
        selectors_.*selector = static_cast<std::size_t>(chosen);
      },
      options);
}

std::uint32_t InterfaceModule::Gateway() const {
  const std::size_t index = SelectorValue(&Selectors::gateway);
  return index < info_.adapter->gateways.size() ? info_.adapter->gateways[index] : 0;
}

Subnet InterfaceModule::SelectedSubnet() const {
  const std::size_t index = SelectorValue(&Selectors::subnet);
  return index < info_.adapter->subnets.size() ? info_.adapter->subnets[index] : Subnet();
}

void InterfaceModule::AddAdapterFeatures() {
  FeatureTable& table = *features_;
  table.Integer(
      "GevInterfaceMACAddress", [this] { return static_cast<std::int64_t>(info_.adapter->mac); }, nullptr,
      Represented({}, "MACAddress"));
  AddSelector("GevInterfaceGatewaySelector", &Selectors::gateway,
              [this] { return info_.adapter->gateways.size(); });
  FeatureOptions byGateway = Represented({}, "IPV4Address");
  byGateway.selectedBy = "GevInterfaceGatewaySelector";
  table.Integer(
      "GevInterfaceGateway", [this] { return Gateway(); }, nullptr, byGateway);
  AddSelector("GevInterfaceSubnetSelector", &Selectors::subnet,
              [this] { return info_.adapter->subnets.size(); });
  FeatureOptions bySubnet = Represented({}, "IPV4Address");
  bySubnet.selectedBy = "GevInterfaceSubnetSelector";
  table.Integer(
      "GevInterfaceSubnetIPAddress", [this] { return SelectedSubnet().address; }, nullptr, bySubnet);
  table.Integer(
      "GevInterfaceSubnetMask", [this] { return SelectedSubnet().mask; }, nullptr, bySubnet);
}

DeviceInfo InterfaceModule::Selected() const {
  MutexLock lock(listMutex_);
  return selectors_.device < list_.size() ? list_[selectors_.device] : DeviceInfo();
}

void InterfaceModule::AddDeviceFeatures() {
  FeatureTable& table = *features_;
  table.Category("DeviceEnumeration");
  table.Condition("DeviceListed", [this] { return !Devices().empty(); });
  table.Command("DeviceUpdateList", [this] {
    std::int64_t timeoutMs = 0;
    {
      MutexLock lock(listMutex_);
      timeoutMs = updateTimeoutMs_;
    }
    UpdateDevices(static_cast<std::uint64_t>(timeoutMs));
  });
  FeatureOptions timeout;
  timeout.unit = "ms";
  timeout.maximum = [] { return kLongestTimeoutMs; };
  table.Integer(
      "DeviceUpdateTimeout",
      [this] {
        MutexLock lock(listMutex_);
        return updateTimeoutMs_;
      },
      [this](std::int64_t value) {
        MutexLock lock(listMutex_);
        updateTimeoutMs_ = value;
      },
      timeout);
  AddSelector("DeviceSelector", &Selectors::device, [this] { return Devices().size(); });

  FeatureOptions listed;
  listed.selectedBy = "DeviceSelector";
  listed.availableIf = "DeviceListed";
  table.Text(
      "DeviceID", [this] { return Selected().id; }, nullptr, listed);
  table.Text(
      "DeviceVendorName", [this] { return Selected().vendor; }, nullptr, listed);
  table.Text(
      "DeviceModelName", [this] { return Selected().model; }, nullptr, listed);
  table.Enumeration(
      "DeviceAccessStatus", AccessStatusEntries(), [this] { return StatusOf(Selected()); }, nullptr, listed);
  table.Text(
      "DeviceSerialNumber", [this] { return Selected().serialNumber; }, nullptr, listed);
  table.Text(
      "DeviceUserID", [this] { return Selected().userDefinedName; }, nullptr, listed);
  table.Integer(
      "DeviceTLVersionMajor", [this] { return Selected().tlVersionMajor; }, nullptr, listed);
  table.Integer(
      "DeviceTLVersionMinor", [this] { return Selected().tlVersionMinor; }, nullptr, listed);
}

void InterfaceModule::AddDeviceAddressFeatures() {
  FeatureTable& table = *features_;
  table.Condition("DeviceHasGev", [this] { return Selected().gev.has_value(); });
  FeatureOptions gev;
  gev.selectedBy = "DeviceSelector";
  gev.availableIf = "DeviceHasGev";
  const FeatureOptions address = Represented(gev, "IPV4Address");
  table.Integer(
      "GevDeviceIPAddress", [this] { return SelectedGev().address; }, nullptr, address);
  table.Integer(
      "GevDeviceSubnetMask", [this] { return SelectedGev().mask; }, nullptr, address);
  table.Integer(
      "GevDeviceGateway", [this] { return SelectedGev().gateway; }, nullptr, address);
  table.Integer(
      "GevDeviceMACAddress", [this] { return static_cast<std::int64_t>(SelectedGev().mac); }, nullptr,
      Represented(gev, "MACAddress"));
  table.Enumeration(
      "GevDeviceIPConfigurationStatus",
      {{"None", static_cast<std::int64_t>(IpConfiguration::none)},
       {"PersistentIP", static_cast<std::int64_t>(IpConfiguration::persistentIp)},
       {"DHCP", static_cast<std::int64_t>(IpConfiguration::dhcp)},
       {"LinkLocal", static_cast<std::int64_t>(IpConfiguration::linkLocal)}},
      [this] { return static_cast<std::int64_t>(SelectedGev().configuration); }, nullptr, gev);

  table.Condition("DeviceHasU3v", [this] { return Selected().u3v.has_value(); });
  FeatureOptions u3v;
  u3v.selectedBy = "DeviceSelector";
  u3v.availableIf = "DeviceHasU3v";
  u3v.custom = true;
  table.Text(
      "U3vDeviceGUID", [this] { return SelectedU3v().guid; }, nullptr, u3v);
  table.Text(
      "U3vDeviceSpeedSupport", [this] { return SelectedU3v().speedSupport; }, nullptr, u3v);
}

void InterfaceModule::AddForceIpFeatures() {
  FeatureTable& table = *features_;
  FeatureOptions gev;
  gev.selectedBy = "DeviceSelector";
  gev.availableIf = "DeviceHasGev";
  const auto part = [this, &table, &gev](const char* name, std::uint32_t ForcedAddress::*field) {
    FeatureOptions options = Represented(gev, "IPV4Address");
    options.maximum = [] { return std::int64_t{0xFFFFFFFF}; };
    table.Integer(
        name,
        [this, field] {
          MutexLock lock(listMutex_);
          return static_cast<std::int64_t>(forced_.*field);
        },
        [this, field](std::int64_t value) {
          MutexLock lock(listMutex_);
          forced_.*field = static_cast<std::uint32_t>(value);
        },
        options);
  };
  part("GevDeviceForceIPAddress", &ForcedAddress::address);
  part("GevDeviceForceSubnetMask", &ForcedAddress::mask);
  part("GevDeviceForceGateway", &ForcedAddress::gateway);
  table.Command(
      "GevDeviceForceIP", [this] { ForceAddress(); }, gev);
}

void InterfaceModule::ForceAddress() {
  ForcedAddress forced;
  {
    MutexLock lock(listMutex_);
    forced = forced_;
  }
  const DeviceInfo device = Selected();
  if (open_.Find(device.id))
    throw Error(GenTL::GC_ERR_ACCESS_DENIED, "The address of an open device cannot be forced.");
  TurnHolder turn(turn_);
  backend_->ForceAddress(device, forced);
}

}  // namespace zyn::producer
