#ifndef ZYN_DATA_GRID_BYTES_H
#define ZYN_DATA_GRID_BYTES_H

#include <climits>
#include <cstddef>
#include <stdexcept>

namespace ZYNSDK {

/// The bytes of a grid of width * height elements; neither may be negative, and an element has 1 to 8
/// bytes. Raises std::length_error when they are more than an int counts: sizes in the public interface are
/// ints.
inline std::size_t GridBytes(int width, int height, std::size_t elementBytes) {
  const std::size_t rowBytes = static_cast<std::size_t>(width) * elementBytes;
  if (height != 0 && rowBytes > static_cast<std::size_t>(INT_MAX) / static_cast<std::size_t>(height)) {
    throw std::length_error("the grid is too large");
  }
  return rowBytes * static_cast<std::size_t>(height);
}

}  // namespace ZYNSDK

#endif
