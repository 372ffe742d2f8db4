/// Sends a camera's events to the client, one after the other, each until it is acknowledged.
#ifndef ZYN_GIGEDEVICE_MESSAGE_CHANNEL_H
#define ZYN_GIGEDEVICE_MESSAGE_CHANNEL_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <thread>

#include "ThreadAnnotations.h"
#include "cameras/CameraModel.h"
#include "gigedevice/DeviceSocket.h"
#include "gigedevice/MessageTarget.h"

namespace zyn::gigedevice {

/// Owns the sending thread. While the channel is closed, events are forgotten. A client that does not acknowledge
/// holds up the events behind; of those that wait, at most kMostWaiting are kept, and later ones are lost. The camera
/// must outlive it.
class MessageChannel final : private cameras::CameraEventListener {
 public:
  static constexpr std::size_t kMostWaiting = 64;

  explicit MessageChannel(cameras::CameraModel& camera);
  ~MessageChannel();
  MessageChannel(const MessageChannel&) = delete;
  MessageChannel& operator=(const MessageChannel&) = delete;

  /// Sends from this address on. False, and nothing changes: the system refuses.
  bool Bind(gige::Ipv4 ip) ZYN_EXCLUDES(mutex_);
  std::uint16_t SourcePort() ZYN_EXCLUDES(mutex_);

  /// Holds from the next attempt on; closing also gives up the present event.
  void SetTarget(const MessageTarget& target) ZYN_EXCLUDES(mutex_);

 private:
  using Socket = std::shared_ptr<const DeviceSocket>;

  void OnCameraEvent(const cameras::CameraEvent& event) override ZYN_EXCLUDES(mutex_);
  void Run();
  bool Await(cameras::CameraEvent& event) ZYN_EXCLUDES(mutex_);
  void Deliver(const cameras::CameraEvent& event);
  Socket OpenSocket(MessageTarget& target) ZYN_EXCLUDES(mutex_);
  bool AwaitAcknowledge(const DeviceSocket& socket, const MessageTarget& target, std::uint16_t acknowledgeId);

  cameras::CameraModel& camera_;
  std::uint16_t lastRequest_ = 0;  // the sending thread's

  Mutex mutex_;
  std::condition_variable changed_;
  Socket socket_ ZYN_GUARDED_BY(mutex_);
  MessageTarget target_ ZYN_GUARDED_BY(mutex_);
  std::deque<cameras::CameraEvent> waiting_ ZYN_GUARDED_BY(mutex_);
  bool isEnding_ ZYN_GUARDED_BY(mutex_) = false;
  std::thread thread_;
};

}  // namespace zyn::gigedevice

#endif
