#ifndef ZYN_FAKES_FAKE_CAMERA_INFO_H
#define ZYN_FAKES_FAKE_CAMERA_INFO_H

#include <array>
#include <string>

#include "CallLog.h"
#include "KELGeniCam.h"

namespace fakes {

/// A description with freely chosen content. Texts may be null; they must be literals.
class FakeCameraInfo : public KELGENICAM::ICameraInfo {
 public:
  explicit FakeCameraInfo(const char* serialNumber = "SN1", const char* modelName = "Area-1")
      : serial(serialNumber), model(modelName) {}

  unsigned int ProtocolType() override { return protocol; }
  int DeviceState() override { return state; }
  const char* CameraID() override { return id; }
  const char* SerialNumber() override;
  const char* ManufacturerName() override { return manufacturer; }
  const char* ModelName() override { return model; }
  const char* CameraName() override { return name; }
  const char* UserDefinedName() override { return userName; }
  const char* DeviceVersion() override { return version; }
  const char* InterfaceID() override { return "if0"; }
  const char* Text(int index) override;
  void CopyFrom(const KELGENICAM::ICameraInfo& newer) override;

  unsigned int protocol = KELGENICAM::PROTOCOL_GIGE_VISION;
  int state = KELGENICAM::DEVICE_STATE_READWRITE;
  const char* id = "id0";
  const char* serial;
  const char* manufacturer = "Maker";
  const char* model;
  const char* name = "Name";
  const char* userName = "Mine";
  const char* version = "V1";
  std::array<const char*, 10> texts{};  ///< by index; 0 is not used
  bool throwsOnSerialNumber = false;
  bool throwsOnText = false;
  CallLog calls;
};

}  // namespace fakes

#endif
