#include <memory>

#include "CImageThread.h"
#include "FirstChunk.h"
#include "FrameGuard.h"
#include "Guarded.h"
#include "Img.h"
#include "LogicCamera.h"
#include "PhysicCamera.h"
#include "SetWrapperValue.h"
#include "ZynCamera/ZynChunkData.h"
#include "ZynCamera/ZynImage.h"

namespace ZYNSDK {

namespace {

// Further chunks are ignored. No chunk leaves the container alone.
void CopyFirstChunk(KELGENICAM::IImage& frame, ZynChunkData& out) {
  const FirstChunk chunk(frame);
  if (chunk.data) out.setData(chunk.bytes, chunk.data);
}

}  // namespace

long LogicCamera::StartGrab(ZynGrabStrategy strategy, int count) {
  const long result =
      Guarded([&] { return device_->StartGrab(static_cast<KELGENICAM::GRAB_STRATEGY>(strategy), count); });
  // Design decision: outside the guard, so a thread that the system refuses is an exception to the application.
  // Pinned by AThreadThatTheSystemRefusesIsAnExceptionAndTheStreamRuns.
  if (result == ZYN_OK) imageThread_->Start();
  return result;
}

long LogicCamera::StopGrab() {
  imageThread_->Stop();
  const long result = Guarded([&] { return device_->StopGrab(); });
  imageThread_->StopUnlessStreaming();  // another thread may have started it in between
  return result;
}

// Design decision: registering ends a delivery that runs and does not begin a new one. Pinned by
// RegisteringWhileStreamingDeliversOnlyAfterTheNextStart.
long LogicCamera::RegisterImageHandler(IImageHandler* handler) {
  imageThread_->Register(handler);
  return ZYN_OK;
}

long LogicCamera::SetGrabTimeout(int milliseconds) {
  if (!IsOpen()) return ZYN_ERROR_NOT_OPEN;
  if (milliseconds < 1) return ZYN_ERROR_INVALID_ARGUMENT;
  grabTimeoutMs_ = milliseconds;
  return ZYN_OK;
}

// Design decision: one attempt per call; the only waiting is the transport's own. Pinned by
// AGrabMakesExactlyOneAttempt.
long LogicCamera::LoopGrab(const GrabAttempt& attempt) {
  long result = ZYN_OK;
  attempt(result);
  return result;
}

// Design decision: the gaps are what an application can act on, each in its own way. Pinned by the table in
// ErrorCodeTrans' test.
long LogicCamera::ErrorCodeTrans(long code) {
  const bool isFolded =
      (code >= -5 && code <= -1) || (code >= -15 && code <= -10) || (code >= -26 && code <= -21);
  return isFolded ? ZYN_ERROR_GRAB_FAILED : code;
}

long LogicCamera::Grab(ZynImage* image, ZynChunkData* chunk) {
  if (!image) return ZYN_ERROR_INVALID_ARGUMENT;
  return Guarded([&]() -> long {
    FrameGuard frame;
    const long code = ErrorCodeTrans(LoopGrab([&](long& result) {
      result = Guarded([&] { return device_->Grab(frame.Slot(), grabTimeoutMs_); });
      return result == ZYN_OK;
    }));
    if (code != ZYN_OK) {
      // Design decision: a stream that was stopped has taken its buffers back, so the frame is no longer ours
      // to release. Pinned by AFrameHandedOutWithAFailureIsLeftAloneOnceTheStreamStopped.
      if (frame && !IsGrabbing()) frame.Abandon();
      return code;
    }
    if (!frame) return ZYN_ERROR_NO_FRAME;
    return Deliver(*frame, *image, chunk);
  });
}

long LogicCamera::Deliver(KELGENICAM::IImage& frame, ZynImage& image, ZynChunkData* chunk) {
  if (!frame.IsValid()) return ZYN_ERROR_INVALID_FRAME;
  ZynImage copy;
  SetWrapperValue(&copy, new Img(&frame), false);
  image = copy;
  if (chunk) CopyFirstChunk(frame, *chunk);
  return ZYN_OK;
}

}  // namespace ZYNSDK
