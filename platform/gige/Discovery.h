/// Finds the GigE Vision cameras on the network adapters of this computer.
#ifndef ZYN_GIGE_DISCOVERY_H
#define ZYN_GIGE_DISCOVERY_H

#include <chrono>
#include <span>
#include <string>
#include <vector>

#include "gige/Adapter.h"
#include "gige/GvcpWire.h"

namespace zyn::gige {

enum class ControlState {
  unknown,     ///< the camera did not answer the question in time
  free,        ///< nobody controls it
  controlled,  ///< somebody does, perhaps this process
  outOfReach   ///< its address lies in none of the adapter's subnets: it is seen, but cannot be talked to
};

/// One camera, as heard on one adapter.
struct DiscoveredDevice {
  DeviceDescription description;
  std::string adapterName;
  unsigned adapterIndex = 0;
  AdapterAddress adapter;  ///< the adapter's address in the camera's subnet; its first one when there is none
  ControlState control = ControlState::unknown;
};

struct DiscoveryOptions {
  /// How long to listen. The whole call takes this long and hardly more, however many adapters and cameras.
  std::chrono::milliseconds duration{220};
  /// Also ask each camera whether somebody controls it, within the same time.
  bool askControl = true;
};

/// Looks on the given adapters in parallel. A camera that answers several times is listed once; one that
/// answers on several adapters is listed for the adapter in whose subnet it lies, else for the first. In the
/// order of the first answers. Sends broadcasts on these adapters and on no other. Empty adapters: returns at
/// once. Thread-safe.
std::vector<DiscoveredDevice> Discover(std::span<const Adapter> adapters,
                                       const DiscoveryOptions& options = {});

/// The same on every adapter.
std::vector<DiscoveredDevice> Discover(const DiscoveryOptions& options = {});

}  // namespace zyn::gige

#endif
