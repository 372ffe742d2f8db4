#include "description/XmlReader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

#include "Base/GCException.h"

namespace zyn::genapi {
namespace {

constexpr std::size_t kMaxDepth = 500;

enum CharClass : std::uint8_t { kNameStart = 1, kNamePart = 2, kBlank = 4 };

constexpr std::array<std::uint8_t, 256> kClasses = [] {
  std::array<std::uint8_t, 256> classes{};
  for (int c = 'a'; c <= 'z'; ++c) classes[static_cast<std::size_t>(c)] = kNameStart | kNamePart;
  for (int c = 'A'; c <= 'Z'; ++c) classes[static_cast<std::size_t>(c)] = kNameStart | kNamePart;
  for (int c = 0x80; c <= 0xFF; ++c) classes[static_cast<std::size_t>(c)] = kNameStart | kNamePart;
  for (int c = '0'; c <= '9'; ++c) classes[static_cast<std::size_t>(c)] = kNamePart;
  classes['_'] = classes[':'] = kNameStart | kNamePart;
  classes['-'] = classes['.'] = kNamePart;
  classes[' '] = classes['\t'] = classes['\r'] = classes['\n'] = kBlank;
  return classes;
}();

bool Is(char c, CharClass charClass) {
  return (kClasses[static_cast<unsigned char>(c)] & charClass) != 0;
}

bool IsBlank(std::string_view text) {
  for (const char c : text)
    if (!Is(c, kBlank)) return false;
  return true;
}

void AppendUtf8(std::uint32_t code, std::string& out) {
  const auto tail = [&](int shift) { out += static_cast<char>(0x80 | (code >> shift & 0x3F)); };
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | code >> 6);
    tail(0);
  } else if (code < 0x10000) {
    out += static_cast<char>(0xE0 | code >> 12);
    tail(6);
    tail(0);
  } else {
    out += static_cast<char>(0xF0 | code >> 18);
    tail(12);
    tail(6);
    tail(0);
  }
}

struct EntityRow {
  std::string_view text;
  char character;
};
constexpr std::array kEntities = {EntityRow{"&lt;", '<'}, EntityRow{"&gt;", '>'}, EntityRow{"&amp;", '&'},
                                  EntityRow{"&quot;", '"'}, EntityRow{"&apos;", '\''}};

}  // namespace

XmlReader::XmlReader(std::string_view xml)
    : xml_(xml), hasReturns_(xml.find('\r') != std::string_view::npos) {
  const std::size_t zero = xml.find('\0');
  if (zero != std::string_view::npos) Fail("a zero byte", zero);
}

// Errors

// Positions are asked for in rising order, so that each newline is counted once.
unsigned XmlReader::LineAt(std::size_t at) {
  const std::string_view until = xml_.substr(0, at);
  while (true) {
    const std::size_t newline = until.find('\n', lineKnownAt_);
    if (newline == std::string_view::npos) break;
    lineKnownAt_ = newline + 1;
    ++lineAtKnown_;
  }
  lineKnownAt_ = std::max(lineKnownAt_, until.size());
  return lineAtKnown_;
}

void XmlReader::Fail(const char* what, std::size_t at) {
  const std::string element(open_.empty() ? name_ : open_.back());
  throw RUNTIME_EXCEPTION("Error while parsing XML at line %u in element '%s': %s", LineAt(at),
                          element.c_str(), what);
}

void XmlReader::FailTooDeep() const {
  throw RUNTIME_EXCEPTION("Element %s at line %u is nested too deeply", std::string(name_).c_str(), line_);
}

// Tags

std::string_view XmlReader::NameAt(std::size_t at) const {
  if (!Is(Peek(at), kNameStart)) return {};
  std::size_t end = at + 1;
  while (Is(Peek(end), kNamePart)) ++end;
  return xml_.substr(at, end - at);
}

std::size_t XmlReader::SkipBlanks(std::size_t at) const {
  while (Is(Peek(at), kBlank)) ++at;
  return at;
}

std::size_t XmlReader::Behind(std::string_view end, std::size_t from, const char* what) {
  const std::size_t found = xml_.find(end, from);
  if (found == std::string_view::npos) Fail(what, from);
  return found + end.size();
}

std::size_t XmlReader::FindMarkup(std::size_t from) {
  const std::size_t found = xml_.find('<', from);
  if (found == std::string_view::npos) Fail("the document ends too early", xml_.size());
  return found;
}

std::string_view XmlReader::Name() const {
  const std::size_t colon = name_.find(':');
  return colon == std::string_view::npos ? name_ : name_.substr(colon + 1);
}

bool XmlReader::LeaveEmpty() {
  if (!isEmpty_) return false;
  isEmpty_ = false;
  open_.pop_back();
  return true;
}

bool XmlReader::NextChild() {
  return Advance(false);
}

void XmlReader::CheckBetween(std::size_t markup, bool isSkipping) {
  if (isSkipping || IsBlank(xml_.substr(at_, markup - at_))) return;
  if (!hadRoot_) Fail("text before the root element", at_);
  if (seen_.strayText == 0) seen_.strayText = LineAt(at_);
}

bool XmlReader::Advance(bool isSkipping) {
  if (LeaveEmpty() || (open_.empty() && hadRoot_)) return false;
  while (true) {
    const std::size_t markup = FindMarkup(at_);
    CheckBetween(markup, isSkipping);
    const char next = Peek(markup + 1);
    if (Is(next, kNameStart)) return Open(markup), true;
    if (next == '/') return Close(markup), false;
    at_ = SkipMisc(markup);
  }
}

void XmlReader::Open(std::size_t at) {
  name_ = NameAt(at + 1);
  line_ = LineAt(at);
  if (open_.size() >= kMaxDepth) FailTooDeep();
  open_.push_back(name_);
  hadRoot_ = true;
  const std::size_t begin = at + 1 + name_.size();
  std::size_t end = begin;
  while (true) {
    const std::size_t next = SkipBlanks(end);
    if (Peek(next) == '>' || (Peek(next) == '/' && Peek(next + 1) == '>')) {
      attributes_ = xml_.substr(begin, end - begin);
      isEmpty_ = Peek(next) == '/';
      at_ = next + (isEmpty_ ? 2 : 1);
      return;
    }
    if (next == end) Fail("a tag is malformed", next);
    end = ScanAttribute(next);
  }
}

std::size_t XmlReader::ScanAttribute(std::size_t at) {
  const std::string_view name = NameAt(at);
  if (name.empty()) Fail("an attribute is malformed", at);
  const std::size_t equals = SkipBlanks(at + name.size());
  const std::size_t quote = SkipBlanks(equals + 1);
  if (Peek(equals) != '=' || (Peek(quote) != '"' && Peek(quote) != '\''))
    Fail("an attribute is malformed", at);
  return Behind(xml_.substr(quote, 1), quote + 1, "an attribute has no end");
}

// Open() has checked the spelling.
std::size_t XmlReader::NextAttribute(std::size_t at, AttributeText& found) const {
  at = SkipBlanks(at);
  if (at >= FirstAttribute() + attributes_.size()) return std::string_view::npos;
  found.name = NameAt(at);
  const std::size_t quote = SkipBlanks(SkipBlanks(at + found.name.size()) + 1);
  const std::size_t close = xml_.find(xml_[quote], quote + 1);
  found.value = xml_.substr(quote + 1, close - quote - 1);
  return close + 1;
}

std::string_view XmlReader::Attribute(std::string_view name) {
  AttributeText found;
  for (std::size_t at = FirstAttribute(); (at = NextAttribute(at, found)) != std::string_view::npos;)
    if (found.name == name) return Decoded(found.value, Context::attribute, attribute_);
  return {};
}

void XmlReader::Close(std::size_t at) {
  const std::string_view name = open_.empty() ? std::string_view() : open_.back();
  const std::size_t behind = at + 2 + name.size();
  if (name.empty() || !StartsWith(at + 2, name) || Is(Peek(behind), kNamePart))
    Fail("an end tag does not match the start tag", at);
  const std::size_t end = SkipBlanks(behind);
  if (Peek(end) != '>') Fail("an end tag is malformed", at);
  open_.pop_back();
  at_ = end + 1;
}

std::size_t XmlReader::SkipMisc(std::size_t at) {
  if (StartsWith(at, "<!--")) return Behind("-->", at + 4, "a comment has no end");
  if (StartsWith(at, "<?")) return Behind("?>", at + 2, "a processing instruction has no end");
  if (!open_.empty() && StartsWith(at, "<![CDATA["))
    return Behind("]]>", at + 9, "a CDATA section has no end");
  if (!hadRoot_ && StartsWith(at, "<!DOCTYPE")) return SkipDocumentType(at);
  Fail("a tag is malformed", at);
}

// Declarations inside are bracketed like tags; none of them means anything here.
std::size_t XmlReader::SkipDocumentType(std::size_t at) {
  constexpr const char* kNoEnd = "a document type has no end";
  int depth = 0;
  for (std::size_t i = at; i < xml_.size(); ++i) {
    const char c = xml_[i];
    if (StartsWith(i, "<!--")) {
      i = Behind("-->", i + 4, kNoEnd) - 1;
    } else if (c == '"' || c == '\'') {
      i = Behind(xml_.substr(i, 1), i + 1, kNoEnd) - 1;
    } else if (c == '<') {
      ++depth;
    } else if (c == '>' && --depth == 0) {
      return i + 1;
    }
  }
  Fail(kNoEnd, at);
}

void XmlReader::Skip() {
  const std::size_t depth = open_.size();
  while (open_.size() >= depth) Advance(true);
}

// Text

std::string_view XmlReader::ReadText() {
  if (LeaveEmpty()) return {};
  const std::size_t markup = FindMarkup(at_);
  if (Peek(markup + 1) != '/') return ReadMixedText(markup);
  const std::string_view raw = xml_.substr(at_, markup - at_);
  Close(markup);
  return IsBlank(raw) ? std::string_view() : Decoded(raw, Context::text, text_);
}

// Comments, sections and other elements cut the text into pieces.
std::string_view XmlReader::ReadMixedText(std::size_t markup) {
  std::string all;
  while (true) {
    Append(xml_.substr(at_, markup - at_), all);
    const char next = Peek(markup + 1);
    if (next == '/') break;
    if (Is(next, kNameStart)) {
      Open(markup);
      if (seen_.strayElement == 0) seen_.strayElement = line_;
      Skip();
    } else {
      at_ = SkipMisc(markup);
      constexpr std::size_t kBegin = 9;
      if (StartsWith(markup, "<![CDATA[")) all += xml_.substr(markup + kBegin, at_ - 3 - (markup + kBegin));
    }
    markup = FindMarkup(at_);
  }
  Close(markup);
  text_.swap(all);
  return text_;
}

void XmlReader::Append(std::string_view raw, std::string& out) {
  std::string decoded;
  if (!IsBlank(raw)) out += Decoded(raw, Context::text, decoded);
}

// Position of the first character from `at` on that does not stand for itself; the end when there is none. Two searches
// for one character each are far faster than one for several.
std::size_t XmlReader::FindSpecial(std::string_view raw, std::size_t at, Context context) const {
  std::size_t found = std::min(raw.find('&', at), raw.size());
  if (hasReturns_) found = std::min(raw.substr(0, found).find('\r', at), found);
  if (context == Context::text) return found;
  found = std::min(raw.substr(0, found).find('\n', at), found);
  return std::min(raw.substr(0, found).find('\t', at), found);
}

// Line ends become newlines, in attributes spaces.
std::string_view XmlReader::Decoded(std::string_view raw, Context context, std::string& out) {
  std::size_t at = FindSpecial(raw, 0, context);
  if (at == raw.size()) return raw;
  out.assign(raw.substr(0, at));
  while (at < raw.size()) {
    const char c = raw[at];
    if (c == '&') {
      at = DecodeReference(raw, at, out);
    } else {
      if (c == '\r' && raw.substr(at + 1, 1) == "\n") ++at;
      out += context == Context::text ? '\n' : ' ';
      ++at;
    }
    const std::size_t next = FindSpecial(raw, at, context);
    out.append(raw.substr(at, next - at));
    at = next;
  }
  return out;
}

// Position behind the reference, or behind its & when it is none.
std::size_t XmlReader::DecodeReference(std::string_view raw, std::size_t at, std::string& out) {
  const std::string_view rest = raw.substr(at);
  for (const EntityRow& row : kEntities) {
    if (rest.substr(0, row.text.size()) != row.text) continue;
    out += row.character;
    return at + row.text.size();
  }
  const bool isHex = rest.substr(0, 3) == "&#x";
  if (isHex || rest.substr(0, 2) == "&#") {
    const char* const digits = rest.data() + (isHex ? 3 : 2);
    const char* const last = rest.data() + rest.size();
    std::uint32_t code = 0;
    const auto [end, error] = std::from_chars(digits, last, code, isHex ? 16 : 10);
    const bool isCharacter = code > 0 && code < 0x110000 && (code < 0xD800 || code >= 0xE000);
    if (error == std::errc() && end != last && *end == ';' && isCharacter) {
      AppendUtf8(code, out);
      return at + static_cast<std::size_t>(end + 1 - rest.data());
    }
  }
  if (seen_.looseReference == 0) seen_.looseReference = line_;
  out += '&';
  return at + 1;
}

}  // namespace zyn::genapi
