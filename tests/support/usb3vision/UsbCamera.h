/// A USB3 Vision camera that can be plugged in and pulled out.
#ifndef ZYN_TEST_USB3VISION_USB_CAMERA_H
#define ZYN_TEST_USB3VISION_USB_CAMERA_H

#include <memory>
#include <string>

#include "cameras/CameraModel.h"

namespace zyntest::usb3 {

/// True when the process sees virtual devices instead of the machine's own, as under umockdev-wrapper. Without it
/// no camera can be made.
bool HasVirtualUsb();

/// A camera of the catalog (cameras/Catalog.h) behind a USB port of its own. Cameras of one process share the bus.
class UsbCamera {
 public:
  /// Plugged in. port: 1 to 9, a camera each.
  UsbCamera(const std::string& model, const std::string& serial, int port = 1);
  ~UsbCamera();
  UsbCamera(const UsbCamera&) = delete;
  UsbCamera& operator=(const UsbCamera&) = delete;

  /// As the bus sees it: the system announces the device, or that it is gone.
  void Plug();
  void Unplug();

  /// Another application takes the camera, and gives it back. Only a plugged camera.
  void HoldByAnother();
  void LetGo();

  /// The system lets nobody open the camera, until it is plugged in anew.
  void Forbid();

  zyn::cameras::CameraModel& Model();
  std::string Guid() const;
  /// Interfaces that somebody holds.
  std::size_t Claims() const;

 private:
  class Port;
  std::unique_ptr<zyn::cameras::CameraModel> camera_;
  const int port_;
  std::unique_ptr<Port> plugged_;
};

}  // namespace zyntest::usb3

#endif
