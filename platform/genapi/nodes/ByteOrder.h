/// Numbers in registers.
#ifndef ZYN_GENAPI_NODES_BYTEORDER_H
#define ZYN_GENAPI_NODES_BYTEORDER_H

#include <cstddef>
#include <cstdint>
#include <span>

namespace zyn::genapi {

/// 1 to 8 bytes as an unsigned number.
inline std::uint64_t LoadBytes(std::span<const std::uint8_t> bytes, bool bigEndian) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i)
    value = value << 8 | bytes[bigEndian ? i : bytes.size() - 1 - i];
  return value;
}

/// The low bytes of the number.
inline void StoreBytes(std::uint64_t value, std::span<std::uint8_t> bytes, bool bigEndian) {
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes[bigEndian ? bytes.size() - 1 - i : i] = static_cast<std::uint8_t>(value);
    value >>= 8;
  }
}

}  // namespace zyn::genapi

#endif
