#include "U3vInterface.h"

#include "U3vDevice.h"
#include "U3vSearch.h"

namespace zyn::aravis {

using namespace GenTL;
using producer::Error;

producer::InterfaceInfo DescribeUsb() {
  producer::InterfaceInfo info;
  info.id = "USB3Vision";
  info.displayName = "USB";
  info.tlType = GENTL_TLTYPE_U3V;
  info.tlVersionMajor = 1;
  info.tlVersionMinor = 0;
  return info;
}

std::vector<producer::DeviceInfo> U3vInterface::FindDevices(std::chrono::milliseconds timeout) {
  return FindU3vDevices(usb_, timeout);
}

std::unique_ptr<producer::Device> U3vInterface::OpenDevice(const producer::DeviceInfo& info,
                                                           producer::Access access,
                                                           producer::DeviceListener& listener) {
  if (!info.u3v) throw Error(GC_ERR_INVALID_ID, info.id + " is no USB3 Vision camera.");
  if (info.u3v->guid.empty()) {
    throw Error(
        GC_ERR_ACCESS_DENIED,
        info.id + " may not be opened by this user: the system has to allow it, on Linux by a udev rule.");
  }
  if (access == producer::Access::readOnly)
    throw Error(GC_ERR_NOT_IMPLEMENTED,
                "A USB3 Vision camera has one user at a time: there is no reading beside.");
  return std::make_unique<U3vDevice>(info, usb_, disposer_, listener);
}

}  // namespace zyn::aravis
