/// UDP sockets as the GigE Vision control protocol needs them. Never inherited by child processes, never
/// blocking.
#ifndef ZYN_GIGE_UDP_SOCKET_H
#define ZYN_GIGE_UDP_SOCKET_H

#include <cstddef>
#include <optional>
#include <span>

#include "gige/Adapter.h"
#include "gige/GvcpWire.h"

namespace zyn::gige {

/// Owns one socket. Move-only. One thread at a time.
class UdpSocket {
 public:
  /// A socket that hears everything on one adapter, broadcast answers of devices in foreign subnets included,
  /// and can broadcast there. Nothing when the system refuses.
  static std::optional<UdpSocket> OnAdapter(const Adapter& adapter);

  /// A socket that talks to one device only, from the local address `local` (kNoAddress: the system chooses).
  /// It also learns that nobody listens there. Nothing when the system refuses or knows no way to `remote`.
  static std::optional<UdpSocket> ConnectedTo(Ipv4 local, Ipv4 remote, std::uint16_t port);

  UdpSocket(UdpSocket&& other) noexcept;
  UdpSocket& operator=(UdpSocket&& other) noexcept;
  ~UdpSocket();

  int Descriptor() const { return descriptor_; }

  /// Sends to `to` from the adapter's address `from`. For sockets made by OnAdapter.
  bool SendFrom(Ipv4 from, Ipv4 to, std::uint16_t port, ByteView datagram);
  /// Sends on a connected socket.
  bool Send(ByteView datagram);

  struct Received {
    std::size_t bytes = 0;
    Ipv4 sender;
    unsigned adapterIndex = 0;  ///< where it came in; 0 when unknown
    bool refused = false;       ///< no datagram: the device's computer says that nobody listens on the port
  };
  /// Takes one datagram; nothing when none is waiting. A datagram longer than `buffer` is cut.
  std::optional<Received> Receive(std::span<std::uint8_t> buffer);

 private:
  explicit UdpSocket(int descriptor) : descriptor_(descriptor) {}

  int descriptor_ = -1;
  unsigned adapterIndex_ = 0;
};

}  // namespace zyn::gige

#endif
