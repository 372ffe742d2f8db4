/// What a datagram means to somebody who waits for the answer to a command. Pure functions: sockets and time are the
/// callers' business.
#ifndef ZYN_GIGE_REPLY_H
#define ZYN_GIGE_REPLY_H

#include <chrono>
#include <cstdint>

#include "gige/ForceIp.h"
#include "gige/GvcpWire.h"
#include "gige/Result.h"

namespace zyn::gige {

struct Reply {
  enum class Kind {
    none,     ///< no acknowledge of this command: a late one of an earlier command, or anything else
    pending,  ///< the device asks for `more` time
    answer    ///< the acknowledge
  };
  Kind kind = Kind::none;
  std::chrono::milliseconds more{0};
  Result result = Result::noAnswer;  ///< of an answer
  ByteView payload;                  ///< of an answer; lies in the datagram
};

/// For the sender of one command with this identifier and request identifier.
Reply InterpretReply(ByteView datagram, std::uint16_t commandId, std::uint16_t requestId);

/// Request identifiers while an address is assigned.
constexpr std::uint16_t kForceRequest = 0x1001;
constexpr std::uint16_t kForceSearchRequest = 0x1002;

enum class ForceIpReply {
  none,
  refused,   ///< an error of some camera: an acknowledge does not tell which one
  confirmed  ///< the camera with the MAC address has the address and the mask
};

/// For the sender of FORCEIP and of searches after it.
ForceIpReply InterpretForceIpReply(ByteView datagram, const MacAddress& mac, const IpSettings& settings);

}  // namespace zyn::gige

#endif
