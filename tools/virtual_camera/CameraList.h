/// The cameras of one run: from the command line, or from a JSON file.
#ifndef ZYN_VIRTUAL_CAMERA_CAMERA_LIST_H
#define ZYN_VIRTUAL_CAMERA_CAMERA_LIST_H

#include <string>
#include <vector>

#include "gigedevice/DeviceSettings.h"

namespace virtualcamera {

struct CameraEntry {
  std::string model = "ZS-A1600";
  std::string serial;    ///< empty: "VC" and the last number of the address
  std::string userName;  ///< at most 15 bytes
  zyn::gigedevice::DeviceSettings device;
};

/// Reads {"cameras": [{"address": …, "model": …, "serialNumber": …, "userDefinedName": …, "loss": …, "seed": …,
/// "delay": …, "resend": …}]}. Only the address must be there; what else is left out is as in `defaults`. Throws
/// std::runtime_error whose text names the file and the place.
std::vector<CameraEntry> ReadCameraList(const std::string& path, const CameraEntry& defaults);

/// Throws std::runtime_error for what is no address of a device.
zyn::gige::Ipv4 ParseAddress(const std::string& text);

/// Fills in serial number and MAC address, which follow from the address, and checks names and models. Throws
/// std::runtime_error, also for an address or serial number that is there twice.
void Complete(std::vector<CameraEntry>& cameras);

}  // namespace virtualcamera

#endif
