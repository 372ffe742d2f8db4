#include "gigedevice/PacketSender.h"

#include <netinet/udp.h>
#include <sys/socket.h>
#include <sys/uio.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>
#include <vector>

namespace zyn::gigedevice {
namespace {

constexpr int kSendBufferBytes = 4 << 20U;
constexpr std::size_t kMostSegmentBytes = 65000;  // of one piece that the system cuts

}  // namespace

/// Packets that wait to be sent: headers in memory of its own, data where it lies.
class PacketSender::Group {
 public:
  std::size_t Count() const { return count_; }

  void Add(const Block& block, std::uint32_t packetId, bool isResent) {
    Packet& packet = packets_[count_++];
    const bool isLeader = packetId == 0;
    const bool isTrailer = packetId == block.TrailerId();
    PacketHeader header{
        block.id, packetId, PacketFormat::payload, stream_status::kSuccess, block.target.hasExtendedIds,
        isResent};
    if (isResent && !header.hasExtendedIds) header.status = stream_status::kResent;
    if (isLeader) header.format = PacketFormat::leader;
    if (isTrailer) header.format = PacketFormat::trailer;
    std::size_t bytes = WriteHeader(header, packet.head.data());
    const auto timestamp =
        static_cast<std::uint64_t>(block.frame.timestampNs - block.target.timestampOriginNs);
    if (isLeader) bytes += WriteLeader(block.frame, timestamp, packet.head.data() + bytes);
    if (isTrailer) bytes += WriteTrailer(block.frame, packet.head.data() + bytes);
    packet.parts[0] = {packet.head.data(), bytes};
    packet.parts[1] = {nullptr, 0};
    if (!isLeader && !isTrailer) AddData(packet, block, packetId);
  }

  // All packets but the last have the same size, and all together fit one piece.
  bool IsUniform() const {
    if (count_ < 2) return false;
    for (std::size_t i = 1; i < count_; ++i) {
      const bool isLast = i + 1 == count_;
      if (isLast ? Bytes(i) > Bytes(0) : Bytes(i) != Bytes(0)) return false;
    }
    return count_ * Bytes(0) <= kMostSegmentBytes;
  }

  bool SendSegmented(int descriptor, sockaddr_in& receiver) {
#if defined(UDP_SEGMENT)
    std::array<iovec, std::size_t{2} * kGroup> parts{};
    for (std::size_t i = 0; i < count_; ++i) {
      parts[2 * i] = packets_[i].parts[0];
      parts[2 * i + 1] = packets_[i].parts[1];
    }
    struct alignas(cmsghdr) Control {
      std::array<char, CMSG_SPACE(sizeof(std::uint16_t))> bytes{};
    } controlBuffer;
    msghdr message{};
    message.msg_name = &receiver;
    message.msg_namelen = sizeof receiver;
    message.msg_iov = parts.data();
    message.msg_iovlen = 2 * count_;
    message.msg_control = controlBuffer.bytes.data();
    message.msg_controllen = controlBuffer.bytes.size();
    const auto size = static_cast<std::uint16_t>(Bytes(0));
    cmsghdr* control = CMSG_FIRSTHDR(&message);
    control->cmsg_level = SOL_UDP;
    control->cmsg_type = UDP_SEGMENT;
    control->cmsg_len = CMSG_LEN(sizeof size);
    std::memcpy(CMSG_DATA(control), &size, sizeof size);
    return sendmsg(descriptor, &message, 0) >= 0;
#else
    static_cast<void>(descriptor);
    static_cast<void>(receiver);
    return false;
#endif
  }

  // A packet that the system does not take is lost like one on the wire.
  void SendPlain(int descriptor, sockaddr_in& receiver) {
    std::array<mmsghdr, kGroup> messages{};
    for (std::size_t i = 0; i < count_; ++i) {
      messages[i].msg_hdr.msg_name = &receiver;
      messages[i].msg_hdr.msg_namelen = sizeof receiver;
      messages[i].msg_hdr.msg_iov = packets_[i].parts.data();
      messages[i].msg_hdr.msg_iovlen = packets_[i].parts.size();
    }
    std::size_t done = 0;
    while (done < count_) {
      const int sent = sendmmsg(descriptor, &messages[done], static_cast<unsigned>(count_ - done), 0);
      done += sent > 0 ? static_cast<std::size_t>(sent) : 1;
    }
  }

  void Clear() {
    count_ = 0;
  }

 private:
  struct Packet {
    std::array<std::uint8_t, kLargestShortPacket> head{};
    std::array<iovec, 2> parts{};
  };

  static void AddData(Packet& packet, const Block& block, std::uint32_t packetId) {
    const std::size_t at = (packetId - 1) * block.DataBytes();
    const std::size_t size = std::min(block.DataBytes(), block.frame.intendedSize - at);
    // Sending only reads it.
    packet.parts[1] = {const_cast<std::uint8_t*>(block.data.data() + at), size};
  }

  std::size_t Bytes(std::size_t i) const {
    return packets_[i].parts[0].iov_len + packets_[i].parts[1].iov_len;
  }

  std::array<Packet, kGroup> packets_;
  std::size_t count_ = 0;
};

PacketSender::PacketSender(const DeviceSettings& settings)
    : method_(settings.sendMethod),
      lossPerThousand_(settings.lossPerThousand),
      random_(settings.seed * 0x9E3779B97F4A7C15U | 1U) {}

bool PacketSender::Bind(gige::Ipv4 ip) {
  std::optional<DeviceSocket> bound = DeviceSocket::BoundTo(ip, 0, false);
  if (!bound) return false;
  bound->SetSendBuffer(kSendBufferBytes);
  const MutexLock lock(mutex_);
  socket_ = std::move(*bound);
  source_ = ip;
  return true;
}

std::uint16_t PacketSender::Port() {
  const MutexLock lock(mutex_);
  return socket_.Port();
}

// A generator of our own, so that a seed loses the same packets everywhere (xorshift64*).
bool PacketSender::IsLost() {
  if (lossPerThousand_ == 0) return false;
  random_ ^= random_ >> 12U;
  random_ ^= random_ << 25U;
  random_ ^= random_ >> 27U;
  return ((random_ * 0x2545F4914F6CDD1DU) >> 33U) % 1000 < lossPerThousand_;
}

bool PacketSender::MaySegment() const {
  if (!canSegment_ || method_ == SendMethod::plain) return false;
  return method_ == SendMethod::segmented || !gige::IsLoopback(source_);
}

void PacketSender::Flush(Group& group, const StreamTarget& target) {
  if (group.Count() == 0) return;
  sockaddr_in receiver = SocketAddress(target.ip, target.port);
  if (MaySegment() && group.IsUniform()) {
    if (group.SendSegmented(socket_.Descriptor(), receiver)) return group.Clear();
    canSegment_ = errno == ENOBUFS || errno == EAGAIN;  // a matter of the moment
  }
  group.SendPlain(socket_.Descriptor(), receiver);
  group.Clear();
}

void PacketSender::Send(const Block& block, std::uint32_t first, std::uint32_t last, bool isResent) {
  const MutexLock lock(mutex_);
  socket_.SetDoNotFragment(block.target.doNotFragment);
  Group group;
  for (std::uint32_t id = first; id <= last; ++id) {
    // Leader and trailer differ in size from the rest.
    if (id == block.TrailerId()) Flush(group, block.target);
    if (block.HasPacket(id) && !IsLost()) group.Add(block, id, isResent);
    if (id == 0) Flush(group, block.target);
  }
  Flush(group, block.target);
}

void PacketSender::SendUnavailable(const StreamTarget& target, const ResendRequest& request) {
  std::array<std::uint8_t, kLargestHeader> packet{};
  const PacketHeader header{request.blockId,        request.firstPacket,
                            PacketFormat::payload,  stream_status::kUnavailable,
                            request.hasExtendedIds, false};
  const std::size_t bytes = WriteHeader(header, packet.data());
  const MutexLock lock(mutex_);
  socket_.SendTo({target.ip, target.port}, std::span(packet).first(bytes));
}

void PacketSender::SendTestPacket(const StreamTarget& target) {
  const std::vector<std::uint8_t> packet(target.packetSize - kIpAndUdpBytes);
  const MutexLock lock(mutex_);
  socket_.SetDoNotFragment(target.doNotFragment);
  socket_.SendTo({target.ip, target.port}, packet);
}

}  // namespace zyn::gigedevice
