/// Learning of cameras that are plugged in and unplugged.
#ifndef ZYNCAMERA_CAMERA_EVENTS_H
#define ZYNCAMERA_CAMERA_EVENTS_H

#include "CameraHandles.h"
#include "Export.h"
#include "Types.h"

namespace ZYNSDK {

/// What happened to a camera.
enum ZynCameraEventType : int {
  ZYN_CAMERA_APPEARED = 1,  ///< it is present, and was not reported before, or was reported gone
  ZYN_CAMERA_GONE = 2       ///< it was reported present, and the latest search did not find it
};

/// What the application implements to hear of 2D cameras.
///
/// Called on the SDK's scan thread, one call at a time. A handler may use the camera, search, open, grab, and end
/// the program with exit; the next search waits for it. Design decisions:
/// - A handler must register or unregister no handler: that call would wait for the handler it is in, forever.
///   Pinned by CameraEventsDeathTest.AHandlerThatRegistersAHandlerNeverReturns.
/// - An exception that leaves a handler ends the process, as it does on any thread.
///   Pinned by CameraEventsDeathTest.AnExceptionOfAHandlerEndsTheProcess.
class ICameraEventHandler {
 public:
  /// `camera`: a handle of the call's own; equal to every other handle on the same camera.
  virtual void OnCameraEvent(ZynCamera camera, ZynCameraEventType type) = 0;
  virtual ~ICameraEventHandler() {}
};

/// The same for 3D cameras.
class I3DCameraEventHandler {
 public:
  virtual void On3DCameraEvent(Zyn3DCamera camera, ZynCameraEventType type) = 0;
  virtual ~I3DCameraEventHandler() {}
};

/// Makes `handler` the one handler for 2D cameras; null for none. While there is a handler of either kind, a
/// thread searches every 3 seconds, at once for the first time, and reports each difference: first what
/// appeared, then what is gone. A camera that goes and comes back between two searches is not reported.
///
/// Every registration starts afresh: the next search reports all cameras that are present, also to a handler
/// that was registered before. The handler belongs to the application. When this returns, the handler before
/// is not being called and never will be; so this waits for a call that is running, and without a handler of
/// either kind for a search that is running.
///
/// Returns 0. A thread that cannot be started raises std::system_error; the handler is registered
/// nevertheless and the next registration tries again. A failing search raises the transport's exception on
/// the thread, which ends the process.
ZYNSDK_API long RegisterCameraEventHandler(ICameraEventHandler* handler);
/// The same for 3D cameras.
ZYNSDK_API long Register3DCameraEventHandler(I3DCameraEventHandler* handler);

}  // namespace ZYNSDK

#endif
