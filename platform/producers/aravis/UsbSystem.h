/// What the operating system knows about USB devices without opening them.
#ifndef ZYN_ARAVIS_USB_SYSTEM_H
#define ZYN_ARAVIS_USB_SYSTEM_H

#include <libusb.h>

#include <string>

namespace zyn::aravis {

/// The texts that the system has read when the device was plugged in; empty where it tells none.
struct UsbSystemTexts {
  std::string vendor;
  std::string model;
  std::string serial;
};
UsbSystemTexts ReadSystemTexts(libusb_device* device);

/// True when an application holds this interface of the device. False where the system does not tell.
bool IsHeldByApplication(libusb_device* device, int configuration, int interface);

}  // namespace zyn::aravis

#endif
