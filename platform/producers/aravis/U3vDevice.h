/// A USB3 Vision camera under our control.
#ifndef ZYN_ARAVIS_U3V_DEVICE_H
#define ZYN_ARAVIS_U3V_DEVICE_H

#include <memory>
#include <string>

#include "AravisStream.h"
#include "LossSignal.h"
#include "UsbContext.h"
#include "producer/Backend.h"

namespace zyn::aravis {

class U3vDevice final : public producer::Device {
 public:
  /// Takes the camera: nobody else can use it meanwhile, not even read. Throws Error with GC_ERR_ACCESS_DENIED when
  /// another application has it, GC_ERR_IO or GC_ERR_TIMEOUT when it is gone or does not answer.
  U3vDevice(const producer::DeviceInfo& info, UsbContext& usb, Disposer& disposer,
            producer::DeviceListener& listener);
  ~U3vDevice() override;
  U3vDevice(const U3vDevice&) = delete;
  U3vDevice& operator=(const U3vDevice&) = delete;

  producer::DeviceTraits Traits() const override { return traits_; }
  void Read(std::uint64_t address, void* data, std::size_t size) override;
  void Write(std::uint64_t address, const void* data, std::size_t size) override;
  std::unique_ptr<producer::Stream> OpenStream(std::size_t index, producer::StreamSink& sink) override;
  producer::LinkSettings Link() const override;
  void SetUserDefinedName(const std::string& name) override;

 private:
  void OnLost();
  void CheckPresent() const;

  Disposer& disposer_;
  producer::DeviceListener& listener_;
  DeviceLink link_;
  producer::DeviceTraits traits_;
  std::unique_ptr<LossSignal> lossSignal_;
};

}  // namespace zyn::aravis

#endif
