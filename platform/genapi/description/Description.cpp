#include "description/Description.h"

#include <algorithm>
#include <utility>

namespace zyn::genapi {

void Adjacency::Build(std::size_t nodes, std::vector<std::pair<NodeId, NodeId>>&& pairs) {
  std::sort(pairs.begin(), pairs.end());
  pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
  first_.assign(nodes + 1, 0);
  targets_.clear();
  targets_.reserve(pairs.size());
  for (const auto& [from, to] : pairs) {
    ++first_[from + 1];
    targets_.push_back(to);
  }
  for (std::size_t i = 1; i < first_.size(); ++i) first_[i] += first_[i - 1];
}

std::span<const NodeId> Adjacency::Of(NodeId node) const {
  return {targets_.data() + first_[node], first_[node + 1] - first_[node]};
}

const Property* Description::Find(NodeId node, Element element) const {
  for (const Property& property : Properties(node))
    if (property.element == element) return &property;
  return nullptr;
}

NodeId Description::FindNode(std::string_view name) const {
  const auto found = index.find(name);
  return found == index.end() ? kNoNode : found->second;
}

void Description::Tolerate(std::string note) {
  constexpr std::size_t kMaxNotes = 1000;
  if (tolerated.size() < kMaxNotes) {
    tolerated.push_back(std::move(note));
  } else {
    ++toleratedBeyond;
  }
}

std::string Description::Label(NodeId node) const {
  std::string label(Name(node));
  label.append(" (").append(XmlName(nodes[node].kind)).append(", line ");
  return label.append(std::to_string(nodes[node].line)).append(")");
}

}  // namespace zyn::genapi
