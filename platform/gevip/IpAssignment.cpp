#include "IpAssignment.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "gige/RegisterClient.h"

namespace zyn::gevip {
namespace {

using gige::Adapter;
using gige::DiscoveredDevice;
using gige::IpSettings;
using gige::Ipv4;
using gige::RegisterClient;
using gige::Result;
using std::chrono::milliseconds;

// The sum of these stays within the three seconds that the interface promises for a camera that does not
// react.
constexpr gige::DiscoveryOptions kSearch{};
constexpr milliseconds kPatience{2500};
constexpr RegisterClient::Options kCommands{milliseconds{150}, 3};

bool HasSettings(const DiscoveredDevice& camera, const IpSettings& settings) {
  const gige::DeviceDescription& now = camera.description;
  return now.ip == settings.ip && now.mask == settings.mask && now.gateway == settings.gateway;
}

// An address that another camera or this computer has on the same wire would cut both off. On the loopback
// adapter every address is this computer's, virtual cameras' ones too.
bool IsTaken(Ipv4 ip, const DiscoveredDevice& camera, const std::vector<DiscoveredDevice>& all,
             const Adapter& adapter) {
  const bool isOtherCameras = std::any_of(all.begin(), all.end(), [&](const DiscoveredDevice& other) {
    return &other != &camera && other.adapterIndex == camera.adapterIndex && other.description.ip == ip;
  });
  const bool isOurs =
      !gige::IsLoopback(ip) && std::any_of(adapter.addresses.begin(), adapter.addresses.end(),
                                           [&](const gige::AdapterAddress& own) { return own.ip == ip; });
  return isOtherCameras || isOurs;
}

// Control of a camera for one scope.
class Control {
 public:
  explicit Control(RegisterClient& client)
      : client_(client),
        result_(client.WriteRegister(gige::bootstrap::kControlPrivilege, gige::kControlAccess)) {}
  ~Control() {
    if (result_ == Result::ok) client_.WriteRegister(gige::bootstrap::kControlPrivilege, 0);
  }
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;
  explicit operator bool() const { return result_ == Result::ok; }

 private:
  RegisterClient& client_;
  const Result result_;
};

bool WriteAndCheck(RegisterClient& client, std::uint32_t address, std::uint32_t value, std::uint32_t mask) {
  std::uint32_t stored = 0;
  return client.WriteRegister(address, value) == Result::ok &&
         client.ReadRegister(address, stored) == Result::ok && ((stored ^ value) & mask) == 0;
}

// Stores the settings in the camera at `address` and makes them what it starts with.
bool Store(const Adapter& adapter, Ipv4 address, const IpSettings& settings) {
  const gige::AdapterAddress* local = adapter.AddressFor(address);
  if (local == nullptr) return false;
  const auto client = RegisterClient::Connect(local->ip, address, kCommands);
  if (!client) return false;
  const Control control(*client);
  if (!control) return false;
  constexpr std::uint32_t kAllBits = 0xFFFFFFFFU;
  const std::array<std::pair<std::uint32_t, Ipv4>, 3> registers{
      {{gige::bootstrap::kPersistentIp, settings.ip},
       {gige::bootstrap::kPersistentMask, settings.mask},
       {gige::bootstrap::kPersistentGateway, settings.gateway}}};
  for (const auto& [reg, value] : registers) {
    if (!WriteAndCheck(*client, reg, value.value, kAllBits)) return false;
  }
  std::uint32_t configuration = 0;
  if (client->ReadRegister(gige::bootstrap::kIpConfiguration, configuration) != Result::ok) return false;
  // With DHCP left on, a server could give the camera another address at its next start.
  configuration = (configuration | gige::kPersistentIpEnabled) & ~gige::kDhcpEnabled;
  return WriteAndCheck(*client, gige::bootstrap::kIpConfiguration, configuration,
                       gige::kPersistentIpEnabled | gige::kDhcpEnabled);
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

int AssignTo(const DiscoveredDevice& camera, const Adapter& adapter, const IpSettings& settings,
             bool persistent) {
  // The registers can be reached at the new address, unless it belongs to another network; then only before
  // the change.
  const bool storeFirst = persistent && adapter.AddressFor(settings.ip) == nullptr;
  bool isStored = storeFirst && Store(adapter, camera.description.ip, settings);
  if (!HasSettings(camera, settings)) {
    if (camera.description.mac.IsZero())
      return GEV_IP_NO_ANSWER;  // every camera without a MAC address would feel meant
    const int result = ResultOf(gige::ForceIp(adapter, camera.description.mac, settings, kPatience));
    if (result != GEV_IP_OK) return result;
  }
  if (persistent && !storeFirst) isStored = Store(adapter, settings.ip, settings);
  return persistent && !isStored ? GEV_IP_NOT_PERSISTENT : GEV_IP_OK;
}

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
  const auto hasSerial = [&](const DiscoveredDevice& device) { return device.description.serial == serial; };
  // With two cameras of one serial number the wrong one might be meant, so neither is touched.
  if (serial.empty() || std::count_if(all.begin(), all.end(), hasSerial) != 1) return GEV_IP_NOT_FOUND;
  const DiscoveredDevice& camera = *std::find_if(all.begin(), all.end(), hasSerial);
  const auto adapter = std::find_if(adapters.begin(), adapters.end(), [&](const Adapter& candidate) {
    return candidate.index == camera.adapterIndex;
  });
  // Loopback addresses are for virtual cameras on this computer only.
  const bool isVirtual = gige::IsLoopback(adapter->addresses.front().ip);
  if (gige::IsLoopback(settings.ip) && !isVirtual) return GEV_IP_INVALID_ADDRESS;
  if (IsTaken(settings.ip, camera, all, *adapter)) return GEV_IP_ADDRESS_TAKEN;
  if (camera.control == gige::ControlState::controlled) return GEV_IP_IN_USE;
  return AssignTo(camera, *adapter, settings, persistent);
}

}  // namespace zyn::gevip
