#include <cstring>

#include "Img.h"
#include "KELGeniCam.h"

namespace ZYNSDK {

namespace {

// A frame that cannot give its pixels leaves an image of the right shape; the caller has its numbers to go
// by.
const unsigned char* PixelsOf(KELGENICAM::IImage& frame) {
  try {
    return frame.Data();
  } catch (...) {
    return nullptr;
  }
}

}  // namespace

Img::Img(KELGENICAM::IImage* frame) {
  if (!frame || !frame->IsValid()) return;
  height_ = frame->Height();
  width_ = frame->Width();
  channels_ = frame->Channels();
  step_ = frame->Step();
  if (ImageProduct(step_, height_) < 1) return;
  pixels_ = PixelMemory(ImageBytes(step_, height_));
  if (const unsigned char* data = PixelsOf(*frame)) {
    std::memcpy(pixels_.Data(), data, pixels_.Bytes());
  } else {
    std::memset(pixels_.Data(), 0, pixels_.Bytes());  // recycled memory must not show another image
  }
}

}  // namespace ZYNSDK
