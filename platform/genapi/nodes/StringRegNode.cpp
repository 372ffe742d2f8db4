#include "nodes/StringRegNode.h"

#include <algorithm>
#include <string>
#include <vector>

namespace zyn::genapi {

gcstring StringRegNode::Compute(ReadMode read) {
  const auto bytes = register_.Read(read.ignoreCache);
  const auto end = std::find(bytes.begin(), bytes.end(), std::uint8_t{0});
  const std::string characters(bytes.begin(), end);
  return {characters.data(), characters.size()};
}

void StringRegNode::Put(const gcstring& text, bool) {
  const auto length = static_cast<std::size_t>(register_.Length());
  if (text.size() > length)
    ZYN_THROW(OutOfRangeException, "The text has %zu bytes, the register %zu.", text.size(), length);
  std::vector<std::uint8_t> bytes(length, 0);
  std::copy_n(text.c_str(), text.size(), bytes.begin());
  register_.Write(bytes);
}

std::int64_t StringRegNode::TextMaxLength() {
  if (IsWritable(Access())) return register_.Length();
  return static_cast<std::int64_t>(TextValue({}).size());
}

}  // namespace zyn::genapi
