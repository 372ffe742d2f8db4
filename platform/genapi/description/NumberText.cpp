#include "description/NumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace zyn::genapi {
namespace {

bool TakeHexPrefix(std::string_view& text) {
  if (text.size() < 3 || text[0] != '0' || (text[1] != 'x' && text[1] != 'X')) return false;
  text.remove_prefix(2);
  return true;
}

std::optional<std::uint64_t> ParseDigits(std::string_view text, int base) {
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::optional<double> ParseDecimalReal(std::string_view text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (end != text.data() + text.size()) return std::nullopt;
  if (error == std::errc::result_out_of_range)
    return text.find("e-") != text.npos || text.find("E-") != text.npos
               ? 0.0
               : std::numeric_limits<double>::infinity();
  if (error != std::errc()) return std::nullopt;
  return value;
}

}  // namespace

std::string_view Trim(std::string_view text) {
  const auto isBlank = [](char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; };
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::optional<std::int64_t> ParseInteger(std::string_view text) {
  text = Trim(text);
  const bool negative = !text.empty() && text[0] == '-';
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) text.remove_prefix(1);
  std::string_view digits = text;
  const bool hex = TakeHexPrefix(digits);
  if (const auto bits = ParseDigits(digits, hex ? 16 : 10)) {
    if (!negative) return static_cast<std::int64_t>(*bits);
    constexpr std::uint64_t kMostNegative = std::uint64_t{1} << 63;
    return *bits > kMostNegative ? std::nullopt : std::optional(static_cast<std::int64_t>(0 - *bits));
  }
  if (hex || text.empty() || text[0] < '0' || text[0] > '9') return std::nullopt;
  const std::optional<double> real = ParseDecimalReal(text);
  if (!real || !(*real < 9223372036854775808.0) || *real != std::floor(*real)) return std::nullopt;
  const auto whole = static_cast<std::int64_t>(*real);
  return negative ? -whole : whole;
}

std::optional<std::vector<std::int64_t>> ParseIntegerList(std::string_view text) {
  std::vector<std::int64_t> values;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(';'), text.size());
    const std::string_view part = Trim(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (part.empty()) continue;
    const auto value = ParseInteger(part);
    if (!value) return std::nullopt;
    values.push_back(*value);
  }
  return values;
}

std::optional<double> ParseReal(std::string_view text) {
  text = Trim(text);
  const bool negative = !text.empty() && text[0] == '-';
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) text.remove_prefix(1);
  if (text.empty() || text[0] == '-' || text[0] == '+') return std::nullopt;
  std::optional<double> value;
  if (text == "INF") value = std::numeric_limits<double>::infinity();
  if (text == "NaN") value = std::numeric_limits<double>::quiet_NaN();
  if (!value && (text[0] == '.' || (text[0] >= '0' && text[0] <= '9'))) {
    std::string_view digits = text;
    if (TakeHexPrefix(digits)) {
      if (const auto bits = ParseDigits(digits, 16)) value = static_cast<double>(*bits);
    } else {
      value = ParseDecimalReal(text);
    }
  }
  if (!value) return std::nullopt;
  return negative ? -*value : *value;
}

}  // namespace zyn::genapi
