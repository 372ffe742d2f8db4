#include "nodes/ValueText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

#include "description/NumberText.h"

namespace zyn::genapi {
namespace {

using namespace GENAPI_NAMESPACE;

template <class... Arguments>
std::string Print(const char* format, Arguments... arguments) {
  char text[512];
  const int length = std::snprintf(text, sizeof(text), format, arguments...);
  return {text, static_cast<std::size_t>(std::clamp<int>(length, 0, sizeof(text) - 1))};
}

// `count` numbers below 256 with a separator between them and nothing else, most significant first.
std::optional<std::int64_t> ParseBytes(std::string_view text, int count, char separator, int base) {
  std::int64_t value = 0;
  for (int i = 0; i < count; ++i) {
    unsigned part = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), part, base);
    if (error != std::errc() || part > 255) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    value = value << 8 | part;
    if (i + 1 == count) break;
    if (text.empty() || text[0] != separator) return std::nullopt;
    text.remove_prefix(1);
  }
  return text.empty() ? std::optional(value) : std::nullopt;
}

std::string_view SkipBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

std::optional<std::int64_t> ParseDecimal(std::string_view text) {
  text = SkipBlanks(text);
  const bool negative = !text.empty() && text[0] == '-';
  if (!text.empty() && text[0] == '+') text.remove_prefix(1);
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::result_out_of_range)
    return negative ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
  if (error != std::errc()) return std::nullopt;
  return value;
}

std::optional<std::int64_t> ParseHex(std::string_view text) {
  std::uint64_t bits = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), bits, 16);
  if (error == std::errc::result_out_of_range) return std::numeric_limits<std::int64_t>::max();
  if (error != std::errc()) return std::nullopt;
  return static_cast<std::int64_t>(bits);
}

std::chars_format FormatOf(EDisplayNotation notation) {
  switch (notation) {
    case fnFixed:
      return std::chars_format::fixed;
    case fnScientific:
      return std::chars_format::scientific;
    default:
      return std::chars_format::general;
  }
}

// Unlike printf this writes a point in every language.
std::string FormatWithDigits(double value, EDisplayNotation notation, int digits) {
  char text[512];
  return {text, std::to_chars(text, text + sizeof(text), value, FormatOf(notation), digits).ptr};
}

}  // namespace

std::string FormatInteger(std::int64_t value, ERepresentation representation) {
  const auto bits = static_cast<std::uint64_t>(value);
  const auto byte = [bits](int index) { return static_cast<unsigned>(bits >> (8 * index) & 0xff); };
  switch (representation) {
    case HexNumber:
      return bits == 0 ? "0" : Print("0x%llx", static_cast<unsigned long long>(bits));
    case IPV4Address:
      return Print("%u.%u.%u.%u", byte(3), byte(2), byte(1), byte(0));
    case MACAddress:
      return Print("%02x:%02x:%02x:%02x:%02x:%02x", byte(5), byte(4), byte(3), byte(2), byte(1), byte(0));
    case Boolean:
      return value ? "true" : "false";
    default:
      return std::to_string(value);
  }
}

std::optional<std::int64_t> ParseIntegerText(std::string_view text, ERepresentation representation) {
  switch (representation) {
    case IPV4Address:
      return ParseBytes(Trim(text), 4, '.', 10);
    case MACAddress:
      return ParseBytes(Trim(text), 6, ':', 16);
    case Boolean:
      if (text == "true") return 1;
      if (text == "false") return 0;
      return std::nullopt;
    default:
      break;
  }
  const std::string_view start = SkipBlanks(text);
  if (start.substr(0, 2) == "0x" || start.substr(0, 2) == "0X") return ParseHex(start.substr(2));
  return ParseDecimal(text);
}

std::string FormatReal(double value, EDisplayNotation notation, std::int64_t precision, double min,
                       double max) {
  constexpr int kMaxDigits = 17;
  int digits = static_cast<int>(std::clamp<std::int64_t>(precision, 0, kMaxDigits));
  std::string text = FormatWithDigits(value, notation, digits);
  const bool isInside = value >= min && value <= max;
  while (isInside && digits < kMaxDigits) {
    const auto shown = ParseRealText(text);
    if (!shown || (*shown >= min && *shown <= max)) break;
    text = FormatWithDigits(value, notation, ++digits);
  }
  return text;
}

std::optional<double> ParseRealText(std::string_view text) {
  text = SkipBlanks(text);
  const bool hasSign = !text.empty() && (text[0] == '+' || text[0] == '-');
  const std::string_view digits = text.substr(hasSign ? 1 : 0);
  const bool isHex = digits.substr(0, 2) == "0x" || digits.substr(0, 2) == "0X";
  if (isHex || digits.empty() || digits[0] == '-') return std::nullopt;
  if (text[0] == '+') text = digits;
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || !std::isfinite(value)) return std::nullopt;
  return value;
}

}  // namespace zyn::genapi
