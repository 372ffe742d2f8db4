#ifndef ZYN_MANAGER_SCAN_THREAD_H
#define ZYN_MANAGER_SCAN_THREAD_H

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

namespace ZYNSDK {

class CameraManager;

/// A thread that lets its manager scan at once and then every 300 ticks, until it is stopped. Between ticks it
/// looks whether it shall stop, so stopping takes a tick at most, plus a scan that is running.
///
/// Owned by the CameraManager. Stop and the destructor are for one thread at a time. Stop is never for the thread
/// itself; the destructor is when what the thread runs ends the program, and then does not wait.
/// An exception of the scan is not caught: on a thread it ends the process.
class ScanThread {
 public:
  /// Passes the time of one tick. Tests pass their own to hold the thread or to hurry it.
  using Tick = std::function<void()>;

  static constexpr std::chrono::milliseconds kTick{10};
  static constexpr unsigned int kTicksPerScan = 300;
  static void SleepOneTick();

  /// Starts the thread; null starts none. Raises std::system_error when there can be no thread. The manager
  /// outlives this.
  explicit ScanThread(CameraManager* manager, Tick tick = &SleepOneTick);
  ScanThread(const ScanThread&) = delete;
  ScanThread& operator=(const ScanThread&) = delete;
  virtual ~ScanThread();  ///< stops

  /// Returns when the thread has ended. Harmless when repeated.
  void Stop();
  /// What the thread does. Returns at once when stopped already.
  void Run();

 private:
  CameraManager* const manager_;
  const Tick tick_;
  std::atomic<bool> isStopped_{false};
  std::thread thread_;  // last: it uses the members above
};

}  // namespace ZYNSDK

#endif
