#include "PixelMemory.h"

#include <new>
#include <utility>
#include <vector>

#include "ThreadAnnotations.h"

#if defined(__SANITIZE_ADDRESS__)
#define ZYN_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZYN_ADDRESS_SANITIZER 1
#endif
#endif
#ifdef ZYN_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
#endif

namespace ZYNSDK {

namespace {

constexpr std::align_val_t kAlignment{64};
constexpr std::size_t kPage = 4096;

struct Block {
  unsigned char* data;
  std::size_t capacity;
};

// The sanitizer shall see the use of memory that waits in the pool, and of the part behind a smaller image.
void MarkUsable([[maybe_unused]] const Block& block, [[maybe_unused]] std::size_t bytes) {
#ifdef ZYN_ADDRESS_SANITIZER
  ASAN_POISON_MEMORY_REGION(block.data, block.capacity);
  ASAN_UNPOISON_MEMORY_REGION(block.data, bytes);
#endif
}

std::size_t RoundedUp(std::size_t bytes) {
  const std::size_t rounded = (bytes + kPage - 1) & ~(kPage - 1);
  if (rounded < bytes) throw std::bad_alloc();
  return rounded;
}

void Free(const Block& block) noexcept {
  MarkUsable(block, block.capacity);
  ::operator delete(block.data, kAlignment);
}

// Large enough, and wasting at most a quarter.
bool Fits(const Block& block, std::size_t bytes) {
  return block.capacity >= bytes && block.capacity - bytes <= block.capacity / 4;
}

class Pool {
 public:
  Pool() { idle_.reserve(PixelMemory::kMostIdleBuffers); }

  // A block that was given back, the latest first because it is warmest; null data when none fits.
  Block Take(std::size_t bytes) ZYN_EXCLUDES(mutex_) {
    zyn::MutexLock lock(mutex_);
    for (std::size_t i = idle_.size(); i-- > 0;) {
      if (Fits(idle_[i], bytes)) return Remove(i);
    }
    return {nullptr, 0};
  }

  void Give(Block block) noexcept ZYN_EXCLUDES(mutex_) {
    if (!Keep(block)) Free(block);
    for (Block surplus = TakeSurplus(); surplus.data; surplus = TakeSurplus()) Free(surplus);
  }

  // Frees what is idle, and from now on everything that is given back.
  void Close() noexcept ZYN_EXCLUDES(mutex_) {
    zyn::MutexLock lock(mutex_);
    isClosed_ = true;
    while (!idle_.empty()) Free(Remove(idle_.size() - 1));
  }

  std::size_t IdleBuffers() ZYN_EXCLUDES(mutex_) {
    zyn::MutexLock lock(mutex_);
    return idle_.size();
  }

  std::size_t IdleBytes() ZYN_EXCLUDES(mutex_) {
    zyn::MutexLock lock(mutex_);
    return idleBytes_;
  }

 private:
  bool Keep(const Block& block) noexcept ZYN_EXCLUDES(mutex_) {
    zyn::MutexLock lock(mutex_);
    if (isClosed_ || block.capacity > PixelMemory::kMostIdleBytes) return false;
    if (idle_.size() == PixelMemory::kMostIdleBuffers) Free(Remove(0));
    idle_.push_back(block);
    idleBytes_ += block.capacity;
    return true;
  }

  Block TakeSurplus() noexcept ZYN_EXCLUDES(mutex_) {
    zyn::MutexLock lock(mutex_);
    return idleBytes_ > PixelMemory::kMostIdleBytes ? Remove(0) : Block{nullptr, 0};
  }

  Block Remove(std::size_t index) ZYN_REQUIRES(mutex_) {
    const Block block = idle_[index];
    idle_.erase(idle_.begin() + static_cast<std::ptrdiff_t>(index));
    idleBytes_ -= block.capacity;
    return block;
  }

  zyn::Mutex mutex_;  // nothing is taken under it
  std::vector<Block> idle_
      ZYN_GUARDED_BY(mutex_);  // oldest first; its capacity is reserved, so keeping cannot throw
  std::size_t idleBytes_ ZYN_GUARDED_BY(mutex_) = 0;
  bool isClosed_ ZYN_GUARDED_BY(mutex_) = false;
};

// Never destroyed, because an image may outlive every static object; emptied when the library is unloaded.
Pool& ThePool() {
  static Pool* const pool = new Pool;
  return *pool;
}

struct PoolCloser {
  ~PoolCloser() { ThePool().Close(); }
} poolCloser;

Block Allocate(std::size_t bytes) {
  const std::size_t capacity = RoundedUp(bytes);
  const Block block{static_cast<unsigned char*>(::operator new(capacity, kAlignment)), capacity};
  MarkUsable(block, bytes);
  return block;
}

}  // namespace

PixelMemory::PixelMemory(std::size_t bytes) : bytes_(bytes) {
  Block block{nullptr, 0};
  if (bytes >= kSmallestPooled) block = ThePool().Take(bytes);
  if (block.data) {
    MarkUsable(block, bytes);
  } else {
    block = bytes >= kSmallestPooled ? Allocate(bytes) : Block{new unsigned char[bytes], bytes};
  }
  data_ = block.data;
  capacity_ = block.capacity;
}

PixelMemory::PixelMemory(PixelMemory&& other) noexcept {
  Swap(other);
}

PixelMemory& PixelMemory::operator=(PixelMemory&& other) noexcept {
  PixelMemory taken(std::move(other));
  Swap(taken);
  return *this;
}

PixelMemory::~PixelMemory() {
  if (bytes_ < kSmallestPooled) {
    delete[] data_;
    return;
  }
  const Block block{data_, capacity_};
  MarkUsable(block, 0);
  ThePool().Give(block);
}

void PixelMemory::Swap(PixelMemory& other) noexcept {
  std::swap(data_, other.data_);
  std::swap(bytes_, other.bytes_);
  std::swap(capacity_, other.capacity_);
}

std::size_t PixelMemory::IdleBuffers() {
  return ThePool().IdleBuffers();
}

std::size_t PixelMemory::IdleBytes() {
  return ThePool().IdleBytes();
}

}  // namespace ZYNSDK
