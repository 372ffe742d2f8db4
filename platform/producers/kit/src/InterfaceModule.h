/// An interface module: the list of devices on one adapter.
#ifndef ZYN_PRODUCER_INTERFACE_MODULE_H
#define ZYN_PRODUCER_INTERFACE_MODULE_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Children.h"
#include "Module.h"
#include "System.h"
#include "Turn.h"

namespace zyn::producer {

class DeviceModule;

/// Any thread. `listMutex_` is a leaf; the turn is held while the backend searches or opens.
class InterfaceModule final : public Module, public std::enable_shared_from_this<InterfaceModule> {
 public:
  InterfaceModule(System& system, InterfaceInfo info, std::unique_ptr<Interface> backend);

  System& Parent() { return system_; }
  const InterfaceInfo& Info() const { return info_; }

  /// Searches anew; returns whether the list changed. Throws Error with GC_ERR_TIMEOUT; the list stays then.
  bool UpdateDevices(std::uint64_t timeoutMs) ZYN_EXCLUDES(listMutex_);
  std::vector<DeviceInfo> Devices() const ZYN_EXCLUDES(listMutex_);
  /// Access status and display name are as a consumer shall see them. Throws Error with GC_ERR_INVALID_ID.
  DeviceInfo Find(const std::string& id) const;
  /// id: the device's ID, serial number, user-defined name, IP address or MAC address.
  std::shared_ptr<DeviceModule> Open(const std::string& id, GenTL::DEVICE_ACCESS_FLAGS flags);
  void OnDeviceClosed(const std::string& id) { open_.Drop(id); }

  PortFacts Facts() const override;

 protected:
  void Shutdown() override;

 private:
  struct Selectors {
    std::size_t device = 0;
    std::size_t gateway = 0;
    std::size_t subnet = 0;
  };

  void AddInterfaceFeatures();
  void AddAdapterFeatures();
  void AddDeviceFeatures();
  void AddDeviceAddressFeatures();
  void AddForceIpFeatures();
  void AddSelector(const std::string& name, std::size_t Selectors::*selector,
                   std::function<std::size_t()> count);

  DeviceInfo Selected() const ZYN_EXCLUDES(listMutex_);
  GevDeviceInfo SelectedGev() const { return Selected().gev.value_or(GevDeviceInfo()); }
  U3vDeviceInfo SelectedU3v() const { return Selected().u3v.value_or(U3vDeviceInfo()); }
  std::size_t SelectorValue(std::size_t Selectors::*selector) const ZYN_EXCLUDES(listMutex_);
  std::uint32_t Gateway() const;
  Subnet SelectedSubnet() const;
  GenTL::DEVICE_ACCESS_STATUS StatusOf(const DeviceInfo& info) const;
  DeviceInfo Resolve(const std::string& id);
  std::shared_ptr<DeviceModule> OpenFound(const DeviceInfo& info, Access access);
  void ForceAddress();

  System& system_;
  const InterfaceInfo info_;
  std::unique_ptr<Interface> backend_;
  Turn turn_;
  Children<DeviceModule> open_;

  mutable Mutex listMutex_;
  std::vector<DeviceInfo> list_ ZYN_GUARDED_BY(listMutex_);
  Selectors selectors_ ZYN_GUARDED_BY(listMutex_);
  std::int64_t updateTimeoutMs_ ZYN_GUARDED_BY(listMutex_) = 1000;
  ForcedAddress forced_ ZYN_GUARDED_BY(listMutex_);
};

/// DEVICE_INFO_* for IFGetDeviceInfo and DevGetInfo.
void AnswerDeviceInfo(const DeviceInfo& info, GenTL::DEVICE_INFO_CMD command, const Answer& answer);

/// The name for people: the device's own, or one made of vendor, model and ID.
std::string DisplayName(const DeviceInfo& info);

/// The entries of the feature DeviceAccessStatus.
const FeatureTable::Entries& AccessStatusEntries();

}  // namespace zyn::producer

#endif
