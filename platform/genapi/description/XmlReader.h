/// Reads XML.
#ifndef ZYN_GENAPI_DESCRIPTION_XMLREADER_H
#define ZYN_GENAPI_DESCRIPTION_XMLREADER_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zyn::genapi {

/// Walks through a UTF-8 document from element to element in one pass and without building a tree: memory grows with the
/// depth only, and texts are views of the document unless they had to be decoded.
///
/// Malformed XML throws RuntimeException with the line and the innermost element, wherever in the document it is noticed.
/// Entities that XML does not define stay as they are written. What follows the root element is not looked at.
class XmlReader {
 public:
  /// Lines where something was first seen that means nothing and was put up with; 0 when it was not.
  struct Oddities {
    unsigned looseReference = 0;  ///< a & that begins no known reference
    unsigned strayText = 0;       ///< text between elements
    unsigned strayElement = 0;    ///< an element inside a text
  };

  /// The text must outlive the reader.
  explicit XmlReader(std::string_view xml);

  /// Opens the next element inside the one that is open (at first: the root), or closes that one and returns false when
  /// there is none. Every element opened must be left by NextChild() returning false, ReadText() or Skip().
  bool NextChild();
  /// The text directly inside the open element; leaves it. Empty when there is nothing but white space. Holds until the
  /// next call.
  std::string_view ReadText();
  /// Leaves the open element, whatever is in it.
  void Skip();

  // About the element opened last, until something moves on.

  /// Without a prefix. Both hold as long as the document.
  std::string_view Name() const;
  std::string_view FullName() const { return name_; }
  /// Empty when there is none. Holds until the next call.
  std::string_view Attribute(std::string_view name);
  unsigned Line() const { return line_; }
  bool HasAttributes() const { return !attributes_.empty(); }
  /// visit(name, value) for each attribute, the value as it is written.
  template <class Visit>
  void EachAttribute(const Visit& visit) const {
    AttributeText found;
    for (std::size_t at = FirstAttribute(); (at = NextAttribute(at, found)) != std::string_view::npos;)
      visit(found.name, found.value);
  }

  /// So far.
  const Oddities& Seen() const { return seen_; }

  [[noreturn]] void FailTooDeep() const;

 private:
  enum class Context { text, attribute };

  [[noreturn]] void Fail(const char* what, std::size_t at);
  unsigned LineAt(std::size_t at);
  char Peek(std::size_t at) const { return at < xml_.size() ? xml_[at] : '\0'; }
  bool StartsWith(std::size_t at, std::string_view text) const {
    return xml_.substr(at, text.size()) == text;
  }
  std::string_view NameAt(std::size_t at) const;
  std::size_t SkipBlanks(std::size_t at) const;
  /// Position behind `end`.
  std::size_t Behind(std::string_view end, std::size_t from, const char* what);

  struct AttributeText {
    std::string_view name, value;
  };
  std::size_t FirstAttribute() const { return static_cast<std::size_t>(attributes_.data() - xml_.data()); }
  /// The attribute at or after `at`; position behind it, npos when there is none.
  std::size_t NextAttribute(std::size_t at, AttributeText& found) const;

  bool Advance(bool isSkipping);
  std::size_t FindMarkup(std::size_t from);
  void Open(std::size_t at);
  std::size_t ScanAttribute(std::size_t at);
  void Close(std::size_t at);
  /// Comments, processing instructions and document types; position behind.
  std::size_t SkipMisc(std::size_t at);
  std::size_t SkipDocumentType(std::size_t at);
  bool LeaveEmpty();

  std::string_view ReadMixedText(std::size_t markup);
  void Append(std::string_view raw, std::string& out);
  std::string_view Decoded(std::string_view raw, Context context, std::string& out);
  std::size_t FindSpecial(std::string_view raw, std::size_t at, Context context) const;
  std::size_t DecodeReference(std::string_view raw, std::size_t at, std::string& out);
  void CheckBetween(std::size_t markup, bool isSkipping);

  const std::string_view xml_;
  const bool hasReturns_;
  std::size_t at_ = 0;
  std::vector<std::string_view> open_;
  std::string_view name_;
  std::string_view attributes_;
  bool isEmpty_ = false;  // the open element ended with its own tag
  bool hadRoot_ = false;
  unsigned line_ = 1;            // of the element opened last
  std::size_t lineKnownAt_ = 0;  // position up to which newlines are counted, and the line there
  unsigned lineAtKnown_ = 1;
  Oddities seen_;
  std::string text_;
  std::string attribute_;
};

}  // namespace zyn::genapi

#endif
