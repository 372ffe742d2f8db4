#include "U3vDescriptors.h"

#include <algorithm>
#include <array>

namespace zyn::aravis {
namespace {

constexpr std::uint8_t kMiscellaneousClass = 0xEF;
constexpr std::uint8_t kUsb3VisionSubclass = 0x05;
constexpr std::uint8_t kControlProtocol = 0x00;
constexpr std::uint8_t kStreamProtocol = 0x02;

// The descriptor of the camera's own, behind that of its control interface.
constexpr std::uint8_t kCameraDescriptor = 0x24;
constexpr std::uint8_t kCameraInfo = 0x01;
constexpr std::size_t kCameraInfoBytes = 20;
constexpr std::size_t kVersionAt = 7;  // 16 bits minor, 16 bits major, least significant byte first
constexpr std::size_t kTextNumbersAt = 11;
constexpr std::size_t kSpeedsAt = 19;

constexpr std::uint8_t kTextDescriptor = 3;
constexpr char32_t kReplacement = 0xFFFD;

bool IsUsb3Vision(const libusb_interface_descriptor& interface, std::uint8_t protocol) {
  return interface.bInterfaceClass == kMiscellaneousClass &&
         interface.bInterfaceSubClass == kUsb3VisionSubclass && interface.bInterfaceProtocol == protocol;
}

bool ReadCameraInfo(std::span<const std::uint8_t> extra, U3vDescriptors& found) {
  while (extra.size() >= 3 && extra[0] >= 3 && extra[0] <= extra.size()) {
    const auto one = extra.first(extra[0]);
    extra = extra.subspan(extra[0]);
    if (one[1] != kCameraDescriptor || one[2] != kCameraInfo || one.size() < kCameraInfoBytes) continue;
    found.versionMinor = one[kVersionAt] | static_cast<std::uint32_t>(one[kVersionAt + 1]) << 8U;
    found.versionMajor = one[kVersionAt + 2] | static_cast<std::uint32_t>(one[kVersionAt + 3]) << 8U;
    const auto texts = one.subspan(kTextNumbersAt);
    found.texts = {texts[0], texts[1], texts[2], texts[3], texts[4], texts[5], texts[6], texts[7]};
    found.speeds = one[kSpeedsAt];
    return true;
  }
  return false;
}

void AppendUtf8(std::string& text, char32_t c) {
  const auto put = [&](char32_t byte) { text += static_cast<char>(byte); };
  if (c < 0x80) return put(c);
  if (c < 0x800) {
    put(0xC0U | c >> 6U);
  } else if (c < 0x10000) {
    put(0xE0U | c >> 12U);
    put(0x80U | (c >> 6U & 0x3FU));
  } else {
    put(0xF0U | c >> 18U);
    put(0x80U | (c >> 12U & 0x3FU));
    put(0x80U | (c >> 6U & 0x3FU));
  }
  put(0x80U | (c & 0x3FU));
}

bool IsHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}

bool IsLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

}  // namespace

std::optional<U3vDescriptors> ReadU3vDescriptors(const libusb_config_descriptor& configuration) {
  U3vDescriptors found;
  bool hasControl = false;
  for (const libusb_interface& one : std::span(configuration.interface, configuration.bNumInterfaces)) {
    if (one.num_altsetting < 1) continue;
    const libusb_interface_descriptor& interface = one.altsetting[0];
    if (IsUsb3Vision(interface, kStreamProtocol)) found.streamInterface = interface.bInterfaceNumber;
    if (hasControl || !IsUsb3Vision(interface, kControlProtocol)) continue;
    const auto bytes = static_cast<std::size_t>(std::max(interface.extra_length, 0));
    hasControl = ReadCameraInfo({interface.extra, bytes}, found);
    found.controlInterface = interface.bInterfaceNumber;
  }
  if (!hasControl) return std::nullopt;
  found.configuration = configuration.bConfigurationValue;
  return found;
}

std::string SpeedText(std::uint8_t speeds) {
  constexpr std::array kNames = {"LowSpeed", "FullSpeed", "HighSpeed", "SuperSpeed", "SuperSpeedPlus"};
  for (std::size_t i = kNames.size(); i > 0; --i) {
    if ((speeds >> (i - 1) & 1U) != 0) return kNames[i - 1];
  }
  return {};
}

std::string DecodeUsbText(std::span<const std::uint8_t> descriptor) {
  if (descriptor.size() < 2 || descriptor[1] != kTextDescriptor) return {};
  const std::size_t end = std::min<std::size_t>(descriptor[0], descriptor.size());
  std::string text;
  char32_t high = 0;
  for (std::size_t at = 2; at + 1 < end; at += 2) {
    const char32_t unit = descriptor[at] | static_cast<char32_t>(descriptor[at + 1]) << 8U;
    if (unit == 0) break;
    if (high != 0 && IsLowSurrogate(unit)) {
      AppendUtf8(text, 0x10000 + ((high - 0xD800) << 10U) + (unit - 0xDC00));
      high = 0;
      continue;
    }
    if (high != 0) AppendUtf8(text, kReplacement);
    high = IsHighSurrogate(unit) ? unit : 0;
    if (high == 0) AppendUtf8(text, IsLowSurrogate(unit) ? kReplacement : unit);
  }
  if (high != 0) AppendUtf8(text, kReplacement);
  return text;
}

}  // namespace zyn::aravis
