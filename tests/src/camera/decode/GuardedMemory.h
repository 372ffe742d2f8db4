#ifndef ZYN_TESTS_GUARDED_MEMORY_H
#define ZYN_TESTS_GUARDED_MEMORY_H

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <new>

/// `bytes` bytes of which the byte behind the last, or the one before the first, ends the process when it
/// is touched.
class GuardedMemory {
 public:
  enum class Guard { kBefore, kBehind };

  GuardedMemory(std::size_t bytes, Guard guard) {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t inner = (bytes + page - 1) / page * page;
    mappedBytes_ = inner + 2 * page;
    void* mapped = mmap(nullptr, mappedBytes_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) throw std::bad_alloc();
    mapped_ = static_cast<std::uint8_t*>(mapped);
    if (inner != 0 && mprotect(mapped_ + page, inner, PROT_READ | PROT_WRITE) != 0) throw std::bad_alloc();
    data_ = mapped_ + page + (guard == Guard::kBehind ? inner - bytes : 0);
  }
  GuardedMemory(const GuardedMemory&) = delete;
  GuardedMemory& operator=(const GuardedMemory&) = delete;
  ~GuardedMemory() { munmap(mapped_, mappedBytes_); }

  std::uint8_t* Data() const { return data_; }

 private:
  std::size_t mappedBytes_ = 0;
  std::uint8_t* mapped_ = nullptr;
  std::uint8_t* data_ = nullptr;
};

#endif
