#include "RangeImage.h"
#include "ReleaseThenTake.h"
#include "SetAllValues.h"
#include "ZynCamera.h"

namespace ZYNSDK {

namespace {

// The range image to work on; a handle without one gets an empty one.
RangeImage& Made(RangeImage*& range) {
  if (!range) range = new RangeImage;
  return *range;
}

// Takes the numbers in the order of the public interface.
RangeAxes Axes(double resolutionZ, double offsetZ, double resolutionX, double offsetX, double resolutionY,
               double offsetY) {
  return {resolutionX, resolutionY, resolutionZ, offsetX, offsetY, offsetZ};
}

}  // namespace

ZynRangeImage::ZynRangeImage() : range_(nullptr) {}

ZynRangeImage::ZynRangeImage(void* data, int width, int height, int stride, ZynImageType type,
                             double minValue, double maxValue, double resolutionZ, double offsetZ,
                             double resolutionX, double offsetX, double resolutionY, double offsetY)
    : ZynRangeImage() {
  CreateRangeImage(data, width, height, stride, type, minValue, maxValue, resolutionZ, offsetZ, resolutionX,
                   offsetX, resolutionY, offsetY);
}

ZynRangeImage::ZynRangeImage(const ZynRangeImage& other) : range_(other.range_) {
  if (range_) range_->AddRef();
}

ZynRangeImage& ZynRangeImage::operator=(  // NOLINT(bugprone-unhandled-self-assignment)
    const ZynRangeImage& other) {
  ReleaseThenTake(range_, other.range_);
  return *this;
}

ZynRangeImage::~ZynRangeImage() {
  if (range_) range_->Release();
}

bool ZynRangeImage::CreateRangeImage(void* data, int width, int height, int stride, ZynImageType type,
                                     double minValue, double maxValue, double resolutionZ, double offsetZ,
                                     double resolutionX, double offsetX, double resolutionY, double offsetY) {
  return Made(range_).Create(data, width, height, stride, type, minValue, maxValue,
                             Axes(resolutionZ, offsetZ, resolutionX, offsetX, resolutionY, offsetY));
}

void ZynRangeImage::SetSize(int width, int height, ZynImageType type) {
  Made(range_).SetSize(width, height, type);
}

void ZynRangeImage::SetInfo(double resolutionZ, double offsetZ, double resolutionX, double offsetX,
                            double resolutionY, double offsetY) {
  Made(range_).SetAxes(Axes(resolutionZ, offsetZ, resolutionX, offsetX, resolutionY, offsetY));
}

bool ZynRangeImage::SetValue(void* data, int type, double minValue, double maxValue, int startRow,
                             int endRow) {
  return Made(range_).SetValue(data, type, minValue, maxValue, startRow, endRow);
}

bool SetAllValues(ZynRangeImage& range, const void* data, int width, int height, ZynImageType type,
                  double minValue, double maxValue) {
  return Made(range.range_).SetAllValues(data, width, height, type, minValue, maxValue);
}

void ZynRangeImage::SetColorSize(int width, int height, int channel) {
  if (range_) range_->Colors().SetSize(width, height, channel);
}

// Design decision: the first number is ignored. Pinned by SettingColorsIgnoresTheFirstNumber.
int ZynRangeImage::SetColorValue(void* data, int /*ignored*/, int channel, int startRow, int endRow) {
  return range_ ? range_->Colors().SetValue(data, channel, startRow, endRow) : 0;
}

void ZynRangeImage::Clear() {
  if (range_) range_->Clear();
}

void* ZynRangeImage::Data() const {
  return range_ ? range_->Data() : nullptr;
}
unsigned char* ZynRangeImage::ColorData() const {
  return range_ ? range_->Colors().Data() : nullptr;
}
ZynImageType ZynRangeImage::DataType() const {
  return range_ ? range_->Type() : ZYN_IMAGE_U8;
}
int ZynRangeImage::Width() const {
  return range_ ? range_->Width() : 0;
}
int ZynRangeImage::Height() const {
  return range_ ? range_->Height() : 0;
}
double ZynRangeImage::MinValue() const {
  return range_ ? range_->MinValue() : 0.0;
}
double ZynRangeImage::MaxValue() const {
  return range_ ? range_->MaxValue() : 0.0;
}
double ZynRangeImage::ResolutionX() const {
  return range_ ? range_->Axes().resolutionX : 0.0;
}
double ZynRangeImage::ResolutionY() const {
  return range_ ? range_->Axes().resolutionY : 0.0;
}
double ZynRangeImage::ResolutionZ() const {
  return range_ ? range_->Axes().resolutionZ : 0.0;
}
double ZynRangeImage::OffsetX() const {
  return range_ ? range_->Axes().offsetX : 0.0;
}
double ZynRangeImage::OffsetY() const {
  return range_ ? range_->Axes().offsetY : 0.0;
}
double ZynRangeImage::OffsetZ() const {
  return range_ ? range_->Axes().offsetZ : 0.0;
}

double ZynRangeImage::GetValue(int row, int column) const {
  return range_ ? range_->Value(row, column) : 0.0;
}

ZynColor ZynRangeImage::GetColor(int row, int column) const {
  return range_ ? range_->Color(row, column) : ZynColor();
}

bool ZynRangeImage::IsValidColor() const {
  return ColorData() != nullptr;
}

ZynRangeImage ZynRangeImage::DeepCopy() const {
  ZynRangeImage copy;
  if (range_) copy.range_ = range_->Clone();
  return copy;
}

ZynImage ZynRangeImage::DeepCopyValues() const {
  ZynImage image;
  if (!range_) return image;
  const int step = static_cast<int>(range_->ElementBytes()) * range_->Width();
  image.CreateImage(range_->Data(), step, range_->Height(), range_->Width(), 1, range_->Type());
  return image;
}

ZynColorArray ZynRangeImage::DeepCopyColors() const {
  return range_ ? range_->Colors().DeepCopy() : ZynColorArray();
}

long ZynRangeImage::Save(const char* path, int option) {
  return range_ ? range_->Save(path, option) : 0;
}

long ZynRangeImage::Save(const wchar_t* path, int option) {
  return range_ ? range_->Save(path, option) : 0;
}

}  // namespace ZYNSDK
