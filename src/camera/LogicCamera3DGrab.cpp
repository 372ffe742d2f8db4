#include <climits>
#include <cstdint>
#include <functional>
#include <utility>

#include "AppendForOverwrite.h"
#include "FirstChunk.h"
#include "FrameGuard.h"
#include "Guarded.h"
#include "Img.h"
#include "LogicCamera.h"
#include "PhysicCamera.h"
#include "PointRecords.h"
#include "SetWrapperValue.h"
#include "ZynCamera/Zyn3DIntArray.h"
#include "ZynCamera/ZynImage.h"

namespace ZYNSDK {

namespace {

using Decoder = void (*)(const std::uint8_t* records, std::size_t bytes, std::int32_t* heights,
                         std::uint8_t* intensities) noexcept;

// Decodes straight into what the application gets. A profile without points has no intensity line.
long DeliverProfile(const FirstChunk& chunk, Decoder decode, Zyn3DIntArray& heights, ZynImage& intensity) {
  if (chunk.bytes / kRecordBytes >= INT_MAX) return ZYN_ERROR_INVALID_FRAME;
  const int count = static_cast<int>(PointCount(chunk.bytes));
  if (count == 0) return ZYN_OK;
  PixelMemory intensities(static_cast<std::size_t>(count));
  decode(chunk.data, chunk.bytes, AppendForOverwrite(heights, count), intensities.Data());
  ZynImage line;
  SetWrapperValue(&line, new Img(std::move(intensities), count, 1, count, 1, ZYN_IMAGE_U8), false);
  intensity = line;
  return ZYN_OK;
}

// The frame's pixels, 101082 when no image can be made of them.
long DeliverSensorImage(KELGENICAM::IImage& frame, ZynImage& image) {
  const bool isMade = image.CreateImage(frame.Data(), frame.Step(), frame.Height(), frame.Width(),
                                        frame.Channels(), ZYN_IMAGE_U8);
  return isMade ? ZYN_OK : ZYN_ERROR_NO_SENSOR_IMAGE;
}

// Runs a grab that fills the heights; whatever goes wrong, there are none.
template <class Grab>
long ClearOnFailure(Zyn3DIntArray& heights, Grab grab) {
  heights.Clear();
  const long code = Guarded(grab);
  if (code != ZYN_OK) heights.Clear();
  return code;
}

}  // namespace

long LogicCamera::Grab3DDataAction(KELGENICAM::IImage** frame, Zyn3DGrabType type) {
  if (grabType_ != type) return ZYN_ERROR_INVALID_ARGUMENT;
  return device_->Grab(frame, grabTimeoutMs_);
}

long LogicCamera::WaitFor3DFrame(FrameGuard& frame, Zyn3DGrabType type) {
  const auto attempt = [&](long& result) {
    result = Guarded([&] { return Grab3DDataAction(frame.Slot(), type); });
    return result == ZYN_OK;
  };
  if (const long code = ErrorCodeTrans(LoopGrab(std::cref(attempt)))) return code;
  if (!frame) return ZYN_ERROR_NO_FRAME;
  return frame->IsValid() ? ZYN_OK : ZYN_ERROR_INVALID_FRAME;
}

// Design decision: a frame without records is no failure here, because the sensor image is there; a contour without
// records has nothing. Pinned by Table/EachEnding, ProfileNoChunks.
long LogicCamera::Grab3DData(ZynImage* image, Zyn3DIntArray* heights, ZynImage* intensity) {
  if (!Is3DCamera()) return ZYN_ERROR_NOT_3D_CAMERA;
  if (!image || !heights || !intensity) return ZYN_ERROR_INVALID_ARGUMENT;
  return ClearOnFailure(*heights, [&]() -> long {
    FrameGuard frame;
    if (const long error = WaitFor3DFrame(frame, ZYN_3D_GRAB_PROFILE)) return error;
    if (const long error = DeliverSensorImage(*frame, *image)) return error;
    const FirstChunk chunk(*frame);
    return chunk.data ? DeliverProfile(chunk, DecodeProfile, *heights, *intensity) : ZYN_OK;
  });
}

// Design decision: does not ask whether the camera is 3D, unlike the grab with the sensor image; only a 3D camera can
// have been started for it. Pinned by OnlyTheGrabWithTheSensorImageAsksWhetherTheCameraIs3D.
long LogicCamera::Grab3DContour(Zyn3DIntArray* heights, ZynImage* intensity) {
  if (!heights || !intensity) return ZYN_ERROR_INVALID_ARGUMENT;
  return ClearOnFailure(*heights, [&]() -> long {
    FrameGuard frame;
    if (const long error = WaitFor3DFrame(frame, ZYN_3D_GRAB_CONTOUR)) return error;
    const FirstChunk chunk(*frame);
    return chunk.data ? DeliverProfile(chunk, DecodeContour, *heights, *intensity) : ZYN_ERROR_NO_CHUNK_DATA;
  });
}

}  // namespace ZYNSDK
