#include "ColorArray.h"

#include <algorithm>
#include <cstring>

#include "GridBytes.h"
#include "InitMatData.h"
#include "TraceLine.h"

namespace ZYNSDK {

namespace {

bool IsChannel(int channel) {
  return channel == 1 || channel == 3 || channel == 4;
}

unsigned char ToByte(int component) {
  return static_cast<unsigned char>(std::clamp(component, 0, 255));
}

}  // namespace

// Design decision: constructors and destructor trace in every case, also for the arrays inside range
// images. Pinned by MakingAndDestroyingIsTraced.
ColorArray::ColorArray() {
  TraceLine("ColorArray()");
}

ColorArray::ColorArray(const void* data, int size, int channel) {
  TraceLine("ColorArray(void* data, int size, int channel)");
  Create(data, size, 1, channel);
}

ColorArray::ColorArray(const void* data, int width, int height, int channel) {
  TraceLine("ColorArray(void* data, int width, int height, int channel)");
  Create(data, width, height, channel);
}

ColorArray::~ColorArray() {
  TraceLine("~ColorArray()");
}

bool ColorArray::Create(const void* data, int width, int height, int channel) {
  if (!data || width < 1 || height < 1 || !IsChannel(channel)) return false;
  const std::size_t bytes = GridBytes(width, height, static_cast<std::size_t>(channel));
  // A new buffer, because the data may lie in the present one.
  Take({static_cast<const unsigned char*>(data), bytes}, width, height, channel);
  return true;
}

void ColorArray::SetSize(int width, int height, int channel) {
  if (width < 0 || height < 0 || !IsChannel(channel)) return;
  bytes_.ResizeAndForget(GridBytes(width, height, static_cast<std::size_t>(channel)));
  InitMatData(bytes_);
  SetShape(width, height, channel);
}

void ColorArray::SetValue(const void* data, int channel, int startRow, int endRow) {
  if (!data || startRow < 0 || endRow < startRow || endRow >= height_ || channel != channel_) return;
  const std::size_t rowBytes = static_cast<std::size_t>(channel_) * static_cast<std::size_t>(width_);
  if (rowBytes == 0) return;
  const auto rows = static_cast<std::size_t>(endRow - startRow) + 1;
  std::memmove(bytes_.Data() + static_cast<std::size_t>(startRow) * rowBytes, data, rows * rowBytes);
}

void ColorArray::SetColor(int value) {
  if (bytes_.Size() != 0) std::memset(bytes_.Data(), ToByte(value), bytes_.Size());
}

void ColorArray::Append(const ColorArray& other) {
  if (height_ == 0) {
    Take(other.bytes_, other.width_, other.height_, other.channel_);
    return;
  }
  if (height_ != 1 || other.height_ != 1 || channel_ != other.channel_) return;
  const int added = other.width_;  // first, because the other may be this array
  bytes_.Append(other.bytes_.Data(), other.bytes_.Size());
  width_ += added;
}

// Design decision: the first three components lie in memory in reverse order. Pinned by
// TheFirstThreeComponentsAreStoredInReverse.
void ColorArray::Replace(int index, const ZynColor& color) {
  if (!HasPoint(index)) return;
  unsigned char* point = Point(index);
  if (channel_ == 1) {
    point[0] = ToByte(color.red);
    return;
  }
  point[0] = ToByte(color.blue);
  point[1] = ToByte(color.green);
  point[2] = ToByte(color.red);
  if (channel_ == 4) point[3] = ToByte(color.alpha);
}

void ColorArray::Select(int index, ZynColor* out) const {
  if (!out || !HasPoint(index)) return;
  const unsigned char* point = Point(index);
  if (channel_ == 1) {
    out->red = out->green = out->blue = point[0];
    return;
  }
  out->red = point[2];
  out->green = point[1];
  out->blue = point[0];
  if (channel_ == 4) out->alpha = point[3];
}

void ColorArray::Clear() {
  bytes_.Clear();
  width_ = 0;
  height_ = 0;
  channel_ = 1;
}

ColorArray* ColorArray::Clone() const {
  return new ColorArray(Data(), width_, height_, channel_);
}

unsigned char* ColorArray::Point(int index) const {
  return bytes_.Data() + static_cast<std::size_t>(index) * static_cast<std::size_t>(channel_);
}

void ColorArray::Take(RecycledVector<unsigned char> bytes, int width, int height, int channel) {
  bytes_ = std::move(bytes);
  SetShape(width, height, channel);
}

void ColorArray::SetShape(int width, int height, int channel) {
  width_ = width;
  height_ = height;
  channel_ = channel;
}

}  // namespace ZYNSDK
