#include "RefCamera.h"

#include <utility>

#include "KELGeniCam.h"

namespace ZYNSDK {

TransportCamera::TransportCamera(KELGENICAM::ICamera* camera) : camera_(camera) {}

TransportCamera::~TransportCamera() noexcept(false) {
  if (camera_) giveBack_([this] { camera_->Release(); });
}

KELGENICAM::ICamera* TransportCamera::Detach() {
  return std::exchange(camera_, nullptr);
}

}  // namespace ZYNSDK
