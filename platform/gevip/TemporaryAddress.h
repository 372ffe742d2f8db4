/// An address under which a camera of a foreign network can be talked to for a moment.
#ifndef ZYN_GEVIP_TEMPORARY_ADDRESS_H
#define ZYN_GEVIP_TEMPORARY_ADDRESS_H

#include <optional>
#include <vector>

#include "gige/Discovery.h"
#include "gige/ForceIp.h"

namespace zyn::gevip {

/// A host address of one of the adapter's networks that nobody answers at: not the adapter's own, no camera's of
/// `all`, no gateway named by the camera or by `wanted`. Tries a few from the end of each network, where routers
/// and address servers seldom are, and asks the wire about each; a host that is switched off cannot be noticed.
/// Nothing when all of them are in use. Blocks up to a quarter of a second for each, usually for one.
std::optional<gige::IpSettings> FindTemporaryAddress(const gige::Adapter& adapter,
                                                     const gige::DiscoveredDevice& camera,
                                                     const std::vector<gige::DiscoveredDevice>& all,
                                                     const gige::IpSettings& wanted);

}  // namespace zyn::gevip

#endif
