/// Descriptions of any size that look like a camera's.
#ifndef ZYN_BENCH_GENAPI_GENERATEDCAMERA_H
#define ZYN_BENCH_GENAPI_GENERATEDCAMERA_H

#include <cstddef>
#include <string>

namespace generated {

constexpr std::size_t kMemoryBytes = 1U << 20;

/// At least that many nodes, enumeration entries counted: groups of features with texts, limits, conditions, registers,
/// bit fields, enumerations, formulas and selectors, as in public descriptions. The first group's names end in 0:
/// Width0 (Integer), Format0 (Enumeration over a bit field), Field0 (MaskedIntReg), Time0 (Float over Converter),
/// Exposure0 (Converter), Size0 (SwissKnife), all on the Port "Device".
std::string Camera(std::size_t nodes);

}  // namespace generated

#endif
