#include "Handles.h"

namespace zyn::producer {
namespace {

// Handles start at an address of this library, so that two producers in one process do not hand out the same
// numbers, and a handle given to the wrong one is refused. The steps keep clear of small integers and of ~0.
constexpr std::uintptr_t kStep = 16;
const char anchor = 0;

}  // namespace

HandleTable::HandleTable() : next_(reinterpret_cast<std::uintptr_t>(&anchor) & ~(kStep - 1)) {}

void HandleTable::Insert(const std::shared_ptr<HandleTarget>& target) {
  MutexLock lock(mutex_);
  next_ += kStep;
  // A number posing as a pointer: it is never followed, only looked up.
  target->handle_ = reinterpret_cast<void*>(next_);  // NOLINT(performance-no-int-to-ptr)
  targets_.emplace(next_, target);
}

std::shared_ptr<HandleTarget> HandleTable::Find(void* handle) const {
  MutexLock lock(mutex_);
  const auto found = targets_.find(reinterpret_cast<std::uintptr_t>(handle));
  return found == targets_.end() ? nullptr : found->second;
}

void HandleTable::Remove(void* handle) {
  std::shared_ptr<HandleTarget> last;  // destroyed after the lock is given back
  MutexLock lock(mutex_);
  const auto found = targets_.find(reinterpret_cast<std::uintptr_t>(handle));
  if (found == targets_.end()) return;
  last = std::move(found->second);
  targets_.erase(found);
}

void ThrowInvalidHandle() {
  throw Error(GenTL::GC_ERR_INVALID_HANDLE, "The handle is null, closed, or of another kind.");
}

}  // namespace zyn::producer
