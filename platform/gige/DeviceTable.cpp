#include "gige/DeviceTable.h"

namespace zyn::gige {

DeviceTable::DeviceKey DeviceTable::KeyOf(const DeviceDescription& description) {
  return {description.mac, description.mac.IsZero() ? description.ip : kNoAddress, description.serial};
}

void DeviceTable::Take(std::size_t adapterPlace, ByteView datagram, Ipv4 sender) {
  const auto ack = ParseAck(datagram);
  if (!ack) return;
  if (ack->requestId == kDiscoveryRequest) {
    TakeDiscovery(adapterPlace, *ack);
  } else {
    TakeControl(adapterPlace, *ack, sender);
  }
}

void DeviceTable::TakeDiscovery(std::size_t adapterPlace, const Ack& ack) {
  if (ack.ackId != command::kDiscovery + 1 || ack.status != status::kSuccess) return;
  auto description = ParseDiscovery(ack.payload);
  if (!description) return;
  const auto [place, isNew] = byKey_.try_emplace(KeyOf(*description), devices_.size());
  if (!isNew) return Refresh(place->second, adapterPlace, std::move(*description));
  if (devices_.size() >= kMostDevices) {
    byKey_.erase(place);
    return;
  }
  devices_.push_back(MakeDevice(adapterPlace, std::move(*description)));
  places_.push_back(adapterPlace);
  changes_.push_back(0);
}

DiscoveredDevice DeviceTable::MakeDevice(std::size_t adapterPlace, DeviceDescription description) const {
  const Adapter& adapter = *adapters_[adapterPlace];
  DiscoveredDevice device;
  device.adapterName = adapter.name;
  device.adapterIndex = adapter.index;
  device.adapter = adapter.ClosestAddress(description.ip);
  if (adapter.AddressFor(description.ip) == nullptr) device.control = ControlState::outOfReach;
  device.description = std::move(description);
  return device;
}

// A repeated answer changes nothing, unless the camera has another address by now or is better reached this way.
void DeviceTable::Refresh(std::size_t known, std::size_t adapterPlace, DeviceDescription description) {
  const bool isOutOfReach = devices_[known].control == ControlState::outOfReach;
  const bool isSameWay = places_[known] == adapterPlace;
  if (isSameWay && devices_[known].description == description) return;
  if (!isSameWay && !isOutOfReach) return;
  DiscoveredDevice fresh = MakeDevice(adapterPlace, std::move(description));
  if (!isSameWay && fresh.control == ControlState::outOfReach) return;
  devices_[known] = std::move(fresh);
  places_[known] = adapterPlace;
  ++changes_[known];
}

void DeviceTable::TakeControl(std::size_t adapterPlace, const Ack& ack, Ipv4 sender) {
  const std::size_t index = static_cast<std::size_t>(ack.requestId) - 1;  // 0 becomes larger than any index
  if (ack.ackId != command::kReadRegister + 1 || index >= devices_.size()) return;
  DiscoveredDevice& device = devices_[index];
  if (places_[index] != adapterPlace || device.description.ip != sender) return;
  if (device.control != ControlState::unknown) return;
  if (ack.status == status::kAccessDenied) {  // what an exclusive owner's camera says to everybody else
    device.control = ControlState::controlled;
    return;
  }
  const auto value = ParseReadRegister(ack.payload);
  if (ack.status != status::kSuccess || !value) return;
  const bool isControlled = (*value & (kExclusiveAccess | kControlAccess)) != 0;
  device.control = isControlled ? ControlState::controlled : ControlState::free;
}

}  // namespace zyn::gige
