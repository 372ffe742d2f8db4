/// What a USB3 Vision camera tells the bus about itself.
#ifndef ZYN_TEST_USB3VISION_DESCRIPTORS_H
#define ZYN_TEST_USB3VISION_DESCRIPTORS_H

#include <cstdint>
#include <string>
#include <vector>

#include "cameras/CameraModel.h"
#include "usb3vision/Wire.h"

namespace zyntest::usb3 {

constexpr std::uint8_t kControlOut = 0x01;
constexpr std::uint8_t kControlIn = 0x81;
constexpr std::uint8_t kStreamIn = 0x82;
constexpr unsigned kInterfaces = 2;

/// The device descriptor and that of its one configuration, one behind the other, as the system shows them. The
/// numbers of texts in them index Texts(), from 1.
Bytes Descriptors();

/// The texts, from number 1.
std::vector<std::string> Texts(const zyn::cameras::Identity& identity, const std::string& guid);

/// One of them as a descriptor; number 0: the languages. Empty for a number without a text.
Bytes TextDescriptor(const std::vector<std::string>& texts, std::size_t number);

}  // namespace zyntest::usb3

#endif
