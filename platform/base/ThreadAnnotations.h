/// Thread-safety annotations that clang checks (-Wthread-safety), and a mutex that carries them.
/// Other compilers see empty macros.
#ifndef ZYN_BASE_THREAD_ANNOTATIONS_H
#define ZYN_BASE_THREAD_ANNOTATIONS_H

#include <chrono>
#include <condition_variable>
#include <mutex>

#if defined(__clang__)
#define ZYN_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define ZYN_THREAD_ATTRIBUTE(x)
#endif

#define ZYN_CAPABILITY(name) ZYN_THREAD_ATTRIBUTE(capability(name))
#define ZYN_SCOPED_CAPABILITY ZYN_THREAD_ATTRIBUTE(scoped_lockable)
#define ZYN_GUARDED_BY(mutex) ZYN_THREAD_ATTRIBUTE(guarded_by(mutex))
#define ZYN_PT_GUARDED_BY(mutex) ZYN_THREAD_ATTRIBUTE(pt_guarded_by(mutex))
#define ZYN_REQUIRES(...) ZYN_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define ZYN_EXCLUDES(...) ZYN_THREAD_ATTRIBUTE(locks_excluded(__VA_ARGS__))
#define ZYN_ACQUIRE(...) ZYN_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define ZYN_TRY_ACQUIRE(...) ZYN_THREAD_ATTRIBUTE(try_acquire_capability(__VA_ARGS__))
#define ZYN_RELEASE(...) ZYN_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
#define ZYN_RETURN_CAPABILITY(mutex) ZYN_THREAD_ATTRIBUTE(lock_returned(mutex))
#define ZYN_NO_THREAD_SAFETY_ANALYSIS ZYN_THREAD_ATTRIBUTE(no_thread_safety_analysis)

namespace zyn {

/// std::mutex with annotations. Non-recursive. Works with std::condition_variable_any.
class ZYN_CAPABILITY("mutex") Mutex {
 public:
  Mutex() = default;
  Mutex(const Mutex&) = delete;
  Mutex& operator=(const Mutex&) = delete;

  void lock() ZYN_ACQUIRE() { mutex_.lock(); }
  void unlock() ZYN_RELEASE() { mutex_.unlock(); }
  bool try_lock() ZYN_TRY_ACQUIRE(true) { return mutex_.try_lock(); }

  /// The mutex beneath, for std::condition_variable.
  std::mutex& native() ZYN_RETURN_CAPABILITY(this) { return mutex_; }

 private:
  std::mutex mutex_;
};

/// Holds a Mutex for one scope; may be unlocked and locked again in between.
class ZYN_SCOPED_CAPABILITY MutexLock {
 public:
  explicit MutexLock(Mutex& mutex) ZYN_ACQUIRE(mutex) : lock_(mutex.native()) {}
  ~MutexLock() ZYN_RELEASE() {}
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

  void Unlock() ZYN_RELEASE() { lock_.unlock(); }
  void Lock() ZYN_ACQUIRE() { lock_.lock(); }

  /// Waits on a condition variable. The mutex is held before and after; spurious returns are possible.
  void Wait(std::condition_variable& condition) { condition.wait(lock_); }

  /// The same, until `deadline` at the latest. Returns false when the time ran out.
  template <class Clock, class Duration>
  bool WaitUntil(std::condition_variable& condition,
                 const std::chrono::time_point<Clock, Duration>& deadline) {
    return condition.wait_until(lock_, deadline) == std::cv_status::no_timeout;
  }

 private:
  std::unique_lock<std::mutex> lock_;
};

}  // namespace zyn

#endif
