/// What the USB descriptors of a USB3 Vision camera say.
#ifndef ZYN_ARAVIS_U3V_DESCRIPTORS_H
#define ZYN_ARAVIS_U3V_DESCRIPTORS_H

#include <libusb.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace zyn::aravis {

/// Numbers of the device's texts; 0: there is none.
struct U3vTextNumbers {
  std::uint8_t guid = 0;
  std::uint8_t vendor = 0;
  std::uint8_t model = 0;
  std::uint8_t family = 0;
  std::uint8_t version = 0;
  std::uint8_t manufacturerInfo = 0;
  std::uint8_t serial = 0;
  std::uint8_t userName = 0;
};

struct U3vDescriptors {
  int controlInterface = 0;
  int streamInterface = -1;  ///< -1: the camera has no stream
  std::uint8_t configuration = 0;
  std::uint32_t versionMajor = 0;  ///< of USB3 Vision
  std::uint32_t versionMinor = 0;
  U3vTextNumbers texts;
  std::uint8_t speeds = 0;  ///< a bit for each speed the device supports, the lowest first
};

/// Nothing for a device that is no USB3 Vision camera, or whose description of itself is cut off.
std::optional<U3vDescriptors> ReadU3vDescriptors(const libusb_config_descriptor& configuration);

/// The fastest of them, for people to read; empty when none is known.
std::string SpeedText(std::uint8_t speeds);

/// A text descriptor as UTF-8. Empty when it is none; characters that are none become U+FFFD.
std::string DecodeUsbText(std::span<const std::uint8_t> descriptor);

}  // namespace zyn::aravis

#endif
