/// The status codes of the SDK.
#ifndef ZYNCAMERA_STATUS_H
#define ZYNCAMERA_STATUS_H

namespace ZYNSDK {

/// Results of the operations that return `long`. Besides these, some operations hand results of the transport
/// through unchanged: GrabImage those from -6 to -9 and from -16 to -20 (device lost, buffer too small,
/// access denied, ...; the transport's header names them), StartGrab any, ZynNode::Execute -1 for a time-out.
enum ZynStatus : long {
  ZYN_OK = 0,
  ZYN_ERROR_NO_OBJECT = 101001,       ///< the handle is empty: fill it by a discovery or a node look-up first
  ZYN_ERROR_NO_SUCH_CAMERA = 101006,  ///< no camera with that serial number, or it is of the other kind
  ZYN_ERROR_NOT_CREATED = 101007,     ///< the transport does not know the camera (any more): search again
  ZYN_ERROR_OPEN_FAILED = 101008,     ///< the device refused: in use elsewhere, outside the subnet, or gone
  ZYN_ERROR_NOT_3D_CAMERA = 101009,   ///< a 3D operation on a camera that is not 3D
  ZYN_ERROR_NOT_OPEN = 101010,        ///< the device is not open
  ZYN_ERROR_NOT_GRABBING = 101011,    ///< stop or grab while the stream is not running
  ZYN_ERROR_ALREADY_GRABBING = 101012,  ///< start while the stream is running
  ZYN_ERROR_ALREADY_OPEN = 101013,      ///< open on a device that is already open
  ZYN_ERROR_START_FAILED = 101015,      ///< start on a device that is not open, or the stream did not come up
  ZYN_ERROR_GRAB_FAILED = 101023,       ///< no frame: time-out, aborted, or another cause below the SDK
  ZYN_ERROR_EXCEPTION = 101040,         ///< the device or its description raised an exception
  ZYN_ERROR_CONFIG_FILE = 101044,       ///< the Camera Link configuration file cannot be opened
  ZYN_ERROR_INVALID_ARGUMENT = 101050,  ///< null pointer, time-out below 1, index out of range, ...
  ZYN_ERROR_NO_FRAME = 101081,          ///< the wait for a frame succeeded but delivered none
  ZYN_ERROR_NO_SENSOR_IMAGE = 101082,   ///< the sensor image of a 3D frame could not be made
  ZYN_ERROR_INVALID_FRAME = 101084,     ///< the frame arrived incomplete or damaged
  ZYN_ERROR_NO_CHUNK_DATA = 101085,     ///< a 3D frame carries no chunk data
  ZYN_ERROR_NO_SUCH_NODE = 101091,      ///< no feature of that name in the chosen node map
  ZYN_ERROR_NO_NODE_MAP = 101092,       ///< no such node map, or it is not available
  ZYN_ERROR_UNSUPPORTED_NODE = 101093,  ///< the feature is of a kind that ZynNode does not serve
  ZYN_ERROR_NOT_READABLE = 101094,      ///< the feature is of another kind, or cannot be read now
  ZYN_ERROR_WRONG_NODE_TYPE = 101096    ///< the operation does not fit the feature's kind or current value
};

}  // namespace ZYNSDK

#endif
