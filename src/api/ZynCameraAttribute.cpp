#include "CameraAttribute.h"
#include "EmptyText.h"
#include "ZynCamera.h"

namespace ZYNSDK {

ZynCameraAttribute::ZynCameraAttribute() : attribute_(nullptr) {}

ZynCameraAttribute::~ZynCameraAttribute() = default;

unsigned int ZynCameraAttribute::ProtocolType() const {
  return attribute_ ? attribute_->ProtocolType() : 0;
}

const char* ZynCameraAttribute::CameraName() const {
  return attribute_ ? attribute_->CameraName() : kEmptyText;
}

const char* ZynCameraAttribute::CameraManufactureName() const {
  return attribute_ ? attribute_->CameraManufactureName() : kEmptyText;
}

const char* ZynCameraAttribute::CameraModel() const {
  return attribute_ ? attribute_->CameraModel() : kEmptyText;
}

const char* ZynCameraAttribute::CameraSerialNumber() const {
  return attribute_ ? attribute_->CameraSerialNumber() : kEmptyText;
}

int ZynCameraAttribute::CameraStatus() const {
  return attribute_ ? attribute_->CameraStatus() : ZYN_CAMERA_UNREACHABLE;
}

const char* ZynCameraAttribute::CameraVersion() const {
  switch (ProtocolType()) {
    case ZYN_PROTOCOL_USB3_VISION:
      return attribute_->Usb3CameraVersion();
    case ZYN_PROTOCOL_GIGE_VISION:
      return attribute_->GigeCameraVersion();
    default:
      return kEmptyText;
  }
}

const char* ZynCameraAttribute::UserdefName() const {
  switch (ProtocolType()) {
    case ZYN_PROTOCOL_USB3_VISION:
      return attribute_->Usb3UserdefName();
    case ZYN_PROTOCOL_GIGE_VISION:
      return attribute_->GigeUserdefName();
    default:
      return kEmptyText;
  }
}

const char* ZynCameraAttribute::CameraMac() const {
  return attribute_ ? attribute_->GigeCameraMac() : kEmptyText;
}

const char* ZynCameraAttribute::CameraIp() const {
  return attribute_ ? attribute_->GigeCameraIp() : kEmptyText;
}

const char* ZynCameraAttribute::CameraMask() const {
  return attribute_ ? attribute_->GigeCameraMask() : kEmptyText;
}

const char* ZynCameraAttribute::CameraGateway() const {
  return attribute_ ? attribute_->GigeCameraGateway() : kEmptyText;
}

const char* ZynCameraAttribute::CameraID() const {
  return attribute_ ? attribute_->GigeCameraID() : kEmptyText;
}

const char* ZynCameraAttribute::AdapterName() const {
  return attribute_ ? attribute_->GigeAdapterName() : kEmptyText;
}

const char* ZynCameraAttribute::AdapterIP() const {
  return attribute_ ? attribute_->GigeAdapterIP() : kEmptyText;
}

const char* ZynCameraAttribute::AdapterMask() const {
  return attribute_ ? attribute_->GigeAdapterMask() : kEmptyText;
}

bool ZynCameraAttribute::IsNetSegmentConsistent() const {
  return attribute_ && attribute_->GigeIsNetSegmentConsistent();
}

bool ZynCameraAttribute::SetCameraAddress(const char* ip, const char* mask, const char* gateway,
                                          bool persistent) {
  return attribute_ && attribute_->GigeSetCameraAddress(ip, mask, gateway, persistent);
}

const char* ZynCameraAttribute::CameraGUID() const {
  return attribute_ ? attribute_->Usb3CameraGUID() : kEmptyText;
}

const char* ZynCameraAttribute::GenCPVersion() const {
  return attribute_ ? attribute_->Usb3GenCPVersion() : kEmptyText;
}

const char* ZynCameraAttribute::U3VVersion() const {
  return attribute_ ? attribute_->Usb3U3VVersion() : kEmptyText;
}

int ZynCameraAttribute::SpeedSupport() const {
  return attribute_ ? attribute_->Usb3SpeedSupport() : 0;
}

const char* ZynCameraAttribute::FamilyName() const {
  return attribute_ ? attribute_->Usb3FamilyName() : kEmptyText;
}

const char* ZynCameraAttribute::DisplayName() const {
  return attribute_ ? attribute_->Usb3DisplayName() : kEmptyText;
}

}  // namespace ZYNSDK
