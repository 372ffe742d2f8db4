#include "GevIpLib.h"

#include "IpAssignment.h"

int SetCameraIP(const std::string& serial, const std::string& ip, const std::string& mask,
                const std::string& gateway, bool persistent) {
  try {
    const auto settings = zyn::gevip::ParseSettings(ip, mask, gateway);
    if (!settings) return GEV_IP_INVALID_ADDRESS;
    return zyn::gevip::Assign(serial, *settings, persistent);
  } catch (...) {  // only memory can run out here
    return GEV_IP_ERROR;
  }
}
