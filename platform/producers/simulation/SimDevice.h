/// An open simulated camera.
#ifndef ZYN_SIMULATION_SIM_DEVICE_H
#define ZYN_SIMULATION_SIM_DEVICE_H

#include <memory>
#include <string>

#include "CameraSlot.h"
#include "CardFeatures.h"
#include "Connection.h"
#include "cameras/CameraEvents.h"
#include "producer/Backend.h"

namespace zyn::simulation {

class SimDevice final : public producer::Device, private cameras::CameraEventListener {
 public:
  /// slot outlives the device. Throws producer::Error as CameraSlot::Connect.
  SimDevice(CameraSlot& slot, producer::DeviceListener& listener);
  ~SimDevice() override;
  SimDevice(const SimDevice&) = delete;
  SimDevice& operator=(const SimDevice&) = delete;

  producer::DeviceTraits Traits() const override;
  void Read(std::uint64_t address, void* data, std::size_t size) override;
  void Write(std::uint64_t address, const void* data, std::size_t size) override;
  std::unique_ptr<producer::Stream> OpenStream(std::size_t index, producer::StreamSink& sink) override;
  void SetUserDefinedName(const std::string& name) override;
  producer::ModuleExtension* Extension() override { return cardFeatures_.get(); }

 private:
  void OnCameraEvent(const cameras::CameraEvent& event) override;
  void RequireConnected() const;

  CameraSlot& slot_;
  producer::DeviceListener& listener_;
  const std::unique_ptr<Connection> connection_;
  const std::unique_ptr<CardFeatures> cardFeatures_;  // null on Ethernet
};

}  // namespace zyn::simulation

#endif
