/// Features of a camera.
#ifndef ZYNCAMERA_ZYN_NODE_H
#define ZYNCAMERA_ZYN_NODE_H

#include "Export.h"
#include "Types.h"

namespace ZYNSDK {

class CameraNode;
class ZynString;
class ZynStringArray;

/// One GenICam feature of one camera, filled by the Get...Node and Get...Nodes operations of the camera
/// handles.
///
/// A reference: copies refer to the same feature, and all stay valid until the SDK is unloaded, through close
/// and open, also while the camera is gone. May be used from any thread at any time. Name and type are those
/// found by the first look-up of the name and do not change.
///
/// Every operation returns a status. Common to all:
///   101001  the handle is empty
///   101050  a required pointer is null
///   101096  the operation does not fit the type
///   101010  the camera is not open;  101091  the feature is gone;  101092  its node map is gone
///   101040  the device refused or was lost
/// Reading and writing blocks while the device is asked, unless the value is cached.
class ZYNSDK_API ZynNode {
 public:
  ZynNode();  ///< refers to nothing

  const char* Name() const;  ///< the name that was asked for; "" for an empty handle. Owned by the SDK
  ZynNodeType Type() const;  ///< ZYN_NODE_UNKNOWN for an empty handle

  /// Booleans. 101094 when the feature cannot be read now.
  long GetBool(bool* value);
  /// Integers, and floats cut off towards zero. Any of the last three may be null. 101094 when the feature
  /// cannot be read now; the values are then 0. 101040 after three failed attempts. Design decision: of a number
  /// with 64 bits the low 32 are given, so a limit of 9223372036854775807 reads as -1. Pinned by
  /// PhysicCameraNodeCalls.ANumberOf64BitsIsReadAsItsLow32Bits.
  long GetInt(int* value, int* minimum = nullptr, int* maximum = nullptr, int* increment = nullptr);
  /// Floats and integers. As GetInt. The increment of a float without a fixed one is 1.
  long GetFloat(float* value, float* minimum = nullptr, float* maximum = nullptr, float* increment = nullptr);
  /// Enumerations: the position of the current entry among the available ones, counted from 0. `entries` may
  /// be null; otherwise it is filled with their names. On failure *index is -1 and the result 101096,
  /// whatever the cause was.
  long GetEnumIndex(int* index, ZynStringArray* entries);
  /// Enumerations: the name of the current entry and those of the available ones. `entries` may be null.
  /// Returns 0 with empty texts when the feature cannot be read now.
  long GetEnumString(ZynString* current, ZynStringArray* entries);
  long GetString(ZynString* value);    ///< serves no type: does nothing, returns 0
  long GetRegister(ZynString* value);  ///< serves no type: does nothing, returns 0

  long SetBool(bool value);  ///< booleans
  /// Integers, floats, and enumerations, there with the meaning of SetEnumIndex.
  long SetInt(int value);
  /// Floats, and integers, there cut off towards zero.
  long SetFloat(float value);
  /// Enumerations: chooses the available entry at that position. 101050 when there is none.
  long SetEnumIndex(int index);
  long SetEnumString(const ZynString& entry);  ///< enumerations: chooses the entry of that name
  long SetString(const ZynString& value);      ///< serves no type: does nothing, returns 0
  long SetRegister(const ZynString& value);    ///< serves no type: does nothing, returns 0

  /// Commands. Waits up to timeoutMs milliseconds for an earlier execution to end, then executes in any case
  /// and does not wait for the end. -1 when the earlier execution was still running.
  long Execute(int timeoutMs);

 private:
  CameraNode* node_;
};

}  // namespace ZYNSDK

#endif
