/// Registers that every USB3 Vision camera has. Numbers are least significant byte first.
#ifndef ZYN_ARAVIS_U3V_REGISTERS_H
#define ZYN_ARAVIS_U3V_REGISTERS_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "producer/Backend.h"

namespace zyn::aravis {

constexpr std::uint64_t kU3vUserName = 0x0184;
constexpr std::size_t kU3vUserNameBytes = 64;
constexpr std::uint64_t kU3vManifestAddress = 0x01D0;

/// Reads a number of `bytes` bytes, at most 8. Throws Error.
inline std::uint64_t ReadU3vNumber(producer::Device& device, std::uint64_t address, std::size_t bytes) {
  std::array<std::uint8_t, 8> data{};
  device.Read(address, data.data(), bytes);
  std::uint64_t value = 0;
  for (std::size_t i = bytes; i > 0; --i) value = value << 8U | data[i - 1];
  return value;
}

}  // namespace zyn::aravis

#endif
