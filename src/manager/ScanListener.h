#ifndef ZYN_MANAGER_SCAN_LISTENER_H
#define ZYN_MANAGER_SCAN_LISTENER_H

#include <string>
#include <unordered_map>

#include "ZynCamera/CameraEvents.h"

namespace ZYNSDK {

class LogicCamera;

/// Compares what each search left with what it has reported already, and calls the application's handler for
/// the differences.
///
/// It remembers cameras of both kinds, whichever handler it has: the kind is looked at only when a difference
/// is reported. Belongs to the CameraManager, whose listener lock is held during every call.
class ScanListener {
 public:
  /// Cameras by serial number, borrowed: they live as long as the registry.
  using Cameras = std::unordered_map<std::string, LogicCamera*>;

  ScanListener() = default;
  ScanListener(const ScanListener&) = delete;
  ScanListener& operator=(const ScanListener&) = delete;
  virtual ~ScanListener() = default;

  /// Sets the handler of that kind, null for none, and forgets what was reported.
  void Set(ICameraEventHandler* handler);
  void Set(I3DCameraEventHandler* handler);
  bool IsValid() const { return handler2D_ != nullptr || handler3D_ != nullptr; }

  /// Reports all that appeared, then all that is gone. `registered`: every camera ever found; its online mark
  /// is read now. Does nothing without a handler.
  void OnScan(const Cameras& registered);
  /// Calls the handler of the camera's kind, if there is one.
  void Notify(LogicCamera* camera, ZynCameraEventType type);

 private:
  ICameraEventHandler* handler2D_ = nullptr;
  I3DCameraEventHandler* handler3D_ = nullptr;
  Cameras reported_;  // present when last looked at
};

}  // namespace ZYNSDK

#endif
