#ifndef ZYN_DEVICE_CAMERA_NODE_H
#define ZYN_DEVICE_CAMERA_NODE_H

#include <string>

#include "ZynCamera/Types.h"

namespace ZYNSDK {

class LogicCamera;
class ZynString;
class ZynStringArray;

/// The object behind ZynNode: a feature by name, node map and type, read and written through its logical
/// camera.
///
/// Owned by the camera's NodeManager and never changed after construction, so any thread may use it. The type
/// that the first look-up found decides what is allowed; the device is not asked. Every operation tests its
/// pointers first (101050), then the type (101096), and returns the camera's result.
class CameraNode {
 public:
  /// accessName: the feature's name on the device. handleName: the name that was asked for; they differ where
  /// a camera knows a feature by its older name.
  CameraNode(LogicCamera* camera, const std::string& accessName, const std::string& handleName,
             ZynNodeType type, ZynXmlSource source);
  CameraNode(const CameraNode&) = delete;
  CameraNode& operator=(const CameraNode&) = delete;
  virtual ~CameraNode() = default;

  const char* Name() const { return handleName_.c_str(); }
  ZynNodeType Type() const { return type_; }

  long GetBool(bool* value);
  /// Integers and floats. Any of the last three may be null. What is asked for is written also on failure.
  long GetInt(int* value, int* minimum, int* maximum, int* increment);
  long GetFloat(float* value, float* minimum, float* maximum, float* increment);  ///< as GetInt
  long GetEnumString(ZynString* current, ZynStringArray* entries);                ///< entries may be null
  long GetEnumIndex(int* index, ZynStringArray* entries);                         ///< entries may be null
  long GetString(ZynString* value);
  long GetRegister(ZynString* value);

  long SetBool(bool value);
  long SetInt(int value);
  long SetFloat(float value);
  long SetEnumIndex(int index);
  long SetEnumString(const char* entry);
  long SetString(const ZynString& value);
  long SetRegister(const ZynString& value);

  long Execute(int timeoutMs);

 private:
  template <class T>
  long GetTValue(T* value, T* minimum, T* maximum, T* increment);
  long ReadEnum(ZynString& current, ZynStringArray& entries);

  LogicCamera* const camera_;  // outlives this object
  const std::string accessName_;
  const std::string handleName_;
  const ZynNodeType type_;
  const ZynXmlSource source_;
};

}  // namespace ZYNSDK

#endif
