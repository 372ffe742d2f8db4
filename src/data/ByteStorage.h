#ifndef ZYN_DATA_BYTE_STORAGE_H
#define ZYN_DATA_BYTE_STORAGE_H

#include <cstring>
#include <memory>

namespace ZYNSDK {

/// The storage behind ZynChunkData: an owned array and the number of its elements that count.
template <class T>
class ZynCameraBaseDataTemplate2 {
 public:
  ZynCameraBaseDataTemplate2() = default;
  ZynCameraBaseDataTemplate2(const ZynCameraBaseDataTemplate2&) = delete;
  ZynCameraBaseDataTemplate2& operator=(const ZynCameraBaseDataTemplate2&) = delete;
  virtual ~ZynCameraBaseDataTemplate2() = default;

  T* Data() const { return data_.get(); }
  unsigned long long Length() const { return length_; }

  /// Replaces the content by a copy. `data` may lie in the present content. Loses nothing when it throws.
  void Assign(const T* data, unsigned long long length) {
    std::unique_ptr<T[]> copy(new T[length]);
    std::memcpy(copy.get(), data, length * sizeof(T));
    data_ = std::move(copy);
    length_ = length;
  }

  /// Data that is not null, and length 0.
  void AssignNothing() {
    data_.reset(new T[0]);
    length_ = 0;
  }

  /// Length 0, and the pointer stays as it is, so whoever kept it reads old bytes and not freed memory.
  void Drop() { length_ = 0; }

 private:
  std::unique_ptr<T[]> data_;
  unsigned long long length_ = 0;
};

}  // namespace ZYNSDK

#endif
