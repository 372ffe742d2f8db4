#include "description/SourceText.h"

#include <zip.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string_view>

#include "Base/GCException.h"

namespace zyn::genapi {
namespace {

using namespace std::string_view_literals;

struct CloseArchive {
  void operator()(zip_t* archive) const { zip_discard(archive); }
};
struct CloseEntry {
  void operator()(zip_file_t* file) const { zip_fclose(file); }
};
using Archive = std::unique_ptr<zip_t, CloseArchive>;
using EntryFile = std::unique_ptr<zip_file_t, CloseEntry>;

Archive OpenArchive(const std::string& data) {
  zip_error_t error;
  zip_error_init(&error);
  zip_source_t* const source = zip_source_buffer_create(data.data(), data.size(), 0, &error);
  zip_t* const archive = source ? zip_open_from_source(source, ZIP_RDONLY, &error) : nullptr;
  if (!archive) {
    if (source) zip_source_free(source);
    const std::string reason = zip_error_strerror(&error);
    zip_error_fini(&error);
    throw RUNTIME_EXCEPTION("The zipped description cannot be opened: %s", reason.c_str());
  }
  zip_error_fini(&error);
  return Archive(archive);
}

bool EndsWithXml(std::string_view name) {
  if (name.size() < 4) return false;
  std::string end(name.substr(name.size() - 4));
  std::transform(end.begin(), end.end(), end.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return end == ".xml";
}

zip_uint64_t ChooseEntry(zip_t* archive, std::vector<std::string>& notes) {
  const auto count = static_cast<zip_uint64_t>(std::max<zip_int64_t>(zip_get_num_entries(archive, 0), 0));
  zip_uint64_t firstFile = count;
  for (zip_uint64_t i = 0; i < count; ++i) {
    const char* const name = zip_get_name(archive, i, ZIP_FL_ENC_RAW);
    const std::string_view text = name ? name : "";
    if (EndsWithXml(text)) return i;
    if (firstFile == count && !text.empty() && text.back() != '/') firstFile = i;
  }
  if (firstFile == count) throw RUNTIME_EXCEPTION("The zipped description holds no file");
  notes.emplace_back("The zip archive holds no file ending in .xml; the first file was taken");
  return firstFile;
}

// Devices write archives into memory of fixed size: what follows the end record is padding, usually zeros or erased
// flash memory.
std::string WithoutPadding(const std::string& data, std::vector<std::string>& notes) {
  constexpr std::string_view kEndRecord = "PK\x05\x06";
  constexpr std::size_t kEndRecordBytes = 22;
  const std::size_t at = data.rfind(kEndRecord);
  if (at == std::string::npos || data.size() - at < kEndRecordBytes) return data;
  const auto low = static_cast<unsigned char>(data[at + 20]);
  const auto high = static_cast<unsigned char>(data[at + 21]);
  const std::size_t end = at + kEndRecordBytes + low + std::size_t{256} * high;
  if (end < data.size() && data.find_first_not_of("\0\xFF"sv, end) != data.npos)
    notes.emplace_back("What follows the zip archive was skipped");
  return data.substr(0, std::min(end, data.size()));
}

// Length of the UTF-8 sequence that begins there; 0 when it is none.
std::size_t Utf8SequenceAt(std::string_view text, std::size_t at) {
  const auto lead = static_cast<unsigned char>(text[at]);
  if (lead < 0x80) return 1;
  const std::size_t length = lead >= 0xC2 && lead < 0xE0
                                 ? 2
                                 : (lead >= 0xE0 && lead < 0xF0 ? 3 : (lead >= 0xF0 && lead < 0xF5 ? 4 : 0));
  if (length == 0 || at + length > text.size()) return 0;
  for (std::size_t i = 1; i < length; ++i)
    if ((static_cast<unsigned char>(text[at + i]) & 0xC0) != 0x80) return 0;
  return length;
}

// Eight bytes at once: descriptions are ASCII but for a few signs.
std::size_t SkipAscii(std::string_view text, std::size_t at) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080ULL;
  for (; at + 8 <= text.size(); at += 8) {
    std::uint64_t block = 0;
    std::memcpy(&block, text.data() + at, 8);
    if ((block & kHighBits) != 0) break;
  }
  return at;
}

bool IsUtf8(std::string_view text) {
  for (std::size_t at = SkipAscii(text, 0); at < text.size(); at = SkipAscii(text, at)) {
    const std::size_t length = Utf8SequenceAt(text, at);
    if (length == 0) return false;
    at += length;
  }
  return true;
}

void AppendUtf8(std::string& out, std::uint32_t code) {
  const auto tail = [code](int shift) { return static_cast<char>(0x80 | (code >> shift & 0x3F)); };
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += {static_cast<char>(0xC0 | code >> 6), tail(0)};
  } else if (code < 0x10000) {
    out += {static_cast<char>(0xE0 | code >> 12), tail(6), tail(0)};
  } else {
    out += {static_cast<char>(0xF0 | code >> 18), tail(12), tail(6), tail(0)};
  }
}

enum class Units { bytes, utf16Little, utf16Big };

// By the byte-order mark or, without one, by the first character, which can only be '<' or white space.
Units UnitsOf(std::string_view data) {
  if (data.size() < 2) return Units::bytes;
  const std::string_view start = data.substr(0, 2);
  if (start == "\xFF\xFE"sv || (start[1] == '\0' && start[0] != '\0')) return Units::utf16Little;
  if (start == "\xFE\xFF"sv || (start[0] == '\0' && start[1] != '\0')) return Units::utf16Big;
  return Units::bytes;
}

// A surrogate without its partner becomes the replacement character.
std::string FromUtf16(std::string_view data, bool bigEndian, std::vector<std::string>& notes) {
  constexpr std::uint32_t kReplacement = 0xFFFD;
  const auto unit = [&](std::size_t at) {
    const auto first = static_cast<unsigned char>(data[at]);
    const auto second = static_cast<unsigned char>(data[at + 1]);
    return static_cast<std::uint32_t>(bigEndian ? first << 8 | second : second << 8 | first);
  };
  bool isDamaged = data.size() % 2 != 0;
  std::string out;
  out.reserve(data.size() / 2);
  for (std::size_t at = 0; at + 1 < data.size(); at += 2) {
    std::uint32_t code = unit(at);
    if (code == 0xFEFF && at == 0) continue;
    const bool isHigh = code >= 0xD800 && code < 0xDC00;
    const std::uint32_t low = isHigh && at + 3 < data.size() ? unit(at + 2) : 0;
    if (isHigh && low >= 0xDC00 && low < 0xE000) {
      code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
      at += 2;
    } else if (code >= 0xD800 && code < 0xE000) {
      code = kReplacement;
      isDamaged = true;
    }
    AppendUtf8(out, code);
  }
  if (isDamaged) notes.emplace_back("Units that are not UTF-16 were replaced");
  return out;
}

std::string RepairUtf8(std::string_view text, bool isLatin1) {
  std::string out;
  out.reserve(text.size() + text.size() / 8);
  for (std::size_t at = 0; at < text.size();) {
    const auto byte = static_cast<unsigned char>(text[at]);
    const std::size_t length = isLatin1 && byte >= 0x80 ? 0 : Utf8SequenceAt(text, at);
    if (length == 0) {
      out += static_cast<char>(0xC0 | byte >> 6);
      out += static_cast<char>(0x80 | (byte & 0x3F));
      ++at;
    } else {
      out.append(text.substr(at, length));
      at += length;
    }
  }
  return out;
}

// What the XML declaration says, in capitals; "UTF-8" when it says nothing.
std::string DeclaredEncoding(std::string_view text) {
  const std::string_view prolog = text.substr(0, std::min<std::size_t>(text.find("?>"), 200));
  constexpr std::string_view kAttribute = "encoding";
  const std::size_t attribute = prolog.substr(0, 5) == "<?xml" ? prolog.find(kAttribute) : prolog.npos;
  if (attribute == prolog.npos) return "UTF-8";
  const std::size_t open = prolog.find_first_of("\"'", attribute);
  const std::size_t close = open == prolog.npos ? open : prolog.find(prolog[open], open + 1);
  if (close == prolog.npos) return "UTF-8";
  std::string name(prolog.substr(open + 1, close - open - 1));
  std::transform(name.begin(), name.end(), name.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return name;
}

bool IsLatin1(std::string_view encoding) {
  return encoding.find("8859-1") != encoding.npos || encoding.find("1252") != encoding.npos ||
         encoding == "LATIN1";
}

bool IsUtf8Name(std::string_view encoding) {
  return encoding == "UTF-8" || encoding == "UTF8" || encoding == "US-ASCII" || encoding == "ASCII";
}

// Position behind the last end tag of a root element; npos when there is none.
std::size_t RootEnd(std::string_view text) {
  const std::size_t name = text.rfind("RegisterDescription"sv);
  if (name == std::string_view::npos) return name;
  const std::size_t open = text.rfind('<', name);
  const std::size_t close = text.find('>', name);
  const bool isEndTag = open != std::string_view::npos && text[open + 1] == '/';
  return isEndTag && close != std::string_view::npos ? close + 1 : std::string_view::npos;
}

// Everything up to the end tag of the root element, if there is one. Behind the zeros that pad a device's memory may
// stand the end of an older description.
std::string_view UpToRootEnd(std::string_view text) {
  const std::size_t end = RootEnd(text.substr(0, text.find('\0')));
  return text.substr(0, end == std::string_view::npos ? RootEnd(text) : end);
}

}  // namespace

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw RUNTIME_EXCEPTION("Failed to open xml file '%s'", path.c_str());
  std::string data;
  char chunk[65536];
  while (file.read(chunk, sizeof(chunk)) || file.gcount() > 0) {
    data.append(chunk, static_cast<std::size_t>(file.gcount()));
    if (data.size() > kMaxDescriptionBytes)
      throw RUNTIME_EXCEPTION("The file '%s' is too large", path.c_str());
  }
  return data;
}

bool IsZip(const std::string& data) {
  return data.compare(0, 4, "PK\x03\x04") == 0;
}

std::string Unzip(const std::string& data, std::vector<std::string>& notes) {
  if (!IsZip(data)) throw RUNTIME_EXCEPTION("The zipped description does not begin like a zip archive");
  const std::string packed = WithoutPadding(data, notes);
  const Archive archive = OpenArchive(packed);
  const EntryFile file(zip_fopen_index(archive.get(), ChooseEntry(archive.get(), notes), 0));
  if (!file)
    throw RUNTIME_EXCEPTION("The zipped description cannot be read: %s", zip_strerror(archive.get()));
  std::string text;
  char chunk[65536];
  while (true) {
    const zip_int64_t count = zip_fread(file.get(), chunk, sizeof(chunk));
    if (count < 0)
      throw RUNTIME_EXCEPTION("The zipped description is damaged: %s", zip_file_strerror(file.get()));
    if (count == 0) return text;
    // The size that the archive states may lie; what comes out counts.
    if (text.size() + static_cast<std::size_t>(count) > kMaxDescriptionBytes)
      throw RUNTIME_EXCEPTION("The zipped description unpacks to more than %zu bytes", kMaxDescriptionBytes);
    text.append(chunk, static_cast<std::size_t>(count));
  }
}

std::string ToCleanUtf8(std::string data, std::vector<std::string>& notes) {
  const Units units = UnitsOf(data);
  if (units != Units::bytes) data = FromUtf16(data, units == Units::utf16Big, notes);
  std::string_view text = data;
  if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
  const std::size_t start = text.find_first_not_of(" \t\r\n");
  text.remove_prefix(std::min(start, text.size()));
  if (start > 0 && text.substr(0, 5) == "<?xml")
    notes.emplace_back("White space in front of the XML declaration was skipped");
  const std::string_view whole = text;
  text = UpToRootEnd(text);
  if (whole.substr(text.size()).find_first_not_of(" \t\r\n\0"sv) != whole.npos)
    notes.emplace_back("What follows the root element was skipped");
  while (!text.empty() && text.back() == '\0') text.remove_suffix(1);
  const std::string encoding = DeclaredEncoding(text);
  const bool isLatin1 = units == Units::bytes && IsLatin1(encoding);
  if (units == Units::bytes && !isLatin1 && !IsUtf8Name(encoding))
    notes.push_back("The text is not in the encoding '" + encoding.substr(0, 100) + "' that it declares");
  if (!isLatin1 && IsUtf8(text)) {
    const auto skipped = static_cast<std::size_t>(text.data() - data.data());
    data.resize(skipped + text.size());
    data.erase(0, skipped);
    return data;
  }
  if (!isLatin1) notes.emplace_back("Bytes that are not UTF-8 were taken as Latin-1");
  return RepairUtf8(text, isLatin1);
}

}  // namespace zyn::genapi
