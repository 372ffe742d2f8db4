/// Finds line numbers in a text.
#ifndef ZYN_GENAPI_DESCRIPTION_LINEINDEX_H
#define ZYN_GENAPI_DESCRIPTION_LINEINDEX_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace zyn::genapi {

/// Remembers where the lines of a text begin; the text itself may change afterwards.
class LineIndex {
 public:
  explicit LineIndex(std::string_view text) {
    for (std::size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at + 1))
      newlines_.push_back(at);
  }

  /// Counted from 1.
  std::uint32_t LineOf(std::ptrdiff_t offset) const {
    const auto position = static_cast<std::size_t>(std::max<std::ptrdiff_t>(offset, 0));
    return static_cast<std::uint32_t>(std::lower_bound(newlines_.begin(), newlines_.end(), position) -
                                      newlines_.begin()) +
           1;
  }

 private:
  std::vector<std::size_t> newlines_;
};

}  // namespace zyn::genapi

#endif
