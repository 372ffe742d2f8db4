/// The devices that answered one search. Takes datagrams, sends none.
#ifndef ZYN_GIGE_DEVICE_TABLE_H
#define ZYN_GIGE_DEVICE_TABLE_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "gige/Discovery.h"

namespace zyn::gige {

/// The request identifier of a search.
constexpr std::uint16_t kDiscoveryRequest = 0xFFFF;

/// One thread at a time.
class DeviceTable {
 public:
  /// Bounds what a hostile network can make this computer store. Control questions are told apart by their request
  /// identifier, which stays below kDiscoveryRequest.
  static constexpr std::size_t kMostDevices = 4096;

  /// The adapters that are searched on; `adapterPlace` below counts them. They must outlive the table.
  explicit DeviceTable(std::vector<const Adapter*> adapters) : adapters_(std::move(adapters)) {}

  /// Takes a datagram that came in from `sender`: an answer to the search or to a control question, or anything else.
  void Take(std::size_t adapterPlace, ByteView datagram, Ipv4 sender);

  /// In the order of the first answers. A device keeps its place.
  const std::vector<DiscoveredDevice>& Devices() const { return devices_; }
  /// Where to reach a device.
  std::size_t AdapterPlaceOf(std::size_t device) const { return places_[device]; }
  /// How often a device was entered anew, for another address or a better way: earlier answers no longer count.
  int ChangesOf(std::size_t device) const { return changes_[device]; }
  /// Identifies the question to a device whether it is controlled.
  static std::uint16_t ControlRequestOf(std::size_t device) { return static_cast<std::uint16_t>(device + 1); }

  std::vector<DiscoveredDevice> Release() { return std::move(devices_); }

 private:
  // Cameras are told apart by their MAC address and serial number. Virtual ones often have no MAC address; then the IP
  // address stands for it.
  using DeviceKey = std::tuple<MacAddress, Ipv4, std::string>;

  static DeviceKey KeyOf(const DeviceDescription& description);
  DiscoveredDevice MakeDevice(std::size_t adapterPlace, DeviceDescription description) const;
  void TakeDiscovery(std::size_t adapterPlace, const Ack& ack);
  void Refresh(std::size_t known, std::size_t adapterPlace, DeviceDescription description);
  void TakeControl(std::size_t adapterPlace, const Ack& ack, Ipv4 sender);

  const std::vector<const Adapter*> adapters_;
  std::vector<DiscoveredDevice> devices_;
  std::vector<std::size_t> places_;  // for each device, of its adapter
  std::vector<int> changes_;         // for each device
  std::map<DeviceKey, std::size_t> byKey_;
};

}  // namespace zyn::gige

#endif
