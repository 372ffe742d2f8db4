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

/// A lock that other code may derive from.
class GCBASE_API CLockEx : public CLock {};

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

/// Base of objects that carry a lock of their own.
template <class Object>
class LockableObject {
 public:
  /// Holds the object's lock for one scope.
  class Lock {
   public:
    explicit Lock(const LockableObject& obj) : m_Lock(obj.m_Lock) { m_Lock.Lock(); }
    ~Lock() { m_Lock.Unlock(); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

   private:
    CLock& m_Lock;
  };
  friend class Lock;

  CLock& GetLock() const { return m_Lock; }

 private:
  mutable CLock m_Lock;
};

}  // namespace GENICAM_NAMESPACE

#endif
