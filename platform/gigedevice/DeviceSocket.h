/// UDP sockets as a device needs them: bound to one address, telling who asked.
#ifndef ZYN_GIGEDEVICE_DEVICE_SOCKET_H
#define ZYN_GIGEDEVICE_DEVICE_SOCKET_H

#include <netinet/in.h>

#include <cstdint>
#include <optional>
#include <span>

#include "gige/Address.h"
#include "gige/GvcpWire.h"
#include "gigedevice/Peer.h"

namespace zyn::gigedevice {

sockaddr_in SocketAddress(gige::Ipv4 ip, std::uint16_t port);

/// Owns one socket. Move-only. Sending is thread-safe, the rest is for one thread at a time.
class DeviceSocket {
 public:
  DeviceSocket() = default;  ///< no socket
  /// Bound to exactly this address; port 0: the system chooses. Several sockets may share a broadcast address.
  /// Nothing when the system refuses.
  static std::optional<DeviceSocket> BoundTo(gige::Ipv4 ip, std::uint16_t port, bool isShared);

  DeviceSocket(DeviceSocket&& other) noexcept;
  DeviceSocket& operator=(DeviceSocket&& other) noexcept;
  ~DeviceSocket();

  int Descriptor() const { return descriptor_; }
  std::uint16_t Port() const;  ///< that the system chose

  struct Received {
    std::size_t bytes = 0;
    Peer sender;
    unsigned adapterIndex = 0;  ///< where it came in; 0 when unknown
  };
  /// Takes one datagram; nothing when none is waiting. A datagram longer than `buffer` is cut.
  std::optional<Received> Receive(std::span<std::uint8_t> buffer) const;

  bool SendTo(Peer receiver, gige::ByteView datagram) const;
  void SetDoNotFragment(bool isOn) const;
  void SetSendBuffer(int bytes) const;

 private:
  explicit DeviceSocket(int descriptor) : descriptor_(descriptor) {}

  int descriptor_ = -1;
};

}  // namespace zyn::gigedevice

#endif
