#include "ModuleDescription.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <fstream>
#include <iterator>
#include <string_view>
#include <system_error>

#include "../Result.h"
#include "../producer/GenTLInfo.h"

namespace zyn::transport {

namespace {

constexpr std::size_t kPieceBytes = 64U << 10U;      // read at once
constexpr std::size_t kSmallPieceBytes = 512;        // for ports that refuse large transfers
constexpr std::uint64_t kMostBytes = 256ULL << 20U;  // a longer description is a broken URL
constexpr std::string_view kDocumentEnd = "</RegisterDescription>";

std::string Lower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

std::string_view Trim(std::string_view text) {
  const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

bool TakePrefix(std::string_view& text, std::string_view prefix) {
  if (Lower(text.substr(0, prefix.size())) != prefix) return false;
  text.remove_prefix(prefix.size());
  return true;
}

std::optional<std::uint64_t> ParseNumber(std::string_view text, int base) {
  text = Trim(text);
  if (base == 16) TakePrefix(text, "0x");
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

void TakeSlashes(std::string_view& text) {
  while (!text.empty() && text.front() == '/') text.remove_prefix(1);
}

DescriptionUrl ParseLocal(std::string_view rest) {
  DescriptionUrl url;
  TakeSlashes(rest);
  const std::size_t first = rest.find(';');
  if (first == std::string_view::npos) return url;
  const std::size_t second = rest.find(';', first + 1);
  if (second == std::string_view::npos) return url;
  const std::string_view lengthText = Trim(rest.substr(second + 1));
  const auto address = ParseNumber(rest.substr(first + 1, second - first - 1), 16);
  const auto length = ParseNumber(lengthText, 16);
  if (!address || !length) return url;
  url.scheme = DescriptionUrl::Scheme::kLocal;
  url.name = Trim(rest.substr(0, first));
  url.address = *address;
  url.length = *length;
  url.decimalLength = ParseNumber(lengthText, 10);
  return url;
}

std::string PercentDecode(std::string_view text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto code = text[i] == '%' ? ParseNumber(text.substr(i + 1, 2), 16) : std::nullopt;
    if (!code || i + 2 >= text.size()) {
      decoded += text[i];
      continue;
    }
    decoded += static_cast<char>(*code);
    i += 2;
  }
  return decoded;
}

DescriptionUrl ParseFile(std::string_view rest) {
  DescriptionUrl url;
  url.scheme = DescriptionUrl::Scheme::kFile;
  if (TakePrefix(rest, "//")) {  // an authority may follow: nothing, or "localhost"
    TakePrefix(rest, "localhost");
  }
  url.name = PercentDecode(rest);
  return url;
}

// Asks for every URL of a port, best source first.
std::vector<std::string> PortUrls(const ProducerLibrary& producer, GenTL::PORT_HANDLE port) {
  std::vector<std::string> urls;
  std::uint32_t count = 0;
  if (producer.GCGetNumPortURLs && producer.GCGetPortURLInfo &&
      producer.GCGetNumPortURLs(port, &count) == GenTL::GC_ERR_SUCCESS) {
    for (std::uint32_t i = 0; i < std::min<std::uint32_t>(count, 64); ++i) {
      const auto url = GetString([&](auto* type, void* buffer, std::size_t* size) {
        return producer.GCGetPortURLInfo(port, i, GenTL::URL_INFO_URL, type, buffer, size);
      });
      if (url && !url->empty()) urls.push_back(*url);
    }
  }
  if (!urls.empty() || !producer.GCGetPortURL) return urls;
  // The way of the first version of the interface: all URLs in one list, each ended by a NUL.
  const auto list = GetBytes([&](GenTL::INFO_DATATYPE* type, void* buffer, std::size_t* size) {
    *type = GenTL::INFO_DATATYPE_STRINGLIST;
    return producer.GCGetPortURL(port, static_cast<char*>(buffer), size);
  });
  if (!list) return urls;
  for (auto from = list->begin(); from != list->end() && *from != '\0';) {
    const auto to = std::find(from, list->end(), '\0');
    urls.emplace_back(from, to);
    from = to == list->end() ? to : std::next(to);
  }
  return urls;
}

bool ReadPieces(const ProducerLibrary& producer, GenTL::PORT_HANDLE port, std::uint64_t address,
                std::size_t piece, std::vector<char>& bytes, GenTL::GC_ERROR& error) {
  for (std::size_t at = 0; at < bytes.size(); at += piece) {
    const std::size_t wanted = std::min(piece, bytes.size() - at);
    std::size_t size = wanted;
    error = producer.GCReadPort(port, address + at, bytes.data() + at, &size);
    if (error != GenTL::GC_ERR_SUCCESS) return false;
    if (size < wanted) {
      error = GenTL::GC_ERR_IO;
      return false;
    }
  }
  return true;
}

std::optional<std::vector<char>> ReadLocal(const ProducerLibrary& producer, GenTL::PORT_HANDLE port,
                                           std::uint64_t address, std::uint64_t length, std::string& reason) {
  if (length == 0 || length > kMostBytes) {
    reason = "the description's length is out of range";
    return std::nullopt;
  }
  std::vector<char> bytes(static_cast<std::size_t>(length));
  GenTL::GC_ERROR error = GenTL::GC_ERR_SUCCESS;
  if (ReadPieces(producer, port, address, kPieceBytes, bytes, error)) return bytes;
  if (ReadPieces(producer, port, address, kSmallPieceBytes, bytes, error)) return bytes;
  reason = std::string("the description cannot be read: ") + ErrorName(error);
  return std::nullopt;
}

std::optional<std::vector<char>> ReadFile(const std::string& name, const std::string& producerFolder,
                                          std::string& reason) {
  const bool hasPlace = !name.empty() && name.front() == '/';
  const std::string path = hasPlace ? name : producerFolder + "/" + name;
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    reason = "the description file " + path + " cannot be opened";
    return std::nullopt;
  }
  return std::vector<char>(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

std::optional<std::vector<char>> FetchBytes(const ProducerLibrary& producer, GenTL::PORT_HANDLE port,
                                            const DescriptionUrl& url, const std::string& producerFolder,
                                            std::string& reason) {
  switch (url.scheme) {
    case DescriptionUrl::Scheme::kLocal: {
      auto bytes = ReadLocal(producer, port, url.address, url.length, reason);
      const bool tryDecimal = !bytes && url.decimalLength && *url.decimalLength < url.length;
      if (tryDecimal) bytes = ReadLocal(producer, port, url.address, *url.decimalLength, reason);
      return bytes;
    }
    case DescriptionUrl::Scheme::kFile:
      return ReadFile(url.name, producerFolder, reason);
    case DescriptionUrl::Scheme::kHttp:
      reason = "the description lies on a web server (" + url.name + "), which is not supported";
      return std::nullopt;
    case DescriptionUrl::Scheme::kUnknown:
      break;
  }
  reason = "the description's URL is malformed";
  return std::nullopt;
}

}  // namespace

DescriptionUrl ParseDescriptionUrl(const std::string& text) {
  std::string_view rest = Trim(text);
  rest = Trim(rest.substr(0, rest.find('?')));
  if (TakePrefix(rest, "local:")) return ParseLocal(rest);
  if (TakePrefix(rest, "file:")) return ParseFile(rest);
  DescriptionUrl url;
  if (TakePrefix(rest, "http:") || TakePrefix(rest, "https:")) {
    url.scheme = DescriptionUrl::Scheme::kHttp;
    url.name = text;
  }
  return url;
}

std::optional<ModuleDescription> RecogniseDescription(std::vector<char> bytes) {
  const std::string_view text(bytes.data(), bytes.size());
  if (text.substr(0, 4) == std::string_view("PK\x03\x04", 4)) {
    return ModuleDescription{std::move(bytes), true};
  }
  const std::size_t begin = std::min(text.find('<'), std::size_t{64});
  if (begin >= text.size() || text[begin] != '<') return std::nullopt;
  const std::size_t end = text.rfind(kDocumentEnd);
  if (end != std::string_view::npos) {
    bytes.resize(end + kDocumentEnd.size());
  } else {
    bytes.resize(std::min(text.find('\0'), text.size()));
  }
  return ModuleDescription{std::move(bytes), false};
}

std::optional<ModuleDescription> FetchDescription(const ProducerLibrary& producer, GenTL::PORT_HANDLE port,
                                                  const std::string& producerFolder, std::string& reason) {
  std::vector<DescriptionUrl> urls;
  for (const std::string& url : PortUrls(producer, port)) urls.push_back(ParseDescriptionUrl(url));
  std::stable_sort(urls.begin(), urls.end(), [](const DescriptionUrl& a, const DescriptionUrl& b) {
    return static_cast<int>(a.scheme) < static_cast<int>(b.scheme);
  });
  reason = "the module has no description";
  for (const DescriptionUrl& url : urls) {
    auto bytes = FetchBytes(producer, port, url, producerFolder, reason);
    if (!bytes) continue;
    auto description = RecogniseDescription(std::move(*bytes));
    if (description) return description;
    reason = "the description is neither XML nor a ZIP archive";
  }
  return std::nullopt;
}

}  // namespace zyn::transport
