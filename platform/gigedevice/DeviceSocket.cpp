#include "gigedevice/DeviceSocket.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <utility>

namespace zyn::gigedevice {
namespace {

bool SetInt(int descriptor, int level, int option, int value) {
  return setsockopt(descriptor, level, option, &value, sizeof value) == 0;
}

const sockaddr* Generic(const sockaddr_in& address) {
  return reinterpret_cast<const sockaddr*>(&address);  // the socket interface's one pointer type
}

unsigned AdapterIndexOf(msghdr& message) {
  for (cmsghdr* control = CMSG_FIRSTHDR(&message); control != nullptr;
       control = CMSG_NXTHDR(&message, control)) {
    if (control->cmsg_level != IPPROTO_IP || control->cmsg_type != IP_PKTINFO) continue;
    in_pktinfo info{};
    std::memcpy(&info, CMSG_DATA(control), sizeof info);
    return static_cast<unsigned>(info.ipi_ifindex);
  }
  return 0;
}

struct alignas(cmsghdr) ControlBuffer {
  std::array<char, CMSG_SPACE(sizeof(in_pktinfo))> bytes{};
};

}  // namespace

sockaddr_in SocketAddress(gige::Ipv4 ip, std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(ip.value);
  return address;
}

std::optional<DeviceSocket> DeviceSocket::BoundTo(gige::Ipv4 ip, std::uint16_t port, bool isShared) {
  const int descriptor = socket(AF_INET, SOCK_DGRAM, 0);
  if (descriptor < 0) return std::nullopt;
  DeviceSocket result(descriptor);
  const sockaddr_in address = SocketAddress(ip, port);
  const bool isReady = fcntl(descriptor, F_SETFD, FD_CLOEXEC) == 0 &&
                       (!isShared || SetInt(descriptor, SOL_SOCKET, SO_REUSEADDR, 1)) &&
                       SetInt(descriptor, SOL_SOCKET, SO_BROADCAST, 1) &&
                       SetInt(descriptor, IPPROTO_IP, IP_PKTINFO, 1) &&
                       bind(descriptor, Generic(address), sizeof address) == 0;
  if (!isReady) return std::nullopt;
  return result;
}

DeviceSocket::DeviceSocket(DeviceSocket&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)) {}

DeviceSocket& DeviceSocket::operator=(DeviceSocket&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  return *this;
}

DeviceSocket::~DeviceSocket() {
  if (descriptor_ >= 0) close(descriptor_);
}

std::uint16_t DeviceSocket::Port() const {
  sockaddr_in address{};
  socklen_t length = sizeof address;
  if (getsockname(descriptor_, reinterpret_cast<sockaddr*>(&address), &length) != 0) return 0;
  return ntohs(address.sin_port);
}

std::optional<DeviceSocket::Received> DeviceSocket::Receive(std::span<std::uint8_t> buffer) const {
  sockaddr_in sender{};
  iovec data{buffer.data(), buffer.size()};
  ControlBuffer controlBuffer;
  msghdr message{};
  message.msg_name = &sender;
  message.msg_namelen = sizeof sender;
  message.msg_iov = &data;
  message.msg_iovlen = 1;
  message.msg_control = controlBuffer.bytes.data();
  message.msg_controllen = controlBuffer.bytes.size();
  const ssize_t bytes = recvmsg(descriptor_, &message, MSG_DONTWAIT);
  if (bytes < 0) return std::nullopt;
  return Received{static_cast<std::size_t>(bytes),
                  {gige::Ipv4{ntohl(sender.sin_addr.s_addr)}, ntohs(sender.sin_port)},
                  AdapterIndexOf(message)};
}

bool DeviceSocket::SendTo(Peer receiver, gige::ByteView datagram) const {
  const sockaddr_in address = SocketAddress(receiver.ip, receiver.port);
  return sendto(descriptor_, datagram.data(), datagram.size(), 0, Generic(address), sizeof address) ==
         static_cast<ssize_t>(datagram.size());
}

void DeviceSocket::SetDoNotFragment(bool isOn) const {
#if defined(IP_MTU_DISCOVER)
  SetInt(descriptor_, IPPROTO_IP, IP_MTU_DISCOVER, isOn ? IP_PMTUDISC_DO : IP_PMTUDISC_DONT);
#elif defined(IP_DONTFRAG)
  SetInt(descriptor_, IPPROTO_IP, IP_DONTFRAG, isOn ? 1 : 0);
#endif
}

void DeviceSocket::SetSendBuffer(int bytes) const {
  SetInt(descriptor_, SOL_SOCKET, SO_SNDBUF, bytes);
}

}  // namespace zyn::gigedevice
