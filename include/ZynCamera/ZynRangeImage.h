/// Range images: height maps made of many laser profiles.
#ifndef ZYNCAMERA_ZYN_RANGE_IMAGE_H
#define ZYNCAMERA_ZYN_RANGE_IMAGE_H

#include "Export.h"
#include "Types.h"
#include "ZynColorArray.h"
#include "ZynImage.h"

namespace ZYNSDK {

class RangeImage;

/// A grid of Width() * Height() values of the type DataType(), rows packed one after another, with the
/// range of the values, and the resolution and offset of each axis. Optionally a color per point.
///
/// A counted reference: copying and assigning share the range image, the last reference frees it. Copies
/// may be made, used and ended on different threads; one object, and the values, are not guarded. Without a
/// range image the numbers are 0 and the pointers null; CreateRangeImage, SetSize, SetInfo and SetValue
/// then begin with an empty one, and the other operations do nothing.
///
/// Values of more than 2147483647 bytes raise std::length_error, those that the memory lacks
/// std::bad_alloc; both change nothing. Values that nobody wrote are the bytes 0x0D, 0xF0, 0xAD, 0xBA
/// repeated, so that missing rows can be recognised.
class ZYNSDK_API ZynRangeImage {
 public:
  ZynRangeImage();  ///< holds no range image
  /// An empty range image, to which CreateRangeImage is applied, its answer ignored.
  ZynRangeImage(void* data, int width, int height, int stride, ZynImageType type, double minValue,
                double maxValue, double resolutionZ, double offsetZ, double resolutionX, double offsetX,
                double resolutionY, double offsetY);
  ZynRangeImage(const ZynRangeImage& other);
  /// Releases the range image held, then shares the other's. Design decision: an object assigned to itself
  /// while it is the last reference therefore loses its range image.
  ZynRangeImage& operator=(const ZynRangeImage& other);
  ~ZynRangeImage();

  /// Copies `height` rows of `width` values; row r begins at data + r * stride bytes. Mind the order of the
  /// axes: Z, X, Y.
  ///
  /// False, and nothing changed, when `data` is null; width and height are both below 1; the type is none
  /// of ZynImageType; minValue is negative or above maxValue; or width is greater than stride. Design
  /// decision: the latter compares values with bytes, so for wide types it does not prove that rows do not
  /// overlap. With only one of width and height below 1 the shape and the values stay, all other numbers
  /// are taken, and the answer is true.
  bool CreateRangeImage(void* data, int width, int height, int stride, ZynImageType type, double minValue,
                        double maxValue, double resolutionZ, double offsetZ, double resolutionX,
                        double offsetX, double resolutionY, double offsetY);
  /// Takes this shape, with all values unwritten. Does nothing when width or height is below 1 or the type
  /// is none of ZynImageType.
  void SetSize(int width, int height, ZynImageType type);
  void SetInfo(double resolutionZ, double offsetZ, double resolutionX, double offsetX, double resolutionY,
               double offsetY);
  /// Copies the rows startRow to endRow, inclusive, which `data` holds packed. A minValue of 0 or more
  /// lowers MinValue(), and a maxValue of 0 or more raises MaxValue(). False, and nothing changed, when
  /// `data` is null, a row does not exist, endRow lies before startRow or `type` is not DataType().
  bool SetValue(void* data, int type, double minValue, double maxValue, int startRow, int endRow);

  void SetColorSize(int width, int height, int channel);  ///< ZynColorArray::SetSize of the colors
  /// ZynColorArray::SetValue of the colors. Design decision: the first number is ignored, and the result is
  /// always 0.
  int SetColorValue(void* data, int ignored, int channel, int startRow, int endRow);
  /// Everything as in an empty range image: no values, no colors, resolutions 1, all other numbers 0.
  void Clear();

  /// The values, null when there are none. Valid until CreateRangeImage or another shape: grabbing one scan after the
  /// other into a range image leaves them where they are.
  void* Data() const;
  unsigned char* ColorData() const;  ///< the colors' bytes, null when there are none
  ZynImageType DataType() const;
  int Width() const;   ///< values per row
  int Height() const;  ///< rows
  double MinValue() const;
  double MaxValue() const;
  double ResolutionX() const;
  double ResolutionY() const;
  double ResolutionZ() const;
  double OffsetX() const;
  double OffsetY() const;
  double OffsetZ() const;

  double GetValue(int row, int column) const;  ///< 0.0 outside the grid
  /// The default color outside the colors. Design decision: only the upper ends are tested, so a negative
  /// column reads the row before.
  ZynColor GetColor(int row, int column) const;
  bool IsValidColor() const;  ///< there are colors

  ZynRangeImage DeepCopy() const;  ///< a copy with values and colors of its own
  /// A copy of the values as an image of one channel; one without an image when there are none.
  ZynImage DeepCopyValues() const;
  ZynColorArray DeepCopyColors() const;

  /// No file format is defined: writes nothing and returns 0.
  long Save(const char* path, int option);
  long Save(const wchar_t* path, int option);

 private:
  friend bool SetAllValues(ZynRangeImage& range, const void* data, int width, int height, ZynImageType type,
                           double minValue, double maxValue);

  RangeImage* range_;
};

}  // namespace ZYNSDK

#endif
