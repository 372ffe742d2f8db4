#include "PortableDecode.h"

#include <cstring>

#include "Kernels.h"
#include "PointRecords.h"

namespace ZYNSDK::portable {

namespace {

// Calls write(point, record) for every record, the last one completed with zeros.
template <class Write>
void ForEachRecord(const std::uint8_t* records, std::size_t bytes, Write write) {
  const std::size_t whole = bytes / kRecordBytes;
  for (std::size_t i = 0; i < whole; ++i) write(i, records + i * kRecordBytes);
  const std::size_t rest = bytes % kRecordBytes;
  if (rest == 0) return;
  std::uint8_t last[kRecordBytes] = {};
  std::memcpy(last, records + whole * kRecordBytes, rest);
  write(whole, last);
}

int WideHeight(const std::uint8_t* record) {
  return record[2] * 256 + record[3];
}

}  // namespace

// Design decision: the intensity is the whole byte, although its low two bits belong to the height. Pinned by
// TheIntensityOfAProfileKeepsTheBitsOfTheHeight.
void DecodeProfile(const std::uint8_t* records, std::size_t bytes, std::int32_t* heights,
                   std::uint8_t* intensities) noexcept {
  ForEachRecord(records, bytes, [&](std::size_t point, const std::uint8_t* record) {
    heights[point] = (record[1] & 3) << 8 | record[2];
    intensities[point] = record[1];
  });
}

void DecodeContour(const std::uint8_t* records, std::size_t bytes, std::int32_t* heights,
                   std::uint8_t* intensities) noexcept {
  ForEachRecord(records, bytes, [&](std::size_t point, const std::uint8_t* record) {
    heights[point] = WideHeight(record);
    intensities[point] = record[1];
  });
}

void DecodeBatch(const std::uint8_t* records, std::size_t bytes, std::uint16_t* heights,
                 std::uint8_t* intensities) noexcept {
  ForEachRecord(records, bytes, [&](std::size_t point, const std::uint8_t* record) {
    heights[point] = static_cast<std::uint16_t>(WideHeight(record));
    intensities[point] = record[1];
  });
}

}  // namespace ZYNSDK::portable

namespace ZYNSDK {

const DecodeKernel kPortableKernel = {portable::DecodeProfile, portable::DecodeContour,
                                      portable::DecodeBatch};

}  // namespace ZYNSDK
