/// The handles that consumers hold. A handle is a number that is never used twice, so a stale or invented one
/// is recognised, whatever lies in memory.
#ifndef ZYN_PRODUCER_HANDLES_H
#define ZYN_PRODUCER_HANDLES_H

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <utility>

#include "Gate.h"
#include "ThreadAnnotations.h"
#include "producer/Error.h"

namespace zyn::producer {

/// Something a handle can refer to.
class HandleTarget {
 public:
  HandleTarget() = default;
  virtual ~HandleTarget() = default;
  HandleTarget(const HandleTarget&) = delete;
  HandleTarget& operator=(const HandleTarget&) = delete;

  void* Handle() const { return handle_; }
  Gate& TheGate() { return gate_; }

 private:
  friend class HandleTable;
  void* handle_ = nullptr;  // set once, before the object is shared
  Gate gate_;
};

/// Any thread.
class HandleTable {
 public:
  HandleTable();

  void Insert(const std::shared_ptr<HandleTarget>& target) ZYN_EXCLUDES(mutex_);
  /// Null when the handle refers to nothing.
  std::shared_ptr<HandleTarget> Find(void* handle) const ZYN_EXCLUDES(mutex_);
  void Remove(void* handle) ZYN_EXCLUDES(mutex_);

 private:
  mutable Mutex mutex_;  // a leaf: nothing is taken under it
  std::uintptr_t next_ ZYN_GUARDED_BY(mutex_);
  std::unordered_map<std::uintptr_t, std::shared_ptr<HandleTarget>> targets_ ZYN_GUARDED_BY(mutex_);
};

/// The one table of this producer; outlives everything in it.
HandleTable& Handles();

[[noreturn]] void ThrowInvalidHandle();

/// The object behind a handle, of type T or derived. Throws Error with GC_ERR_INVALID_HANDLE.
template <class T>
std::shared_ptr<T> Lookup(void* handle) {
  std::shared_ptr<T> target = std::dynamic_pointer_cast<T>(Handles().Find(handle));
  if (!target) ThrowInvalidHandle();
  return target;
}

/// The same, kept from being closed for one scope: closing it waits. Not for calls that wait for events.
template <class T>
class Pin {
 public:
  explicit Pin(void* handle) : Pin(Lookup<T>(handle)) {}
  explicit Pin(std::shared_ptr<T> target) : target_(std::move(target)) {
    if (!target_->TheGate().Enter()) ThrowInvalidHandle();
  }
  ~Pin() { target_->TheGate().Leave(); }
  Pin(const Pin&) = delete;
  Pin& operator=(const Pin&) = delete;

  T* operator->() const { return target_.get(); }
  T& operator*() const { return *target_; }

 private:
  std::shared_ptr<T> target_;
};

}  // namespace zyn::producer

#endif
