/// Texts about devices in the form that GenTL asks for.
#ifndef ZYN_ARAVIS_DEVICE_TEXTS_H
#define ZYN_ARAVIS_DEVICE_TEXTS_H

#include <string>
#include <string_view>

#include "gige/GvcpWire.h"

namespace zyn::aravis {

/// `text` as UTF-8: bytes that are none, and control characters, become '?'.
std::string CleanUtf8(std::string_view text);

/// An identifier that stays with the camera whatever its address is: its MAC address; for virtual cameras without one
/// their serial number, or else their IP address. Printable ASCII.
std::string DeviceId(const gige::DeviceDescription& device);

}  // namespace zyn::aravis

#endif
