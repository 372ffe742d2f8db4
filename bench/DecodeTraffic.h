#ifndef ZYN_BENCH_DECODE_TRAFFIC_H
#define ZYN_BENCH_DECODE_TRAFFIC_H

#include <cstddef>
#include <cstdint>

/// What decoding of `bytes` bytes of records reads and writes, a multiple of 256, without decoding: every line
/// of records is read, and as many heights and intensities are written as decoding writes, with the widest
/// vectors of the processor that this was built on. The last line of a block goes nowhere where the results are
/// smaller than the records.
namespace zyn::bench {

void BatchTraffic(const std::uint8_t* records, std::size_t bytes, std::uint16_t* heights,
                  std::uint8_t* intensities) noexcept;
void ProfileTraffic(const std::uint8_t* records, std::size_t bytes, std::int32_t* heights,
                    std::uint8_t* intensities) noexcept;

}  // namespace zyn::bench

#endif
