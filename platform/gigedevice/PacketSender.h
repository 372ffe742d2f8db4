/// Sends packets of blocks, many at once.
#ifndef ZYN_GIGEDEVICE_PACKET_SENDER_H
#define ZYN_GIGEDEVICE_PACKET_SENDER_H

#include <cstdint>

#include "ThreadAnnotations.h"
#include "gigedevice/BlockRing.h"
#include "gigedevice/DeviceSettings.h"
#include "gigedevice/DeviceSocket.h"

namespace zyn::gigedevice {

/// Thread-safe: the stream and what is sent again go out between each other's groups.
class PacketSender {
 public:
  /// A group's packets are sent in one call to the system.
  static constexpr std::uint32_t kGroup = 32;

  explicit PacketSender(const DeviceSettings& settings);

  /// Sends from this address on. False, and nothing changes: the system refuses.
  bool Bind(gige::Ipv4 ip) ZYN_EXCLUDES(mutex_);
  std::uint16_t Port() ZYN_EXCLUDES(mutex_);

  /// Sends the packets first to last, at most kGroup, as far as the block has them and none is to be lost.
  void Send(const Block& block, std::uint32_t first, std::uint32_t last, bool isResent) ZYN_EXCLUDES(mutex_);
  /// Tells that packets cannot be sent again.
  void SendUnavailable(const StreamTarget& target, const ResendRequest& request) ZYN_EXCLUDES(mutex_);
  void SendTestPacket(const StreamTarget& target) ZYN_EXCLUDES(mutex_);

 private:
  class Group;

  bool IsLost() ZYN_REQUIRES(mutex_);
  void Flush(Group& group, const StreamTarget& target) ZYN_REQUIRES(mutex_);
  bool MaySegment() const ZYN_REQUIRES(mutex_);

  const SendMethod method_;
  const unsigned lossPerThousand_;
  Mutex mutex_;
  DeviceSocket socket_ ZYN_GUARDED_BY(mutex_);
  gige::Ipv4 source_ ZYN_GUARDED_BY(mutex_);
  std::uint64_t random_ ZYN_GUARDED_BY(mutex_);
  bool canSegment_ ZYN_GUARDED_BY(mutex_) = true;  // until the system says otherwise
};

}  // namespace zyn::gigedevice

#endif
