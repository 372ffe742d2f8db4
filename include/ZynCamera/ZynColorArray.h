/// Colors, one per point of a range image.
#ifndef ZYNCAMERA_ZYN_COLOR_ARRAY_H
#define ZYNCAMERA_ZYN_COLOR_ARRAY_H

#include "Export.h"

namespace ZYNSDK {

class ColorArray;

/// One color. Each component is meant to lie in 0..255.
struct ZynColor {
  ZynColor() : red(0), green(0), blue(0), alpha(255) {}
  ZynColor(int redValue, int greenValue, int blueValue, int alphaValue)
      : red(redValue), green(greenValue), blue(blueValue), alpha(alphaValue) {}

  bool operator==(const ZynColor& other) const {
    return red == other.red && green == other.green && blue == other.blue && alpha == other.alpha;
  }
  bool operator!=(const ZynColor& other) const { return !(*this == other); }

  int red;  ///< also the gray value of an array with one channel
  int green;
  int blue;
  int alpha;
};

/// A grid of points with 1, 3 or 4 channels of 8 bits: gray; blue, green, red; or blue, green, red, alpha,
/// in this order in memory. Point after point, row after row.
///
/// A counted reference to the colors: copying and assigning share them, the last reference frees them.
/// Copies may be made, used and ended on different threads; one object, and the colors, are not guarded.
/// Without colors the numbers are 0, the data is null and every color is the default one; SetSize, Create,
/// CreateColorArray and Append then begin with an empty array, and the other operations do nothing.
///
/// An array of more than 2147483647 bytes raises std::length_error, one that the memory lacks
/// std::bad_alloc; both change nothing. Making and destroying colors writes a trace line to standard
/// output.
class ZYNSDK_API ZynColorArray {
 public:
  ZynColorArray();  ///< holds no colors
  /// Copies size * channel bytes as one row of `size` points. The array is empty when `data` is null, the
  /// size below 1 or the channel none of 1, 3 and 4.
  ZynColorArray(void* data, int size, int channel);
  /// Copies width * height * channel bytes. The array is empty when `data` is null, the width or the height
  /// below 1 or the channel none of 1, 3 and 4.
  ZynColorArray(void* data, int width, int height, int channel);
  ZynColorArray(const ZynColorArray& other);
  /// Releases the colors held, then shares the other's. Design decision: an object assigned to itself while
  /// it is the last reference therefore loses its colors.
  ZynColorArray& operator=(const ZynColorArray& other);
  ~ZynColorArray();

  /// Replaces shape and bytes by a copy. False, and nothing changed, in the cases in which the constructor
  /// makes an empty array.
  bool CreateColorArray(void* data, int width, int height, int channel);
  /// Takes this shape, which may be empty, and fills the bytes with 0x0D, 0xF0, 0xAD, 0xBA repeated. Does
  /// nothing when width or height is negative or the channel none of 1, 3 and 4.
  void SetSize(int width, int height, int channel);
  void Create(int size, int channel);  ///< as SetSize(size, 1, channel)

  /// Copies the rows startRow to endRow, inclusive, of channel * Width() bytes each. Does nothing when
  /// `data` is null, a row does not exist, endRow lies before startRow, or the channel is not that of the
  /// array. Design decision: returns 0 in every case.
  int SetValue(void* data, int channel, int startRow, int endRow);
  void SetColor(int value);  ///< sets every byte; the value is limited to 0..255

  /// An array of height 0 takes the other's shape and a copy of its bytes; one row of points and another
  /// with the same channel become one longer row. Does nothing in every other case.
  void Append(const ZynColorArray& other);
  /// Stores the color, its components limited to 0..255, when 0 <= index < Length().
  void Replace(int index, const ZynColor& color);
  /// Reads a point when `out` is not null and 0 <= index < Length(). Alpha stays as it is unless there are
  /// 4 channels.
  void Select(int index, ZynColor* out) const;
  ZynColor operator[](int index) const;  ///< the default color for an index outside 0..Length()-1

  int Width() const;   ///< points per row
  int Height() const;  ///< rows
  int Length() const;  ///< points
  int Channel() const;
  /// Length() * Channel() bytes, null when there are none. Valid until CreateColorArray or another shape.
  unsigned char* Data() const;
  void Clear();  ///< width and height 0, channel 1, no bytes

  ZynColorArray DeepCopy() const;  ///< a copy with colors of its own; an empty array when there are no bytes

 private:
  ColorArray* colors_;
};

}  // namespace ZYNSDK

#endif
