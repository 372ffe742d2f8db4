#ifndef ZYN_CAMERA_DECODE_POINT_RECORDS_H
#define ZYN_CAMERA_DECODE_POINT_RECORDS_H

#include <cstddef>
#include <cstdint>

namespace ZYNSDK {

/// Decoding of what a laser-profile camera sends: records of 4 bytes, one per point, without a gap.
///
///   byte       0   1                                        2             3
///   profile    -   intensity; low two bits: height 9-8      height 7-0    -
///   contour    -   intensity                                height 15-8   height 7-0
///   batch      -   intensity                                height 15-8   height 7-0
///
/// All functions take `bytes` bytes at `records`, read nothing else, and write PointCount(bytes) heights
/// and as many intensities, nothing else. A last record that is cut short is read as if its missing bytes
/// were 0. No alignment is asked for beyond that of the types; the three ranges must not overlap. With 0
/// bytes the pointers may be null. They neither allocate nor throw nor lock, and use the best instructions
/// that the processor has.

constexpr std::size_t kRecordBytes = 4;

/// The points in this many bytes, one that is cut short included.
constexpr std::size_t PointCount(std::size_t bytes) {
  return bytes / kRecordBytes + (bytes % kRecordBytes != 0 ? 1 : 0);
}

/// A profile that comes with its sensor image: heights 0..1023, raw.
void DecodeProfile(const std::uint8_t* records, std::size_t bytes, std::int32_t* heights,
                   std::uint8_t* intensities) noexcept;

/// A profile alone: heights 0..65535, raw.
void DecodeContour(const std::uint8_t* records, std::size_t bytes, std::int32_t* heights,
                   std::uint8_t* intensities) noexcept;

/// A batch of profiles: heights 0..65535, raw.
void DecodeBatch(const std::uint8_t* records, std::size_t bytes, std::uint16_t* heights,
                 std::uint8_t* intensities) noexcept;

}  // namespace ZYNSDK

#endif
