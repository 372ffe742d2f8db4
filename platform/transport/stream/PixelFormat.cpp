#include "PixelFormat.h"

namespace zyn::transport {

namespace {

// A code is 0xCCBBIIII: CC 01 for single, 02 for multiple components; BB bits per pixel; IIII a number.
constexpr std::uint64_t kSingleComponent = 0x01;
constexpr std::uint64_t kMultipleComponents = 0x02;

std::uint64_t Family(std::uint64_t format) {
  return (format >> 24U) & 0x7FU;
}

struct ChannelRow {
  std::uint32_t format;
  int channels;
};

// Formats whose size alone would suggest another number of channels.
constexpr ChannelRow kExceptions[] = {
    {0x0220001D, 1},  // RGB10p32
    {0x02100035, 1},  // RGB565p
    {0x02100036, 1},  // BGR565p
    {0x022000BB, 2},  // Coord3D_AC16
    {0x022000BC, 2},  // Coord3D_AC16_Planar
    {0x024000C2, 2},  // Coord3D_AC32f
    {0x024000C3, 2},  // Coord3D_AC32f_Planar
    {0x0220001C, 1},  // RGB10V1Packed
};

int ChannelsBySize(int bits) {
  switch (bits) {
    case 16:
      return 2;  // one luminance and one chrominance number per pixel, or two coordinates
    case 24:
      return 3;
    case 32:
      return 4;
    case 48:
      return 3;
    case 64:
      return 4;
    case 96:
      return 3;
    case 128:
      return 4;
    default:
      return 1;
  }
}

}  // namespace

int BitsPerPixel(std::uint64_t format) {
  const std::uint64_t family = Family(format);
  if (family != kSingleComponent && family != kMultipleComponents) return 0;
  return static_cast<int>((format >> 16U) & 0xFFU);
}

int ChannelsOf(std::uint64_t format) {
  if (Family(format) != kMultipleComponents) return 1;
  for (const ChannelRow& row : kExceptions) {
    if (row.format == format) return row.channels;
  }
  return ChannelsBySize(BitsPerPixel(format));
}

std::uint64_t RowBytes(std::uint64_t format, std::uint64_t width) {
  return (width * static_cast<std::uint64_t>(BitsPerPixel(format)) + 7) / 8;
}

}  // namespace zyn::transport
