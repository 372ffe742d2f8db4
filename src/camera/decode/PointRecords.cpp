#include "PointRecords.h"

#include "Kernels.h"

namespace ZYNSDK {

namespace {

template <class Height>
const DecodeKernel& KernelFor(std::size_t bytes) noexcept {
  return BestKernel(bytes + PointCount(bytes) * (sizeof(Height) + 1));
}

}  // namespace

void DecodeProfile(const std::uint8_t* records, std::size_t bytes, std::int32_t* heights,
                   std::uint8_t* intensities) noexcept {
  KernelFor<std::int32_t>(bytes).profile(records, bytes, heights, intensities);
}

void DecodeContour(const std::uint8_t* records, std::size_t bytes, std::int32_t* heights,
                   std::uint8_t* intensities) noexcept {
  KernelFor<std::int32_t>(bytes).contour(records, bytes, heights, intensities);
}

void DecodeBatch(const std::uint8_t* records, std::size_t bytes, std::uint16_t* heights,
                 std::uint8_t* intensities) noexcept {
  KernelFor<std::uint16_t>(bytes).batch(records, bytes, heights, intensities);
}

}  // namespace ZYNSDK
