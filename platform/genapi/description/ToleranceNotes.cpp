#include "description/ToleranceNotes.h"

#include <algorithm>
#include <utility>

#include "description/NumberText.h"

namespace zyn::genapi {
namespace {

bool IsOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

std::string AtLine(std::uint32_t line) {
  return " at line " + std::to_string(line);
}

}  // namespace

std::string ToleranceNotes::FullName() const {
  return Brief(reader_.FullName());
}

// About the document

void ToleranceNotes::NoteFacts() {
  std::string missing;
  for (const char* const name : {"ModelName", "VendorName", "StandardNameSpace", "SchemaMajorVersion",
                                 "SchemaMinorVersion", "SchemaSubMinorVersion", "MajorVersion",
                                 "MinorVersion", "SubMinorVersion", "ProductGuid", "VersionGuid"}) {
    bool isThere = false;
    reader_.EachAttribute(
        [&](std::string_view found, std::string_view) { isThere = isThere || found == name; });
    if (!isThere) missing.append(missing.empty() ? "" : ", ").append(name);
  }
  if (!missing.empty())
    Note([&] { return "RegisterDescription" + AtLine(reader_.Line()) + " lacks the attributes " + missing; });
  if (!HasKnownNameSpace())
    Note([&] {
      return "RegisterDescription" + AtLine(reader_.Line()) +
             " is in no known XML name space; its attributes say which schema it follows";
    });
}

bool ToleranceNotes::HasKnownNameSpace() {
  const std::string_view full = reader_.FullName();
  const std::size_t colon = full.find(':');
  const std::string attribute = colon == full.npos ? "xmlns" : "xmlns:" + std::string(full.substr(0, colon));
  return IsOneOf(Trim(reader_.Attribute(attribute)),
                 {"http://www.genicam.org/GenApi/Version_1_0", "http://www.genicam.org/GenApi/Version_1_1"});
}

void ToleranceNotes::NoteOddities() {
  const XmlReader::Oddities& seen = reader_.Seen();
  if (seen.looseReference > 0)
    Note([&] {
      return "A & that begins no known reference stands for itself, first" + AtLine(seen.looseReference);
    });
  if (seen.strayText > 0)
    Note([&] { return "Text between elements was skipped, first" + AtLine(seen.strayText); });
  if (seen.strayElement > 0)
    Note([&] { return "Elements inside a text were skipped, first" + AtLine(seen.strayElement); });
  if (firstBlanks_ > 0)
    Note([&] { return "White space around values and names was ignored, first" + AtLine(firstBlanks_); });
}

void ToleranceNotes::NoteBlanks() {
  if (firstBlanks_ == 0) firstBlanks_ = reader_.Line();
}

void ToleranceNotes::NoteHugeVersion(const char* attribute) {
  Note([&] {
    return "Attribute " + std::string(attribute) + " of RegisterDescription" + AtLine(reader_.Line()) +
           " is beyond 16 bits; 65535 stands for it";
  });
}

// About the open element

std::string ToleranceNotes::NodeHere() {
  return "Element '" + FullName() + "' (name '" + Brief(reader_.Attribute("Name")) + "')" +
         AtLine(reader_.Line());
}

void ToleranceNotes::NoteUnknownKind() {
  Note([&] { return NodeHere() + ": no such kind of node is known"; });
}

void ToleranceNotes::NoteNeverImplemented() {
  Note([&] { return NodeHere() + ": nodes of this kind are never implemented"; });
}

// Those of other name spaces mean nothing here.
void ToleranceNotes::NoteAttribute(std::string_view name) {
  if (name.find(':') != name.npos || name == "xmlns") return;
  Note([&] {
    return "Attribute '" + Brief(name) + "' of element '" + FullName() + "'" + AtLine(reader_.Line()) +
           " is unknown and was skipped";
  });
}

void ToleranceNotes::NoteAttributesBut(std::initializer_list<std::string_view> known) {
  if (!reader_.HasAttributes()) return;
  reader_.EachAttribute([&](std::string_view name, std::string_view) {
    if (!IsOneOf(name, known)) NoteAttribute(name);
  });
}

void ToleranceNotes::NoteUnknownElement(const NodeDraft& draft) {
  if (reader_.Name() == "Extension" || IsNeverImplemented(draft.kind)) return;
  Note([&] {
    return "Element '" + FullName() + "'" + AtLine(reader_.Line()) + " of node " + draft.Label() +
           " is unknown and was skipped";
  });
}

// What the schema does not have there keeps its meaning, if it has one.
void ToleranceNotes::NotePlace(NodeDraft& draft, Element element) {
  const std::uint8_t place = draft.layout->PlaceOf(element);
  if (place == 0)
    return Note([&] {
      return "Element " + std::string(XmlName(element)) + AtLine(reader_.Line()) + " of node " +
             draft.Label() + " does not belong to this kind of node";
    });
  if (place < draft.lastPlace && description_.facts.schemaVersion.Minor > 0 &&
      !std::exchange(draft.isOutOfOrder, true))
    Note([&] {
      return "Elements of node " + draft.Label() + " are not in the order of the schema, first " +
             XmlName(element) + AtLine(reader_.Line());
    });
  draft.lastPlace = place;
}

// About what was read

void ToleranceNotes::NoteRepeated(const NodeDraft& draft, const Property& property) {
  Note([&] {
    return "Element " + std::string(XmlName(property.element)) + " of node " + draft.Label() +
           " is repeated; the one" + AtLine(property.line) + " holds";
  });
}

void ToleranceNotes::NoteFinished(const NodeDraft& draft) {
  if (draft.kind == NodeKind::maskedIntReg) NoteBitOrder(draft);
  NoteMissing(draft);
  NoteAlternatives(draft);
}

void ToleranceNotes::NoteInteger(const NodeDraft& draft, const Property& property, std::string_view text,
                                 std::int64_t value) {
  const bool isWrapped = value < 0 && text.find('-') == text.npos;
  const bool isHex = text.find_first_of("xX") != text.npos;
  const bool isCut = !isHex && text.find_first_of(".eE") != text.npos;
  if (!isWrapped && !isCut) return;
  Note([&] {
    return "Element " + std::string(XmlName(property.element)) + AtLine(property.line) + " of node " +
           draft.Label() + ": '" + std::string(Trim(text).substr(0, 100)) + "' was taken as " +
           std::to_string(value);
  });
}

// What the schema asks for and the node can do without.
void ToleranceNotes::NoteMissing(const NodeDraft& draft) {
  switch (draft.kind) {
    case NodeKind::integer:
    case NodeKind::floating:
      if (!draft.Has(Element::pIndex)) return;
      NoteIfNone(draft, {Element::valueIndexed, Element::pValueIndexed}, "the default always holds");
      return NoteIfNone(draft, {Element::valueDefault, Element::pValueDefault},
                        "other indices have no value");
    case NodeKind::command:
      return NoteIfNone(draft, {Element::commandValue, Element::pCommandValue}, "1 is written");
    case NodeKind::enumeration:
      return NoteIfNone(draft, {Element::enumEntry, Element::pEnumEntry}, "it is never implemented");
    case NodeKind::maskedIntReg:
      if (!draft.Has(Element::bit) && draft.Has(Element::lsb) != draft.Has(Element::msb))
        NoteIfNone(draft, {draft.Has(Element::lsb) ? Element::msb : Element::lsb}, "it has one bit");
      [[fallthrough]];
    case NodeKind::intReg:
    case NodeKind::floatReg:
      NoteIfNone(draft, {Element::endianess}, "it is little-endian");
      [[fallthrough]];
    case NodeKind::stringReg:
    case NodeKind::reg:
      NoteIfNone(draft, {Element::address, Element::pAddress, Element::pIndex, Element::intSwissKnife},
                 "it is 0");
      return NoteIfNone(draft, {Element::accessMode}, "it is read-only");
    default:
      return;
  }
}

// An element that is there but empty stands for its default by the schema.
void ToleranceNotes::NoteIfNone(const NodeDraft& draft, std::initializer_list<Element> elements,
                                const char* consequence) {
  for (const Element element : elements)
    if (draft.Has(element) || draft.IsEmpty(element)) return;
  Note([&] {
    return "Node " + draft.Label() + " has no element " + XmlName(*elements.begin()) + ": " + consequence;
  });
}

void ToleranceNotes::NoteAlternatives(const NodeDraft& draft) {
  for (const Alternative& pair : kAlternatives) {
    if (!draft.Has(pair.loses) || !draft.Has(pair.holds)) continue;
    Note([&] {
      return "Node " + draft.Label() + " has both " + XmlName(pair.loses) + " and " + XmlName(pair.holds) +
             "; " + XmlName(pair.holds) + " holds";
    });
  }
}

// Little-endian registers count from the least significant bit, big-endian ones from the most significant.
void ToleranceNotes::NoteBitOrder(const NodeDraft& draft) {
  const Property* const lsb = draft.Find(Element::lsb);
  const Property* const msb = draft.Find(Element::msb);
  const Property* const order = draft.Find(Element::endianess);
  if (!lsb || !msb) return;
  const bool isBig = order && order->number == GENAPI_NAMESPACE::BigEndian;
  if (isBig ? lsb->number >= msb->number : msb->number >= lsb->number) return;
  Note([&] { return "Elements LSB and MSB of node " + draft.Label() + " are exchanged for its byte order"; });
}

}  // namespace zyn::genapi
