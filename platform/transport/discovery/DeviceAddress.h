/// The address fields of a device, which GenTL offers only through the interface module's node map.
#ifndef ZYN_TRANSPORT_DEVICE_ADDRESS_H
#define ZYN_TRANSPORT_DEVICE_ADDRESS_H

#include <cstdint>
#include <memory>
#include <string>

#include "CameraDescription.h"

namespace GenApi_3_4 {
struct INodeMap;
}

namespace zyn::transport {

/// Selects one device in an interface's node map for its life time and puts the former selection back. Holds
/// the node map's lock meanwhile: an application that selects and reads under the lock is not disturbed.
class DeviceSelection {
 public:
  /// index     where the device most likely stands in the selector's range
  /// deviceId  what decides, where the map tells the ID
  /// Empty when the map is null or does not know the device.
  DeviceSelection(GenApi_3_4::INodeMap* map, std::uint32_t index, const std::string& deviceId);
  ~DeviceSelection();
  DeviceSelection(const DeviceSelection&) = delete;
  DeviceSelection& operator=(const DeviceSelection&) = delete;

  explicit operator bool() const { return isSelected_; }

 private:
  bool Select(std::uint32_t index, const std::string& deviceId);

  struct Locked;
  GenApi_3_4::INodeMap* const map_;
  std::unique_ptr<Locked> lock_;
  std::int64_t former_ = -1;
  bool isSelected_ = false;
};

/// Fills the texts that the protocol has. Fields that cannot be read stay "".
void ReadAddressFields(GenApi_3_4::INodeMap* map, const DeviceSelection& selection,
                       CameraDescription& camera);

/// True when the map says that the selected device's address lies in no subnet of the adapter, whether the
/// adapter's mask is laid over it or the device's own. False when the map does not tell.
bool LiesOutsideSubnet(GenApi_3_4::INodeMap* map, const DeviceSelection& selection);

/// The lowest 32 bits as a dotted number, most significant byte first.
std::string FormatIp(std::int64_t address);

/// The lowest 48 bits as six pairs of hexadecimal digits separated by ":".
std::string FormatMac(std::int64_t address);

}  // namespace zyn::transport

#endif
