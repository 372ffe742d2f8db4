#ifndef ZYN_FAKES_EVENT_RECORDER_H
#define ZYN_FAKES_EVENT_RECORDER_H

#include <functional>
#include <ostream>
#include <thread>
#include <utility>
#include <vector>

#include "Handles.h"
#include "ThreadAnnotations.h"
#include "ZynCamera/CameraEvents.h"

namespace fakes {

/// One call of an event handler.
struct CameraEvent {
  const void* camera;  ///< the object behind the handle
  int type;
  bool is3D;  ///< which handler was called
  bool operator==(const CameraEvent&) const = default;
  friend std::ostream& operator<<(std::ostream& out, const CameraEvent& event) {
    return out << event.camera << (event.is3D ? " 3D " : " 2D ") << event.type;
  }
};

/// The calls of all handlers that share it, in order. Any thread.
class EventLog {
 public:
  void Add(const CameraEvent& event) {
    zyn::MutexLock lock(mutex_);
    events_.push_back(event);
    threads_.push_back(std::this_thread::get_id());
  }
  /// Everything since the last time it was taken.
  std::vector<CameraEvent> Take() {
    zyn::MutexLock lock(mutex_);
    threads_.clear();
    return std::exchange(events_, {});
  }
  std::vector<std::thread::id> Threads() {
    zyn::MutexLock lock(mutex_);
    return threads_;
  }

 private:
  zyn::Mutex mutex_;
  std::vector<CameraEvent> events_ ZYN_GUARDED_BY(mutex_);
  std::vector<std::thread::id> threads_ ZYN_GUARDED_BY(mutex_);
};

/// A handler of either kind, or both, that writes its calls to a log. The hook runs after that and may wait,
/// throw or call the library.
class EventRecorder : public ZYNSDK::ICameraEventHandler, public ZYNSDK::I3DCameraEventHandler {
 public:
  explicit EventRecorder(EventLog& log) : log_(log) {}
  void OnCameraEvent(ZYNSDK::ZynCamera camera, ZYNSDK::ZynCameraEventType type) override {
    log_.Add({InternalOf(camera), type, false});
    if (hook) hook();
  }
  void On3DCameraEvent(ZYNSDK::Zyn3DCamera camera, ZYNSDK::ZynCameraEventType type) override {
    log_.Add({InternalOf(camera), type, true});
    if (hook) hook();
  }

  std::function<void()> hook;

 private:
  EventLog& log_;
};

}  // namespace fakes

#endif
