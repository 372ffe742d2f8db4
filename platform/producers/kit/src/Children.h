/// The open children of a module, by their ID: at most one for each.
#ifndef ZYN_PRODUCER_CHILDREN_H
#define ZYN_PRODUCER_CHILDREN_H

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ThreadAnnotations.h"
#include "producer/Error.h"

namespace zyn::producer {

template <class T>
class Children {
 public:
  /// Opens the child `id` by calling make(), which returns a std::shared_ptr<T> and may block: the place is
  /// taken before, so nobody opens it twice. Throws Error with GC_ERR_RESOURCE_IN_USE.
  template <class Make>
  std::shared_ptr<T> Open(const std::string& id, const Make& make) ZYN_EXCLUDES(mutex_) {
    {
      MutexLock lock(mutex_);
      if (!open_.emplace(id, nullptr).second)
        throw Error(GenTL::GC_ERR_RESOURCE_IN_USE, "\"" + id + "\" is open already.");
    }
    try {
      std::shared_ptr<T> child = make();
      MutexLock lock(mutex_);
      open_[id] = child;
      return child;
    } catch (...) {
      Drop(id);
      throw;
    }
  }

  /// The child is closed: it can be opened again.
  void Drop(const std::string& id) ZYN_EXCLUDES(mutex_) {
    std::shared_ptr<T> last;  // destroyed after the lock is given back
    MutexLock lock(mutex_);
    const auto found = open_.find(id);
    if (found == open_.end()) return;
    last = std::move(found->second);
    open_.erase(found);
  }

  /// Null when it is not open, or not yet.
  std::shared_ptr<T> Find(const std::string& id) const ZYN_EXCLUDES(mutex_) {
    MutexLock lock(mutex_);
    const auto found = open_.find(id);
    return found == open_.end() ? nullptr : found->second;
  }

  std::vector<std::shared_ptr<T>> All() const ZYN_EXCLUDES(mutex_) {
    std::vector<std::shared_ptr<T>> all;
    MutexLock lock(mutex_);
    for (const auto& [id, child] : open_) {
      if (child) all.push_back(child);
    }
    return all;
  }

 private:
  mutable Mutex mutex_;  // a leaf
  std::map<std::string, std::shared_ptr<T>> open_ ZYN_GUARDED_BY(mutex_);
};

}  // namespace zyn::producer

#endif
