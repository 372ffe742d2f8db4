#include "ColorArray.h"
#include "ReleaseThenTake.h"
#include "ZynCamera.h"

namespace ZYNSDK {

namespace {

// The array to work on; a handle without one gets an empty one.
ColorArray& Made(ColorArray*& colors) {
  if (!colors) colors = new ColorArray;
  return *colors;
}

}  // namespace

ZynColorArray::ZynColorArray() : colors_(nullptr) {}

ZynColorArray::ZynColorArray(void* data, int size, int channel)
    : colors_(new ColorArray(data, size, channel)) {}

ZynColorArray::ZynColorArray(void* data, int width, int height, int channel)
    : colors_(new ColorArray(data, width, height, channel)) {}

ZynColorArray::ZynColorArray(const ZynColorArray& other) : colors_(other.colors_) {
  if (colors_) colors_->AddRef();
}

ZynColorArray& ZynColorArray::operator=(  // NOLINT(bugprone-unhandled-self-assignment)
    const ZynColorArray& other) {
  ReleaseThenTake(colors_, other.colors_);
  return *this;
}

ZynColorArray::~ZynColorArray() {
  if (colors_) colors_->Release();
}

bool ZynColorArray::CreateColorArray(void* data, int width, int height, int channel) {
  return Made(colors_).Create(data, width, height, channel);
}

void ZynColorArray::SetSize(int width, int height, int channel) {
  Made(colors_).SetSize(width, height, channel);
}

void ZynColorArray::Create(int size, int channel) {
  SetSize(size, 1, channel);
}

// Design decision: 0 in every case. Pinned by SettingValuesAnswersZeroWhetherOrNotItCopied.
int ZynColorArray::SetValue(void* data, int channel, int startRow, int endRow) {
  if (colors_) colors_->SetValue(data, channel, startRow, endRow);
  return 0;
}

void ZynColorArray::SetColor(int value) {
  if (colors_) colors_->SetColor(value);
}

void ZynColorArray::Append(const ZynColorArray& other) {
  ColorArray& mine = Made(colors_);
  if (other.colors_) mine.Append(*other.colors_);
}

void ZynColorArray::Replace(int index, const ZynColor& color) {
  if (colors_) colors_->Replace(index, color);
}

void ZynColorArray::Select(int index, ZynColor* out) const {
  if (colors_) colors_->Select(index, out);
}

ZynColor ZynColorArray::operator[](int index) const {
  ZynColor color;
  Select(index, &color);
  return color;
}

int ZynColorArray::Width() const {
  return colors_ ? colors_->Width() : 0;
}
int ZynColorArray::Height() const {
  return colors_ ? colors_->Height() : 0;
}
int ZynColorArray::Length() const {
  return colors_ ? colors_->Length() : 0;
}
int ZynColorArray::Channel() const {
  return colors_ ? colors_->Channel() : 0;
}
unsigned char* ZynColorArray::Data() const {
  return colors_ ? colors_->Data() : nullptr;
}

void ZynColorArray::Clear() {
  if (colors_) colors_->Clear();
}

ZynColorArray ZynColorArray::DeepCopy() const {
  ZynColorArray copy;
  if (colors_) copy.colors_ = colors_->Clone();
  return copy;
}

}  // namespace ZYNSDK
