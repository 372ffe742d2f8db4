#include "DecodeTraffic.h"

#include <cstring>

namespace zyn::bench {

namespace {

// The compiler splits it where the processor's vectors are shorter.
constexpr std::size_t kLine = 64;
using Line = std::uint8_t __attribute__((vector_size(kLine)));

void CopyLine(const std::uint8_t* from, std::uint8_t* to) {
  Line line;
  std::memcpy(&line, from, kLine);
  std::memcpy(to, &line, kLine);
}

template <std::size_t kHeightLines>
void Move(const std::uint8_t* records, std::size_t bytes, void* heights, std::uint8_t* intensities) noexcept {
  constexpr std::size_t kLines = 4;  // give as many intensities as one line has
  auto* to = static_cast<std::uint8_t*>(heights);
  for (std::size_t i = 0; i < bytes; i += kLines * kLine, to += kHeightLines * kLine, intensities += kLine) {
    for (std::size_t line = 0; line < kHeightLines; ++line) {
      CopyLine(records + i + line * kLine, to + line * kLine);
    }
    CopyLine(records + i + (kLines - 2) * kLine, intensities);
    static_cast<void>(
        *static_cast<const volatile std::uint8_t*>(records + i + kLines * kLine - 1));  // read too
  }
}

}  // namespace

void BatchTraffic(const std::uint8_t* records, std::size_t bytes, std::uint16_t* heights,
                  std::uint8_t* intensities) noexcept {
  Move<2>(records, bytes, heights, intensities);
}

void ProfileTraffic(const std::uint8_t* records, std::size_t bytes, std::int32_t* heights,
                    std::uint8_t* intensities) noexcept {
  Move<4>(records, bytes, heights, intensities);
}

}  // namespace zyn::bench
