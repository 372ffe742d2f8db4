#include "IpAssignment.h"

#include <algorithm>
#include <chrono>
#include <memory>

#include "TemporaryAddress.h"
#include "gige/PersistentIp.h"
#include "gige/RegisterClient.h"

namespace zyn::gevip {
namespace {

using gige::Adapter;
using gige::Control;
using gige::DiscoveredDevice;
using gige::IpSettings;
using gige::Ipv4;
using gige::PersistentIp;
using gige::RegisterClient;
using gige::Result;
using std::chrono::milliseconds;

// The sum of these stays within the three seconds that the interface promises for a camera that does not
// react.
constexpr gige::DiscoveryOptions kSearch{};
constexpr milliseconds kPatience{2500};
constexpr RegisterClient::Options kCommands{milliseconds{150}, 3};
// After a change of address the system may still wait for an answer to an earlier question about the new one,
// and repeats that after a second.
constexpr RegisterClient::Options kPatientCommands{milliseconds{400}, 4};

bool HasSettings(const DiscoveredDevice& camera, const IpSettings& settings) {
  const gige::DeviceDescription& now = camera.description;
  return now.ip == settings.ip && now.mask == settings.mask && now.gateway == settings.gateway;
}

// The transport's name of a camera. One that has no serial number goes by its MAC address.
std::string NameOf(const DiscoveredDevice& device) {
  const gige::DeviceDescription& said = device.description;
  if (!said.serial.empty() || said.mac.IsZero()) return said.serial;
  return gige::ToText(said.mac);
}

bool HasAddress(const Adapter& adapter, Ipv4 ip) {
  return std::any_of(adapter.addresses.begin(), adapter.addresses.end(),
                     [&](const gige::AdapterAddress& own) { return own.ip == ip; });
}

// An address that another camera has on the same wire would cut both off, and one that this computer has, on whatever
// adapter, would keep this computer from reaching the camera. In the loopback network every address is this
// computer's, virtual cameras' ones too.
bool IsTaken(Ipv4 ip, const DiscoveredDevice& camera, const std::vector<DiscoveredDevice>& all,
             const std::vector<Adapter>& adapters) {
  const bool isOtherCameras = std::any_of(all.begin(), all.end(), [&](const DiscoveredDevice& other) {
    return &other != &camera && other.adapterIndex == camera.adapterIndex && other.description.ip == ip;
  });
  const bool isOurs =
      !gige::IsLoopback(ip) && std::any_of(adapters.begin(), adapters.end(),
                                           [&](const Adapter& adapter) { return HasAddress(adapter, ip); });
  return isOtherCameras || isOurs;
}

int ResultOf(gige::ForceIpResult result) {
  switch (result) {
    case gige::ForceIpResult::confirmed:
      return GEV_IP_OK;
    case gige::ForceIpResult::refused:
      return GEV_IP_REFUSED;
    case gige::ForceIpResult::noAnswer:
      return GEV_IP_NO_ANSWER;
    case gige::ForceIpResult::systemError:
      break;
  }
  return GEV_IP_ERROR;
}

// Stores an address in the camera at `address`, and can take that back. Keeps nothing open in between.
class Store {
 public:
  Store(const Adapter& adapter, Ipv4 address, const RegisterClient::Options& options)
      : adapter_(adapter), address_(address), options_(options) {}

  /// After a failure the camera has what it had.
  Result Write(const IpSettings& settings) {
    const auto client = Connect();
    if (!client) return Result::systemError;
    const Control control(*client);
    if (control.Outcome() != Result::ok) return control.Outcome();
    if (const Result result = gige::ReadPersistentIp(*client, before_); result != Result::ok) return result;
    // With DHCP left on, a server could give the camera another address at its next start.
    const std::uint32_t methods = (before_.methods | gige::kPersistentIpEnabled) & ~gige::kDhcpEnabled;
    const Result result = gige::WritePersistentIp(*client, {settings, methods});
    if (result != Result::ok) gige::WritePersistentIp(*client, before_);
    return result;
  }

  /// Brings back what was stored before Write.
  bool TakeBack() {
    const auto client = Connect();
    if (!client) return false;
    const Control control(*client);
    return control.Outcome() == Result::ok && gige::WritePersistentIp(*client, before_) == Result::ok;
  }

 private:
  std::unique_ptr<RegisterClient> Connect() const {
    const gige::AdapterAddress* local = adapter_.AddressFor(address_);
    return local == nullptr ? nullptr : RegisterClient::Connect(local->ip, address_, options_);
  }

  const Adapter& adapter_;
  const Ipv4 address_;
  const RegisterClient::Options options_;
  PersistentIp before_;
};

class Assignment {
 public:
  Assignment(const DiscoveredDevice& camera, const Adapter& adapter, const std::vector<DiscoveredDevice>& all,
             const IpSettings& wanted)
      : camera_(camera), adapter_(adapter), all_(all), wanted_(wanted) {}

  int UntilPowerOff() const { return HasSettings(camera_, wanted_) ? GEV_IP_OK : Force(wanted_); }

  int Persistent() const {
    if (CanReach(wanted_.ip)) return ForceThenStore();
    return CanReach(camera_.description.ip) ? StoreThenForce() : StoreOnTheWay();
  }

 private:
  bool CanReach(Ipv4 ip) const { return adapter_.AddressFor(ip) != nullptr; }

  int Force(const IpSettings& settings) const {
    // Every camera without a MAC address would feel meant.
    if (camera_.description.mac.IsZero()) return GEV_IP_NO_ANSWER;
    return ResultOf(gige::ForceIp(adapter_, camera_.description.mac, settings, kPatience));
  }

  int ForceThenStore() const {
    if (const int result = UntilPowerOff(); result != GEV_IP_OK) return result;
    const bool isStored = Store(adapter_, wanted_.ip, kCommands).Write(wanted_) == Result::ok;
    return isStored ? GEV_IP_OK : GEV_IP_NOT_PERSISTENT;
  }

  // The new address belongs to another network: the registers can be reached before the change only.
  int StoreThenForce() const {
    Store store(adapter_, camera_.description.ip, kCommands);
    if (const Result result = store.Write(wanted_); result != Result::ok) {
      return result == Result::accessDenied ? GEV_IP_IN_USE : GEV_IP_NOT_STORED;
    }
    const int result = Force(wanted_);
    if (result == GEV_IP_OK || store.TakeBack()) return result;
    return GEV_IP_HALF_DONE;
  }

  // Neither the old nor the new address can be talked to, so the camera gets one of the adapter's network in
  // between.
  int StoreOnTheWay() const {
    const auto between = FindTemporaryAddress(adapter_, camera_, all_, wanted_);
    if (!between) {
      const int result = UntilPowerOff();
      return result == GEV_IP_OK ? GEV_IP_NOT_REACHED : result;
    }
    if (const int result = Force(*between); result != GEV_IP_OK) return result;
    Store store(adapter_, between->ip, kPatientCommands);
    if (store.Write(wanted_) != Result::ok) return GoBack(GEV_IP_NOT_STORED);
    const int result = Force(wanted_);
    if (result == GEV_IP_OK) return result;
    return store.TakeBack() ? GoBack(result) : GEV_IP_HALF_DONE;
  }

  // The result, when the camera has its former address again.
  int GoBack(int result) const {
    const gige::DeviceDescription& before = camera_.description;
    return Force({before.ip, before.mask, before.gateway}) == GEV_IP_OK ? result : GEV_IP_HALF_DONE;
  }

  const DiscoveredDevice& camera_;
  const Adapter& adapter_;
  const std::vector<DiscoveredDevice>& all_;
  const IpSettings& wanted_;
};

}  // namespace

std::optional<IpSettings> ParseSettings(const std::string& ip, const std::string& mask,
                                        const std::string& gateway) {
  const auto address = gige::ParseIpv4(ip);
  const auto subnet = gige::ParseIpv4(mask);
  const auto router = gige::ParseIpv4(gateway);
  if (!address || !subnet || !router) return std::nullopt;
  if (!gige::IsHostAddress(*address, *subnet) || gige::IsMulticast(*router)) return std::nullopt;
  return IpSettings{*address, *subnet, *router};
}

int Assign(const std::string& serial, const IpSettings& settings, bool persistent) {
  const std::vector<Adapter> adapters = gige::ListAdapters();
  if (adapters.empty()) return GEV_IP_ERROR;
  const std::vector<DiscoveredDevice> all = gige::Discover(adapters, kSearch);
  const auto hasSerial = [&](const DiscoveredDevice& device) { return NameOf(device) == serial; };
  // With two cameras of one serial number the wrong one might be meant, so neither is touched.
  if (serial.empty() || std::count_if(all.begin(), all.end(), hasSerial) != 1) return GEV_IP_NOT_FOUND;
  const DiscoveredDevice& camera = *std::find_if(all.begin(), all.end(), hasSerial);
  const auto adapter = std::find_if(adapters.begin(), adapters.end(), [&](const Adapter& candidate) {
    return candidate.index == camera.adapterIndex;
  });
  // Loopback addresses are for virtual cameras on this computer only.
  const bool isVirtual = gige::IsLoopback(adapter->addresses.front().ip);
  if (gige::IsLoopback(settings.ip) && !isVirtual) return GEV_IP_INVALID_ADDRESS;
  if (IsTaken(settings.ip, camera, all, adapters)) return GEV_IP_ADDRESS_TAKEN;
  if (camera.control == gige::ControlState::controlled) return GEV_IP_IN_USE;
  const Assignment assignment(camera, *adapter, all, settings);
  return persistent ? assignment.Persistent() : assignment.UntilPowerOff();
}

}  // namespace zyn::gevip
