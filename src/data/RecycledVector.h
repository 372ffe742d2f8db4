#ifndef ZYN_DATA_RECYCLED_VECTOR_H
#define ZYN_DATA_RECYCLED_VECTOR_H

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "PixelMemory.h"

namespace ZYNSDK {

/// A growing row of numbers in recycled memory, whose new elements need not be written twice.
///
/// Holds at most kMostElements, so that the public interface can count them in an int. What needs more
/// raises std::length_error, what the memory lacks std::bad_alloc; both change nothing. Pointers into it
/// are valid until it grows, is assigned or gives its memory back.
template <class T>
class RecycledVector {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  static constexpr std::size_t kMostElements = INT_MAX;

  RecycledVector() = default;
  RecycledVector(const T* data, std::size_t count) { Append(data, count); }
  RecycledVector(const RecycledVector& other) : RecycledVector(other.Data(), other.Size()) {}
  RecycledVector(RecycledVector&& other) noexcept
      : memory_(std::move(other.memory_)), size_(std::exchange(other.size_, 0)) {}
  RecycledVector& operator=(RecycledVector other) noexcept {
    memory_ = std::move(other.memory_);
    size_ = other.size_;
    return *this;
  }
  ~RecycledVector() = default;

  std::size_t Size() const { return size_; }
  std::size_t Capacity() const { return memory_.Bytes() / sizeof(T); }
  /// Null while there is no memory; not null for an empty one that kept its memory.
  T* Data() const { return reinterpret_cast<T*>(memory_.Data()); }
  T& operator[](std::size_t index) const { return Data()[index]; }  ///< below Size(), not checked

  void Append(T value) {  // a copy: the value may lie in the memory that growing gives back
    if (size_ == Capacity()) Grow(Checked(size_, 1));
    Data()[size_++] = value;
  }

  /// Appends what `data` holds now; it may lie in this very vector.
  void Append(const T* data, std::size_t count) {
    if (count == 0) return;
    const std::size_t total = Checked(size_, count);
    PixelMemory old;  // keeps the source alive while it is copied
    if (total > Capacity()) old = Grow(total);
    std::memcpy(Data() + size_, data, count * sizeof(T));
    size_ = total;
  }

  /// Appends elements whose values are whatever the memory holds, for the caller to write. Returns the
  /// first of them.
  T* AppendForOverwrite(std::size_t count) {
    const std::size_t total = Checked(size_, count);
    if (total > Capacity()) Grow(total);
    return Data() + std::exchange(size_, total);
  }

  void Insert(std::size_t index, T value) {  // index: at most Size(), not checked
    AppendForOverwrite(1);
    std::memmove(Data() + index + 1, Data() + index, (size_ - 1 - index) * sizeof(T));
    Data()[index] = value;
  }

  void Erase(std::size_t index) {  // index: below Size(), not checked
    std::memmove(Data() + index, Data() + index + 1, (size_ - 1 - index) * sizeof(T));
    --size_;
  }

  void Reserve(std::size_t count) {
    if (Checked(0, count) > Capacity()) Reallocate(count);
  }

  /// New elements are 0.
  void Resize(std::size_t count) {
    const std::size_t before = size_;
    ResizeForOverwrite(count);
    if (count > before) std::memset(Data() + before, 0, (count - before) * sizeof(T));
  }

  /// New elements hold whatever the memory holds.
  void ResizeForOverwrite(std::size_t count) {
    Reserve(count);
    size_ = count;
  }

  /// All elements, the old ones too, hold whatever the memory holds. Stays where it is when there is room.
  void ResizeAndForget(std::size_t count) {
    if (Checked(0, count) > Capacity()) memory_ = PixelMemory(count * sizeof(T));
    size_ = count;
  }

  void Clear() { size_ = 0; }  ///< keeps the memory
  void Free() { *this = RecycledVector(); }

 private:
  static std::size_t Checked(std::size_t present, std::size_t more) {
    if (more > kMostElements - present) throw std::length_error("too many elements");
    return present + more;
  }

  PixelMemory Grow(std::size_t count) {
    return Reallocate(std::max(count, std::min(2 * Capacity(), kMostElements)));
  }

  // Returns the memory before, which still holds the old elements.
  PixelMemory Reallocate(std::size_t count) {
    PixelMemory larger(count * sizeof(T));
    if (size_ != 0) std::memcpy(larger.Data(), memory_.Data(), size_ * sizeof(T));
    std::swap(memory_, larger);
    return larger;
  }

  PixelMemory memory_;
  std::size_t size_ = 0;
};

}  // namespace ZYNSDK

#endif
