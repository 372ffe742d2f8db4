#include "nodes/RegisterNode.h"

#include <string>
#include <vector>

#include "description/NumberText.h"

namespace zyn::genapi {
namespace {

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::optional<std::vector<std::uint8_t>> ParseHexBytes(std::string_view text) {
  if (text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X") text.remove_prefix(2);
  if (text.empty() || text.size() % 2 != 0) return std::nullopt;
  std::vector<std::uint8_t> bytes;
  for (std::size_t i = 0; i < text.size(); i += 2) {
    const int high = HexDigit(text[i]);
    const int low = HexDigit(text[i + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
  }
  return bytes;
}

}  // namespace

gcstring RegisterNode::TextValue(ReadMode read) {
  RequireReadable();
  const auto bytes = register_.Read(read.ignoreCache);
  std::string text = "0x";
  for (const std::uint8_t byte : bytes) {
    text += "0123456789abcdef"[byte >> 4];
    text += "0123456789abcdef"[byte & 15];
  }
  valueValid_ = !read.ignoreCache && CachingMode() != NoCache;
  return {text.data(), text.size()};
}

void RegisterNode::WriteText(const gcstring& text, bool) {
  RequireWritable();
  const auto bytes = ParseHexBytes(Trim({text.c_str(), text.size()}));
  if (!bytes || static_cast<std::int64_t>(bytes->size()) > register_.Length())
    ZYN_THROW(InvalidArgumentException, "'%s' is not the content of this register.", text.c_str());
  WriteCall::MarkWritten(*this);
  valueValid_ = false;
  valueValid_ = register_.Write(*bytes);
}

}  // namespace zyn::genapi
