#ifndef ZYN_CAMERA_DECODE_PORTABLE_DECODE_H
#define ZYN_CAMERA_DECODE_PORTABLE_DECODE_H

#include <cstddef>
#include <cstdint>

/// The plain loops that define what is right; PointRecords.h describes them. Every other way of decoding
/// must give the same.
namespace ZYNSDK::portable {

void DecodeProfile(const std::uint8_t* records, std::size_t bytes, std::int32_t* heights,
                   std::uint8_t* intensities) noexcept;
void DecodeContour(const std::uint8_t* records, std::size_t bytes, std::int32_t* heights,
                   std::uint8_t* intensities) noexcept;
void DecodeBatch(const std::uint8_t* records, std::size_t bytes, std::uint16_t* heights,
                 std::uint8_t* intensities) noexcept;

}  // namespace ZYNSDK::portable

#endif
