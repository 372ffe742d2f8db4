/// The addresses of the GigE Vision cameras on this computer's networks.
#ifndef ZYNCAM_CAMERA_ADDRESS_H
#define ZYNCAM_CAMERA_ADDRESS_H

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "gige/Discovery.h"
#include "gige/PersistentIp.h"

namespace zyncam {

struct CameraAddress {
  zyn::gige::DiscoveredDevice device;
  std::string status;  ///< "ready", "busy", "wrong subnet" or "unreachable", as everywhere in this tool
  std::optional<zyn::gige::PersistentIp>
      stored;  ///< nothing when the camera cannot be talked to, or does not tell
};

/// Searches on every adapter and asks each camera that can be talked to for its stored address. Ordered by serial
/// number. Blocks a quarter of a second, and half a second more for each camera that falls silent.
std::vector<CameraAddress> SearchAddresses();

/// "persistent,dhcp,link-local", those of them that are on; "" for none.
std::string MethodsText(std::uint32_t methods);

nlohmann::ordered_json JsonOf(const CameraAddress& camera);

}  // namespace zyncam

#endif
