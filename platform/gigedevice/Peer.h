/// The other end of a datagram.
#ifndef ZYN_GIGEDEVICE_PEER_H
#define ZYN_GIGEDEVICE_PEER_H

#include <cstdint>

#include "gige/Address.h"

namespace zyn::gigedevice {

/// Who sent a command. Two sockets of one program are two peers.
struct Peer {
  gige::Ipv4 ip;
  std::uint16_t port = 0;
  friend bool operator==(const Peer&, const Peer&) = default;
};

}  // namespace zyn::gigedevice

#endif
