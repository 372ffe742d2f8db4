/// Takes a camera's frames and sends them as blocks of packets.
#ifndef ZYN_GIGEDEVICE_STREAM_SENDER_H
#define ZYN_GIGEDEVICE_STREAM_SENDER_H

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <thread>

#include "ThreadAnnotations.h"
#include "cameras/CameraModel.h"
#include "gigedevice/BlockRing.h"
#include "gigedevice/DeviceSettings.h"
#include "gigedevice/PacketSender.h"
#include "gigedevice/StreamTarget.h"

namespace zyn::gigedevice {

/// Owns the sending thread. While the channel is closed the camera's frames wait. Blocks count from 1 when the
/// channel is opened and go on over stops and starts, so that receivers never take a new block for a late one;
/// frames that the camera lost leave a gap. The camera must outlive it. SetTarget and Resend: one thread at a time.
class StreamSender {
 public:
  StreamSender(cameras::CameraModel& camera, const DeviceSettings& settings);
  ~StreamSender();
  StreamSender(const StreamSender&) = delete;
  StreamSender& operator=(const StreamSender&) = delete;

  bool Bind(gige::Ipv4 ip) { return packets_.Bind(ip); }
  std::uint16_t SourcePort() { return packets_.Port(); }

  /// Holds from the next block on; closing also ends the present one.
  void SetTarget(const StreamTarget& target) ZYN_EXCLUDES(mutex_);
  void SendTestPacket(const StreamTarget& target) { packets_.SendTestPacket(target); }
  void Resend(const ResendRequest& request) ZYN_EXCLUDES(mutex_);

 private:
  void Run();
  bool AwaitOpen(StreamTarget& target) ZYN_EXCLUDES(mutex_);
  void SendFrame(const StreamTarget& target);
  bool Fill(Block& block, const StreamTarget& target);
  void SendBlock(const Block& block);
  bool Pause(std::int64_t ns) ZYN_EXCLUDES(mutex_);
  std::uint64_t NextBlock(std::uint64_t frameId);

  cameras::CameraModel& camera_;
  const std::int64_t delayNs_;
  PacketSender packets_;
  BlockRing ring_;

  // The sending thread's.
  std::uint64_t channel_ = 0;  // number of the opening that the counts below belong to
  std::uint64_t blocksBefore_ = 0;
  std::uint64_t lastFrame_ = 0;

  std::atomic<bool> isOpen_{false};
  Mutex mutex_;
  std::condition_variable changed_;
  StreamTarget target_ ZYN_GUARDED_BY(mutex_);
  std::uint64_t openings_ ZYN_GUARDED_BY(mutex_) = 0;
  bool isEnding_ ZYN_GUARDED_BY(mutex_) = false;
  std::thread thread_;
};

}  // namespace zyn::gigedevice

#endif
