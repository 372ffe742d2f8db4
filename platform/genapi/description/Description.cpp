#include "description/Description.h"

#include <algorithm>
#include <utility>

namespace zyn::genapi {

void Adjacency::SumUp() {
  for (std::size_t i = 1; i < first_.size(); ++i) first_[i] += first_[i - 1];
  targets_.assign(first_.back(), kNoNode);
}

void Adjacency::SortLists() {
  std::size_t kept = 0;
  for (std::size_t node = 0; node + 1 < first_.size(); ++node) {
    const auto begin = targets_.begin() + first_[node];
    const auto end = targets_.begin() + first_[node + 1];
    if (!std::is_sorted(begin, end)) std::sort(begin, end);
    const auto unique = std::unique(begin, end);
    first_[node] = static_cast<std::uint32_t>(kept);
    kept = static_cast<std::size_t>(
        std::move(begin, unique, targets_.begin() + static_cast<std::ptrdiff_t>(kept)) - targets_.begin());
  }
  first_.back() = static_cast<std::uint32_t>(kept);
  targets_.resize(kept);
  targets_.shrink_to_fit();
}

std::span<const NodeId> Adjacency::Of(NodeId node) const {
  return {targets_.data() + first_[node], first_[node + 1] - first_[node]};
}

std::string Brief(std::string_view text) {
  constexpr std::size_t kMost = 200;
  if (text.size() <= kMost) return std::string(text);
  return std::string(text.substr(0, kMost)) + "...";
}

const Property* Description::Find(NodeId node, Element element) const {
  for (const Property& property : Properties(node))
    if (property.element == element) return &property;
  return nullptr;
}

NodeId Description::FindNode(std::string_view name) const {
  return names.FindNode(name, text);
}

std::string Description::Label(NodeId node) const {
  std::string label = Brief(Name(node));
  label.append(" (").append(XmlName(nodes[node].kind)).append(", line ");
  return label.append(std::to_string(nodes[node].line)).append(")");
}

}  // namespace zyn::genapi
