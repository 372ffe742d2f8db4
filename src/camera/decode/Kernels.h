#ifndef ZYN_CAMERA_DECODE_KERNELS_H
#define ZYN_CAMERA_DECODE_KERNELS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace ZYNSDK {

/// One way to decode; PointRecords.h says what each function does.
struct DecodeKernel {
  void (*profile)(const std::uint8_t* records, std::size_t bytes, std::int32_t* heights,
                  std::uint8_t* intensities) noexcept;
  void (*contour)(const std::uint8_t* records, std::size_t bytes, std::int32_t* heights,
                  std::uint8_t* intensities) noexcept;
  void (*batch)(const std::uint8_t* records, std::size_t bytes, std::uint16_t* heights,
                std::uint8_t* intensities) noexcept;
};

/// One set of instructions, two ways.
struct KernelPair {
  DecodeKernel cached;
  DecodeKernel streaming;  ///< writes past the caches
};

/// The best way on this processor for a task that reads and writes this many bytes altogether: one that
/// does not fit into the last cache is written past the caches. Chosen at the first call.
const DecodeKernel& BestKernel(std::size_t bytesTouched) noexcept;

/// The plain loops.
extern const DecodeKernel kPortableKernel;

struct NamedKernel {
  std::string name;  ///< of the instructions it uses, "+stream" behind it when it writes past the caches
  DecodeKernel kernel;
};

/// Every way that this processor can take, the best first and the plain loops last.
std::vector<NamedKernel> AllKernels();

}  // namespace ZYNSDK

#endif
