#include <memory>
#include <utility>

#include "BatchScan.h"
#include "Guarded.h"
#include "LogicCamera.h"
#include "PhysicCamera.h"

namespace ZYNSDK {

namespace {

bool IsMode(Zyn3DGrabType type) {
  return type == ZYN_3D_GRAB_PROFILE || type == ZYN_3D_GRAB_CONTOUR || type == ZYN_3D_GRAB_BATCH;
}

}  // namespace

long LogicCamera::Start3DGrab(Zyn3DGrabType type) {
  return Guarded([&] { return Start3DGrabAction(type); });
}

// Design decision: the type is stored before the stream starts and stays when that fails, so that stopping always
// undoes the whole. Pinned by AStreamThatDoesNotStartLeavesTheType.
long LogicCamera::Start3DGrabAction(Zyn3DGrabType type) {
  constexpr int kUnlimited = 0;
  if (!Is3DCamera()) return ZYN_ERROR_NOT_3D_CAMERA;
  if (!IsOpen()) return ZYN_ERROR_NOT_OPEN;
  if (IsGrabbing()) return ZYN_ERROR_ALREADY_GRABBING;
  if (!IsMode(type)) return ZYN_ERROR_INVALID_ARGUMENT;
  WriteModeFeatures(type);
  if (type == ZYN_3D_GRAB_BATCH) PrepareScan();
  grabType_ = type;
  return device_->StartGrab(KELGENICAM::GRAB_ONE_BY_ONE, kUnlimited);
}

// Design decision: whether a write succeeded is not looked at, because cameras have only the features of the modes
// they know. Pinned by ACameraWithoutAModeFeatureStarts.
void LogicCamera::WriteModeFeatures(Zyn3DGrabType type) {
  const std::pair<const char*, bool> features[] = {
      {"EnableExtraction", true},
      {"EnableImage", type == ZYN_3D_GRAB_PROFILE},
      {"EnableCalibration", type != ZYN_3D_GRAB_PROFILE},
      {"BatchEnable", type == ZYN_3D_GRAB_BATCH},
  };
  for (const auto& [name, value] : features) device_->SetBool(name, ZYN_XML_REMOTE_DEVICE, value);
}

void LogicCamera::PrepareScan() {
  ScanGeometry geometry;
  if (ReadIntFeature("AcquisitionLineCount", ZYN_XML_REMOTE_DEVICE, geometry.lineCount) != ZYN_OK) {
    ReadIntFeature("AcquisitionFrameCount", ZYN_XML_REMOTE_DEVICE, geometry.lineCount);
  }
  ReadIntFeature("BatchNumber", ZYN_XML_REMOTE_DEVICE, geometry.batchNumber);
  geometry.zUpSize = FloatFeatureOrZero("ZUpSizeInfo");
  geometry.zDownSize = FloatFeatureOrZero("ZDownSizeInfo");
  geometry.outlineLength = outlineLength_;
  if (ReadIntFeature("OutlineLengthMax", ZYN_XML_REMOTE_DEVICE, geometry.outlineLength) == ZYN_OK) {
    outlineLength_ = geometry.outlineLength;
  }
  geometry.xPitch = FloatFeatureOrZero("XSizeInfo") / static_cast<float>(geometry.outlineLength);
  ReplaceScan(nullptr);  // first, so that two scans are never in memory at once
  ReplaceScan(std::make_shared<BatchScan>(geometry));
}

// Leaves the value alone on failure.
long LogicCamera::ReadIntFeature(const char* name, ZynXmlSource source, int& value) {
  int read = 0;
  int minimum = 0;
  int maximum = 0;
  int increment = 0;
  const long error = device_->GetInt(name, source, read, minimum, maximum, increment);
  if (error == ZYN_OK) value = read;
  return error;
}

float LogicCamera::FloatFeatureOrZero(const char* name) {
  float value = 0;
  float minimum = 0;
  float maximum = 0;
  float increment = 0;
  if (device_->GetFloat(name, ZYN_XML_REMOTE_DEVICE, value, minimum, maximum, increment) != ZYN_OK) return 0;
  return value;
}

long LogicCamera::Stop3DGrab() {
  return Guarded([&] { return Stop3DGrabAction(); });
}

long LogicCamera::Stop3DGrabAction() {
  if (!Is3DCamera()) return ZYN_ERROR_NOT_3D_CAMERA;
  const long result = device_->StopGrab();
  grabType_ = ZYN_3D_GRAB_NONE;
  ReplaceScan(nullptr);
  return result;
}

Zyn3DGrabType LogicCamera::GetGrabType() {
  Zyn3DGrabType type = ZYN_3D_GRAB_NONE;
  Guarded([&] { return GetGrabTypeAction(type); });
  return type;
}

long LogicCamera::GetGrabTypeAction(Zyn3DGrabType& type) {
  type = ZYN_3D_GRAB_NONE;
  if (device_->IsGrabbing()) type = grabType_;
  return ZYN_OK;
}

void LogicCamera::ReplaceScan(std::shared_ptr<BatchScan> scan) {
  zyn::MutexLock lock(scanMutex_);
  scan_.swap(scan);  // the previous one ends with the argument, after the lock
}

std::shared_ptr<BatchScan> LogicCamera::CurrentScan() {
  zyn::MutexLock lock(scanMutex_);
  return scan_;
}

}  // namespace ZYNSDK
