#include "Img.h"
#include "ReleaseThenTake.h"
#include "ZynCamera.h"

namespace ZYNSDK {

ZynImage::ZynImage() : image_(nullptr) {}

ZynImage::ZynImage(unsigned char* data, int step, int height, int width, int channels, ZynImageType type)
    : image_(new Img(data, step, height, width, channels, type)) {}

ZynImage::ZynImage(const ZynImage& other) : image_(other.image_) {
  if (image_) image_->AddRef();
}

ZynImage& ZynImage::operator=(const ZynImage& other) {  // NOLINT(bugprone-unhandled-self-assignment)
  ReleaseThenTake(image_, other.image_);
  return *this;
}

ZynImage::~ZynImage() {
  if (image_) image_->Release();
}

bool ZynImage::CreateImage(unsigned char* data, int step, int height, int width, int channels,
                           ZynImageType type) {
  if (!Img::IsComplete(data, step, height, width, channels, type)) return false;
  Img* created = new Img(data, step, height, width, channels, type);  // first: data may lie in the image held
  if (image_) image_->Release();
  image_ = created;
  return true;
}

int ZynImage::Width() const {
  return image_ ? image_->Width() : 0;
}
int ZynImage::Height() const {
  return image_ ? image_->Height() : 0;
}
int ZynImage::Step() const {
  return image_ ? image_->Step() : 0;
}
int ZynImage::Channels() const {
  return image_ ? image_->Channels() : 0;
}
int ZynImage::BitDepth() const {
  return image_ ? image_->Type() : 0;
}
unsigned char* ZynImage::ImageData() const {
  return image_ ? image_->Data() : nullptr;
}

ZynImage ZynImage::DeepCopy() const {
  ZynImage copy;
  if (image_) copy.image_ = image_->Clone();
  return copy;
}

ZynImage ZynImage::ShallowCopy() const {
  return *this;
}

long ZynImage::SaveImage(const char* path, int option) {
  return image_ ? image_->SaveImage(path, option) : 0;
}

long ZynImage::SaveImage(const wchar_t* path, int option) {
  return image_ ? image_->SaveImage(path, option) : 0;
}

}  // namespace ZYNSDK
