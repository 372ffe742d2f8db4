/// The pixel formats that simulated cameras send: PFNC codes.
#ifndef ZYN_CAMERAS_PIXEL_FORMATS_H
#define ZYN_CAMERAS_PIXEL_FORMATS_H

#include <cstddef>
#include <cstdint>

namespace zyn::cameras {

constexpr std::uint32_t kMono8 = 0x01080001;
constexpr std::uint32_t kMono10 = 0x01100003;
constexpr std::uint32_t kMono12 = 0x01100005;
constexpr std::uint32_t kMono16 = 0x01100007;
constexpr std::uint32_t kBayerRG8 = 0x01080009;
constexpr std::uint32_t kRGB8 = 0x02180014;
constexpr std::uint32_t kBGR8 = 0x02180015;

/// Bytes of one pixel: the third byte of a code holds its bits.
constexpr std::size_t BytesPerPixel(std::uint32_t format) {
  return ((format >> 16U) & 0xFFU) / 8;
}

}  // namespace zyn::cameras

#endif
