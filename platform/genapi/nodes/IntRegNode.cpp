#include "nodes/IntRegNode.h"

#include <algorithm>
#include <array>

#include "nodes/ByteOrder.h"

namespace zyn::genapi {
namespace {

std::uint64_t MaskOf(int width) {
  return width >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << width) - 1;
}

}  // namespace

IntRegNode::IntRegNode(NodeMap& map, NodeId id)
    : WithRegister<IntegerCore>(map, id),
      isSigned_(Number(Element::sign, Unsigned) == Signed),
      isBigEndian_(Number(Element::endianess, LittleEndian) == BigEndian),
      isMasked_(Kind() == NodeKind::maskedIntReg) {}

IntRegNode::Field IntRegNode::FieldIn(std::int64_t length) {
  const auto bits = static_cast<int>(8 * length);
  if (!isMasked_) return {0, bits};
  const std::int64_t bit = Number(Element::bit, 0);
  const std::int64_t lsb = Find(Element::bit) ? bit : Number(Element::lsb, Number(Element::msb, 0));
  const std::int64_t msb = Find(Element::bit) ? bit : Number(Element::msb, lsb);
  const auto [low, high] = std::minmax(lsb, msb);
  if (low < 0 || high >= bits)
    ZYN_THROW(OutOfRangeException, "Bits %lld to %lld lie outside a register of %d bits.",
              static_cast<long long>(low), static_cast<long long>(high), bits);
  const auto width = static_cast<int>(high - low + 1);
  return {static_cast<int>(isBigEndian_ ? bits - 1 - high : low), width};
}

std::int64_t IntRegNode::Compute(ReadMode read) {
  const Field field = FieldIn(register_.NumberLength());
  const std::uint64_t raw = LoadBytes(register_.Read(read.ignoreCache), isBigEndian_) >> field.shift;
  const std::uint64_t value = raw & MaskOf(field.width);
  const bool isNegative = isSigned_ && (value >> (field.width - 1) & 1) != 0;
  return static_cast<std::int64_t>(isNegative ? value | ~MaskOf(field.width) : value);
}

// A register that cannot be read keeps the other bits as they were written last.
std::uint64_t IntRegNode::RawForUpdate() {
  const auto bytes = IsReadable(Access()) ? register_.Read(false) : register_.Known();
  return bytes.empty() ? 0 : LoadBytes(bytes, isBigEndian_);
}

void IntRegNode::Put(std::int64_t value, bool) {
  const std::int64_t length = register_.NumberLength();
  const Field field = FieldIn(length);
  const std::uint64_t mask = MaskOf(field.width) << field.shift;
  std::uint64_t raw = (static_cast<std::uint64_t>(value) << field.shift) & mask;
  if (isMasked_) raw |= RawForUpdate() & ~mask;
  std::array<std::uint8_t, 8> bytes{};
  const std::span<std::uint8_t> used(bytes.data(), static_cast<std::size_t>(length));
  StoreBytes(raw, used, isBigEndian_);
  register_.Write(used);
}

std::int64_t IntRegNode::OwnMin() {
  if (!isSigned_) return 0;
  return -static_cast<std::int64_t>(MaskOf(Width() - 1)) - 1;
}

std::int64_t IntRegNode::OwnMax() {
  const int width = Width();
  return static_cast<std::int64_t>(MaskOf(isSigned_ || width == 64 ? width - 1 : width));
}

}  // namespace zyn::genapi
