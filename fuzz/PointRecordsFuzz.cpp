// Point records: every way to decode must give what the plain loops give, wherever the records and the
// results lie. The first byte says how far from an aligned address; the rest are records.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "Kernels.h"
#include "PointRecords.h"
#include "PortableDecode.h"

namespace {

using namespace ZYNSDK;

template <class Height>
using Function = void (*)(const std::uint8_t*, std::size_t, Height*, std::uint8_t*) noexcept;

template <class Height>
struct Decoded {
  std::vector<Height> heights;
  std::vector<std::uint8_t> intensities;
  bool operator==(const Decoded& other) const = default;
};

// With `skip` elements of a known value before the results, which must stay.
template <class Height>
Decoded<Height> DecodedBy(Function<Height> decode, const std::vector<std::uint8_t>& records,
                          std::size_t skip) {
  const std::size_t points = PointCount(records.size());
  Decoded<Height> decoded{std::vector<Height>(skip + points, 0x5A),
                          std::vector<std::uint8_t>(skip + points, 0xA5)};
  decode(records.data(), records.size(), decoded.heights.data() + skip, decoded.intensities.data() + skip);
  return decoded;
}

template <class Height>
void Compare(Function<Height> decode, Function<Height> reference, const std::vector<std::uint8_t>& records,
             std::size_t skip) {
  if (DecodedBy(decode, records, skip) != DecodedBy(reference, records, skip)) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  static const std::vector<NamedKernel> kernels = AllKernels();
  const std::size_t skip = data[0] % 64;
  const std::vector<std::uint8_t> records(data + 1, data + size);
  for (const NamedKernel& named : kernels) {
    Compare<std::int32_t>(named.kernel.profile, portable::DecodeProfile, records, skip);
    Compare<std::int32_t>(named.kernel.contour, portable::DecodeContour, records, skip);
    Compare<std::uint16_t>(named.kernel.batch, portable::DecodeBatch, records, skip);
  }
  Compare<std::int32_t>(DecodeProfile, portable::DecodeProfile, records, skip);
  Compare<std::int32_t>(DecodeContour, portable::DecodeContour, records, skip);
  Compare<std::uint16_t>(DecodeBatch, portable::DecodeBatch, records, skip);
  return 0;
}
