#ifndef ZYN_DEVICE_REF_CAMERA_H
#define ZYN_DEVICE_REF_CAMERA_H

#include <cstdint>
#include <string>

#include "GiveBack.h"

namespace KELGENICAM {
class ICamera;
}

namespace ZYNSDK {

/// Owns a transport camera and releases it at the end of its scope.
///
/// Releasing may throw. The caller must see that failure, so it is let out, unless another exception is
/// already on its way.
class TransportCamera {
 public:
  explicit TransportCamera(KELGENICAM::ICamera* camera);  ///< may be null
  TransportCamera(const TransportCamera&) = delete;
  TransportCamera& operator=(const TransportCamera&) = delete;
  ~TransportCamera() noexcept(false);

  explicit operator bool() const { return camera_ != nullptr; }
  KELGENICAM::ICamera* operator->() const { return camera_; }
  KELGENICAM::ICamera* Get() const { return camera_; }
  KELGENICAM::ICamera* Detach();  ///< hands the camera to the caller

 private:
  KELGENICAM::ICamera* camera_;
  GiveBack giveBack_;
};

/// One opened transport camera and how many use it. Made by PhysicCamera::NewRefCam, destroyed by whoever
/// brings the count to 0; reachable from outside only while it is the current record or somebody has borrowed
/// it.
struct RefCamera {
  KELGENICAM::ICamera* camera = nullptr;  ///< owned
  std::int64_t count = 1;                 ///< changed only under the mutex of the PhysicCamera
  std::string serialNumber;
};

}  // namespace ZYNSDK

#endif
