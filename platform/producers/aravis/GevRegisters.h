/// Access of any address and length to a device that knows only whole 32-bit words.
#ifndef ZYN_ARAVIS_GEV_REGISTERS_H
#define ZYN_ARAVIS_GEV_REGISTERS_H

#include <cstdint>
#include <cstring>
#include <vector>

#include "producer/Error.h"

namespace zyn::aravis {

constexpr std::uint64_t kGevAddressEnd = 0x1'0000'0000;

/// A range of bytes, and the range of words around it.
struct WordRange {
  /// Throws Error with GC_ERR_INVALID_ADDRESS when the bytes lie beyond 32 bits of address.
  WordRange(std::uint64_t address, std::size_t size) {
    if (address >= kGevAddressEnd || size > kGevAddressEnd - address) {
      throw producer::Error(GenTL::GC_ERR_INVALID_ADDRESS, "A GigE Vision device has 32 bits of address.");
    }
    begin = address & ~std::uint64_t{3};
    bytes = static_cast<std::size_t>(((address + size + 3) & ~std::uint64_t{3}) - begin);
    offset = static_cast<std::size_t>(address - begin);
    isWhole = offset == 0 && bytes == size;
  }

  std::uint64_t begin = 0;
  std::size_t bytes = 0;
  std::size_t offset = 0;  ///< of the wanted bytes in the words
  bool isWhole = false;    ///< the bytes are words already
};

/// read(address, data, size) transfers whole words.
template <class ReadWords>
void ReadBytes(std::uint64_t address, std::uint8_t* data, std::size_t size, const ReadWords& read) {
  const WordRange range(address, size);
  if (range.isWhole) return read(address, data, size);
  std::vector<std::uint8_t> words(range.bytes);
  read(range.begin, words.data(), words.size());
  std::memcpy(data, words.data() + range.offset, size);
}

/// Words that are written in part keep their other bytes.
template <class ReadWords, class WriteWords>
void WriteBytes(std::uint64_t address, const std::uint8_t* data, std::size_t size, const ReadWords& read,
                const WriteWords& write) {
  const WordRange range(address, size);
  if (range.isWhole) return write(address, data, size);
  std::vector<std::uint8_t> words(range.bytes);
  read(range.begin, words.data(), words.size());
  std::memcpy(words.data() + range.offset, data, size);
  write(range.begin, words.data(), words.size());
}

}  // namespace zyn::aravis

#endif
