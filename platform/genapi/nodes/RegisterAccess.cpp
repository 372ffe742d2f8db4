#include "nodes/RegisterAccess.h"

#include <algorithm>

#include "description/NumberText.h"

namespace zyn::genapi {
namespace {

// As text a register takes several times its length.
constexpr std::int64_t kMaxLength = std::int64_t{16} << 20;

// Parts may be negative, so an address counts as a signed number of 64 bits.
[[noreturn]] void ThrowBeyond(const Node& owner, const Property& property) {
  owner.Throw<GENICAM_NAMESPACE::OutOfRangeException>(
      "OutOfRangeException", "The address lies beyond 64 bits with element %s at line %u.",
      XmlName(property.element), property.line);
}

std::int64_t Add(const Node& owner, const Property& property, std::int64_t a, std::int64_t b) {
  std::int64_t sum = 0;
  if (__builtin_add_overflow(a, b, &sum)) ThrowBeyond(owner, property);
  return sum;
}

std::int64_t Multiply(const Node& owner, const Property& property, std::int64_t a, std::int64_t b) {
  std::int64_t product = 0;
  if (__builtin_mul_overflow(a, b, &product)) ThrowBeyond(owner, property);
  return product;
}

}  // namespace

PortNode& RegisterAccess::Port() {
  if (!port_) port_ = dynamic_cast<PortNode*>(&owner_.At(owner_.Link(Element::pPort)));
  return *port_;
}

std::int64_t RegisterAccess::IndexFactor(std::size_t indexProperty) {
  const auto properties = owner_.Properties();
  const bool hasOffsetNode =
      indexProperty + 1 < properties.size() && properties[indexProperty + 1].element == Element::pOffset;
  if (hasOffsetNode) return owner_.At(properties[indexProperty + 1].Target()).IntegerValue({});
  const std::string_view offset = owner_.Map().Facts().Text(properties[indexProperty].attribute);
  if (offset.empty()) return Length();
  return ParseInteger(offset).value();  // it was checked when the description was read
}

std::int64_t RegisterAccess::Address() {
  std::int64_t sum = 0;
  const auto properties = owner_.Properties();
  for (std::size_t i = 0; i < properties.size(); ++i) {
    const Property& property = properties[i];
    switch (property.element) {
      case Element::address:
        sum = Add(owner_, property, sum, property.number);
        break;
      case Element::pAddress:
      case Element::intSwissKnife:
        sum = Add(owner_, property, sum, owner_.At(property.Target()).IntegerValue({}));
        break;
      case Element::pIndex:
        sum = Add(owner_, property, sum,
                  Multiply(owner_, property, owner_.At(property.Target()).IntegerValue({}), IndexFactor(i)));
        break;
      default:
        break;
    }
  }
  return sum;
}

std::int64_t RegisterAccess::Length() {
  const NodeId link = owner_.Link(Element::pLength);
  const std::int64_t length =
      link != kNoNode ? owner_.At(link).IntegerValue({}) : owner_.Number(Element::length, 0);
  if (length < 1 || length > kMaxLength)
    owner_.Throw<GENICAM_NAMESPACE::OutOfRangeException>(
        "OutOfRangeException", "Register length %lld is impossible.", static_cast<long long>(length));
  return length;
}

std::int64_t RegisterAccess::NumberLength() {
  const std::int64_t length = Length();
  if (length > 8)
    owner_.Throw<GENICAM_NAMESPACE::OutOfRangeException>("OutOfRangeException",
                                                         "Register length %lld is too large for a number.",
                                                         static_cast<long long>(length));
  return length;
}

PortNode::Memory& RegisterAccess::Use(std::int64_t address, std::int64_t length) {
  PortNode::Memory& memory = Port().At(address, length);
  const bool isFirstUse = !used_ || generation_ != Port().MemoryGeneration();
  const bool isSamePlace = address == lastAddress_ && length == lastLength_;
  // Very many registers may share a place, so its users are searched only where this one may be among them.
  if (isFirstUse || (!isSamePlace &&
                     std::find(memory.users.begin(), memory.users.end(), owner_.Id()) == memory.users.end()))
    memory.users.push_back(owner_.Id());
  used_ = true;
  lastAddress_ = address;
  lastLength_ = length;
  generation_ = Port().MemoryGeneration();
  return memory;
}

std::span<const std::uint8_t> RegisterAccess::Read(bool ignoreCache) {
  const std::int64_t address = Address();
  const std::int64_t length = Length();
  PortNode::Memory& memory = Use(address, length);
  if (memory.valid && !ignoreCache && OwnCachingMode() != NoCache) return memory.bytes;
  memory.valid = false;
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(length));
  Port().Read(bytes.data(), address, length);
  // The port may have run foreign code that moved or dropped the memory.
  PortNode::Memory& current = Use(address, length);
  current.bytes.swap(bytes);
  current.valid = !ignoreCache && OwnCachingMode() != NoCache;
  return current.bytes;
}

std::span<const std::uint8_t> RegisterAccess::Known() {
  const PortNode::Memory& memory = Use(Address(), Length());
  if (static_cast<std::int64_t>(memory.bytes.size()) != lastLength_) return {};
  return memory.bytes;
}

bool RegisterAccess::Write(std::span<const std::uint8_t> bytes) {
  const std::int64_t address = Address();
  const std::int64_t length = Length();
  Use(address, length).valid = false;
  Port().Write(bytes.data(), address, static_cast<std::int64_t>(bytes.size()));
  PortNode::Memory& memory = Use(address, length);
  const bool isWhole = static_cast<std::int64_t>(bytes.size()) == length;
  if (isWhole) memory.bytes.assign(bytes.begin(), bytes.end());
  memory.valid = isWhole && OwnCachingMode() == WriteThrough;
  for (const NodeId user : memory.users)
    if (user != owner_.Id()) WriteCall::MarkSibling(owner_.Map(), user);
  return memory.valid;
}

EAccessMode RegisterAccess::BaseAccess() {
  return Combine(static_cast<EAccessMode>(owner_.Number(Element::accessMode, RO)), Port().Access());
}

ECachingMode RegisterAccess::OwnCachingMode() const {
  return owner_.CachingMode();
}

void RegisterAccess::Forget() {
  // Without a port nothing was ever read; making its node here would take memory that may be lacking.
  if (used_ && port_) port_->ForgetPlace(lastAddress_, lastLength_);
}

}  // namespace zyn::genapi
