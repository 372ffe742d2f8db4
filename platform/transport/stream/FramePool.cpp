#include "FramePool.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

namespace zyn::transport {

namespace {

// More than a stream ever announces without being told to: so many, or so many bytes.
constexpr std::size_t kMostKept = 32;
constexpr std::size_t kMostBytesKept = 2U << 20U;

// Null when there is no memory.
unsigned char* Allocate(std::size_t size, std::size_t alignment) {
  if (size > std::numeric_limits<std::ptrdiff_t>::max() - alignment) return nullptr;
  const std::size_t rounded = (size + alignment - 1) / alignment * alignment;
  return static_cast<unsigned char*>(std::aligned_alloc(alignment, rounded));
}

}  // namespace

FrameMemory::~FrameMemory() {
  std::free(data_);
}

std::shared_ptr<FrameMemory> FramePool::Take(std::size_t size, std::size_t alignment) {
  alignment = std::max(alignment, kLeastBytes);
  Owned memory = TakeKept(size, alignment);
  if (!memory) {
    unsigned char* data = Allocate(size, alignment);
    if (!data) return nullptr;
    memory = std::make_unique<FrameMemory>(data, size, alignment);
  }
  return {memory.release(), [pool = weak_from_this()](FrameMemory* returned) {
            Owned owned(returned);
            if (const auto home = pool.lock()) home->Keep(std::move(owned));
          }};
}

FramePool::Owned FramePool::TakeKept(std::size_t size, std::size_t alignment) {
  std::vector<Owned> unfit;  // freed after the lock is given back
  MutexLock lock(mutex_);
  const auto fits = [&](const Owned& memory) {
    return memory->Size() == size && memory->Alignment() >= alignment;
  };
  const auto firstFit = std::partition(kept_.begin(), kept_.end(), [&](const Owned& m) { return !fits(m); });
  // Another size means another setting of the camera: the old memory will hardly be needed again.
  std::move(kept_.begin(), firstFit, std::back_inserter(unfit));
  kept_.erase(kept_.begin(), firstFit);
  if (kept_.empty()) return nullptr;
  Owned memory = std::move(kept_.back());
  kept_.pop_back();
  return memory;
}

void FramePool::Keep(Owned memory) {
  MutexLock lock(mutex_);
  const std::size_t taken = std::max(memory->Size(), memory->Alignment());
  const bool isFew = kept_.size() < kMostKept || kept_.size() * taken < kMostBytesKept;
  if (isFew) kept_.push_back(std::move(memory));
}

}  // namespace zyn::transport
