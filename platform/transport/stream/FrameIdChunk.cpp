#include "FrameIdChunk.h"

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

// Follows a feature through the nodes it reads to the first register that lies in a chunk. Conditions are read too,
// so registers of the camera itself may come before it.
GenApi_3_4::INode* FindChunkRegister(GenApi_3_4::INodeMap& camera, GenApi_3_4::INode* node,
                                     std::set<GenApi_3_4::INode*>& seen) {
  const bool isNew = seen.insert(node).second;
  if (!node || !isNew) return nullptr;
  if (dynamic_cast<GenApi_3_4::IRegister*>(node)) return FindChunkPort(camera, *node) ? node : nullptr;
  GenApi_3_4::NodeList_t children;
  node->GetChildren(children, GenApi_3_4::ctReadingChildren);
  for (GenApi_3_4::INode* child : children) {
    if (GenApi_3_4::INode* found = FindChunkRegister(camera, child, seen)) return found;
  }
  return nullptr;
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

std::optional<std::size_t> IndirectAddress(GenApi_3_4::INodeMap& camera, GenApi_3_4::INode& registerNode) {
  const std::string name = Property(registerNode, "pAddress");
  if (name.empty()) return 0;
  auto* node = dynamic_cast<GenApi_3_4::IInteger*>(camera.GetNode(name.c_str()));
  if (!node) return std::nullopt;
  return static_cast<std::size_t>(node->GetValue());
}

// Registers that lie elsewhere for each selector value, or take up parts of bytes only, are not read.
bool IsPlain(GenApi_3_4::INode& registerNode) {
  for (const char* property : {"pIndex", "LSB", "MSB", "Bit", "IntSwissKnife"}) {
    if (!Property(registerNode, property).empty()) return false;
  }
  return true;
}

std::optional<FrameIdChunk> Locate(GenApi_3_4::INodeMap& camera, ByteOrder portOrder) {
  std::set<GenApi_3_4::INode*> seen;
  GenApi_3_4::INode* node = FindChunkRegister(camera, camera.GetNode("ChunkFrameID"), seen);
  if (!node) return std::nullopt;
  GenApi_3_4::IChunkPort* port = FindChunkPort(camera, *node);
  if (!port) return std::nullopt;
  const std::string idText = port->GetChunkID().c_str();
  const auto constants = SumOf(Property(*node, "Address"));
  const auto indirect = IndirectAddress(camera, *node);
  const auto length = SumOf(Property(*node, "Length"));
  if (idText.empty() || !IsPlain(*node) || !indirect || !length || *length < 1 || *length > 8)
    return std::nullopt;
  const std::string order = Property(*node, "Endianess");
  if (order == "BigEndian") portOrder = ByteOrder::kBig;
  if (order == "LittleEndian") portOrder = ByteOrder::kLittle;
  return FrameIdChunk(std::strtoull(idText.c_str(), nullptr, 16), constants.value_or(0) + *indirect, *length,
                      portOrder);
}

}  // namespace

std::optional<FrameIdChunk> FrameIdChunk::Find(GenApi_3_4::INodeMap* camera, ByteOrder portOrder) {
  if (!camera) return std::nullopt;
  try {
    return Locate(*camera, portOrder);
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
    return static_cast<std::int64_t>(value);
  }
  return std::nullopt;
}

}  // namespace zyn::transport
