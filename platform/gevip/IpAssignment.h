/// One assignment of an IP address, step by step.
#ifndef ZYN_GEVIP_IP_ASSIGNMENT_H
#define ZYN_GEVIP_IP_ASSIGNMENT_H

#include <optional>
#include <string>
#include <vector>

#include "GevIpLib.h"
#include "gige/Discovery.h"
#include "gige/ForceIp.h"

namespace zyn::gevip {

/// Reads the three texts. Nothing when one of them is no dotted address, or when no device could have these
/// settings: the mask is no subnet mask, the address is not one of a host in that subnet, the gateway is
/// neither a unicast address nor 0.0.0.0.
std::optional<gige::IpSettings> ParseSettings(const std::string& ip, const std::string& mask,
                                              const std::string& gateway);

/// Looks for the camera, gives it the settings, and stores them in it when `persistent`. Returns a
/// GEV_IP_RESULT.
int Assign(const std::string& serial, const gige::IpSettings& settings, bool persistent);

}  // namespace zyn::gevip

#endif
