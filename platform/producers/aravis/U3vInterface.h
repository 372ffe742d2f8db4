/// The USB3 Vision cameras of this computer, whatever bus they are on.
#ifndef ZYN_ARAVIS_U3V_INTERFACE_H
#define ZYN_ARAVIS_U3V_INTERFACE_H

#include "Disposer.h"
#include "UsbContext.h"
#include "producer/Backend.h"

namespace zyn::aravis {

/// How the USB appears in the list of interfaces. There is one on every computer.
producer::InterfaceInfo DescribeUsb();

class U3vInterface final : public producer::Interface {
 public:
  explicit U3vInterface(Disposer& disposer) : disposer_(disposer) {}

  std::vector<producer::DeviceInfo> FindDevices(std::chrono::milliseconds timeout) override;
  std::unique_ptr<producer::Device> OpenDevice(const producer::DeviceInfo& info, producer::Access access,
                                               producer::DeviceListener& listener) override;

 private:
  UsbContext usb_;
  Disposer& disposer_;
};

}  // namespace zyn::aravis

#endif
