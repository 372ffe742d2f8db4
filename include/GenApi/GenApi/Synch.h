/// The lock of a node map, and guards for it.
#ifndef GENAPI_SYNCH_H
#define GENAPI_SYNCH_H

#include <mutex>
#include "../Base/GCTypes.h"
#include "GenApiDll.h"

namespace GENAPI_NAMESPACE {

class LockDepth;

/// A recursive mutex. Whoever locked it n times unlocks it n times, on the same thread.
class GENAPI_DECL CLock {
 public:
  CLock() : m_Depth(0) {}
  ~CLock() {}
  CLock(const CLock&) = delete;
  CLock& operator=(const CLock&) = delete;

  /// Returns false at once when another thread holds the lock.
  bool TryLock() {
    if (!m_Mutex.try_lock()) return false;
    ++m_Depth;
    return true;
  }
  void Lock() {
    m_Mutex.lock();
    ++m_Depth;
  }
  void Unlock() {
    --m_Depth;
    m_Mutex.unlock();
  }

 protected:
  friend class LockDepth;
  // How often the thread that holds the lock has locked it; only that thread may ask.
  int m_Depth;

 private:
  std::recursive_mutex m_Mutex;
};

/// A lock that other code may derive from.
class GENAPI_DECL CLockEx : public CLock {};

/// Holds a lock for one scope.
class GENAPI_DECL AutoLock {
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

}  // namespace GENAPI_NAMESPACE

#endif
