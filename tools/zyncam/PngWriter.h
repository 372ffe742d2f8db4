/// Writes greyscale and colour images as PNG files.
#ifndef ZYNCAM_PNG_WRITER_H
#define ZYNCAM_PNG_WRITER_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace zyncam {

/// How the bytes of an image become PNG samples.
struct PixelLayout {
  int channels = 1;  ///< 1 grey, 3 red green blue
  int bitsPerSample =
      8;  ///< significant bits of a sample: 8, or 9 to 16 in two bytes, least significant byte first
  bool blueFirst = false;  ///< the camera sends blue, green, red
  bool known = false;      ///< false when the format cannot be written as PNG
};

/// The layout of a camera's pixel format by its standard name ("Mono8", "Mono12", "BayerRG8", "RGB8", "BGR8",
/// …). Bayer formats are written as grey, as they come from the sensor. Packed and planar formats are not
/// known.
PixelLayout LayoutOf(const std::string& pixelFormat);

/// Bytes of one row without padding.
std::size_t RowBytes(const PixelLayout& layout, int width);

/// Writes the image. Samples of 9 to 15 bits are shifted up to 16 and the file says how many bits count, so
/// viewers show the full brightness and nothing is lost. rowStep: bytes from one row to the next, at least
/// RowBytes. Throws Failure when the file cannot be written; an incomplete file is removed.
void WritePng(const std::string& path, const std::uint8_t* pixels, int width, int height, std::size_t rowStep,
              const PixelLayout& layout);

}  // namespace zyncam

#endif
