#ifndef ZYN_DATA_RANGE_IMAGE_H
#define ZYN_DATA_RANGE_IMAGE_H

#include <cstddef>

#include "CRef.h"
#include "RecycledVector.h"
#include "ZynCamera/ZynRangeImage.h"

namespace ZYNSDK {

/// The scale and the offset of each axis.
struct RangeAxes {
  double resolutionX = 1.0;
  double resolutionY = 1.0;
  double resolutionZ = 1.0;
  double offsetX = 0.0;
  double offsetY = 0.0;
  double offsetZ = 0.0;
};

/// The range image behind ZynRangeImage, which documents the operations. Always holds exactly
/// width * height * ElementBytes() bytes of values; width and height are both 0 or both above.
class RangeImage : public CRef {
 public:
  RangeImage() = default;  ///< empty

  bool Create(const void* data, int width, int height, int stride, ZynImageType type, double minValue,
              double maxValue, const RangeAxes& axes);
  void SetSize(int width, int height, ZynImageType type);
  void SetAxes(const RangeAxes& axes) { axes_ = axes; }
  bool SetValue(const void* data, int type, double minValue, double maxValue, int startRow, int endRow);
  /// SetSize, then SetValue of all rows, but writes every value once. `data` lies outside this range image. False,
  /// and nothing changed, when `data` is null or SetSize would do nothing.
  bool SetAllValues(const void* data, int width, int height, ZynImageType type, double minValue,
                    double maxValue);
  void Clear();

  unsigned char* Data() const { return values_.Size() == 0 ? nullptr : values_.Data(); }
  ZynImageType Type() const { return type_; }
  int Width() const { return width_; }
  int Height() const { return height_; }
  double MinValue() const { return minValue_; }
  double MaxValue() const { return maxValue_; }
  const RangeAxes& Axes() const { return axes_; }
  std::size_t ElementBytes() const { return elementBytes_; }
  ZynColorArray& Colors() { return colors_; }

  double Value(int row, int column) const;
  ZynColor Color(int row, int column) const;

  /// A new range image with values and colors of its own, for the caller to own.
  RangeImage* Clone() const;

  /// No file format is defined: both do nothing and return 0.
  long Save(const char* path, int option) const;
  long Save(const wchar_t* path, int option) const;

  /// As PathText.h describes.
  static std::size_t char_to_wchar(wchar_t* dst, const char* src);
  static std::size_t wchar_to_char(char* dst, const wchar_t* src);

 private:
  std::size_t RowBytes() const { return static_cast<std::size_t>(width_) * elementBytes_; }
  void Widen(double minValue, double maxValue);
  void Take(RecycledVector<unsigned char> values, int width, int height, ZynImageType type);
  void Reshape(int width, int height, ZynImageType type);
  void SetShape(int width, int height, ZynImageType type);

  RecycledVector<unsigned char> values_;
  ZynColorArray colors_;
  ZynImageType type_ = ZYN_IMAGE_U8;
  int width_ = 0;
  int height_ = 0;
  double minValue_ = 0.0;
  double maxValue_ = 0.0;
  RangeAxes axes_;
  std::size_t elementBytes_ = 1;
};

}  // namespace ZYNSDK

#endif
