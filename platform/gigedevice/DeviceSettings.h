/// What makes one virtual device: where it answers, and what goes wrong with it.
#ifndef ZYN_GIGEDEVICE_DEVICE_SETTINGS_H
#define ZYN_GIGEDEVICE_DEVICE_SETTINGS_H

#include <chrono>
#include <cstdint>

#include "gige/Address.h"

namespace zyn::gigedevice {

/// How packets are handed to the system.
enum class SendMethod {
  automatic,  ///< in segments where the system has them, but never from a loopback address: packet sockets
              ///< there see the segments joined
  plain,      ///< each packet by itself
  segmented,  ///< many packets in one piece, which the system or the adapter cuts; plain where that fails
};

struct DeviceSettings {
  gige::Ipv4 ip;         ///< one of this computer's addresses; all of 127.0.0.0/8 are
  gige::MacAddress mac;  ///< unique among the devices
  /// FORCEIP replaces `ip` on its adapter instead of looking for the new address on this computer. For a network
  /// namespace of its own: the adapter's other users lose the address.
  bool configuresAdapter = false;
  bool hasResend = true;  ///< offers to send lost packets again
  SendMethod sendMethod = SendMethod::automatic;

  unsigned lossPerThousand = 0;        ///< stream packets that are not sent, 0 to 1000
  std::uint64_t seed = 1;              ///< the same seed loses the same packets
  std::chrono::milliseconds delay{0};  ///< each frame leaves this much later
};

}  // namespace zyn::gigedevice

#endif
