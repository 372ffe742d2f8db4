#include "CameraAttribute.h"

#include <string>
#include <string_view>

#include "EmptyText.h"
#include "Guarded.h"
#include "IpText.h"
#include "KELGeniCam.h"
#include "LogicCamera.h"
#include "TraceLine.h"
#include "ZynCamera/Types.h"

namespace ZYNSDK {

using namespace KELGENICAM;

bool CameraAttribute::Is3DCamera() const {
  const std::string_view model = TextOrEmpty(CameraModel());
  return model.starts_with("KEL-LP") || model.starts_with("VX7");
}

unsigned int CameraAttribute::ProtocolType() const {
  return info_ ? info_->ProtocolType() : 0;
}

bool CameraAttribute::IsOf(unsigned int protocolType) const {
  return ProtocolType() == protocolType;
}

const char* CameraAttribute::CameraName() const {
  return info_ ? info_->CameraName() : kEmptyText;
}
const char* CameraAttribute::CameraManufactureName() const {
  return info_ ? info_->ManufacturerName() : kEmptyText;
}
const char* CameraAttribute::CameraModel() const {
  return info_ ? info_->ModelName() : kEmptyText;
}
const char* CameraAttribute::CameraSerialNumber() const {
  return info_ ? info_->SerialNumber() : kEmptyText;
}

int CameraAttribute::CameraStatus() const {
  if (!info_) return ZYN_CAMERA_UNREACHABLE;
  switch (info_->DeviceState()) {
    case DEVICE_STATE_BUSY:
    case DEVICE_STATE_OPEN_READWRITE:
    case DEVICE_STATE_OPEN_READONLY:
      return ZYN_CAMERA_IN_USE;
    case DEVICE_STATE_READWRITE:
    case DEVICE_STATE_READONLY:
      if (!IsOf(PROTOCOL_GIGE_VISION)) return ZYN_CAMERA_FREE;
      return GigeIsNetSegmentConsistent() ? ZYN_CAMERA_FREE : ZYN_CAMERA_OUTSIDE_SUBNET;
    default:
      return ZYN_CAMERA_UNREACHABLE;
  }
}

const char* CameraAttribute::GigeText(int index) const {
  return IsOf(PROTOCOL_GIGE_VISION) ? TextOrEmpty(info_->Text(index)) : kEmptyText;
}

const char* CameraAttribute::GigeCameraVersion() const {
  return IsOf(PROTOCOL_GIGE_VISION) ? TextOrEmpty(info_->DeviceVersion()) : kEmptyText;
}
const char* CameraAttribute::GigeUserdefName() const {
  return IsOf(PROTOCOL_GIGE_VISION) ? TextOrEmpty(info_->UserDefinedName()) : kEmptyText;
}
const char* CameraAttribute::GigeCameraID() const {
  return IsOf(PROTOCOL_GIGE_VISION) ? TextOrEmpty(info_->CameraID()) : kEmptyText;
}
const char* CameraAttribute::GigeCameraMac() const {
  return GigeText(TEXT_MAC_ADDRESS);
}
const char* CameraAttribute::GigeCameraIp() const {
  return GigeText(TEXT_IP_ADDRESS);
}
const char* CameraAttribute::GigeCameraMask() const {
  return GigeText(TEXT_SUBNET_MASK);
}
const char* CameraAttribute::GigeCameraGateway() const {
  return GigeText(TEXT_GATEWAY);
}
const char* CameraAttribute::GigeAdapterName() const {
  return GigeText(TEXT_ADAPTER_NAME);
}
const char* CameraAttribute::GigeAdapterIP() const {
  return GigeText(TEXT_ADAPTER_IP_ADDRESS);
}
const char* CameraAttribute::GigeAdapterMask() const {
  return GigeText(TEXT_ADAPTER_SUBNET_MASK);
}

// Design decision: each side is masked with its own mask, so two networks of different size can compare
// equal. Pinned by DifferingMasksCanStillCompareEqual.
bool CameraAttribute::GigeIsNetSegmentConsistent() const {
  if (!IsOf(PROTOCOL_GIGE_VISION)) return false;
  const std::string adapterIp = GigeAdapterIP();
  const std::string adapterMask = GigeAdapterMask();
  const std::string deviceIp = GigeCameraIp();
  const std::string deviceMask = GigeCameraMask();
  TraceLine("AdapterIP: " + adapterIp);
  TraceLine("AdapterMask: " + adapterMask);
  TraceLine("DevIP: " + deviceIp);
  TraceLine("DevMask: " + deviceMask);
  unsigned int adapter = 0;
  unsigned int adapterBits = 0;
  unsigned int device = 0;
  unsigned int deviceBits = 0;
  return TransIpToInt(adapter, adapterIp) && TransIpToInt(adapterBits, adapterMask) &&
         TransIpToInt(device, deviceIp) && TransIpToInt(deviceBits, deviceMask) &&
         (adapter & adapterBits) == (device & deviceBits);
}

// Guarded as a whole: the description and the texts on the way may throw before the camera is reached.
bool CameraAttribute::GigeSetCameraAddress(const char* ip, const char* mask, const char* gateway,
                                           bool flag) const {
  return Guarded([&] { return SetAddress(ip, mask, gateway, flag); }, false);
}

bool CameraAttribute::SetAddress(const char* ip, const char* mask, const char* gateway, bool flag) const {
  constexpr unsigned int kFirstHost = 0x01000000;  // the last dotted number lies in the highest byte
  if (!IsOf(PROTOCOL_GIGE_VISION) || !ip) return false;
  unsigned int ipNumber = 0;
  unsigned int maskNumber = 0;
  if (!TransIpToInt(ipNumber, ip)) return false;
  if (!TransIpToInt(maskNumber, mask ? mask : GigeAdapterMask())) return false;
  unsigned int gatewayNumber = (ipNumber & maskNumber) | kFirstHost;
  if (gateway && !TransIpToInt(gatewayNumber, gateway)) return false;
  return owner_->SetGevIpAddress(*info_, TransIpToString(ipNumber).c_str(),
                                 TransIpToString(maskNumber).c_str(), TransIpToString(gatewayNumber).c_str(),
                                 flag);
}

const char* CameraAttribute::Usb3CameraVersion() const {
  return IsOf(PROTOCOL_USB3_VISION) ? TextOrEmpty(info_->DeviceVersion()) : kEmptyText;
}
const char* CameraAttribute::Usb3UserdefName() const {
  return IsOf(PROTOCOL_USB3_VISION) ? TextOrEmpty(info_->UserDefinedName()) : kEmptyText;
}
const char* CameraAttribute::Usb3CameraGUID() const {
  return IsOf(PROTOCOL_USB3_VISION) ? TextOrEmpty(info_->Text(TEXT_USB_GUID)) : kEmptyText;
}
const char* CameraAttribute::Usb3DisplayName() const {
  return IsOf(PROTOCOL_USB3_VISION) ? TextOrEmpty(info_->CameraName()) : kEmptyText;
}
const char* CameraAttribute::Usb3GenCPVersion() const {
  return kEmptyText;
}
const char* CameraAttribute::Usb3U3VVersion() const {
  return kEmptyText;
}
const char* CameraAttribute::Usb3FamilyName() const {
  return kEmptyText;
}

// Design decision: the field is read, twice as it always was, and the answer is 0 whatever it says;
// applications take any other number for a capability. Pinned by
// SpeedSupportReadsTheFieldTwiceAndAnswersZero.
int CameraAttribute::Usb3SpeedSupport() const {
  if (!IsOf(PROTOCOL_USB3_VISION)) return 0;
  info_->Text(TEXT_USB_SPEED_SUPPORT);
  info_->Text(TEXT_USB_SPEED_SUPPORT);
  return 0;
}

}  // namespace ZYNSDK
