/// Images.
#ifndef ZYNCAMERA_ZYN_IMAGE_H
#define ZYNCAMERA_ZYN_IMAGE_H

#include "Export.h"
#include "Types.h"

namespace ZYNSDK {

class Img;

/// A two-dimensional image: rows of `Step()` bytes, `Height()` of them, each row beginning with `Width()`
/// pixels of `Channels()` elements of the type `BitDepth()`.
///
/// A counted reference to the pixels: copying and assigning a ZynImage shares them, the last reference frees
/// them. Copies may be made, used and ended on different threads; one object, and the pixels, are not
/// guarded.
class ZYNSDK_API ZynImage {
 public:
  ZynImage();  ///< holds no image
  /// Copies step * height bytes. The image is empty (all numbers 0, no data) when `data` is null, a number is
  /// 0 or `type` is none of ZynImageType. A negative product raises std::bad_alloc.
  ZynImage(unsigned char* data, int step, int height, int width, int channels, ZynImageType type);
  ZynImage(const ZynImage& other);
  /// Releases the image held, then shares the other's. Design decision: an object assigned to itself while it
  /// is the last reference therefore loses its image.
  ZynImage& operator=(const ZynImage& other);
  ~ZynImage();

  /// Replaces the image held by a copy of step * height bytes. False, and nothing changed, in the cases in
  /// which the constructor makes an empty image. When it raises std::bad_alloc the image held stays too.
  bool CreateImage(unsigned char* data, int step, int height, int width, int channels, ZynImageType type);

  int Width() const;     ///< pixels per row; 0 without an image, as the other numbers
  int Height() const;    ///< rows
  int Step() const;      ///< bytes per row
  int Channels() const;  ///< elements per pixel
  int BitDepth() const;  ///< the ZynImageType code, not a number of bits. Images from a camera always say 0

  /// The pixels, null when there are none. Valid while a reference exists; what is written through the
  /// pointer is seen through every reference.
  unsigned char* ImageData() const;

  ZynImage DeepCopy() const;     ///< a copy with pixels of its own
  ZynImage ShallowCopy() const;  ///< another reference to the same image

  /// No file format is defined: writes nothing and returns 0.
  long SaveImage(const char* path, int option);
  long SaveImage(const wchar_t* path, int option);

 private:
  Img* image_;
};

}  // namespace ZYNSDK

#endif
