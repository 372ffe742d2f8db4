#include "PointRecords.h"

#include "PortableDecode.h"

namespace ZYNSDK {

void DecodeProfile(const std::uint8_t* records, std::size_t bytes, std::int32_t* heights,
                   std::uint8_t* intensities) noexcept {
  portable::DecodeProfile(records, bytes, heights, intensities);
}

void DecodeContour(const std::uint8_t* records, std::size_t bytes, std::int32_t* heights,
                   std::uint8_t* intensities) noexcept {
  portable::DecodeContour(records, bytes, heights, intensities);
}

void DecodeBatch(const std::uint8_t* records, std::size_t bytes, std::uint16_t* heights,
                 std::uint8_t* intensities) noexcept {
  portable::DecodeBatch(records, bytes, heights, intensities);
}

}  // namespace ZYNSDK
