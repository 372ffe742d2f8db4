#ifndef ZYN_CAMERA_FRAME_GUARD_H
#define ZYN_CAMERA_FRAME_GUARD_H

#include "GiveBack.h"
#include "KELGeniCam.h"

namespace ZYNSDK {

/// Releases a frame of the transport exactly once, at the end of its scope. May stay empty.
///
/// Releasing may throw; that is let out, unless another exception is already on its way.
class FrameGuard {
 public:
  FrameGuard() = default;
  FrameGuard(const FrameGuard&) = delete;
  FrameGuard& operator=(const FrameGuard&) = delete;
  ~FrameGuard() noexcept(false) {
    if (frame_) giveBack_([this] { frame_->Release(); });
  }

  KELGENICAM::IImage** Slot() { return &frame_; }  ///< where the transport puts the frame
  void Abandon() { frame_ = nullptr; }             ///< leaves the frame to the transport
  explicit operator bool() const { return frame_ != nullptr; }
  KELGENICAM::IImage& operator*() const { return *frame_; }
  KELGENICAM::IImage* operator->() const { return frame_; }

 private:
  KELGENICAM::IImage* frame_ = nullptr;
  GiveBack giveBack_;
};

}  // namespace ZYNSDK

#endif
