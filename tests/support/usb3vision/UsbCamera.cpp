#include "usb3vision/UsbCamera.h"

#include <umockdev.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "cameras/Catalog.h"
#include "cameras/FeatureAccess.h"
#include "usb3vision/Descriptors.h"
#include "usb3vision/UsbDevice.h"

namespace zyntest::usb3 {
namespace {

constexpr const char* kController = "/devices/pci0000:00/0000:00:14.0/usb1";

// One for the process: what it stands for is the machine. It is never taken down, because libraries keep watching it;
// only its files go with the process.
UMockdevTestbed* Machine() {
  static UMockdevTestbed* const machine = umockdev_testbed_new();
  static const bool isRemovedAtExit = std::atexit([] {
                                        gchar* const root = umockdev_testbed_get_root_dir(machine);
                                        std::error_code ignored;
                                        std::filesystem::remove_all(root, ignored);
                                        g_free(root);
                                      }) == 0;
  static_cast<void>(isRemovedAtExit);
  return machine;
}

std::string Hex(const Bytes& bytes) {
  std::string text;
  std::array<char, 3> digits{};
  for (const std::uint8_t byte : bytes) {
    std::snprintf(digits.data(), digits.size(), "%02X", byte);
    text += digits.data();
  }
  return text;
}

std::string ThreeDigits(int number) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%03d", number);
  return text.data();
}

// In the folder that stands for the whole machine.
std::filesystem::path RealPath(const std::string& path) {
  gchar* const root = umockdev_testbed_get_root_dir(Machine());
  std::filesystem::path real = root + path;
  g_free(root);
  return real;
}

// The system never gives a number twice in a row.
int NextDeviceNumber() {
  static int last = 1;
  return ++last;
}

gboolean OnRequest(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer device) {
  UMockdevIoctlData* const data = umockdev_ioctl_client_get_arg(client);
  void* argument = nullptr;
  std::memcpy(&argument, data->data, sizeof argument);
  const UsbDevice::Answer answer =
      static_cast<UsbDevice*>(device)->Request(client, umockdev_ioctl_client_get_request(client), argument);
  umockdev_ioctl_client_complete(client, answer.result, answer.error);
  return TRUE;
}

void OnClosed(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer device) {
  static_cast<UsbDevice*>(device)->Close(client);
}

}  // namespace

// One stay of the camera on the bus.
class UsbCamera::Port {
 public:
  Port(zyn::cameras::CameraModel& camera, const std::string& guid, int port)
      : device_(camera, guid, [this](unsigned number, bool isHeld) { ShowDriver(number, isHeld); }),
        identity_(camera.GetIdentity()),
        number_(NextDeviceNumber()),
        node_("/dev/bus/usb/001/" + ThreeDigits(number_)),
        name_("1-" + std::to_string(port)) {
    path_ = std::string(kController) + "/" + name_;
    GError* error = nullptr;
    if (umockdev_testbed_add_from_string(Machine(), Description().c_str(), &error) == FALSE)
      throw std::runtime_error(error->message);
    for (unsigned number = 0; number < kInterfaces; ++number) {
      if (umockdev_testbed_add_from_string(Machine(), InterfaceDescription(number).c_str(), &error) == FALSE)
        throw std::runtime_error(error->message);
    }
    handler_ = umockdev_ioctl_base_new();
    g_signal_connect(handler_, "handle-ioctl", G_CALLBACK(OnRequest), &device_);
    g_signal_connect(handler_, "client-vanished", G_CALLBACK(OnClosed), &device_);
    if (umockdev_testbed_attach_ioctl(Machine(), node_.c_str(), handler_, &error) == FALSE)
      throw std::runtime_error(error->message);
    umockdev_testbed_uevent(Machine(), SysPath().c_str(), "add");
  }

  ~Port() {
    Permit();
    device_.Unplug();
    umockdev_testbed_uevent(Machine(), SysPath().c_str(), "remove");
    for (unsigned number = 0; number < kInterfaces; ++number)
      umockdev_testbed_remove_device(Machine(), ("/sys" + InterfacePath(number)).c_str());
    umockdev_testbed_remove_device(Machine(), SysPath().c_str());
    umockdev_testbed_detach_ioctl(Machine(), node_.c_str(), nullptr);
    g_signal_handlers_disconnect_by_data(handler_, &device_);
    g_object_unref(handler_);
  }
  Port(const Port&) = delete;
  Port& operator=(const Port&) = delete;

  std::size_t Claims() const { return device_.Claims(); }

  void HoldByAnother() {
    if (!device_.Hold(this)) throw std::runtime_error("the camera is held by somebody else");
  }
  void LetGo() { device_.Close(this); }

  // A folder cannot be opened like a device, whoever asks.
  void Forbid() {
    std::filesystem::rename(RealPath(node_), RealPath(node_ + ".real"));
    std::filesystem::create_directory(RealPath(node_));
  }

 private:
  void Permit() {
    if (!std::filesystem::exists(std::filesystem::symlink_status(RealPath(node_ + ".real")))) return;
    std::filesystem::remove(RealPath(node_));
    std::filesystem::rename(RealPath(node_ + ".real"), RealPath(node_));
  }

  // Interfaces that an application has claimed show so in the system's tree.
  void ShowDriver(unsigned number, bool isHeld) const {
    std::error_code ignored;  // with the cable everything goes
    const std::filesystem::path link = RealPath("/sys" + InterfacePath(number) + "/driver");
    if (isHeld) {
      std::filesystem::create_symlink("../../../../../../bus/usb/drivers/usbfs", link, ignored);
    } else {
      std::filesystem::remove(link, ignored);
    }
  }

  std::string InterfacePath(unsigned number) const {
    return path_ + "/" + name_ + ":1." + std::to_string(number);
  }

  std::string InterfaceDescription(unsigned number) const {
    return "P: " + InterfacePath(number) +
           "\nE: SUBSYSTEM=usb\nE: DEVTYPE=usb_interface\nA: bInterfaceNumber=0" + std::to_string(number) +
           "\n";
  }

  std::string SysPath() const { return "/sys" + path_; }

  std::string Description() const {
    return "P: " + path_ + "\nN: " + node_.substr(5) +
           "\nE: SUBSYSTEM=usb\nE: DEVTYPE=usb_device\nE: DEVNAME=" + node_ +
           "\nE: BUSNUM=001\nE: DEVNUM=" + ThreeDigits(number_) +
           "\nA: busnum=1\nA: devnum=" + std::to_string(number_) +
           "\nA: speed=5000\nA: bConfigurationValue=1\nA: manufacturer=" + identity_.vendor +
           "\nA: product=" + identity_.model + "\nA: serial=" + identity_.serial +
           "\nH: descriptors=" + Hex(Descriptors()) + "\n";
  }

  UsbDevice device_;
  const zyn::cameras::Identity identity_;
  const int number_;
  const std::string node_;
  const std::string name_;
  std::string path_;
  UMockdevIoctlBase* handler_ = nullptr;
};

bool HasVirtualUsb() {
  Machine();
  return umockdev_in_mock_environment() != FALSE;
}

UsbCamera::UsbCamera(const std::string& model, const std::string& serial, int port)
    : camera_(zyn::cameras::MakeCamera(model, serial)), port_(port) {
  if (!camera_) throw std::invalid_argument("no such model: " + model);
  Plug();
}

UsbCamera::~UsbCamera() = default;

void UsbCamera::Plug() {
  if (!plugged_) plugged_ = std::make_unique<Port>(*camera_, Guid(), port_);
}

void UsbCamera::Unplug() {
  plugged_.reset();
  zyn::cameras::StopAcquisition(*camera_);  // it has power of its own, but nobody to send to
}

void UsbCamera::HoldByAnother() {
  plugged_->HoldByAnother();
}

void UsbCamera::LetGo() {
  plugged_->LetGo();
}

void UsbCamera::Forbid() {
  plugged_->Forbid();
}

zyn::cameras::CameraModel& UsbCamera::Model() {
  return *camera_;
}

std::string UsbCamera::Guid() const {
  return "FFFF0000000" + std::to_string(port_);
}

std::size_t UsbCamera::Claims() const {
  return plugged_ ? plugged_->Claims() : 0;
}

}  // namespace zyntest::usb3
