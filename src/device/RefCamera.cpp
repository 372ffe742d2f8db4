#include "RefCamera.h"

#include <exception>
#include <utility>

#include "KELGeniCam.h"

namespace ZYNSDK {

TransportCamera::TransportCamera(KELGENICAM::ICamera* camera)
    : camera_(camera), exceptionsInFlight_(std::uncaught_exceptions()) {}

TransportCamera::~TransportCamera() noexcept(false) {
  if (!camera_) return;
  if (std::uncaught_exceptions() == exceptionsInFlight_) {
    camera_->Release();
    return;
  }
  try {
    camera_->Release();
  } catch (...) {  // NOLINT(bugprone-empty-catch): the exception already on its way is the one to report
  }
}

KELGENICAM::ICamera* TransportCamera::Detach() {
  return std::exchange(camera_, nullptr);
}

}  // namespace ZYNSDK
