#include "XmlUrl.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <string>

namespace zyn::aravis {
namespace {

constexpr std::string_view kVersionKey = "SchemaVersion=";

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return Lower(x) == Lower(y); });
}

std::string_view Trim(std::string_view text) {
  const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

// Takes what stands before `separator` off the front, and the separator; everything when there is none.
std::string_view TakeUntil(std::string_view& text, char separator) {
  const std::size_t at = std::min(text.find(separator), text.size());
  const std::string_view head = text.substr(0, at);
  text.remove_prefix(std::min(at + 1, text.size()));
  return head;
}

std::optional<std::uint64_t> ParseHex(std::string_view text) {
  text = Trim(text);
  if (text.size() > 2 && text[0] == '0' && Lower(text[1]) == 'x') text.remove_prefix(2);
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::string Hex(std::uint64_t value) {
  std::array<char, 17> text{};
  std::snprintf(text.data(), text.size(), "%llx", static_cast<unsigned long long>(value));
  return text.data();
}

// "1.1.0" behind the key; the standard's default is 1.0.
void ReadSchemaVersion(std::string_view query, producer::XmlLocation& location) {
  location.schemaMajor = 1;
  location.schemaMinor = 0;
  const std::size_t at = query.find(kVersionKey);
  if (at == std::string_view::npos) return;
  query.remove_prefix(at + kVersionKey.size());
  const std::string_view major = TakeUntil(query, '.');
  const std::string_view minor = TakeUntil(query, '.');
  std::from_chars(major.data(), major.data() + major.size(), location.schemaMajor);
  std::from_chars(minor.data(), minor.data() + minor.size(), location.schemaMinor);
}

std::optional<std::string> LocalUrl(std::string_view rest) {
  while (!rest.empty() && rest.front() == '/') rest.remove_prefix(1);
  std::string_view name = Trim(TakeUntil(rest, ';'));
  name = name.substr(name.find_last_of("/\\") == std::string_view::npos ? 0 : name.find_last_of("/\\") + 1);
  const auto address = ParseHex(TakeUntil(rest, ';'));
  const auto length = ParseHex(rest);
  if (name.empty() || !address || !length || *length == 0) return std::nullopt;
  return "local:" + std::string(name) + ";" + Hex(*address) + ";" + Hex(*length);
}

}  // namespace

std::optional<producer::XmlLocation> ParseXmlUrl(std::string_view text) {
  text = Trim(text.substr(0, text.find('\0')));
  std::string_view rest = text;
  const std::string_view url = TakeUntil(rest, '?');
  producer::XmlLocation location;
  ReadSchemaVersion(rest, location);
  rest = url;
  const std::string_view scheme = TakeUntil(rest, ':');
  if (EqualsIgnoringCase(scheme, "local")) {
    const auto local = LocalUrl(rest);
    if (!local) return std::nullopt;
    location.url = *local;
    return location;
  }
  for (const std::string_view known : {"file", "http", "https"}) {
    if (!EqualsIgnoringCase(scheme, known) || rest.empty()) continue;
    location.url = std::string(known) + ":" + std::string(rest);
    return location;
  }
  return std::nullopt;
}

}  // namespace zyn::aravis
