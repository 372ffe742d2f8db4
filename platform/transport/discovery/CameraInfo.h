/// The published description of one camera.
#ifndef ZYN_TRANSPORT_CAMERA_INFO_H
#define ZYN_TRANSPORT_CAMERA_INFO_H

#include <atomic>

#include <KELGeniCam.h>

#include "CameraDescription.h"

namespace zyn::transport {

/// Points at an immutable description, so readers need no lock and never see half of a change. Objects and
/// descriptions are owned by the InfoStore and never freed.
class CameraInfo final : public KELGENICAM::ICameraInfo {
 public:
  explicit CameraInfo(const CameraDescription* description) : description_(description) {}

  unsigned int ProtocolType() override { return Description().protocol; }
  int DeviceState() override { return Description().state; }
  const char* CameraID() override { return Description().key.deviceId.c_str(); }
  const char* SerialNumber() override { return Description().serial.c_str(); }
  const char* ManufacturerName() override { return Description().vendor.c_str(); }
  const char* ModelName() override { return Description().model.c_str(); }
  const char* CameraName() override { return Description().name.c_str(); }
  const char* UserDefinedName() override { return Description().userName.c_str(); }
  const char* DeviceVersion() override { return Description().version.c_str(); }
  const char* InterfaceID() override { return Description().key.interfaceId.c_str(); }
  const char* Text(int index) override;
  void CopyFrom(const ICameraInfo& newer) override;

  const CameraDescription& Description() const { return *description_.load(std::memory_order_acquire); }

 private:
  std::atomic<const CameraDescription*> description_;
};

}  // namespace zyn::transport

#endif
