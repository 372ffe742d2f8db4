#include "UsbSystem.h"

#include <array>
#include <filesystem>
#include <fstream>

namespace zyn::aravis {
namespace {

// Only Linux has this folder; elsewhere nothing is found in it.
constexpr const char* kDevices = "/sys/bus/usb/devices/";
// The driver by which applications hold interfaces.
constexpr const char* kApplicationDriver = "usbfs";
constexpr int kDeepestPort = 7;

// "2-1.4": bus 2, port 1, and port 4 of the hub there. Empty for what is plugged into nothing.
std::string SystemName(libusb_device* device) {
  std::array<std::uint8_t, kDeepestPort> ports{};
  const int count = libusb_get_port_numbers(device, ports.data(), kDeepestPort);
  if (count < 1) return {};
  std::string name = std::to_string(libusb_get_bus_number(device));
  for (int i = 0; i < count; ++i)
    name += (i == 0 ? '-' : '.') + std::to_string(ports[static_cast<std::size_t>(i)]);
  return name;
}

std::string ReadLine(const std::string& path) {
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  return line;
}

}  // namespace

UsbSystemTexts ReadSystemTexts(libusb_device* device) {
  const std::string name = SystemName(device);
  if (name.empty()) return {};
  const std::string folder = kDevices + name + "/";
  return {ReadLine(folder + "manufacturer"), ReadLine(folder + "product"), ReadLine(folder + "serial")};
}

bool IsHeldByApplication(libusb_device* device, int configuration, int interface) {
  const std::string name = SystemName(device);
  if (name.empty()) return false;
  const std::string link =
      kDevices + name + ":" + std::to_string(configuration) + "." + std::to_string(interface) + "/driver";
  std::error_code error;
  return std::filesystem::read_symlink(link, error).filename() == kApplicationDriver;
}

}  // namespace zyn::aravis
