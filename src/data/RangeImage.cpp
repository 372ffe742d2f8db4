#include "RangeImage.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>

#include "GridBytes.h"
#include "InitMatData.h"
#include "PathText.h"

namespace ZYNSDK {

namespace {

bool IsType(ZynImageType type) {
  return static_cast<unsigned int>(type) <= ZYN_IMAGE_F64;
}

std::size_t BytesOf(ZynImageType type) {
  switch (type) {
    case ZYN_IMAGE_U8:
    case ZYN_IMAGE_S8:
      return 1;
    case ZYN_IMAGE_U16:
    case ZYN_IMAGE_S16:
      return 2;
    case ZYN_IMAGE_S32:
    case ZYN_IMAGE_F32:
      return 4;
    case ZYN_IMAGE_F64:
      return 8;
  }
  return 1;
}

template <class T>
double Element(const unsigned char* values, std::size_t index) {
  T value;
  std::memcpy(&value, values + index * sizeof(T), sizeof(T));
  return static_cast<double>(value);
}

}  // namespace

// Design decision: the width, in values, is compared with the stride, in bytes. Pinned by
// TheWidthInValuesIsComparedWithTheStrideInBytes.
bool RangeImage::Create(const void* data, int width, int height, int stride, ZynImageType type,
                        double minValue, double maxValue, const RangeAxes& axes) {
  if (!data) return false;
  if ((width < 1 && height < 1) || width > stride || !IsType(type)) return false;
  if (minValue < 0 || minValue > maxValue) return false;
  if (width >= 1 && height >= 1) {
    const std::size_t rowBytes = static_cast<std::size_t>(width) * BytesOf(type);
    RecycledVector<unsigned char> values;  // a new buffer, because the data may lie in the present one
    values.ResizeForOverwrite(GridBytes(width, height, BytesOf(type)));
    const auto* row = static_cast<const unsigned char*>(data);
    for (std::size_t done = 0; done < values.Size(); done += rowBytes, row += stride) {
      std::memcpy(values.Data() + done, row, rowBytes);
    }
    Take(std::move(values), width, height, type);
  }
  minValue_ = minValue;
  maxValue_ = maxValue;
  axes_ = axes;
  return true;
}

void RangeImage::SetSize(int width, int height, ZynImageType type) {
  if (!IsType(type) || width < 1 || height < 1) return;
  Reshape(width, height, type);
  InitMatData(values_);
}

bool RangeImage::SetValue(const void* data, int type, double minValue, double maxValue, int startRow,
                          int endRow) {
  if (!data || startRow < 0 || endRow < startRow || type != type_ || endRow >= height_) return false;
  Widen(minValue, maxValue);
  const auto rows = static_cast<std::size_t>(endRow - startRow) + 1;
  std::memmove(values_.Data() + static_cast<std::size_t>(startRow) * RowBytes(), data, rows * RowBytes());
  return true;
}

bool RangeImage::SetAllValues(const void* data, int width, int height, ZynImageType type, double minValue,
                              double maxValue) {
  if (!data || !IsType(type) || width < 1 || height < 1) return false;
  Reshape(width, height, type);
  std::memcpy(values_.Data(), data, values_.Size());
  Widen(minValue, maxValue);
  return true;
}

void RangeImage::Widen(double minValue, double maxValue) {
  if (minValue >= 0 && minValue < minValue_) minValue_ = minValue;
  if (maxValue >= 0 && maxValue > maxValue_) maxValue_ = maxValue;
}

void RangeImage::Clear() {
  values_.Clear();
  colors_.Clear();
  type_ = ZYN_IMAGE_U8;
  width_ = 0;
  height_ = 0;
  minValue_ = 0.0;
  maxValue_ = 0.0;
  axes_ = RangeAxes();
  elementBytes_ = 1;
}

double RangeImage::Value(int row, int column) const {
  if (row < 0 || column < 0 || row >= height_ || column >= width_) return 0.0;
  const std::size_t index =
      static_cast<std::size_t>(width_) * static_cast<std::size_t>(row) + static_cast<std::size_t>(column);
  const unsigned char* values = values_.Data();
  switch (type_) {
    case ZYN_IMAGE_U8:
      return Element<std::uint8_t>(values, index);
    case ZYN_IMAGE_S8:
      return Element<std::int8_t>(values, index);
    case ZYN_IMAGE_U16:
      return Element<std::uint16_t>(values, index);
    case ZYN_IMAGE_S16:
      return Element<std::int16_t>(values, index);
    case ZYN_IMAGE_S32:
      return Element<std::int32_t>(values, index);
    case ZYN_IMAGE_F32:
      return Element<float>(values, index);
    case ZYN_IMAGE_F64:
      return Element<double>(values, index);
  }
  return 0.0;
}

// Design decision: negative numbers are not tested; the index that comes out decides. Pinned by
// ANegativeColumnReadsTheColorOfTheRowBefore.
ZynColor RangeImage::Color(int row, int column) const {
  if (row >= colors_.Height() || column >= colors_.Width()) return {};
  const std::int64_t index = std::int64_t{colors_.Width()} * row + column;
  if (index < 0) return {};
  return colors_[static_cast<int>(index)];
}

RangeImage* RangeImage::Clone() const {
  auto copy = std::make_unique<RangeImage>();
  copy->Take(values_, width_, height_, type_);
  copy->colors_ = colors_.DeepCopy();
  copy->minValue_ = minValue_;
  copy->maxValue_ = maxValue_;
  copy->axes_ = axes_;
  return copy.release();
}

long RangeImage::Save(const char* /*path*/, int /*option*/) const {
  return 0;
}
long RangeImage::Save(const wchar_t* /*path*/, int /*option*/) const {
  return 0;
}

std::size_t RangeImage::char_to_wchar(wchar_t* dst, const char* src) {
  return PathToWide(dst, src);
}

std::size_t RangeImage::wchar_to_char(char* dst, const wchar_t* src) {
  return PathToBytes(dst, src);
}

void RangeImage::Take(RecycledVector<unsigned char> values, int width, int height, ZynImageType type) {
  values_ = std::move(values);
  SetShape(width, height, type);
}

// Without moving the values when there is room: whoever grabs scan after scan may keep the pointer to them.
void RangeImage::Reshape(int width, int height, ZynImageType type) {
  values_.ResizeAndForget(GridBytes(width, height, BytesOf(type)));
  SetShape(width, height, type);
}

void RangeImage::SetShape(int width, int height, ZynImageType type) {
  width_ = width;
  height_ = height;
  type_ = type;
  elementBytes_ = BytesOf(type);
}

}  // namespace ZYNSDK
