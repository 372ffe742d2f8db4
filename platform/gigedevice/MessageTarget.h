/// Where and how a device sends its messages: what the registers of the message channel say.
#ifndef ZYN_GIGEDEVICE_MESSAGE_TARGET_H
#define ZYN_GIGEDEVICE_MESSAGE_TARGET_H

#include <chrono>
#include <cstdint>

#include "gigedevice/Peer.h"

namespace zyn::gigedevice {

struct MessageTarget {
  Peer receiver;                         ///< port 0: the channel is closed
  std::chrono::milliseconds timeout{0};  ///< for one acknowledge; 0: none is asked for
  std::uint32_t retries = 0;             ///< sent again so often when it is not acknowledged
  std::int64_t timestampOriginNs = 0;    ///< the camera's time at which time stamps began at 0

  bool IsOpen() const { return receiver.port != 0 && receiver.ip != gige::kNoAddress; }
  friend bool operator==(const MessageTarget&, const MessageTarget&) = default;
};

}  // namespace zyn::gigedevice

#endif
