/// Memory for frames.
#ifndef ZYN_TRANSPORT_FRAME_POOL_H
#define ZYN_TRANSPORT_FRAME_POOL_H

#include <cstddef>
#include <memory>
#include <vector>

#include "ThreadAnnotations.h"

namespace zyn::transport {

/// Memory of one frame. Shared by the stream that fills it and the application that reads it; whoever lets go
/// last gives it back to its pool, or frees it when the pool is gone.
class FrameMemory {
 public:
  FrameMemory(unsigned char* data, std::size_t size, std::size_t alignment)
      : data_(data), size_(size), alignment_(alignment) {}
  ~FrameMemory();
  FrameMemory(const FrameMemory&) = delete;
  FrameMemory& operator=(const FrameMemory&) = delete;

  unsigned char* Data() const { return data_; }
  std::size_t Size() const { return size_; }
  std::size_t Alignment() const { return alignment_; }

 private:
  unsigned char* const data_;
  const std::size_t size_;
  const std::size_t alignment_;
};

/// Keeps memory that came back for the next start: fresh memory costs a page fault per page, used memory none.
/// Thread-safe. Always owned by a shared_ptr.
class FramePool : public std::enable_shared_from_this<FramePool> {
 public:
  static constexpr std::size_t kLeastBytes = 4096;  ///< what a piece takes at least: a page

  /// Memory of exactly `size` bytes, used before if possible. Null when there is none. alignment: a power of 2.
  std::shared_ptr<FrameMemory> Take(std::size_t size, std::size_t alignment) ZYN_EXCLUDES(mutex_);

 private:
  using Owned = std::unique_ptr<FrameMemory>;

  Owned TakeKept(std::size_t size, std::size_t alignment) ZYN_EXCLUDES(mutex_);
  void Keep(Owned memory) ZYN_EXCLUDES(mutex_);

  Mutex mutex_;
  std::vector<Owned> kept_ ZYN_GUARDED_BY(mutex_);
};

}  // namespace zyn::transport

#endif
