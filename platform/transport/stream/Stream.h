/// The data stream of an open device.
#ifndef ZYN_TRANSPORT_STREAM_H
#define ZYN_TRANSPORT_STREAM_H

#include <condition_variable>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <KELGeniCam.h>

#include "../camera/Notifier.h"
#include "../module/DeviceLink.h"
#include "../module/ModuleNodeMap.h"
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

  /// See ICamera. A stop that the producer does not come back from, or on a lost device, ends in the background.
  int StartGrabbing(KELGENICAM::GRAB_STRATEGY strategy, int frameCount);
  int StopGrabbing();
  bool IsGrabbing();
  int Grab(KELGENICAM::IImage** image, int timeoutMs);

  /// Ends the waiting Grab calls without blocking: with RESULT_DEVICE_LOST or with RESULT_ABORTED.
  void WakeLost();
  void WakeAborted();

 private:
  enum class Phase { kIdle, kStarting, kGrabbing, kStopping };

  // A stop on its way, under the state's mutex.
  struct Stop {
    bool isOver = false;  // the producer came back
    bool isLeft = false;  // nobody waits for it any more: the background does what is left to do
  };

  // Shared with the background, which may outlive the stream.
  struct State {
    Mutex mutex;  // never held during a producer's call
    std::condition_variable changed;
    Phase phase ZYN_GUARDED_BY(mutex) = Phase::kIdle;
    std::shared_ptr<GrabEngine> engine ZYN_GUARDED_BY(mutex);  // set exactly while grabbing
    std::shared_ptr<Stop> stop ZYN_GUARDED_BY(mutex);          // set exactly while stopping
  };

  Stream(Context context, std::shared_ptr<void> handle,
         std::shared_ptr<std::vector<std::shared_ptr<FrameMemory>>> stranded);
  void StartPump(GenTL::EVENT_TYPE type, KELGENICAM::NOTIFY_TYPE as);
  GenApi_3_4::INodeMap* Remote() const;
  int StartCamera(KELGENICAM::GRAB_STRATEGY strategy, int frameCount, std::shared_ptr<GrabEngine>& engine);
  int EndGrabbing(std::function<void()> task, const std::shared_ptr<Stop>& stop);
  std::function<void()> StopTask(std::shared_ptr<GrabEngine> engine, const std::shared_ptr<Stop>& stop) const;
  static void Settle(State& state, const std::shared_ptr<Stop>& stop) ZYN_REQUIRES(state.mutex);
  GrabSetup MakeSetup(KELGENICAM::GRAB_STRATEGY strategy, int frameCount) const;
  std::size_t PayloadBytes() const;
  std::optional<std::uint64_t> Info(GenTL::STREAM_INFO_CMD command) const;
  std::shared_ptr<GrabEngine> Engine();

  const Context context_;
  const std::shared_ptr<void> handle_;
  const std::shared_ptr<std::vector<std::shared_ptr<FrameMemory>>> stranded_;
  const NodeMapPtr nodeMap_;
  std::vector<std::unique_ptr<EventPump>> pumps_;  // constant after Open
  const std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace zyn::transport

#endif
