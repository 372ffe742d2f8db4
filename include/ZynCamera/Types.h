/// The enumerations of the SDK. The numbers are part of the interface and never change.
#ifndef ZYNCAMERA_TYPES_H
#define ZYNCAMERA_TYPES_H

namespace ZYNSDK {

/// The node map that a feature name is looked up in.
enum ZynXmlSource : int {
  ZYN_XML_REMOTE_DEVICE = 0,    ///< the camera's own features
  ZYN_XML_LOCAL_DEVICE = 1,     ///< the host's view of the device; for Camera Link the card's settings
  ZYN_XML_TRANSPORT_LAYER = 2,  ///< the producer that carries the camera
  ZYN_XML_INTERFACE = 3,        ///< the adapter or card that the camera is connected to
  ZYN_XML_DATA_STREAM = 4       ///< the image stream
};

/// The kind of a feature.
enum ZynNodeType : int {
  ZYN_NODE_UNKNOWN = 0,
  ZYN_NODE_BOOLEAN = 1,
  ZYN_NODE_INTEGER = 2,
  ZYN_NODE_FLOAT = 3,
  ZYN_NODE_ENUMERATION = 4,
  ZYN_NODE_COMMAND = 5,
  ZYN_NODE_STRING = 6,    ///< reserved: no look-up delivers it
  ZYN_NODE_REGISTER = 7,  ///< reserved: no look-up delivers it
  ZYN_NODE_OTHER = 8      ///< reserved: no look-up delivers it
};

/// Which frames a grab delivers when the application is slower than the camera.
enum ZynGrabStrategy : int {
  ZYN_GRAB_ONE_BY_ONE = 0,     ///< every frame, in order
  ZYN_GRAB_LATEST_ONLY = 1,    ///< only the newest frame
  ZYN_GRAB_LATEST = 2,         ///< the newest few frames, oldest first
  ZYN_GRAB_UPCOMING_IMAGE = 3  ///< the next frame that starts after the call
};

/// What a 3D camera delivers while it grabs.
enum Zyn3DGrabType : int {
  ZYN_3D_GRAB_NONE = 0,     ///< it does not grab
  ZYN_3D_GRAB_PROFILE = 1,  ///< profiles, each with the sensor image it was taken from: GrabData
  ZYN_3D_GRAB_CONTOUR = 2,  ///< calibrated profiles: GrabContour
  ZYN_3D_GRAB_BATCH = 3     ///< scans of many calibrated profiles: GrabBatchData
};

/// The element type of an image.
enum ZynImageType : int {
  ZYN_IMAGE_U8 = 0,   ///< unsigned 8-bit integer
  ZYN_IMAGE_S8 = 1,   ///< signed 8-bit integer
  ZYN_IMAGE_U16 = 2,  ///< unsigned 16-bit integer
  ZYN_IMAGE_S16 = 3,  ///< signed 16-bit integer
  ZYN_IMAGE_S32 = 4,  ///< signed 32-bit integer
  ZYN_IMAGE_F32 = 5,  ///< 32-bit floating point
  ZYN_IMAGE_F64 = 6   ///< 64-bit floating point
};

/// Values of ZynCameraAttribute::ProtocolType, and bits of the mask that DiscoveryCamerasByProtocolType
/// takes.
enum ZynProtocolType : unsigned int {
  ZYN_PROTOCOL_GIGE_VISION = 1,
  ZYN_PROTOCOL_USB3_VISION = 2,
  ZYN_PROTOCOL_CAMERA_LINK = 4,
  ZYN_PROTOCOL_COAXPRESS = 8,
  ZYN_PROTOCOL_OTHER = 16
};

/// Values of ZynCameraAttribute::CameraStatus.
enum ZynCameraStatus : int {
  ZYN_CAMERA_FREE = 0,            ///< can be opened
  ZYN_CAMERA_IN_USE = 1,          ///< open, here or elsewhere
  ZYN_CAMERA_OUTSIDE_SUBNET = 2,  ///< a GigE camera that its network adapter cannot reach: give it an address
  ZYN_CAMERA_UNREACHABLE = 3      ///< seen but not accessible, or nothing is known
};

}  // namespace ZYNSDK

#endif
