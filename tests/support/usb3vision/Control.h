/// Commands and answers of the control endpoint.
#ifndef ZYN_TEST_USB3VISION_CONTROL_H
#define ZYN_TEST_USB3VISION_CONTROL_H

#include <span>
#include <vector>

#include "usb3vision/Registers.h"

namespace zyntest::usb3 {

/// Executes one command, and returns the packets that answer it, in their order. What is no command has no answer.
std::vector<Bytes> Execute(Registers& registers, std::span<const std::uint8_t> command);

}  // namespace zyntest::usb3

#endif
