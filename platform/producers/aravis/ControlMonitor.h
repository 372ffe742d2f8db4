/// Watches whether a camera is still there and still ours.
#ifndef ZYN_ARAVIS_CONTROL_MONITOR_H
#define ZYN_ARAVIS_CONTROL_MONITOR_H

#include <condition_variable>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "ThreadAnnotations.h"
#include "gige/RegisterClient.h"

namespace zyn::aravis {

/// Asks the camera every half second who controls it. libaravis has a heartbeat of its own, but needs up to eight seconds
/// to give up, and does not notice when another application holds the camera instead.
class ControlMonitor {
 public:
  /// Called with the cause, for people to read.
  using LossHandler = std::function<void(const std::string&)>;

  /// client: made with Options(). isExclusive: we took exclusive access, so that other clients may not even ask.
  /// onLost: called at most once, on the monitor's thread; must not destroy the monitor. Starts at once: the camera
  /// has to be ours now.
  ControlMonitor(std::unique_ptr<gige::RegisterClient> client, bool isExclusive, LossHandler onLost);
  /// Ends the thread; may take as long as one unanswered question, half a second.
  ~ControlMonitor();
  ControlMonitor(const ControlMonitor&) = delete;
  ControlMonitor& operator=(const ControlMonitor&) = delete;

  static gige::RegisterClient::Options Options();

 private:
  enum class Answer { ours, silent, refused, taken };
  struct Owner {
    std::uint32_t ip = 0;
    std::uint32_t port = 0;
    friend bool operator==(const Owner&, const Owner&) = default;
  };

  void Run();
  bool Pause(std::chrono::milliseconds duration);
  Answer Ask();
  void RememberOwner();
  bool ReadOwner(Owner& owner);

  // Constant after construction, or used by the thread only.
  const std::unique_ptr<gige::RegisterClient> client_;
  const bool isExclusive_;
  const LossHandler onLost_;
  bool knowsOwner_ = false;
  Owner owner_;

  Mutex mutex_;
  std::condition_variable changed_;
  bool isEnding_ ZYN_GUARDED_BY(mutex_) = false;
  std::thread thread_;
};

}  // namespace zyn::aravis

#endif
