#include "chunks/HexId.h"

#include <algorithm>
#include <charconv>

#include "description/NumberText.h"

namespace zyn::genapi {
namespace {

bool IsHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
}

}  // namespace

std::string NormalizedHexId(std::string_view text) {
  std::string id(Trim(text));
  std::transform(id.begin(), id.end(), id.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  if (id.compare(0, 2, "0x") == 0) id.erase(0, 2);
  if (id.empty() || !std::all_of(id.begin(), id.end(), IsHexDigit)) return {};
  id.erase(0, std::min(id.find_first_not_of('0'), id.size() - 1));
  return id;
}

std::string NormalizedHexId(std::uint64_t id) {
  char digits[16];
  const auto result = std::to_chars(digits, digits + sizeof(digits), id, 16);
  return {digits, result.ptr};
}

}  // namespace zyn::genapi
