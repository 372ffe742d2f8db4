#ifndef ZYN_DATA_IMG_H
#define ZYN_DATA_IMG_H

#include <cstddef>

#include "CRef.h"
#include "PixelMemory.h"
#include "ZynCamera/Types.h"

namespace KELGENICAM {
class IImage;
}

namespace ZYNSDK {

/// The image behind ZynImage. Owns step * height bytes, the product taken in 32 bits. An empty image has no
/// buffer and every number 0. The numbers do not change after construction.
class Img : public CRef {
 public:
  Img() = default;  ///< empty
  /// Copies the bytes; stays empty unless the arguments are complete. A negative product raises
  /// std::bad_alloc.
  Img(const unsigned char* data, int step, int height, int width, int channels, ZynImageType type);
  /// Takes over pixels that somebody else has written. `pixels` holds step * height bytes, at least 1.
  Img(PixelMemory pixels, int step, int height, int width, int channels, ZynImageType type);
  /// Copies a frame of the transport, which keeps the frame. Stays empty when the frame says that it is not
  /// valid; keeps its numbers but has no buffer when step * height is below 1; has a zeroed buffer when the
  /// frame cannot give its pixels. Type 0 always. Other exceptions of the frame pass.
  explicit Img(KELGENICAM::IImage* frame);

  /// True when an image can be made of these: data, a type from 0 to 6, and no number 0.
  static bool IsComplete(const unsigned char* data, int step, int height, int width, int channels,
                         ZynImageType type);

  int Step() const { return step_; }  ///< bytes per row
  int Height() const { return height_; }
  int Width() const { return width_; }
  int Channels() const { return channels_; }
  ZynImageType Type() const { return type_; }
  unsigned char* Data() const { return pixels_.Data(); }

  /// A new image with a buffer of its own, for the caller to own; empty when this one is not complete.
  Img* Clone() const;

  /// No file format is defined: all of these do nothing and return 0.
  long SaveImage(const char* path, int option) const;
  long SaveImage(const wchar_t* path, int option) const;
  long ReadImage(const char* path);
  long ReadImage(const wchar_t* path);

  /// As PathText.h describes.
  static std::size_t char_to_wchar(wchar_t* dst, const char* src);
  static std::size_t wchar_to_char(char* dst, const wchar_t* src);

 private:
  PixelMemory pixels_;
  int step_ = 0;
  int height_ = 0;
  int width_ = 0;
  int channels_ = 0;
  ZynImageType type_ = ZYN_IMAGE_U8;
};

/// The bytes that an image of this shape holds. Raises std::bad_alloc for a negative product.
std::size_t ImageBytes(int step, int height);

/// step * height as 32-bit signed arithmetic gives it, wrapping around.
int ImageProduct(int step, int height);

}  // namespace ZYNSDK

#endif
