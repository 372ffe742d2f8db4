#ifndef ZYN_FAKES_CALL_LOG_H
#define ZYN_FAKES_CALL_LOG_H

#include <algorithm>
#include <string>
#include <vector>

#include "ThreadAnnotations.h"

namespace fakes {

/// The names of the calls a fake received, in order. Any thread.
class CallLog {
 public:
  void Add(const std::string& name) {
    zyn::MutexLock lock(mutex_);
    names_.push_back(name);
  }
  std::vector<std::string> Names() const {
    zyn::MutexLock lock(mutex_);
    return names_;
  }
  int Count(const std::string& name) const {
    zyn::MutexLock lock(mutex_);
    return static_cast<int>(std::count(names_.begin(), names_.end(), name));
  }
  void Clear() {
    zyn::MutexLock lock(mutex_);
    names_.clear();
  }

 private:
  mutable zyn::Mutex mutex_;
  std::vector<std::string> names_ ZYN_GUARDED_BY(mutex_);
};

}  // namespace fakes

#endif
