/// Numbers in registers and chunk data: most significant byte first.
#ifndef ZYN_CAMERAS_REGISTERS_BIG_ENDIAN_H
#define ZYN_CAMERAS_REGISTERS_BIG_ENDIAN_H

#include <bit>
#include <cstddef>
#include <cstdint>

namespace zyn::cameras {

/// `length` is 1 to 8 bytes.
inline void StoreBig(std::uint8_t* at, std::uint64_t value, std::size_t length) {
  for (std::size_t i = length; i-- > 0; value >>= 8U) at[i] = static_cast<std::uint8_t>(value);
}

inline std::uint64_t LoadBig(const std::uint8_t* at, std::size_t length) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < length; ++i) value = (value << 8U) | at[i];
  return value;
}

inline void StoreBigDouble(std::uint8_t* at, double value) {
  StoreBig(at, std::bit_cast<std::uint64_t>(value), 8);
}

inline double LoadBigDouble(const std::uint8_t* at) {
  return std::bit_cast<double>(LoadBig(at, 8));
}

}  // namespace zyn::cameras

#endif
