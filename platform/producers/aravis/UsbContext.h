/// Ownership of libusb's objects.
#ifndef ZYN_ARAVIS_USB_CONTEXT_H
#define ZYN_ARAVIS_USB_CONTEXT_H

#include <libusb.h>

#include <memory>
#include <optional>
#include <span>

namespace zyn::aravis {

struct UsbClose {
  void operator()(libusb_device_handle* handle) const { libusb_close(handle); }
};
using UsbHandle = std::unique_ptr<libusb_device_handle, UsbClose>;

struct UsbFreeConfiguration {
  void operator()(libusb_config_descriptor* configuration) const {
    libusb_free_config_descriptor(configuration);
  }
};
using UsbConfiguration = std::unique_ptr<libusb_config_descriptor, UsbFreeConfiguration>;

/// The devices on the buses at one moment. Ends before its context.
class UsbDeviceList {
 public:
  explicit UsbDeviceList(libusb_context* context) : count_(libusb_get_device_list(context, &devices_)) {}
  ~UsbDeviceList() {
    if (devices_ != nullptr) libusb_free_device_list(devices_, 1);
  }
  UsbDeviceList(const UsbDeviceList&) = delete;
  UsbDeviceList& operator=(const UsbDeviceList&) = delete;

  /// Borrowed. Empty when the system gives no list.
  std::span<libusb_device* const> Devices() const {
    return {devices_, count_ > 0 ? static_cast<std::size_t>(count_) : 0};
  }

 private:
  libusb_device** devices_ = nullptr;
  const ssize_t count_;
};

/// Our own access to the buses, beside the one that libaravis has. Thread-safe.
class UsbContext {
 public:
  /// Never fails: on a computer without USB, or in a container without it, there are no devices.
  UsbContext() {
    if (libusb_init(&context_) != LIBUSB_SUCCESS) context_ = nullptr;
  }
  ~UsbContext() {
    if (context_ != nullptr) libusb_exit(context_);
  }
  UsbContext(const UsbContext&) = delete;
  UsbContext& operator=(const UsbContext&) = delete;

  /// Null when there is no USB.
  libusb_context* Get() const { return context_; }

 private:
  libusb_context* context_ = nullptr;
};

}  // namespace zyn::aravis

#endif
