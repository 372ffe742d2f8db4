#ifndef ZYN_CAMERA_CIMAGE_THREAD_H
#define ZYN_CAMERA_CIMAGE_THREAD_H

#include <atomic>
#include <thread>

#include "ThreadAnnotations.h"
#include "ZynCamera/CameraHandles.h"

namespace ZYNSDK {

class IImageHandler;
class LogicCamera;

/// The delivery thread of one camera, which owns it: while it runs, it grabs with the camera's own Grab and
/// passes each image to the registered handler.
///
/// May be used from any thread at any time. Starting, stopping and registering wait for each other; there is
/// never more than one thread, and it is joined exactly once. From inside the handler, where they would wait
/// for themselves, they do not wait: Stop and Register then take effect when the handler returns, Start does
/// nothing.
///
/// Whoever stops the stream calls Stop before and StopUnlessStreaming behind it. Both that and Start look at the
/// stream under one lock, so a stop and a start at the same time leave a thread only when the stream runs.
class CImageThread {
 public:
  explicit CImageThread(LogicCamera& camera);
  CImageThread(const CImageThread&) = delete;
  CImageThread& operator=(const CImageThread&) = delete;
  ~CImageThread();  ///< stops

  /// Starts delivering, when there is a handler, a stream, and no thread yet. Raises std::system_error "thread constructor
  /// failed" when the system gives no thread; a later Start tries again.
  void Start() ZYN_EXCLUDES(mutex_);
  /// Ends the thread, if there is one. Blocks until its present wait for a frame and its present callback have
  /// ended, which is up to the camera's grab time-out and the time that the handler takes.
  void Stop() ZYN_EXCLUDES(mutex_);
  /// Ends a thread that was started while the stream was being stopped. Blocks as Stop does.
  void StopUnlessStreaming() ZYN_EXCLUDES(mutex_);
  /// Stops, then remembers the handler (null: none) for the next Start. Does not start.
  void Register(IImageHandler* handler) ZYN_EXCLUDES(mutex_);

  bool HasThread() const ZYN_EXCLUDES(mutex_);   ///< started and not joined yet
  bool IsRunning() const { return isRunning_; }  ///< asked to run, whether or not there is a thread

 private:
  void Run();
  void Join() ZYN_REQUIRES(mutex_);
  bool IsThisThread() const;

  LogicCamera& camera_;
  ZynCamera handle_;  // what the handler receives copies of; constant after construction
  std::atomic<IImageHandler*> handler_{nullptr};  // owned by the application
  std::atomic<bool> isRunning_{false};
  mutable zyn::Mutex
      mutex_;  // held while joining, so that whoever stops second returns after the thread's end too, and while
               // the camera is asked whether it streams
  std::thread thread_ ZYN_GUARDED_BY(mutex_);
};

}  // namespace ZYNSDK

#endif
