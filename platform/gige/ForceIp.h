/// Gives a camera an IP address by broadcast, whatever its present address is.
#ifndef ZYN_GIGE_FORCE_IP_H
#define ZYN_GIGE_FORCE_IP_H

#include <chrono>

#include "gige/Adapter.h"

namespace zyn::gige {

enum class ForceIpResult {
  confirmed,  ///< the camera answers a search with the new address and mask
  refused,  ///< a camera answered with an error, and the searches after that did not find the address in force
  noAnswer,  ///< it kept its address, or is not seen any more. A controlled camera keeps its address silently
  systemError  ///< no socket on that adapter, or it sends nothing
};

struct IpSettings {
  Ipv4 ip;
  Ipv4 mask;
  Ipv4 gateway;
  friend bool operator==(const IpSettings&, const IpSettings&) = default;
};

/// Tells the camera with this MAC address, which must not be zero, to take the settings until its power goes,
/// and searches for it on the adapter until it has them. Returns as soon as that is known, after `patience`
/// at the latest.
ForceIpResult ForceIp(const Adapter& adapter, const MacAddress& mac, const IpSettings& settings,
                      std::chrono::milliseconds patience);

}  // namespace zyn::gige

#endif
