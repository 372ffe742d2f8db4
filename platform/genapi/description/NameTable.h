/// The names of a description.
#ifndef ZYN_GENAPI_DESCRIPTION_NAMETABLE_H
#define ZYN_GENAPI_DESCRIPTION_NAMETABLE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zyn::genapi {

/// Index of a node in its description, in document order.
using NodeId = std::uint32_t;
constexpr NodeId kNoNode = 0xffffffff;

/// Index of a name in its table, in the order of first mention.
using NameId = std::uint32_t;

/// A piece of the description's text.
struct TextRef {
  std::uint32_t offset = 0;
  std::uint32_t size = 0;
};

/// Keeps every name once, as a piece of a text that lies elsewhere, and knows which node bears it. While a description is
/// read a link is a number from here, so that resolving it needs no search; later the table finds nodes by name.
class NameTable {
 public:
  NameTable();

  /// The name's number; a new name is appended to `text`.
  NameId Intern(std::string_view name, std::string& text);
  TextRef Text(NameId name) const { return entries_[name].text; }

  NodeId Node(NameId name) const { return entries_[name].node; }
  void SetNode(NameId name, NodeId node) { entries_[name].node = node; }

  /// kNoNode when no node has that name.
  NodeId FindNode(std::string_view name, std::string_view text) const;

  /// Gives back what was set aside for more names.
  void Shrink() { entries_.shrink_to_fit(); }

 private:
  struct Entry {
    TextRef text;
    std::uint32_t hash;
    NodeId node;
  };

  std::uint32_t Hash(std::string_view name) const;
  /// The place of the name, or the free one where it belongs.
  std::size_t Slot(std::string_view name, std::uint32_t hash, std::string_view text) const;
  void Grow();

  // Differs from table to table, so that no description can choose names that all meet in one place.
  const std::uint64_t seed_;
  std::vector<Entry> entries_;
  // Open addressing: a name's number plus one, or 0. A power of two, at most three quarters full.
  std::vector<std::uint32_t> slots_;
};

}  // namespace zyn::genapi

#endif
