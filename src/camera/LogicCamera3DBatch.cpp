#include <algorithm>
#include <functional>
#include <memory>

#include "BatchScan.h"
#include "FirstChunk.h"
#include "FrameGuard.h"
#include "Guarded.h"
#include "LogicCamera.h"
#include "PhysicCamera.h"

namespace ZYNSDK {

// Design decision: only a delivered scan or an error ends this; frames of the wrong size never do. Pinned by
// FramesOfTheWrongSizeAreSkipped.
long LogicCamera::Grab3DBatchData(ZynRangeImage* range, ZynImage* intensity) {
  if (!range || !intensity) return ZYN_ERROR_INVALID_ARGUMENT;
  for (;;) {
    bool done = false;
    const long code = Guarded([&]() -> long {
      FrameGuard frame;
      const auto attempt = [&](long& result) {
        result = Guarded([&] { return Grab3DBatchDataAction(frame.Slot(), range, intensity, done); });
        return result == ZYN_OK;
      };
      return ErrorCodeTrans(LoopGrab(std::cref(attempt)));
    });
    if (code != ZYN_OK || done) return code;
  }
}

long LogicCamera::Grab3DBatchDataAction(KELGENICAM::IImage** frame, ZynRangeImage* range, ZynImage* intensity,
                                        bool& done) {
  done = false;
  if (const long error = Grab3DDataAction(frame, ZYN_3D_GRAB_BATCH)) return error;
  if (!*frame) return ZYN_ERROR_NO_FRAME;
  if (!(*frame)->IsValid()) return ZYN_ERROR_INVALID_FRAME;
  const FirstChunk chunk(**frame);
  if (!chunk.data) return ZYN_ERROR_NO_CHUNK_DATA;
  const long long id = (*frame)->FrameID();
  const std::shared_ptr<BatchScan> scan = CurrentScan();
  if (!scan) return ZYN_ERROR_INVALID_ARGUMENT;  // stopped since: as if the grab had come after the stop
  done = scan->Add({id, chunk.data, chunk.bytes}, *range, *intensity);
  return ZYN_OK;
}

long LogicCamera::SetBatchCount(ZynXmlSource /*source*/, int count) {
  return Guarded([&] { return SetBatchCountAction(count); });
}

long LogicCamera::SetBatchCountAction(int count) {
  constexpr int kMost = 65535;
  constexpr int kStep = 100;  // lines are acquired in hundreds
  constexpr int kMostPerFrame = 100;
  if (!Is3DCamera()) return ZYN_ERROR_NOT_3D_CAMERA;
  if (count < 1 || count > kMost) return ZYN_ERROR_INVALID_ARGUMENT;
  if (!IsOpen()) return ZYN_ERROR_NOT_OPEN;
  if (IsGrabbing()) return ZYN_ERROR_ALREADY_GRABBING;
  const int lines = (count + kStep - 1) / kStep * kStep;
  if (lines > kMost) return ZYN_ERROR_INVALID_ARGUMENT;
  // A camera may have only one of the two.
  const long frameCount = device_->SetInt("AcquisitionFrameCount", ZYN_XML_REMOTE_DEVICE, lines);
  const long lineCount = device_->SetInt("AcquisitionLineCount", ZYN_XML_REMOTE_DEVICE, lines);
  if (frameCount != ZYN_OK && lineCount != ZYN_OK) return frameCount;
  return device_->SetInt("BatchNumber", ZYN_XML_REMOTE_DEVICE, std::min(count, kMostPerFrame));
}

long LogicCamera::GetBatchCount(ZynXmlSource source, int* count) {
  if (!Is3DCamera()) return ZYN_ERROR_NOT_3D_CAMERA;
  if (!count) return ZYN_ERROR_INVALID_ARGUMENT;
  const auto read = [&](const char* name) {
    return Guarded([&] { return ReadIntFeature(name, source, *count); });
  };
  return read("AcquisitionLineCount") == ZYN_OK ? ZYN_OK : read("AcquisitionFrameCount");
}

}  // namespace ZYNSDK
