#ifndef ZYN_DATA_PIXEL_MEMORY_H
#define ZYN_DATA_PIXEL_MEMORY_H

#include <cstddef>

namespace ZYNSDK {

/// Memory for the pixels of one image, and its owner.
///
/// Large buffers come from, and go back to, one pool for the whole process: a freshly mapped page costs
/// several times the copying of what goes into it, and a camera delivers frames of one size for hours. The
/// pool keeps at most kMostIdleBuffers buffers and kMostIdleBytes bytes that nobody uses, and frees the
/// oldest beyond that. May be used, and given back, from any thread.
class PixelMemory {
 public:
  static constexpr std::size_t kSmallestPooled = 32U << 10;  ///< the ordinary heap recycles smaller ones well
  static constexpr std::size_t kMostIdleBuffers = 32;
  static constexpr std::size_t kMostIdleBytes = 256U << 20;

  PixelMemory() = default;                  ///< null, 0 bytes
  explicit PixelMemory(std::size_t bytes);  ///< not null, not initialised; raises std::bad_alloc
  PixelMemory(PixelMemory&& other) noexcept;
  PixelMemory& operator=(PixelMemory&& other) noexcept;
  ~PixelMemory();

  unsigned char* Data() const { return data_; }
  std::size_t Bytes() const { return bytes_; }

  /// What the pool keeps at the moment.
  static std::size_t IdleBuffers();
  static std::size_t IdleBytes();

 private:
  void Swap(PixelMemory& other) noexcept;

  unsigned char* data_ = nullptr;
  std::size_t bytes_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace ZYNSDK

#endif
