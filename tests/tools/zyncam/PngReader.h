/// Reads PNG files back.
#ifndef ZYN_TESTS_PNG_READER_H
#define ZYN_TESTS_PNG_READER_H

#include <png.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace zyntest {

/// What a PNG file holds, read by libpng's own reader.
struct Decoded {
  unsigned width = 0, height = 0;
  int bitDepth = 0, colorType = 0, significantBits = 0;
  std::vector<std::uint8_t> bytes;
};

inline Decoded Read(const std::string& path) {
  Decoded result;
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return result;
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file);
  png_read_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
  result.width = png_get_image_width(png, info);
  result.height = png_get_image_height(png, info);
  result.bitDepth = png_get_bit_depth(png, info);
  result.colorType = png_get_color_type(png, info);
  png_color_8p significant = nullptr;
  if (png_get_sBIT(png, info, &significant) != 0) result.significantBits = significant->gray;
  png_bytepp rows = png_get_rows(png, info);
  for (unsigned y = 0; y < result.height; ++y) {
    result.bytes.insert(result.bytes.end(), rows[y], rows[y] + png_get_rowbytes(png, info));
  }
  png_destroy_read_struct(&png, &info, nullptr);
  std::fclose(file);
  return result;
}

}  // namespace zyntest

#endif
