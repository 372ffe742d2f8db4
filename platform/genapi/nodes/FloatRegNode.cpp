#include "nodes/FloatRegNode.h"

#include <array>
#include <bit>
#include <limits>

#include "nodes/ByteOrder.h"

namespace zyn::genapi {

FloatRegNode::FloatRegNode(NodeMap& map, NodeId id)
    : WithRegister<FloatCore>(map, id), isBigEndian_(Number(Element::endianess, LittleEndian) == BigEndian) {}

std::int64_t FloatRegNode::ByteCount() {
  const std::int64_t length = register_.Length();
  if (length != 4 && length != 8)
    ZYN_THROW(OutOfRangeException, "A floating-point register has 4 or 8 bytes, not %lld.",
              static_cast<long long>(length));
  return length;
}

double FloatRegNode::Compute(ReadMode read) {
  const std::int64_t length = ByteCount();
  const std::uint64_t raw = LoadBytes(register_.Read(read.ignoreCache), isBigEndian_);
  if (length == 8) return std::bit_cast<double>(raw);
  return static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(raw)));
}

void FloatRegNode::Put(double value, bool) {
  const std::int64_t length = ByteCount();
  const std::uint64_t raw = length == 8 ? std::bit_cast<std::uint64_t>(value)
                                        : std::bit_cast<std::uint32_t>(static_cast<float>(value));
  std::array<std::uint8_t, 8> bytes{};
  const std::span<std::uint8_t> used(bytes.data(), static_cast<std::size_t>(length));
  StoreBytes(raw, used, isBigEndian_);
  register_.Write(used);
}

double FloatRegNode::OwnMax() {
  return ByteCount() == 8 ? std::numeric_limits<double>::max()
                          : static_cast<double>(std::numeric_limits<float>::max());
}

}  // namespace zyn::genapi
