/// What the pixel format code (PFNC) of a frame says about its layout.
#ifndef ZYN_TRANSPORT_PIXEL_FORMAT_H
#define ZYN_TRANSPORT_PIXEL_FORMAT_H

#include <cstdint>

namespace zyn::transport {

/// Bits that one pixel takes, padding inside the pixel included; 0 for a code that does not tell.
int BitsPerPixel(std::uint64_t format);

/// Numbers per pixel. 1 for formats whose pixels are not made of whole bytes per number: packed formats, and
/// formats that share numbers between pixels in other ratios than whole bytes.
int ChannelsOf(std::uint64_t format);

/// Bytes of one row without padding.
std::uint64_t RowBytes(std::uint64_t format, std::uint64_t width);

}  // namespace zyn::transport

#endif
