#include "CameraNode.h"

#include <cmath>
#include <limits>

#include "Guarded.h"
#include "LogicCamera.h"
#include "ZynCamera.h"

namespace ZYNSDK {

namespace {

// Cuts towards zero. What an int cannot hold becomes the nearest that it can, and what is no number 0: the
// plain conversion is undefined there, and float limits of cameras are often that large.
int ToInt(float value) {
  if (std::isnan(value)) return 0;
  if (value >= 2147483648.0F) return std::numeric_limits<int>::max();
  if (value < -2147483648.0F) return std::numeric_limits<int>::min();
  return static_cast<int>(value);
}

void Convert(float from, float& to) {
  to = from;
}
void Convert(float from, int& to) {
  to = ToInt(from);
}
void Convert(int from, float& to) {
  to = static_cast<float>(from);
}
void Convert(int from, int& to) {
  to = from;
}

template <class From>
struct Quadruple {
  From value = 0;
  From minimum = 0;
  From maximum = 0;
  From increment = 0;

  template <class To>
  void Store(To* valueOut, To* minimumOut, To* maximumOut, To* incrementOut) const {
    Convert(value, *valueOut);
    if (minimumOut) Convert(minimum, *minimumOut);
    if (maximumOut) Convert(maximum, *maximumOut);
    if (incrementOut) Convert(increment, *incrementOut);
  }
};

}  // namespace

CameraNode::CameraNode(LogicCamera* camera, const std::string& accessName, const std::string& handleName,
                       ZynNodeType type, ZynXmlSource source)
    : camera_(camera), accessName_(accessName), handleName_(handleName), type_(type), source_(source) {}

long CameraNode::GetBool(bool* value) {
  if (!value) return ZYN_ERROR_INVALID_ARGUMENT;
  if (type_ != ZYN_NODE_BOOLEAN) return ZYN_ERROR_WRONG_NODE_TYPE;
  return camera_->GetBoolValue(accessName_, source_, *value);
}

template <class T>
long CameraNode::GetTValue(T* value, T* minimum, T* maximum, T* increment) {
  if (!value) return ZYN_ERROR_INVALID_ARGUMENT;
  if (type_ == ZYN_NODE_FLOAT) {
    Quadruple<float> read;
    const long result =
        camera_->GetFloatValue(accessName_, source_, read.value, read.minimum, read.maximum, read.increment);
    read.Store(value, minimum, maximum, increment);
    return result;
  }
  if (type_ == ZYN_NODE_INTEGER) {
    Quadruple<int> read;
    const long result =
        camera_->GetIntValue(accessName_, source_, read.value, read.minimum, read.maximum, read.increment);
    read.Store(value, minimum, maximum, increment);
    return result;
  }
  return ZYN_ERROR_WRONG_NODE_TYPE;
}

long CameraNode::GetInt(int* value, int* minimum, int* maximum, int* increment) {
  return GetTValue(value, minimum, maximum, increment);
}

long CameraNode::GetFloat(float* value, float* minimum, float* maximum, float* increment) {
  return GetTValue(value, minimum, maximum, increment);
}

long CameraNode::ReadEnum(ZynString& current, ZynStringArray& entries) {
  return camera_->GetEnumValue(accessName_, source_, current, entries);
}

long CameraNode::GetEnumString(ZynString* current, ZynStringArray* entries) {
  if (!current) return ZYN_ERROR_INVALID_ARGUMENT;
  if (type_ != ZYN_NODE_ENUMERATION) return ZYN_ERROR_WRONG_NODE_TYPE;
  return Guarded([&] {
    ZynStringArray unused;
    return ReadEnum(*current, entries ? *entries : unused);
  });
}

// Design decision: a read that fails answers 101096 as well, like a current value that is no entry: there is
// no index to give. Pinned by AFailedReadOfTheIndexSaysWrongType.
long CameraNode::GetEnumIndex(int* index, ZynStringArray* entries) {
  if (!index) return ZYN_ERROR_INVALID_ARGUMENT;
  if (type_ != ZYN_NODE_ENUMERATION) return ZYN_ERROR_WRONG_NODE_TYPE;
  *index = -1;
  constexpr long kNoIndex = ZYN_ERROR_WRONG_NODE_TYPE;
  return Guarded(
      [&]() -> long {
        ZynString current;
        ZynStringArray own;
        ZynStringArray& names = entries ? *entries : own;
        if (ReadEnum(current, names) != ZYN_OK) return kNoIndex;
        const int count = static_cast<int>(names.length());
        for (int i = 0; i < count; ++i) {
          if (names[i] != current) continue;
          *index = i;
          return ZYN_OK;
        }
        return kNoIndex;
      },
      kNoIndex);
}

// Design decision: texts and registers are served by no type; these do nothing and report success. Pinned by
// TextAndRegisterOperationsDoNothingAndSucceed.
long CameraNode::GetString(ZynString* /*value*/) {
  return ZYN_OK;
}
long CameraNode::GetRegister(ZynString* /*value*/) {
  return ZYN_OK;
}
long CameraNode::SetString(const ZynString& /*value*/) {
  return ZYN_OK;
}
long CameraNode::SetRegister(const ZynString& /*value*/) {
  return ZYN_OK;
}

long CameraNode::SetBool(bool value) {
  if (type_ != ZYN_NODE_BOOLEAN) return ZYN_ERROR_WRONG_NODE_TYPE;
  return camera_->SetBoolValue(accessName_, source_, value);
}

long CameraNode::SetInt(int value) {
  switch (type_) {
    case ZYN_NODE_INTEGER:
      return camera_->SetIntValue(accessName_, source_, value);
    case ZYN_NODE_FLOAT:
      return camera_->SetFloatValue(accessName_, source_, static_cast<float>(value));
    case ZYN_NODE_ENUMERATION:
      return SetEnumIndex(value);
    default:
      return ZYN_ERROR_WRONG_NODE_TYPE;
  }
}

long CameraNode::SetFloat(float value) {
  switch (type_) {
    case ZYN_NODE_FLOAT:
      return camera_->SetFloatValue(accessName_, source_, value);
    case ZYN_NODE_INTEGER:
      return camera_->SetIntValue(accessName_, source_, ToInt(value));
    default:
      return ZYN_ERROR_WRONG_NODE_TYPE;
  }
}

long CameraNode::SetEnumIndex(int index) {
  if (type_ != ZYN_NODE_ENUMERATION) return ZYN_ERROR_WRONG_NODE_TYPE;
  return Guarded([&]() -> long {
    ZynString current;
    ZynStringArray entries;
    if (const long error = ReadEnum(current, entries)) return error;
    if (index < 0 || static_cast<unsigned int>(index) >= entries.length()) return ZYN_ERROR_INVALID_ARGUMENT;
    return SetEnumString(entries[index].getStr());
  });
}

long CameraNode::SetEnumString(const char* entry) {
  if (!entry) return ZYN_ERROR_INVALID_ARGUMENT;
  if (type_ != ZYN_NODE_ENUMERATION) return ZYN_ERROR_WRONG_NODE_TYPE;
  return Guarded([&] { return camera_->SetEnumStringValue(accessName_, source_, entry); });
}

long CameraNode::Execute(int timeoutMs) {
  if (type_ != ZYN_NODE_COMMAND) return ZYN_ERROR_WRONG_NODE_TYPE;
  return camera_->ExecuteNode(accessName_, source_, timeoutMs);
}

}  // namespace ZYNSDK
