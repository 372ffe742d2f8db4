#include "SimInterface.h"

#include "SimDevice.h"
#include "producer/Error.h"

namespace zyn::simulation {
namespace {

std::vector<CameraSlot*> SlotsOn(LinkKind kind, const Slots& slots) {
  std::vector<CameraSlot*> result;
  for (const auto& slot : slots) {
    if (slot->Link() == kind) result.push_back(slot.get());
  }
  return result;
}

}  // namespace

producer::InterfaceInfo DescribeInterface(LinkKind kind) {
  producer::InterfaceInfo info;
  info.tlVersionMajor = 2;
  if (kind == LinkKind::cameraLink) {
    info.id = "SimulatedGrabber";
    info.displayName = "Simulated frame grabber";
    info.tlType = GENTL_TLTYPE_CL;
    return info;
  }
  info.id = "SimulatedEthernet";
  info.displayName = "Simulated Ethernet adapter";
  info.tlType = GENTL_TLTYPE_GEV;
  producer::AdapterInfo adapter;
  adapter.mac = 0x025A594EFFFF;
  adapter.subnets = {kSubnet};
  info.adapter = adapter;
  return info;
}

SimInterface::SimInterface(LinkKind kind, const Slots& slots)
    : kind_(kind), slots_(SlotsOn(kind, slots)), features_(slots_) {}

std::vector<producer::DeviceInfo> SimInterface::FindDevices(std::chrono::milliseconds) {
  std::vector<producer::DeviceInfo> devices;
  for (const CameraSlot* const slot : slots_) {
    if (auto info = slot->Describe()) devices.push_back(std::move(*info));
  }
  return devices;
}

CameraSlot& SimInterface::SlotOf(const producer::DeviceInfo& info) const {
  for (CameraSlot* const slot : slots_) {
    if (slot->Serial() == info.serialNumber) return *slot;
  }
  throw producer::Error(GenTL::GC_ERR_INVALID_ID, "There is no camera " + info.id + ".");
}

std::unique_ptr<producer::Device> SimInterface::OpenDevice(const producer::DeviceInfo& info, producer::Access,
                                                           producer::DeviceListener& listener) {
  return std::make_unique<SimDevice>(SlotOf(info), listener);
}

void SimInterface::ForceAddress(const producer::DeviceInfo& info, const producer::ForcedAddress& address) {
  if (kind_ != LinkKind::ethernet)
    throw producer::Error(GenTL::GC_ERR_NOT_IMPLEMENTED, "Camera Link knows no addresses.");
  SlotOf(info).ForceAddress(address);
}

}  // namespace zyn::simulation
