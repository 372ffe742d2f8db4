/// What is tolerated in a description, in sentences.
#ifndef ZYN_GENAPI_DESCRIPTION_TOLERANCENOTES_H
#define ZYN_GENAPI_DESCRIPTION_TOLERANCENOTES_H

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "description/NodeDraft.h"
#include "description/XmlReader.h"

namespace zyn::genapi {

/// Writes down, with element and line, what is wrong in one document and is read as what it must mean. Judges only; what
/// it means is decided where it is read. Borrows the reader, which says where reading is, and the description, which gets
/// the notes.
class ToleranceNotes {
 public:
  ToleranceNotes(XmlReader& reader, Description& description) : reader_(reader), description_(description) {}

  // About the document. The root element is open, and its attributes were read.
  void NoteFacts();
  void NoteHugeVersion(const char* attribute);
  /// What the reader and NoteBlanks() saw, when the document is over.
  void NoteOddities();
  /// White space around a value or a name of the open element.
  void NoteBlanks();

  // About the element that is open.
  void NoteUnknownKind();
  void NoteNeverImplemented();
  void NoteAttribute(std::string_view name);
  void NoteAttributesBut(std::initializer_list<std::string_view> known);
  void NoteUnknownElement(const NodeDraft& draft);
  /// Whether the element belongs there; moves the draft on to its place.
  void NotePlace(NodeDraft& draft, Element element);

  // About what was read.
  void NoteRepeated(const NodeDraft& draft, const Property& property);
  void NoteInteger(const NodeDraft& draft, const Property& property, std::string_view text,
                   std::int64_t value);
  void NoteFinished(const NodeDraft& draft);

 private:
  template <class Write>
  void Note(const Write& write) {
    description_.Tolerate(write);
  }
  std::string FullName() const;
  std::string NodeHere();
  bool HasKnownNameSpace();
  void NoteMissing(const NodeDraft& draft);
  void NoteIfNone(const NodeDraft& draft, std::initializer_list<Element> elements, const char* consequence);
  void NoteAlternatives(const NodeDraft& draft);
  void NoteBitOrder(const NodeDraft& draft);

  XmlReader& reader_;
  Description& description_;
  // Line of the first value or name with white space around it; 0 when there was none.
  std::uint32_t firstBlanks_ = 0;
};

}  // namespace zyn::genapi

#endif
