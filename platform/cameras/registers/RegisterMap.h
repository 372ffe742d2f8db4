/// The registers of a camera.
#ifndef ZYN_CAMERAS_REGISTERS_REGISTER_MAP_H
#define ZYN_CAMERAS_REGISTERS_REGISTER_MAP_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "cameras/RegisterStatus.h"

namespace zyn::cameras {

/// One register. Its functions get exactly `length` bytes.
struct Register {
  std::uint64_t address = 0;                                           ///< a multiple of 4
  std::size_t length = 0;                                              ///< bytes; a multiple of 4
  std::function<void(std::span<std::uint8_t>)> read;                   ///< empty: write-only
  std::function<RegisterStatus(std::span<const std::uint8_t>)> write;  ///< empty: read-only
};

/// Finds registers by address and checks accesses. Not thread-safe: the camera's lock protects it.
class RegisterMap {
 public:
  /// Registers are added in ascending order and do not overlap.
  void Add(Register entry);

  RegisterStatus Read(std::uint64_t address, std::span<std::uint8_t> bytes) const;
  RegisterStatus Write(std::uint64_t address, std::span<const std::uint8_t> bytes) const;

 private:
  std::vector<Register>::const_iterator Find(std::uint64_t address) const;
  RegisterStatus CheckReadable(std::uint64_t address, std::size_t length) const;
  RegisterStatus CheckWritable(std::uint64_t address, std::size_t length) const;

  std::vector<Register> registers_;  // sorted by address
};

}  // namespace zyn::cameras

#endif
