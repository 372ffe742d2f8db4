#include "description/Injection.h"

#include <string_view>
#include <unordered_map>
#include <vector>

#include "Base/GCException.h"

namespace zyn::genapi {
namespace {

class Merger {
 public:
  Merger(Description& description, NodeId firstInjected, std::span<const std::int8_t> priorities)
      : out_(description),
        first_(firstInjected),
        priorities_(priorities),
        isInner_(description.nodes.size(), false),
        isDropped_(description.nodes.size(), false) {}

  void Run() {
    for (NodeId id = 0; id < Count(); ++id) MarkInner(id);
    std::unordered_map<std::string_view, NodeId> known;
    for (NodeId id = 0; id < first_; ++id)
      if (!isInner_[id]) known.emplace(out_.Name(id), id);
    for (NodeId id = first_; id < Count(); ++id) {
      const auto found = isInner_[id] ? known.end() : known.find(out_.Name(id));
      if (found != known.end()) Settle(found->second, id);
    }
    RemoveDropped();
  }

 private:
  NodeId Count() const { return static_cast<NodeId>(out_.nodes.size()); }

  bool IsInnerLink(NodeId id, const Property& property) const {
    return LexicalOf(property.element, out_.nodes[id].kind) == Lexical::inner;
  }

  void MarkInner(NodeId id) {
    for (const Property& property : out_.Properties(id))
      if (IsInnerLink(id, property)) isInner_[property.Target()] = true;
  }

  void Settle(NodeId target, NodeId injected) {
    if (priorities_[injected] < 0) return Drop(injected);
    if (priorities_[injected] > 0) return Drop(target);
    const bool areCategories =
        out_.nodes[target].kind == NodeKind::category && out_.nodes[injected].kind == NodeKind::category;
    if (!areCategories)
      throw RUNTIME_EXCEPTION("Merge conflict with node %s: the injected %s has no priority",
                              out_.Label(target).c_str(), out_.Label(injected).c_str());
    AppendFeatures(target, injected);
    Drop(injected);
  }

  void Drop(NodeId id) {
    isDropped_[id] = true;
    for (const Property& property : out_.Properties(id))
      if (IsInnerLink(id, property)) isDropped_[property.Target()] = true;
  }

  // A node's properties lie together, so the longer list goes to the end of the array.
  void AppendFeatures(NodeId target, NodeId injected) {
    std::vector<Property> joined(out_.Properties(target).begin(), out_.Properties(target).end());
    for (const Property& property : out_.Properties(injected))
      if (property.element == Element::pFeature) joined.push_back(property);
    out_.nodes[target].firstProperty = static_cast<std::uint32_t>(out_.properties.size());
    out_.nodes[target].propertyCount = static_cast<std::uint32_t>(joined.size());
    out_.properties.insert(out_.properties.end(), joined.begin(), joined.end());
  }

  void RemoveDropped() {
    std::vector<NodeId> newId(out_.nodes.size(), kNoNode);
    std::vector<NodeRecord> kept;
    for (NodeId id = 0; id < Count(); ++id) {
      if (isDropped_[id]) continue;
      newId[id] = static_cast<NodeId>(kept.size());
      kept.push_back(out_.nodes[id]);
    }
    out_.nodes.swap(kept);
    for (NodeId id = 0; id < Count(); ++id) {
      NodeRecord& record = out_.nodes[id];
      if (record.owner != kNoNode) record.owner = newId[record.owner];
      for (std::uint32_t i = 0; i < record.propertyCount; ++i) {
        Property& property = out_.properties[record.firstProperty + i];
        if (IsInnerLink(id, property)) property.number = newId[property.Target()];
      }
    }
  }

  Description& out_;
  const NodeId first_;
  const std::span<const std::int8_t> priorities_;
  std::vector<bool> isInner_;
  std::vector<bool> isDropped_;
};

}  // namespace

void MergeInjected(Description& description, NodeId firstInjected, std::span<const std::int8_t> priorities) {
  Merger(description, firstInjected, priorities).Run();
}

}  // namespace zyn::genapi
