/// Searches all producers for cameras.
#ifndef ZYN_TRANSPORT_DISCOVERY_H
#define ZYN_TRANSPORT_DISCOVERY_H

#include <vector>

#include "CameraDescription.h"

namespace zyn::transport {

/// Every camera on every interface that may carry one of the protocols (a mask of PROTOCOL_TYPE), in a fixed
/// order: producers in search order, then interface ID, then device ID. The interfaces are searched at the
/// same time. Returns within four seconds, without what has not answered by then.
std::vector<CameraDescription> SearchCameras(unsigned long protocols);

/// True when the camera's ID, serial number, model, user-defined name, IP or MAC address equals the text.
bool MatchesFilter(const CameraDescription& camera, const char* filter);

}  // namespace zyn::transport

#endif
