#ifndef ZYN_DATA_CREF_H
#define ZYN_DATA_CREF_H

#include <atomic>
#include <cstdint>

namespace ZYNSDK {

/// Base of the objects that several handles share. Made with one reference, which belongs to whoever made it;
/// the reference that brings the count to 0 destroys the object. Counting is safe from any thread, the
/// object's content is not guarded.
class CRef {
 public:
  CRef() = default;
  CRef(const CRef&) = delete;
  CRef& operator=(const CRef&) = delete;
  virtual ~CRef() = default;

  void AddRef() noexcept { count_.fetch_add(1, std::memory_order_relaxed); }

  /// Gives one reference back. True when it was the last, and the object is gone.
  bool Release() noexcept {
    if (count_.fetch_sub(1, std::memory_order_acq_rel) != 1) return false;
    delete this;
    return true;
  }

  /// Gives the reference back only if it is the last; otherwise the count stays as it is. True when the object
  /// is gone. Between giving back and taking again, others could drop theirs: this has no such moment.
  bool ReleaseIfLast() noexcept {
    std::int64_t last = 1;
    if (!count_.compare_exchange_strong(last, 0, std::memory_order_acq_rel)) return false;
    delete this;
    return true;
  }

 private:
  std::atomic<std::int64_t> count_{1};
};

}  // namespace ZYNSDK

#endif
