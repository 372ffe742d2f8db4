#include "AllocationCount.h"

#include <cstdlib>
#include <new>

namespace {

thread_local long count = 0;

void* Allocate(std::size_t bytes, std::size_t alignment) {
  ++count;
  void* memory = alignment == 0
                     ? std::malloc(bytes == 0 ? 1 : bytes)
                     : std::aligned_alloc(alignment, (bytes + alignment - 1) / alignment * alignment);
  if (!memory) throw std::bad_alloc();
  return memory;
}

}  // namespace

long AllocationCount() {
  return count;
}

// Never inlined: where only one of a pair is, g++ takes them for a mismatch.
__attribute__((noinline)) void* operator new(std::size_t bytes) {
  return Allocate(bytes, 0);
}
__attribute__((noinline)) void* operator new(std::size_t bytes, std::align_val_t alignment) {
  return Allocate(bytes, static_cast<std::size_t>(alignment));
}
__attribute__((noinline)) void operator delete(void* memory) noexcept {
  std::free(memory);
}
__attribute__((noinline)) void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
__attribute__((noinline)) void operator delete(void* memory, std::align_val_t) noexcept {
  std::free(memory);
}
__attribute__((noinline)) void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
  std::free(memory);
}
