/// The data stream of an open device.
#ifndef ZYN_TRANSPORT_STREAM_H
#define ZYN_TRANSPORT_STREAM_H

#include <condition_variable>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <KELGeniCam.h>

#include "../camera/Notifier.h"
#include "../module/DeviceLink.h"
#include "../module/ModuleNodeMap.h"
#include "../producer/Background.h"
#include "../producer/EventPump.h"
#include "FramePool.h"
#include "GrabEngine.h"
#include "ThreadAnnotations.h"

namespace GenApi_3_4 {
struct INodeMap;
}

namespace zyn::transport {

/// Starts and stops acquisitions, one at a time: host first, then the camera, and back in reverse. Thread-safe.
class Stream {
 public:
  /// What the stream needs of the device it belongs to.
  struct Context {
    ProducerPtr producer;
    std::shared_ptr<void> device;  ///< the device's handle
    std::shared_ptr<DeviceLink> link;
    std::shared_ptr<Notifier> notifier;
    std::shared_ptr<FramePool> pool;
    NodeMapPtr remote;  ///< the camera's own features
    unsigned int protocol = KELGENICAM::PROTOCOL_OTHER;
  };

  /// Opens the device's first data stream. Null when it has none that can be opened; then `result` says why.
  static std::unique_ptr<Stream> Open(Context context, int& result);
  ~Stream();
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;

  const NodeMapPtr& NodeMap() const { return nodeMap_; }

  /// See ICamera. StopGrabbing on a lost device leaves the cleaning up to the background, and so it does when the
  /// producer does not come back in time.
  int StartGrabbing(KELGENICAM::GRAB_STRATEGY strategy, int frameCount) ZYN_EXCLUDES(mutex_);
  int StopGrabbing() ZYN_EXCLUDES(mutex_);
  bool IsGrabbing() ZYN_EXCLUDES(mutex_);
  int Grab(KELGENICAM::IImage** image, int timeoutMs) ZYN_EXCLUDES(mutex_);

  /// Ends the waiting Grab calls without blocking: with RESULT_DEVICE_LOST or with RESULT_ABORTED.
  void WakeLost() ZYN_EXCLUDES(mutex_);
  void WakeAborted() ZYN_EXCLUDES(mutex_);

 private:
  enum class Phase { kIdle, kStarting, kGrabbing, kStopping };

  Stream(Context context, std::shared_ptr<void> handle,
         std::shared_ptr<std::vector<std::shared_ptr<FrameMemory>>> stranded);
  void StartPump(GenTL::EVENT_TYPE type, KELGENICAM::NOTIFY_TYPE as);
  GenApi_3_4::INodeMap* Remote() const;
  int StartCamera(KELGENICAM::GRAB_STRATEGY strategy, int frameCount, std::shared_ptr<GrabEngine>& engine);
  std::optional<Background> BeginStop(const std::shared_ptr<GrabEngine>& engine) const;
  bool AwaitStop() ZYN_EXCLUDES(mutex_);
  GrabSetup MakeSetup(KELGENICAM::GRAB_STRATEGY strategy, int frameCount) const;
  std::size_t PayloadBytes() const;
  std::optional<std::uint64_t> Info(GenTL::STREAM_INFO_CMD command) const;
  std::shared_ptr<GrabEngine> Engine() ZYN_EXCLUDES(mutex_);

  const Context context_;
  const std::shared_ptr<void> handle_;
  const std::shared_ptr<std::vector<std::shared_ptr<FrameMemory>>> stranded_;
  const NodeMapPtr nodeMap_;
  std::vector<std::unique_ptr<EventPump>> pumps_;  // constant after Open

  Mutex mutex_;  // never held during a producer's call
  std::condition_variable phaseChanged_;
  Phase phase_ ZYN_GUARDED_BY(mutex_) = Phase::kIdle;
  std::shared_ptr<GrabEngine> engine_ ZYN_GUARDED_BY(mutex_);  // set exactly while grabbing
  std::optional<Background> stopping_ ZYN_GUARDED_BY(mutex_);  // set while stopping, as soon as it runs
};

}  // namespace zyn::transport

#endif
