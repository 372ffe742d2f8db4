#include "ScanListener.h"

#include <unordered_set>

#include "HandleOn.h"
#include "LogicCamera.h"

namespace ZYNSDK {

void ScanListener::Set(ICameraEventHandler* handler) {
  handler2D_ = handler;
  reported_.clear();
}

void ScanListener::Set(I3DCameraEventHandler* handler) {
  handler3D_ = handler;
  reported_.clear();
}

void ScanListener::OnScan(const Cameras& registered) {
  if (!IsValid()) return;
  std::unordered_set<LogicCamera*> appeared;
  std::unordered_set<LogicCamera*> gone;
  for (const auto& [serialNumber, camera] : registered) {
    const auto known = reported_.find(serialNumber);
    const bool wasReported = known != reported_.end();
    if (camera->IsOnline() == wasReported) continue;
    if (wasReported) {
      gone.insert(camera);
      reported_.erase(known);
    } else {
      appeared.insert(camera);
      reported_.emplace(serialNumber, camera);
    }
  }
  for (LogicCamera* camera : appeared) Notify(camera, ZYN_CAMERA_APPEARED);
  for (LogicCamera* camera : gone) Notify(camera, ZYN_CAMERA_GONE);
}

void ScanListener::Notify(LogicCamera* camera, ZynCameraEventType type) {
  if (camera->Is3DCamera()) {
    if (handler3D_) handler3D_->On3DCameraEvent(HandleOn<Zyn3DCamera>(camera), type);
  } else {
    if (handler2D_) handler2D_->OnCameraEvent(HandleOn<ZynCamera>(camera), type);
  }
}

}  // namespace ZYNSDK
