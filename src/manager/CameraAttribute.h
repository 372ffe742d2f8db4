#ifndef ZYN_MANAGER_CAMERA_ATTRIBUTE_H
#define ZYN_MANAGER_CAMERA_ATTRIBUTE_H

namespace KELGENICAM {
class ICameraInfo;
}

namespace ZYNSDK {

class LogicCamera;

/// What one search said about one camera: a reader over the transport's description. Owned by the logical
/// camera, never changed after construction, so any thread may read it.
///
/// Texts belong to the description. Every text operation answers "" without a description. Those that begin
/// with Gige or Usb3 answer "" also for cameras of another protocol, and never null; the four general ones
/// hand through what the description says.
class CameraAttribute {
 public:
  /// owner: outlives this record. info: belongs to the transport, may be null.
  CameraAttribute(LogicCamera* owner, KELGENICAM::ICameraInfo* info) : owner_(owner), info_(info) {}
  CameraAttribute(const CameraAttribute&) = delete;
  CameraAttribute& operator=(const CameraAttribute&) = delete;
  virtual ~CameraAttribute() = default;

  KELGENICAM::ICameraInfo* GetCameraInfo() const { return info_; }
  bool Is3DCamera() const;  ///< the model name begins with "KEL-LP" or "VX7"

  unsigned int ProtocolType() const;  ///< 0 without a description
  const char* CameraName() const;
  const char* CameraManufactureName() const;
  const char* CameraModel() const;
  const char* CameraSerialNumber() const;
  int CameraStatus() const;  ///< a ZynCameraStatus; writes the lines below for a free GigE camera

  const char* GigeCameraVersion() const;
  const char* GigeUserdefName() const;
  const char* GigeCameraMac() const;
  const char* GigeCameraIp() const;
  const char* GigeCameraMask() const;
  const char* GigeCameraGateway() const;
  const char* GigeCameraID() const;
  const char* GigeAdapterName() const;
  const char* GigeAdapterIP() const;
  const char* GigeAdapterMask() const;
  /// Whether camera and adapter, each masked with its own mask, lie in one network. Writes the four texts to
  /// standard output. False when a text is no address.
  bool GigeIsNetSegmentConsistent() const;
  /// Null mask: the adapter's. Null gateway: the first address of the network. False on any failure.
  bool GigeSetCameraAddress(const char* ip, const char* mask, const char* gateway, bool flag) const;

  const char* Usb3CameraVersion() const;
  const char* Usb3UserdefName() const;
  const char* Usb3CameraGUID() const;
  const char* Usb3GenCPVersion() const;  ///< always ""
  const char* Usb3U3VVersion() const;    ///< always ""
  int Usb3SpeedSupport() const;          ///< always 0
  const char* Usb3FamilyName() const;    ///< always ""
  const char* Usb3DisplayName() const;

 private:
  bool IsOf(unsigned int protocolType) const;
  const char* GigeText(int index) const;
  bool SetAddress(const char* ip, const char* mask, const char* gateway, bool flag) const;

  LogicCamera* const owner_;
  KELGENICAM::ICameraInfo* const info_;
};

}  // namespace ZYNSDK

#endif
