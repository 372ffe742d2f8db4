/// A node of a description that is being read.
#ifndef ZYN_GENAPI_DESCRIPTION_NODEDRAFT_H
#define ZYN_GENAPI_DESCRIPTION_NODEDRAFT_H

#include <algorithm>
#include <bitset>
#include <cstdint>
#include <string>
#include <vector>

#include "description/Description.h"
#include "description/SchemaLayout.h"

namespace zyn::genapi {

/// A node while it is read. Reused from node to node, with the memory it has.
struct NodeDraft {
  NodeKind kind = NodeKind::unknown;
  GENAPI_NAMESPACE::ENameSpace nameSpace = GENAPI_NAMESPACE::Custom;
  GENAPI_NAMESPACE::EYesNo exposeStatic = GENAPI_NAMESPACE::_UndefinedYesNo;
  std::int8_t priority = 0;
  std::uint32_t line = 0;
  std::string name;
  // Of an inner node: its own name, without that of the node around it.
  std::string ownName;
  // The number of a link is that of the name, that of an inner node its place among inner.
  std::vector<Property> properties;
  std::bitset<kElementCount> has;
  // For what is noted about the order.
  const SchemaLayout* layout = nullptr;
  std::bitset<kElementCount> empty;
  std::uint8_t lastPlace = 0;
  bool isOutOfOrder = false;
  // Only the first innerCount: the others wait, with the memory they have, for the next node.
  std::vector<NodeDraft> inner;
  std::size_t innerCount = 0;

  bool IsEmpty(Element element) const { return empty[static_cast<std::size_t>(element)]; }
  bool Has(Element element) const { return has[static_cast<std::size_t>(element)]; }
  const Property* Find(Element element) const {
    if (!Has(element)) return nullptr;
    const auto found =
        std::find_if(properties.begin(), properties.end(),
                     [element](const Property& property) { return property.element == element; });
    return found == properties.end() ? nullptr : &*found;
  }
  NodeDraft& AddInner() {
    if (innerCount == inner.size()) inner.emplace_back();
    return inner[innerCount++];
  }
  std::string Label() const {
    return Brief(name) + " (" + XmlName(kind) + ", line " + std::to_string(line) + ")";
  }
  void Clear() {
    properties.clear();
    has.reset();
    empty.reset();
    innerCount = 0;
    ownName.clear();
    lastPlace = 0;
    isOutOfOrder = false;
  }
};

}  // namespace zyn::genapi

#endif
