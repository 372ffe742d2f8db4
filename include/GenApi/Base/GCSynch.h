/// Locks of the base layer.
#ifndef BASE_GCSYNCH_H
#define BASE_GCSYNCH_H

#include <mutex>

#include "GCTypes.h"

namespace GENICAM_NAMESPACE {

/// A recursive mutex. Whoever locked it n times unlocks it n times, on the same thread.
class GCBASE_API CLock {
 public:
  CLock() {}
  ~CLock() {}
  CLock(const CLock&) = delete;
  CLock& operator=(const CLock&) = delete;

  bool TryLock() { return m_Mutex.try_lock(); }
  void Lock() { m_Mutex.lock(); }
  void Unlock() { m_Mutex.unlock(); }

 private:
  std::recursive_mutex m_Mutex;
};

/// Holds a lock for one scope.
class GCBASE_API AutoLock {
 public:
  explicit AutoLock(CLock& lock) : m_Lock(lock) { m_Lock.Lock(); }
  ~AutoLock() { m_Lock.Unlock(); }
  AutoLock(const AutoLock&) = delete;
  AutoLock& operator=(const AutoLock&) = delete;

 private:
  CLock& m_Lock;
};

}  // namespace GENICAM_NAMESPACE

#endif
