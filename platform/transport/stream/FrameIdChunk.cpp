#include "FrameIdChunk.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <set>
#include <string>

#include <GenICam.h>

namespace zyn::transport {

namespace {

std::string Property(GenApi_3_4::INode& node, const char* name) {
  GenICam_3_4::gcstring value;
  GenICam_3_4::gcstring attribute;
  return node.GetProperty(name, value, attribute) ? value.c_str() : "";
}

// Every port may look like one; those of chunks have an ID.
GenApi_3_4::IChunkPort* AsChunkPort(GenApi_3_4::INode* node) {
  auto* port = dynamic_cast<GenApi_3_4::IChunkPort*>(node);
  return port && !port->GetChunkID().empty() ? port : nullptr;
}

GenApi_3_4::IChunkPort* FindChunkPort(GenApi_3_4::INodeMap& camera, GenApi_3_4::INode& registerNode) {
  const std::string name = Property(registerNode, "pPort");
  if (!name.empty()) return AsChunkPort(camera.GetNode(name.c_str()));
  GenApi_3_4::NodeList_t children;
  registerNode.GetChildren(children, GenApi_3_4::ctReadingChildren);
  for (GenApi_3_4::INode* child : children) {
    if (auto* port = AsChunkPort(child)) return port;
  }
  return nullptr;
}

// Follows a feature through the integers that pass a value on, to the register that holds it.
GenApi_3_4::INode* FindChunkRegister(GenApi_3_4::INodeMap& camera, GenApi_3_4::INode* node,
                                     std::set<GenApi_3_4::INode*>& seen) {
  const bool isNew = seen.insert(node).second;
  if (!node || !isNew) return nullptr;
  if (dynamic_cast<GenApi_3_4::IRegister*>(node)) return FindChunkPort(camera, *node) ? node : nullptr;
  const bool isComputed = !Property(*node, "FormulaFrom").empty() || !Property(*node, "Formula").empty();
  const std::string next = Property(*node, "pValue");
  if (isComputed || next.empty()) return nullptr;
  return FindChunkRegister(camera, camera.GetNode(next.c_str()), seen);
}

// The sum of the constants in a property that holds one or more of them, separated by tabs. A register of a chunk
// port cannot be asked itself: while no chunk is attached it is not available.
std::optional<std::size_t> SumOf(const std::string& numbers) {
  std::size_t sum = 0;
  const char* at = numbers.c_str();
  for (char* end = nullptr; *at != '\0'; at = end) {
    sum += std::strtoull(at, &end, 0);
    if (end == at) return std::nullopt;
    while (*end == '\t' || *end == ' ') ++end;
  }
  return numbers.empty() ? std::nullopt : std::optional<std::size_t>(sum);
}

// The sum of the nodes that a property names, separated by tabs; 0 without the property.
std::optional<std::size_t> SumOfNodes(GenApi_3_4::INodeMap& camera, const std::string& names) {
  std::size_t sum = 0;
  for (std::size_t at = 0; at < names.size();) {
    const std::size_t end = std::min(names.find('\t', at), names.size());
    auto* node = dynamic_cast<GenApi_3_4::IInteger*>(camera.GetNode(names.substr(at, end - at).c_str()));
    if (!node) return std::nullopt;
    sum += static_cast<std::size_t>(node->GetValue());
    at = end + 1;
  }
  return sum;
}

std::optional<std::size_t> LengthOf(GenApi_3_4::INodeMap& camera, GenApi_3_4::INode& registerNode) {
  const std::string node = Property(registerNode, "pLength");
  const auto length = node.empty() ? SumOf(Property(registerNode, "Length")) : SumOfNodes(camera, node);
  return length && *length >= 1 && *length <= 8 ? length : std::nullopt;
}

// Registers that lie elsewhere for each selector value are not read.
bool HasOnePlace(GenApi_3_4::INode& registerNode) {
  return Property(registerNode, "pIndex").empty() && Property(registerNode, "IntSwissKnife").empty();
}

// Bit numbers count from the least significant bit in little-endian registers, from the most significant one in
// big-endian registers. Nothing when they lie outside the register.
std::optional<BitField> FieldOf(GenApi_3_4::INode& registerNode, std::size_t length, ByteOrder order) {
  const std::string bit = Property(registerNode, "Bit");
  const auto lsb = SumOf(bit.empty() ? Property(registerNode, "LSB") : bit);
  const auto msb = SumOf(bit.empty() ? Property(registerNode, "MSB") : bit);
  const auto bits = static_cast<unsigned>(8 * length);
  BitField field{0, bits, Property(registerNode, "Sign") == "Signed"};
  if (!lsb && !msb) return field;
  const std::size_t first = lsb ? *lsb : *msb;
  const std::size_t last = msb ? *msb : *lsb;
  const std::size_t low = std::min(first, last);
  const std::size_t high = std::max(first, last);
  if (high >= bits) return std::nullopt;
  field.shift = static_cast<unsigned>(order == ByteOrder::kBig ? bits - 1 - high : low);
  field.width = static_cast<unsigned>(high - low + 1);
  return field;
}

std::int64_t Extract(std::uint64_t number, const BitField& field) {
  const std::uint64_t mask = field.width >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << field.width) - 1;
  const std::uint64_t value = (number >> field.shift) & mask;
  const bool isNegative = field.isSigned && (value & ~(mask >> 1U)) != 0;
  return static_cast<std::int64_t>(isNegative ? value | ~mask : value);
}

std::optional<FrameIdChunk> Locate(GenApi_3_4::INodeMap& camera) {
  std::set<GenApi_3_4::INode*> seen;
  GenApi_3_4::INode* node = FindChunkRegister(camera, camera.GetNode("ChunkFrameID"), seen);
  if (!node) return std::nullopt;
  GenApi_3_4::IChunkPort* port = FindChunkPort(camera, *node);
  if (!port) return std::nullopt;
  const std::string idText = port->GetChunkID().c_str();
  const auto constants = SumOf(Property(*node, "Address"));
  const auto indirect = SumOfNodes(camera, Property(*node, "pAddress"));
  const auto length = LengthOf(camera, *node);
  if (idText.empty() || !HasOnePlace(*node) || !indirect || !length) return std::nullopt;
  // A register that names no order is little-endian, as where an application reads the feature itself.
  const bool isBig = Property(*node, "Endianess") == "BigEndian";
  const ByteOrder order = isBig ? ByteOrder::kBig : ByteOrder::kLittle;
  const auto field = FieldOf(*node, *length, order);
  if (!field) return std::nullopt;
  return FrameIdChunk(std::strtoull(idText.c_str(), nullptr, 16), constants.value_or(0) + *indirect, *length,
                      order, *field);
}

}  // namespace

std::optional<FrameIdChunk> FrameIdChunk::Find(GenApi_3_4::INodeMap* camera) {
  if (!camera) return std::nullopt;
  try {
    return Locate(*camera);
  } catch (const GenICam_3_4::GenericException&) {
    return std::nullopt;  // a description that cannot tell where the value lies
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

std::optional<std::int64_t> FrameIdChunk::Read(const unsigned char* data,
                                               const std::vector<ChunkRange>& chunks) const {
  for (const ChunkRange& chunk : chunks) {
    if (chunk.id != chunkId_) continue;
    if (chunk.length < length_ || address_ > chunk.length - length_) return std::nullopt;
    const unsigned char* from = data + chunk.offset + address_;
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < length_; ++i) {
      value = (value << 8U) | from[order_ == ByteOrder::kBig ? i : length_ - 1 - i];
    }
    return Extract(value, field_);
  }
  return std::nullopt;
}

}  // namespace zyn::transport
