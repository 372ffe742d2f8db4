/// What simulated cameras hang on: an Ethernet adapter, or a Camera Link frame grabber.
#ifndef ZYN_SIMULATION_SIM_INTERFACE_H
#define ZYN_SIMULATION_SIM_INTERFACE_H

#include <memory>
#include <vector>

#include "CameraSlot.h"
#include "SimulatorFeatures.h"
#include "producer/Backend.h"

namespace zyn::simulation {

using Slots = std::vector<std::unique_ptr<CameraSlot>>;

/// Of each kind there is one.
producer::InterfaceInfo DescribeInterface(LinkKind kind);

class SimInterface final : public producer::Interface {
 public:
  /// slots: all that there are; they outlive the interface.
  SimInterface(LinkKind kind, const Slots& slots);

  std::vector<producer::DeviceInfo> FindDevices(std::chrono::milliseconds timeout) override;
  std::unique_ptr<producer::Device> OpenDevice(const producer::DeviceInfo& info, producer::Access access,
                                               producer::DeviceListener& listener) override;
  void ForceAddress(const producer::DeviceInfo& info, const producer::ForcedAddress& address) override;
  producer::ModuleExtension* Extension() override { return &features_; }

 private:
  CameraSlot& SlotOf(const producer::DeviceInfo& info) const;

  const LinkKind kind_;
  const std::vector<CameraSlot*> slots_;  // those on this interface
  SimulatorFeatures features_;
};

}  // namespace zyn::simulation

#endif
