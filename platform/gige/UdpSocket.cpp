#include "gige/UdpSocket.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace zyn::gige {
namespace {

constexpr int kReceiveBufferBytes = 1 << 20;  // a burst of answers from a thousand cameras fits

sockaddr_in SocketAddress(Ipv4 ip, std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(ip.value);
  return address;
}

// The socket interface takes every address family through this one pointer type.
const sockaddr* Generic(const sockaddr_in& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}

bool SetInt(int descriptor, int level, int option, int value) {
  return setsockopt(descriptor, level, option, &value, sizeof value) == 0;
}

int OpenSocket() {
  const int descriptor = socket(AF_INET, SOCK_DGRAM, 0);
  if (descriptor < 0) return -1;
  const bool isReady =
      fcntl(descriptor, F_SETFD, FD_CLOEXEC) == 0 && fcntl(descriptor, F_SETFL, O_NONBLOCK) == 0;
  if (isReady) return descriptor;
  close(descriptor);
  return -1;
}

// Keeps the socket to one adapter. Not every system allows it; the adapter index of each datagram is checked
// as well.
void BindToAdapter(int descriptor, const Adapter& adapter) {
#if defined(SO_BINDTODEVICE)
  setsockopt(descriptor, SOL_SOCKET, SO_BINDTODEVICE, adapter.name.c_str(),
             static_cast<socklen_t>(adapter.name.size() + 1));
#elif defined(IP_BOUND_IF)
  SetInt(descriptor, IPPROTO_IP, IP_BOUND_IF, static_cast<int>(adapter.index));
#endif
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

std::optional<UdpSocket> UdpSocket::OnAdapter(const Adapter& adapter) {
  const int descriptor = OpenSocket();
  if (descriptor < 0) return std::nullopt;
  UdpSocket result(descriptor);
  result.adapterIndex_ = adapter.index;
  SetInt(descriptor, SOL_SOCKET, SO_RCVBUF, kReceiveBufferBytes);
  BindToAdapter(descriptor, adapter);
  // Bound to no address: only such a socket hears answers that were broadcast.
  const sockaddr_in any = SocketAddress(kNoAddress, 0);
  const bool isReady = SetInt(descriptor, SOL_SOCKET, SO_BROADCAST, 1) &&
                       SetInt(descriptor, IPPROTO_IP, IP_PKTINFO, 1) &&
                       bind(descriptor, Generic(any), sizeof any) == 0;
  if (!isReady) return std::nullopt;
  return result;
}

std::optional<UdpSocket> UdpSocket::ConnectedTo(Ipv4 local, Ipv4 remote, std::uint16_t port) {
  const int descriptor = OpenSocket();
  if (descriptor < 0) return std::nullopt;
  UdpSocket result(descriptor);
  const sockaddr_in from = SocketAddress(local, 0);
  const sockaddr_in to = SocketAddress(remote, port);
  if (bind(descriptor, Generic(from), sizeof from) != 0) return std::nullopt;
  if (connect(descriptor, Generic(to), sizeof to) != 0) return std::nullopt;
  return result;
}

UdpSocket::UdpSocket(UdpSocket&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), adapterIndex_(other.adapterIndex_) {}

UdpSocket& UdpSocket::operator=(UdpSocket&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  std::swap(adapterIndex_, other.adapterIndex_);
  return *this;
}

UdpSocket::~UdpSocket() {
  if (descriptor_ >= 0) close(descriptor_);
}

bool UdpSocket::SendFrom(Ipv4 from, Ipv4 to, std::uint16_t port, ByteView datagram) {
  sockaddr_in address = SocketAddress(to, port);
  iovec data{};
  data.iov_base = const_cast<std::uint8_t*>(datagram.data());  // sendmsg only reads it
  data.iov_len = datagram.size();
  ControlBuffer controlBuffer;
  msghdr message{};
  message.msg_name = &address;
  message.msg_namelen = sizeof address;
  message.msg_iov = &data;
  message.msg_iovlen = 1;
  message.msg_control = controlBuffer.bytes.data();
  message.msg_controllen = controlBuffer.bytes.size();
  in_pktinfo info{};
  info.ipi_ifindex = static_cast<decltype(info.ipi_ifindex)>(adapterIndex_);
  info.ipi_spec_dst.s_addr = htonl(from.value);
  cmsghdr* control = CMSG_FIRSTHDR(&message);
  control->cmsg_level = IPPROTO_IP;
  control->cmsg_type = IP_PKTINFO;
  control->cmsg_len = CMSG_LEN(sizeof info);
  std::memcpy(CMSG_DATA(control), &info, sizeof info);
  return sendmsg(descriptor_, &message, 0) == static_cast<ssize_t>(datagram.size());
}

bool UdpSocket::Send(ByteView datagram) {
  return send(descriptor_, datagram.data(), datagram.size(), 0) == static_cast<ssize_t>(datagram.size());
}

std::optional<UdpSocket::Received> UdpSocket::Receive(std::span<std::uint8_t> buffer) {
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
  const ssize_t bytes = recvmsg(descriptor_, &message, 0);
  Received received;
  if (bytes < 0) {
    received.refused = errno == ECONNREFUSED;
    if (received.refused) return received;
    return std::nullopt;
  }
  received.bytes = static_cast<std::size_t>(bytes);
  received.sender = Ipv4{ntohl(sender.sin_addr.s_addr)};
  received.adapterIndex = AdapterIndexOf(message);
  return received;
}

}  // namespace zyn::gige
