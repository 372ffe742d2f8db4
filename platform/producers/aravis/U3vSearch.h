/// Finds USB3 Vision cameras on the buses.
#ifndef ZYN_ARAVIS_U3V_SEARCH_H
#define ZYN_ARAVIS_U3V_SEARCH_H

#include <chrono>
#include <string>
#include <vector>

#include "U3vDescriptors.h"
#include "UsbContext.h"
#include "producer/Descriptions.h"

namespace zyn::aravis {

/// All cameras, sorted by identifier. Asks each for its texts, which takes it about a millisecond; a camera that does
/// not answer costs a fifth of a second, and one that is reached after `timeout` is left out. Cameras that this
/// user may not open are listed with what the system knows of them, as not accessible. The cameras' own identifier
/// (GUID) is the device identifier where it can be read.
std::vector<producer::DeviceInfo> FindU3vDevices(UsbContext& context, std::chrono::milliseconds timeout);

/// Throws Error unless the camera with this GUID is there and free: GC_ERR_ACCESS_DENIED when an application holds
/// it, GC_ERR_IO when it is gone.
void CheckU3vDeviceIsFree(UsbContext& context, const std::string& guid, const std::string& name);

}  // namespace zyn::aravis

#endif
