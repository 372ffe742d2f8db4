/// A device description after parsing: nodes, their properties, and the links between them, in flat arrays.
#ifndef ZYN_GENAPI_DESCRIPTION_DESCRIPTION_H
#define ZYN_GENAPI_DESCRIPTION_DESCRIPTION_H

#include <bit>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "GenApi/Types.h"
#include "description/Element.h"
#include "description/NameTable.h"

namespace zyn::genapi {

/// One child element of a node.
struct Property {
  Element element;
  std::uint32_t line;
  TextRef text;
  /// The attribute that belongs to the element: Name of a formula's ingredient, Index or Offset. May be
  /// empty.
  TextRef attribute;
  /// Number or word (reals as bits), or the node linked to (until it is linked, the number of its name).
  std::int64_t number;

  NodeId Target() const { return static_cast<NodeId>(number); }
  double Real() const { return std::bit_cast<double>(number); }
};

/// One node.
struct NodeRecord {
  NodeKind kind;
  GENAPI_NAMESPACE::ENameSpace nameSpace;
  /// What the attribute says; _UndefinedYesNo when it is not there.
  GENAPI_NAMESPACE::EYesNo exposeStatic;
  /// Lies below the category Root.
  bool isFeature;
  /// For categories that of their features, see Linker.
  GENAPI_NAMESPACE::EVisibility visibility;
  std::uint32_t line;
  std::uint32_t firstProperty;
  std::uint32_t propertyCount;
  TextRef name;
  NameId nameId;
  /// The enumeration of an entry; else kNoNode.
  NodeId owner;
};

/// What the root element says.
struct DeviceFacts {
  std::string modelName, vendorName, toolTip, standardNameSpace, productGuid, versionGuid;
  Version_t schemaVersion{1, 1, 0};
  Version_t deviceVersion{0, 0, 0};
};

/// Lists of nodes per node, in one array.
class Adjacency {
 public:
  /// visit(add) calls add(from, to) for every pair, and is called twice. Lists come out in rising order, and duplicates
  /// are dropped.
  template <class Visit>
  void Build(std::size_t nodes, const Visit& visit) {
    first_.assign(nodes + 1, 0);
    visit([this](NodeId from, NodeId) { ++first_[from + 1]; });
    SumUp();
    std::vector<std::uint32_t> next(first_.begin(), first_.end() - 1);
    visit([this, &next](NodeId from, NodeId to) { targets_[next[from]++] = to; });
    SortLists();
  }
  std::span<const NodeId> Of(NodeId node) const;

 private:
  void SumUp();
  void SortLists();

  std::vector<std::uint32_t> first_;
  std::vector<NodeId> targets_;
};

/// The text, or its beginning: names in messages may have any length.
std::string Brief(std::string_view text);

/// Immutable once linked; any number of node maps, on any threads, share it.
class Description {
 public:
  std::string_view Text(TextRef ref) const { return {text.data() + ref.offset, ref.size}; }
  std::string_view Name(NodeId node) const { return Text(nodes[node].name); }
  std::span<const Property> Properties(NodeId node) const {
    return {properties.data() + nodes[node].firstProperty, nodes[node].propertyCount};
  }
  /// The first property of that element, or null.
  const Property* Find(NodeId node, Element element) const;
  NodeId FindNode(std::string_view name) const;
  /// "Width (Integer, line 12)", for messages.
  std::string Label(NodeId node) const;

  std::string text;
  std::vector<NodeRecord> nodes;
  std::vector<Property> properties;
  NameTable names;
  DeviceFacts facts;

  /// Nodes whose value, limits, address or access mode change when the node changes; selectors and
  /// invalidators count.
  Adjacency affected;
  /// Nodes that mention the node in whatever way.
  Adjacency mentionedBy;
  /// Nodes that select the node.
  Adjacency selectedBy;
  std::vector<NodeId> polled;
  std::vector<NodeId> ports;

  /// Says that something is wrong and was read as what it must mean: write() gives the sentence.
  template <class Write>
  void Tolerate(const Write& write) {
    constexpr std::size_t kMaxNotes = 1000;
    if (tolerated.size() < kMaxNotes) {
      tolerated.push_back(write());
    } else {
      ++toleratedBeyond;
    }
  }
  /// What was tolerated, in the order found; after many the rest is only counted.
  std::vector<std::string> tolerated;
  std::size_t toleratedBeyond = 0;
};

}  // namespace zyn::genapi

#endif
