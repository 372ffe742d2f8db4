#include "LogicCamera.h"

#include "CImageThread.h"
#include "CameraAttribute.h"
#include "Guarded.h"
#include "KELGeniCam.h"
#include "NodeManager.h"
#include "PhysicCamera.h"
#include "SetWrapperValue.h"
#include "ZynCamera/ZynCameraAttribute.h"

namespace ZYNSDK {

LogicCamera::LogicCamera(KELGENICAM::ICameraInfo* info)
    : device_(std::make_unique<PhysicCamera>()),
      attribute_(RecordFor(info)),
      nodes_(std::make_unique<NodeManager>()),
      imageThread_(std::make_unique<CImageThread>(*this)) {}

LogicCamera::~LogicCamera() = default;

long LogicCamera::Open(const char* configFile) {
  if (const long error = Open3D()) return error;
  if (!configFile || *configFile == '\0') return ZYN_OK;
  return Guarded([&] { return SetClCardConfigFile(configFile); });
}

long LogicCamera::Open3D() {
  return Guarded([&] { return Open3DAction(); });
}

long LogicCamera::Open3DAction() {
  return device_->Open(attribute_.load()->GetCameraInfo());
}

long LogicCamera::Close() {
  return Guarded([&] { return device_->Close(); });
}

long LogicCamera::Close3D() {
  return Close();
}

bool LogicCamera::IsOpen() {
  return Guarded([&] { return device_->IsOpen(attribute_.load()->GetCameraInfo()); }, false);
}

bool LogicCamera::IsGrabbing() {
  return Guarded([&] { return device_->IsGrabbing(); }, false);
}

bool LogicCamera::HasStopped() {
  return Guarded([&] { return !device_->IsGrabbing(); }, false);
}

ZynCameraAttribute* LogicCamera::Attribute() {
  auto handle = std::make_unique<ZynCameraAttribute>();
  SetWrapperValue(handle.get(), attribute_, true);
  return handle.release();
}

bool LogicCamera::Is3DCamera() {
  return attribute_.load()->Is3DCamera();
}

void LogicCamera::replaceAttribute(KELGENICAM::ICameraInfo* info) {
  KELGENICAM::ICameraInfo* previous = attribute_.load()->GetCameraInfo();
  if (previous && info) previous->CopyFrom(*info);
  attribute_ = RecordFor(info);
}

CameraAttribute* LogicCamera::RecordFor(KELGENICAM::ICameraInfo* info) {
  for (const auto& record : records_) {
    if (record->GetCameraInfo() == info) return record.get();
  }
  return records_.emplace_back(std::make_unique<CameraAttribute>(this, info)).get();
}

bool LogicCamera::SetGevIpAddress(KELGENICAM::ICameraInfo& info, const char* ip, const char* mask,
                                  const char* gateway, bool flag) {
  return Guarded([&] { return PhysicCamera::SetGevIpAddress(info, ip, mask, gateway, flag) == ZYN_OK; },
                 false);
}

}  // namespace ZYNSDK
