#include "PngWriter.h"

#include <png.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <system_error>
#include <vector>

#include "Failure.h"

namespace zyncam {
namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

[[noreturn]] void FailToWrite(const std::string& path, const std::string& reason) {
  throw Failure(kExitOutput, "cannot write " + path + ": " + reason, "choose another folder with --output");
}

std::string ErrnoText() {
  return std::generic_category().message(errno);
}

bool StartsWith(const std::string& text, const char* beginning) {
  return text.rfind(beginning, 0) == 0;
}

/// Bits behind a format name such as "Mono12" or "BayerRG8"; 0 when anything but a number from 8 to 16
/// follows.
int BitsAfter(const std::string& text, std::size_t position) {
  if (position >= text.size()) return 0;
  char* end = nullptr;
  const long bits = std::strtol(text.c_str() + position, &end, 10);
  return *end == '\0' && bits >= 8 && bits <= 16 ? static_cast<int>(bits) : 0;
}

/// One row as PNG wants it: most significant byte first, red first, all 16 bits used.
void ConvertRow(const std::uint8_t* source, std::uint8_t* target, int width, const PixelLayout& layout) {
  const std::size_t samples = static_cast<std::size_t>(width) * static_cast<std::size_t>(layout.channels);
  const std::size_t sampleBytes = layout.bitsPerSample > 8 ? 2 : 1;
  for (std::size_t i = 0; i < samples; ++i) {
    std::size_t from = i;
    if (layout.blueFirst) from = i - i % 3 + (2 - i % 3);
    if (sampleBytes == 1) {
      target[i] = source[from];
      continue;
    }
    const unsigned value = static_cast<unsigned>(source[2 * from] | source[2 * from + 1] << 8)
                           << (16 - layout.bitsPerSample);
    target[2 * i] = static_cast<std::uint8_t>(value >> 8);
    target[2 * i + 1] = static_cast<std::uint8_t>(value);
  }
}

void RememberError(png_structp png, png_const_charp message) {
  *static_cast<std::string*>(png_get_error_ptr(png)) = message;
  png_longjmp(png, 1);
}

void IgnoreWarning(png_structp, png_const_charp) {}

/// The part that libpng may leave by a long jump: it holds no object with a destructor.
bool WriteRows(png_structp png, png_infop info, std::FILE* file, const std::uint8_t* pixels, int width,
               int height, std::size_t rowStep, const PixelLayout& layout, std::uint8_t* row) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  png_init_io(png, file);
  png_set_compression_level(png, 1);
  png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height),
               layout.bitsPerSample > 8 ? 16 : 8,
               layout.channels == 3 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (layout.bitsPerSample > 8) {
    const auto bits = static_cast<png_byte>(layout.bitsPerSample);
    png_color_8 significant = {bits, bits, bits, bits, 0};
    png_set_sBIT(png, info, &significant);
  }
  png_write_info(png, info);
  for (int y = 0; y < height; ++y) {
    ConvertRow(pixels + static_cast<std::size_t>(y) * rowStep, row, width, layout);
    png_write_row(png, row);
  }
  png_write_end(png, info);
  return true;
}

}  // namespace

PixelLayout LayoutOf(const std::string& pixelFormat) {
  PixelLayout layout;
  if (pixelFormat == "RGB8" || pixelFormat == "RGB8Packed" || pixelFormat == "BGR8" ||
      pixelFormat == "BGR8Packed") {
    layout.channels = 3;
    layout.blueFirst = pixelFormat[0] == 'B';
    layout.known = true;
    return layout;
  }
  int bits = 0;
  if (StartsWith(pixelFormat, "Mono")) bits = BitsAfter(pixelFormat, 4);
  if (StartsWith(pixelFormat, "Bayer")) bits = BitsAfter(pixelFormat, 7);
  if (bits == 0) return layout;
  layout.bitsPerSample = bits;
  layout.known = true;
  return layout;
}

std::size_t RowBytes(const PixelLayout& layout, int width) {
  const std::size_t sampleBytes = layout.bitsPerSample > 8 ? 2 : 1;
  return static_cast<std::size_t>(width) * static_cast<std::size_t>(layout.channels) * sampleBytes;
}

void WritePng(const std::string& path, const std::uint8_t* pixels, int width, int height, std::size_t rowStep,
              const PixelLayout& layout) {
  if (width < 1 || height < 1 || rowStep < RowBytes(layout, width)) FailToWrite(path, "the image is empty");
  File file(std::fopen(path.c_str(), "wb"), &std::fclose);
  if (!file) FailToWrite(path, ErrnoText());

  std::string error = "out of memory";
  std::vector<std::uint8_t> row(RowBytes(layout, width));
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &error, &RememberError, &IgnoreWarning);
  png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
  const bool written =
      info != nullptr && WriteRows(png, info, file.get(), pixels, width, height, rowStep, layout, row.data());
  png_destroy_write_struct(&png, &info);
  const bool flushed = std::fflush(file.get()) == 0;
  if (written && flushed) return;
  if (written) error = ErrnoText();
  file.reset();
  std::remove(path.c_str());
  FailToWrite(path, error);
}

}  // namespace zyncam
