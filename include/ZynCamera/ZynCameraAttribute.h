/// What is known about a camera without opening it.
#ifndef ZYNCAMERA_ZYN_CAMERA_ATTRIBUTE_H
#define ZYNCAMERA_ZYN_CAMERA_ATTRIBUTE_H

#include "Export.h"
#include "Types.h"

namespace ZYNSDK {

class CameraAttribute;

/// The description of one camera, as the latest search found it. Obtained from Attribute() of a camera
/// handle.
///
/// A reference: copies refer to the same record. Fetch it again after a search, which may have replaced the
/// record; an older handle stays readable until the SDK is unloaded. May be used from any thread. Nothing
/// here asks the camera, but for SetCameraAddress.
///
/// Texts are owned by the SDK and stay valid until it is unloaded. They are "" for an empty handle, for what
/// is not known, and for what the camera's protocol does not have. Design decision: CameraName,
/// CameraManufactureName, CameraModel and CameraSerialNumber alone hand on what the transport says, which is null
/// where it has no such text; a transport that follows its contract always has one. Pinned by
/// CameraAttributeTest.GeneralTextsPassNullOn.
class ZYNSDK_API ZynCameraAttribute {
 public:
  ZynCameraAttribute();  ///< refers to nothing
  ZynCameraAttribute(const ZynCameraAttribute& other) = default;
  ZynCameraAttribute& operator=(const ZynCameraAttribute& other) = default;
  virtual ~ZynCameraAttribute();

  // Every camera.
  unsigned int ProtocolType() const;  ///< a ZynProtocolType; 0 for an empty handle
  const char* CameraName() const;     ///< may be null, see above; so may the next three
  const char* CameraManufactureName() const;
  const char* CameraModel() const;
  const char* CameraSerialNumber() const;
  /// A ZynCameraStatus. For a free GigE camera it compares the subnets, and so writes the lines of
  /// IsNetSegmentConsistent.
  int CameraStatus() const;

  // GigE Vision and USB3 Vision cameras.
  const char* CameraVersion() const;
  const char* UserdefName() const;

  // GigE Vision cameras. Addresses are dotted decimal numbers.
  const char* CameraMac() const;
  const char* CameraIp() const;
  const char* CameraMask() const;
  const char* CameraGateway() const;
  const char* CameraID() const;
  const char* AdapterName() const;
  const char* AdapterIP() const;
  const char* AdapterMask() const;
  /// True when the camera lies in the subnet of its adapter: (adapter address AND adapter mask) equals
  /// (camera address AND camera mask). Writes the four texts to standard output, one a line.
  bool IsNetSegmentConsistent() const;
  /// Gives the camera an address. `mask` null: that of the adapter. `gateway` null: the first address of the
  /// network. `persistent`: true also stores the address in the camera, false lasts until its power goes.
  /// False when `ip` is null, a text is no IPv4 address, the camera is not a GigE camera, or did not take the
  /// address, and for every exception. Writes what it sends and the result to standard output. Blocks up to about 3 seconds.
  bool SetCameraAddress(const char* ip, const char* mask, const char* gateway, bool persistent);

  // USB3 Vision cameras.
  const char* CameraGUID() const;
  const char* GenCPVersion() const;  ///< always ""
  const char* U3VVersion() const;    ///< always ""
  int SpeedSupport() const;          ///< always 0
  const char* FamilyName() const;    ///< always ""
  const char* DisplayName() const;   ///< the camera name

 private:
  CameraAttribute* attribute_;
};

}  // namespace ZYNSDK

#endif
