#include "description/DescriptionBuilder.h"

#include <algorithm>
#include <bitset>
#include <deque>
#include <utility>
#include <vector>

#include "Base/GCException.h"
#include "description/Injection.h"
#include "description/Linker.h"
#include "description/NumberText.h"
#include "description/SchemaLayout.h"
#include "description/SourceText.h"
#include "description/XmlReader.h"

namespace zyn::genapi {
namespace {

using namespace std::string_view_literals;

constexpr int kMaxGroupDepth = 100;
// An entry of a structure takes over what the structure says: a short text can ask for very many properties.
constexpr std::size_t kMaxProperties = 2'000'000;
// An inner node's name holds that of the node around it, so names can grow beyond the document too.
constexpr std::size_t kMaxTextBytes = 2 * kMaxDescriptionBytes;
// What the interface's version type holds.
constexpr int kMaxVersion = 0xffff;

bool IsRegisterKind(NodeKind kind) {
  return kind == NodeKind::intReg || kind == NodeKind::maskedIntReg || kind == NodeKind::floatReg ||
         kind == NodeKind::stringReg || kind == NodeKind::reg;
}

// What may appear several times in one node; of everything else the last one holds.
bool MayRepeat(Element element) {
  switch (element) {
    case Element::expression:
    case Element::constant:
    case Element::valueIndexed:
    case Element::address:
    case Element::pError:
    case Element::pInvalidator:
    case Element::pFeature:
    case Element::pValueCopy:
    case Element::pValueIndexed:
    case Element::pSelected:
    case Element::pAddress:
    case Element::pIndex:
    case Element::pVariable:
    case Element::pEnumEntry:
    case Element::enumEntry:
    case Element::intSwissKnife:
      return true;
    default:
      return false;
  }
}

// What is kept of a node that is never implemented.
bool IsAboutAnyNode(Element element) {
  return element == Element::toolTip || element == Element::description || element == Element::displayName ||
         element == Element::docuUrl;
}

// A node while it is read.
struct Draft {
  NodeKind kind = NodeKind::unknown;
  GENAPI_NAMESPACE::ENameSpace nameSpace = GENAPI_NAMESPACE::Custom;
  GENAPI_NAMESPACE::EYesNo exposeStatic = GENAPI_NAMESPACE::_UndefinedYesNo;
  std::int8_t priority = 0;
  std::uint32_t line = 0;
  std::string name;
  // Of an inner node: its own name, without that of the node around it.
  std::string ownName;
  // The number of a link is that of the name, that of an inner node its place among inner.
  std::vector<Property> properties;
  std::bitset<kElementCount> has;
  // For what is noted about the order.
  const SchemaLayout* layout = nullptr;
  std::bitset<kElementCount> empty;
  std::uint8_t lastPlace = 0;
  bool isOutOfOrder = false;
  // Only the first innerCount: the others wait, with the memory they have, for the next node.
  std::vector<Draft> inner;
  std::size_t innerCount = 0;

  bool IsEmpty(Element element) const { return empty[static_cast<std::size_t>(element)]; }
  bool Has(Element element) const { return has[static_cast<std::size_t>(element)]; }
  const Property* Find(Element element) const {
    if (!Has(element)) return nullptr;
    const auto found =
        std::find_if(properties.begin(), properties.end(),
                     [element](const Property& property) { return property.element == element; });
    return found == properties.end() ? nullptr : &*found;
  }
  Draft& AddInner() {
    if (innerCount == inner.size()) inner.emplace_back();
    return inner[innerCount++];
  }
  std::string Label() const {
    return Brief(name) + " (" + XmlName(kind) + ", line " + std::to_string(line) + ")";
  }
  void Clear() {
    properties.clear();
    has.reset();
    empty.reset();
    innerCount = 0;
    ownName.clear();
    lastPlace = 0;
    isOutOfOrder = false;
  }
};

bool IsOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// Reads one document, each node as it comes by.
class Builder {
 public:
  Builder(std::string_view xml, Description& description) : reader_(xml), description_(&description) {}

  void ReadDevice() {
    Open();
    ReadFacts();
    NoteFacts();
    ReadNodes(0);
    NoteOddities();
  }

  void ReadInjected() {
    const auto first = static_cast<NodeId>(description_->nodes.size());
    priorities_.assign(first, 0);
    judgesOrder_ = description_->facts.schemaVersion.Minor > 0;
    Open();
    ReadNodes(0);
    NoteOddities();
    MergeInjected(*description_, first, priorities_);
  }

 private:
  void Open() {
    reader_.NextChild();
    if (reader_.Name() != "RegisterDescription")
      throw RUNTIME_EXCEPTION("The root element is '%s' at line %u, not 'RegisterDescription'",
                              FullName().c_str(), reader_.Line());
  }

  template <class Write>
  void Note(const Write& write) {
    description_->Tolerate(write);
  }

  static std::string AtLine(std::uint32_t line) { return " at line " + std::to_string(line); }

  // About the document as a whole.

  void NoteFacts() {
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
      Note([&] {
        return "RegisterDescription" + AtLine(reader_.Line()) + " lacks the attributes " + missing;
      });
    if (!HasKnownNameSpace())
      Note([&] {
        return "RegisterDescription" + AtLine(reader_.Line()) +
               " is in no known XML name space; its attributes say which schema it follows";
      });
    judgesOrder_ = description_->facts.schemaVersion.Minor > 0;
  }

  bool HasKnownNameSpace() {
    const std::string_view full = reader_.FullName();
    const std::size_t colon = full.find(':');
    const std::string attribute =
        colon == full.npos ? "xmlns" : "xmlns:" + std::string(full.substr(0, colon));
    return IsOneOf(Trim(reader_.Attribute(attribute)), {"http://www.genicam.org/GenApi/Version_1_0",
                                                        "http://www.genicam.org/GenApi/Version_1_1"});
  }

  void NoteOddities() {
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

  std::string_view Trimmed(std::string_view text) {
    const std::string_view trimmed = Trim(text);
    if (trimmed.size() != text.size() && firstBlanks_ == 0) firstBlanks_ = reader_.Line();
    return trimmed;
  }

  // Those of other name spaces mean nothing here.
  void NoteAttribute(std::string_view name) {
    if (name.find(':') != name.npos || name == "xmlns") return;
    Note([&] {
      return "Attribute '" + Brief(name) + "' of element '" + FullName() + "'" + AtLine(reader_.Line()) +
             " is unknown and was skipped";
    });
  }

  void NoteAttributesBut(std::initializer_list<std::string_view> known) {
    if (!reader_.HasAttributes()) return;
    reader_.EachAttribute([&](std::string_view name, std::string_view) {
      if (!IsOneOf(name, known)) NoteAttribute(name);
    });
  }

  std::string FullName() const { return Brief(reader_.FullName()); }
  std::string Attribute(const char* name) { return std::string(reader_.Attribute(name)); }

  int ReadVersionPart(const char* attribute, int absent) {
    const std::string text = Attribute(attribute);
    if (Trim(text).empty()) return absent;
    const auto value = ParseInteger(text);
    if (!value || *value < 0)
      throw PROPERTY_EXCEPTION("Attribute %s of RegisterDescription at line %u is no version number: '%s'",
                               attribute, reader_.Line(), text.substr(0, 100).c_str());
    if (*value <= kMaxVersion) return static_cast<int>(*value);
    Note([&] {
      return "Attribute " + std::string(attribute) + " of RegisterDescription" + AtLine(reader_.Line()) +
             " is beyond 16 bits; 65535 stands for it";
    });
    return kMaxVersion;
  }

  Version_t ReadVersion(const char* major, const char* minor, const char* subMinor, int absentMajor) {
    return {static_cast<std::uint16_t>(ReadVersionPart(major, absentMajor)),
            static_cast<std::uint16_t>(ReadVersionPart(minor, 0)),
            static_cast<std::uint16_t>(ReadVersionPart(subMinor, 0))};
  }

  void ReadFacts() {
    DeviceFacts& facts = description_->facts;
    facts.modelName = Attribute("ModelName");
    facts.vendorName = Attribute("VendorName");
    facts.toolTip = Attribute("ToolTip");
    facts.standardNameSpace = Attribute("StandardNameSpace");
    if (facts.standardNameSpace.empty()) facts.standardNameSpace = "None";
    facts.productGuid = Attribute("ProductGuid");
    facts.versionGuid = Attribute("VersionGuid");
    facts.schemaVersion = ReadVersion("SchemaMajorVersion", "SchemaMinorVersion", "SchemaSubMinorVersion", 1);
    facts.deviceVersion = ReadVersion("MajorVersion", "MinorVersion", "SubMinorVersion", 0);
    if (facts.schemaVersion.Major != 1)
      throw RUNTIME_EXCEPTION(
          "RegisterDescription at line %u has schema version %u.%u; supported are 1.0 and 1.1",
          reader_.Line(), facts.schemaVersion.Major, facts.schemaVersion.Minor);
  }

  void ReadNodes(int groupDepth) {
    while (reader_.NextChild()) {
      const std::string_view name = reader_.Name();
      if (name == "Group") {
        NoteAttributesBut({"Comment"});
        if (groupDepth == kMaxGroupDepth) reader_.FailTooDeep();
        ReadNodes(groupDepth + 1);
      } else if (name == "StructReg") {
        ReadStruct();
      } else if (name == "Extension") {
        reader_.Skip();
      } else {
        ReadTopNode(name);
      }
    }
  }

  void ReadTopNode(std::string_view kindName) {
    const auto kind = FindNodeKind(kindName);
    if (!kind) {
      const std::string name = Attribute("Name");
      Note([&] {
        return "Element '" + FullName() + "' (name '" + Brief(name) + "')" + AtLine(reader_.Line()) +
               ": no such kind of node is known";
      });
      if (Trim(name).empty()) return reader_.Skip();
    } else if (IsNeverImplemented(*kind)) {
      Note([&] {
        return "Element '" + FullName() + "' (name '" + Brief(Attribute("Name")) + "')" +
               AtLine(reader_.Line()) + ": nodes of this kind are never implemented";
      });
    }
    Begin(draft_, kind.value_or(NodeKind::unknown));
    draft_.name = RequiredName();
    while (reader_.NextChild()) ReadProperty(draft_);
    Add(draft_);
  }

  void Begin(Draft& draft, NodeKind kind) {
    draft.Clear();
    draft.kind = kind;
    draft.layout = &LayoutOf(kind);
    draft.line = reader_.Line();
    draft.nameSpace = GENAPI_NAMESPACE::Custom;
    draft.exposeStatic = GENAPI_NAMESPACE::_UndefinedYesNo;
    draft.priority = 0;
    reader_.EachAttribute([&](std::string_view name, std::string_view value) {
      if (name == "Name") return;
      if (name == "NameSpace") {
        if (value == "Standard") draft.nameSpace = GENAPI_NAMESPACE::Standard;
      } else if (name == "MergePriority") {
        draft.priority = PriorityOf(Trim(value));
      } else if (name == "ExposeStatic") {
        draft.exposeStatic = Trim(value) == "Yes" ? GENAPI_NAMESPACE::Yes : GENAPI_NAMESPACE::No;
      } else if (!IsNeverImplemented(kind) && name != "Comment") {
        NoteAttribute(name);
      }
    });
  }

  static std::int8_t PriorityOf(std::string_view text) {
    if (text.empty() || text == "0") return 0;
    return text.front() == '-' ? -1 : 1;
  }

  std::string_view RequiredName() {
    const std::string_view name = Trimmed(reader_.Attribute("Name"));
    if (name.empty())
      throw RUNTIME_EXCEPTION("Element '%s' at line %u has no name", FullName().c_str(), reader_.Line());
    return name;
  }

  // A structure is as many masked registers as it has entries; what an entry does not say, the structure says
  // for it, before or after the entry.
  void ReadStruct() {
    Draft structure;
    Begin(structure, NodeKind::maskedIntReg);
    structure.name = "StructReg";
    structure.layout = &StructLayout();
    std::deque<Draft> entries;
    while (reader_.NextChild()) {
      if (reader_.Name() == "StructEntry") {
        Begin(entries.emplace_back(), NodeKind::maskedIntReg);
        entries.back().layout = &StructEntryLayout();
        entries.back().name = RequiredName();
        while (reader_.NextChild()) ReadProperty(entries.back());
      } else {
        ReadProperty(structure);
      }
    }
    for (Draft& entry : entries) {
      Inherit(structure, entry);
      Add(entry);
      entry = {};
    }
  }

  void Inherit(const Draft& structure, Draft& entry) {
    const std::bitset<kElementCount> own = entry.has;
    entry.empty |= structure.empty;
    for (const Property& property : structure.properties) {
      // The node of an offset belongs to its index.
      const Element element = property.element == Element::pOffset ? Element::pIndex : property.element;
      if (own[static_cast<std::size_t>(element)]) continue;
      CheckCount(entry);
      entry.properties.push_back(property);
      entry.has.set(static_cast<std::size_t>(property.element));
      if (property.element != Element::intSwissKnife) continue;
      entry.properties.back().number = static_cast<std::int64_t>(entry.innerCount);
      entry.AddInner() = structure.inner[static_cast<std::size_t>(property.number)];
    }
  }

  void CheckCount(const Draft& draft) const {
    if (description_->properties.size() + draft.properties.size() > kMaxProperties)
      throw RUNTIME_EXCEPTION("The description holds too many elements, at node %s", draft.Label().c_str());
  }

  // Properties

  void ReadProperty(Draft& draft) {
    const auto known = FindElement(reader_.Name());
    if (known) return ReadKnown(draft, *known);
    NoteUnknown(draft);
    reader_.Skip();
  }

  void NoteUnknown(const Draft& draft) {
    if (reader_.Name() == "Extension" || IsNeverImplemented(draft.kind)) return;
    Note([&] {
      return "Element '" + FullName() + "'" + AtLine(reader_.Line()) + " of node " + draft.Label() +
             " is unknown and was skipped";
    });
  }

  // What the schema does not have there keeps its meaning, if it has one.
  void JudgePlace(Draft& draft, Element element) {
    const std::uint8_t place = draft.layout->PlaceOf(element);
    if (place == 0)
      return Note([&] {
        return "Element " + std::string(XmlName(element)) + AtLine(reader_.Line()) + " of node " +
               draft.Label() + " does not belong to this kind of node";
      });
    if (place < draft.lastPlace && judgesOrder_ && !std::exchange(draft.isOutOfOrder, true))
      Note([&] {
        return "Elements of node " + draft.Label() + " are not in the order of the schema, first " +
               XmlName(element) + AtLine(reader_.Line());
      });
    draft.lastPlace = place;
  }

  static bool Belongs(NodeKind kind, Element element) {
    if (IsNeverImplemented(kind)) return IsAboutAnyNode(element);
    if (element == Element::pOffset) return false;  // an attribute, see AddOffset
    if (element == Element::intSwissKnife) return IsRegisterKind(kind);
    return element != Element::enumEntry || kind == NodeKind::enumeration;
  }

  void ReadKnown(Draft& draft, Element element) {
    if (!IsNeverImplemented(draft.kind)) JudgePlace(draft, element);
    if (!Belongs(draft.kind, element)) return reader_.Skip();
    CheckCount(draft);
    const Lexical lexical = LexicalOf(element, draft.kind);
    if (lexical == Lexical::inner) return ReadInner(draft, element);
    Property property{element, reader_.Line(), {}, ReadAttribute(element), 0};
    // Kept apart: reading the text moves on.
    const std::string_view tag = reader_.FullName();
    CheckAttribute(draft, tag, property);
    const TextRef offset =
        element == Element::pIndex ? InternText(Trim(reader_.Attribute("pOffset"))) : TextRef{};
    const auto offsetName = static_cast<std::int64_t>(lastName_);
    const std::string_view text = reader_.ReadText();
    if (!ReadValue(draft, tag, lexical, text, property))
      return draft.empty.set(static_cast<std::size_t>(element)), void();
    Put(draft, property);
    // The node that an index's attribute pOffset names follows the index as a property of its own.
    if (offset.size > 0) Put(draft, {Element::pOffset, property.line, offset, {}, offsetName}, true);
  }

  void Put(Draft& draft, const Property& property, bool mayRepeat = false) {
    const bool isNew = !draft.Has(property.element);
    if (isNew || mayRepeat || MayRepeat(property.element)) {
      draft.properties.push_back(property);
      return draft.has.set(static_cast<std::size_t>(property.element)), void();
    }
    *const_cast<Property*>(draft.Find(property.element)) = property;
    Note([&] {
      return "Element " + std::string(XmlName(property.element)) + " of node " + draft.Label() +
             " is repeated; the one" + AtLine(property.line) + " holds";
    });
  }

  void ReadInner(Draft& draft, Element element) {
    const bool isEntry = element == Element::enumEntry;
    Property property{element, reader_.Line(), {}, {}, static_cast<std::int64_t>(draft.innerCount)};
    Draft& inner = draft.AddInner();
    Begin(inner, isEntry ? NodeKind::enumEntry : NodeKind::intSwissKnife);
    inner.ownName = isEntry ? RequiredName() : Trim(reader_.Attribute("Name"));
    if (inner.ownName.empty()) inner.ownName = std::to_string(draft.innerCount);
    if (isEntry) property.attribute = InternText(inner.ownName);
    inner.name = inner.ownName;
    Put(draft, property);
    while (reader_.NextChild()) ReadProperty(inner);
  }

  // An address offset may be a number or, in another attribute, a node's name.
  TextRef ReadAttribute(Element element) {
    switch (element) {
      case Element::constant:
      case Element::expression:
      case Element::pVariable:
        NoteAttributesBut({"Name"});
        return InternText(Trimmed(reader_.Attribute("Name")));
      case Element::valueIndexed:
      case Element::pValueIndexed:
        NoteAttributesBut({"Index"});
        return InternText(Trimmed(reader_.Attribute("Index")));
      case Element::pIndex:
        NoteAttributesBut({"Offset", "pOffset"});
        return InternText(Trimmed(reader_.Attribute("Offset")));
      default:
        NoteAttributesBut({});
        return {};
    }
  }

  // An Index or Offset is a number.
  void CheckAttribute(const Draft& draft, std::string_view tag, const Property& property) const {
    const bool isOffset = property.element == Element::pIndex;
    if (!isOffset && property.element != Element::valueIndexed && property.element != Element::pValueIndexed)
      return;
    const std::string_view text = description_->Text(property.attribute);
    if (text.empty() || ParseInteger(text)) return;
    throw PROPERTY_EXCEPTION("Attribute %s of element %s of node '%s' at line %u is not an integer: '%s'",
                             isOffset ? "Offset" : "Index", std::string(tag).c_str(), draft.name.c_str(),
                             property.line, std::string(text.substr(0, 100)).c_str());
  }

  // Returns false when an empty element leaves the default.
  bool ReadValue(const Draft& draft, std::string_view tag, Lexical lexical, std::string_view text,
                 Property& property) {
    const auto malformed = [&](const char* expected) {
      Malformed(draft, tag, property.line, text, expected);
    };
    switch (lexical) {
      case Lexical::inner:
        return true;
      case Lexical::text:
        if (property.element == Element::validValueSet && !ParseIntegerList(text))
          malformed("a list of integers");
        property.text = Append(text);
        return true;
      case Lexical::link:
        if (Trimmed(text).empty()) malformed("the name of a node");
        property.text = InternText(Trim(text));
        property.number = lastName_;
        return true;
      case Lexical::word: {
        const std::string_view spelled = Trimmed(text);
        if (spelled.empty()) return false;
        const auto word = FindWord(property.element, spelled);
        if (!word) malformed("a known word");
        property.number = *word;
        return true;
      }
      case Lexical::integer: {
        const auto value = ParseInteger(Trimmed(text));
        if (!value) malformed("an integer");
        NoteInteger(draft, property, text, *value);
        property.number = *value;
        return true;
      }
      case Lexical::real: {
        const auto value = ParseReal(Trimmed(text));
        if (!value) malformed("a number");
        property.number = std::bit_cast<std::int64_t>(*value);
        return true;
      }
      case Lexical::truth: {
        const std::string_view word = Trimmed(text);
        property.number = word == "true" || word == "1";
        if (property.number == 0 && word != "false" && word != "0") malformed("true or false");
        return true;
      }
    }
    return true;
  }

  void NoteInteger(const Draft& draft, const Property& property, std::string_view text, std::int64_t value) {
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

  [[noreturn]] static void Malformed(const Draft& draft, std::string_view tag, std::uint32_t line,
                                     std::string_view text, const char* expected) {
    throw PROPERTY_EXCEPTION("Element %s of node '%s' at line %u is not %s: '%s'", std::string(tag).c_str(),
                             draft.name.c_str(), line, expected, std::string(text.substr(0, 100)).c_str());
  }

  // Finished nodes

  NodeId Add(Draft& draft) {
    CheckCount(draft);
    CheckMandatory(draft);
    NoteMissing(draft);
    NoteAlternatives(draft);
    Description& out = *description_;
    const auto id = static_cast<NodeId>(out.nodes.size());
    NodeRecord record{};
    record.kind = draft.kind;
    record.nameSpace = draft.nameSpace;
    record.exposeStatic = draft.exposeStatic;
    record.line = draft.line;
    record.firstProperty = static_cast<std::uint32_t>(out.properties.size());
    record.propertyCount = static_cast<std::uint32_t>(draft.properties.size());
    record.name = InternText(draft.name);
    record.nameId = lastName_;
    record.owner = kNoNode;
    out.nodes.push_back(record);
    priorities_.push_back(draft.priority);
    out.properties.insert(out.properties.end(), draft.properties.begin(), draft.properties.end());
    if (draft.innerCount > 0) AddInner(draft, id);
    return id;
  }

  // Nodes inside a node follow it, so that every node's properties stay together.
  void AddInner(Draft& outer, NodeId outerId) {
    const std::uint32_t first = description_->nodes[outerId].firstProperty;
    for (std::uint32_t i = first; i < first + outer.properties.size(); ++i) {
      const Element element = description_->properties[i].element;
      if (element != Element::enumEntry && element != Element::intSwissKnife) continue;
      Draft& inner = outer.inner[static_cast<std::size_t>(description_->properties[i].number)];
      const std::size_t nameBytes = outer.name.size() + inner.ownName.size();
      if (description_->text.size() + nameBytes > kMaxTextBytes)
        throw RUNTIME_EXCEPTION("The names of inner nodes are too long, at node %s", inner.Label().c_str());
      inner.name = (element == Element::enumEntry ? "EnumEntry_" : "_") + outer.name + "_" + inner.ownName;
      const NodeId id = Add(inner);
      description_->properties[i].number = id;
      if (element == Element::enumEntry) description_->nodes[id].owner = outerId;
    }
  }

  void CheckMandatory(const Draft& draft) {
    switch (draft.kind) {
      case NodeKind::integer:
      case NodeKind::floating:
        return RequireOneOf(draft, {Element::value, Element::pValue, Element::pIndex});
      case NodeKind::boolean:
      case NodeKind::command:
      case NodeKind::enumeration:
      case NodeKind::string:
        return RequireOneOf(draft, {Element::value, Element::pValue});
      case NodeKind::enumEntry:
        return RequireOneOf(draft, {Element::value});
      case NodeKind::swissKnife:
      case NodeKind::intSwissKnife:
        return RequireOneOf(draft, {Element::formula});
      case NodeKind::converter:
      case NodeKind::intConverter:
        RequireOneOf(draft, {Element::formulaTo});
        RequireOneOf(draft, {Element::formulaFrom});
        return RequireOneOf(draft, {Element::pValue});
      case NodeKind::maskedIntReg:
        RequireOneOf(draft, {Element::bit, Element::lsb, Element::msb});
        NoteBitOrder(draft);
        [[fallthrough]];
      case NodeKind::intReg:
      case NodeKind::floatReg:
      case NodeKind::stringReg:
      case NodeKind::reg:
        RequireOneOf(draft, {Element::pPort});
        return RequireOneOf(draft, {Element::length, Element::pLength});
      default:
        return;
    }
  }

  // What the schema asks for and the node can do without.
  void NoteMissing(const Draft& draft) {
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
  void NoteIfNone(const Draft& draft, std::initializer_list<Element> elements, const char* consequence) {
    for (const Element element : elements)
      if (draft.Has(element) || draft.IsEmpty(element)) return;
    Note([&] {
      return "Node " + draft.Label() + " has no element " + XmlName(*elements.begin()) + ": " + consequence;
    });
  }

  void NoteAlternatives(const Draft& draft) {
    for (const Alternative& pair : kAlternatives) {
      if (!draft.Has(pair.loses) || !draft.Has(pair.holds)) continue;
      Note([&] {
        return "Node " + draft.Label() + " has both " + XmlName(pair.loses) + " and " + XmlName(pair.holds) +
               "; " + XmlName(pair.holds) + " holds";
      });
    }
  }

  // Little-endian registers count from the least significant bit, big-endian ones from the most significant.
  void NoteBitOrder(const Draft& draft) {
    const Property* const lsb = draft.Find(Element::lsb);
    const Property* const msb = draft.Find(Element::msb);
    const Property* const order = draft.Find(Element::endianess);
    if (!lsb || !msb) return;
    const bool isBig = order && order->number == GENAPI_NAMESPACE::BigEndian;
    if (isBig ? lsb->number >= msb->number : msb->number >= lsb->number) return;
    Note([&] {
      return "Elements LSB and MSB of node " + draft.Label() + " are exchanged for its byte order";
    });
  }

  static void RequireOneOf(const Draft& draft, std::initializer_list<Element> elements) {
    for (const Element element : elements)
      if (draft.Has(element)) return;
    throw RUNTIME_EXCEPTION("Node %s has no element %s", draft.Label().c_str(), XmlName(*elements.begin()));
  }

  // Texts

  TextRef Append(std::string_view text) {
    if (text.empty()) return {};
    std::string& pool = description_->text;
    const TextRef ref{static_cast<std::uint32_t>(pool.size()), static_cast<std::uint32_t>(text.size())};
    pool.append(text);
    return ref;
  }

  // Leaves the name's number in lastName_.
  TextRef InternText(std::string_view text) {
    if (text.empty()) return {};
    lastName_ = description_->names.Intern(text, description_->text);
    return description_->names.Text(lastName_);
  }

  XmlReader reader_;
  Description* const description_;
  Draft draft_;
  NameId lastName_ = 0;
  // Line of the first value or name with white space around it; 0 when there was none.
  std::uint32_t firstBlanks_ = 0;
  // The order of schema 1.0 differs and is not judged.
  bool judgesOrder_ = false;
  // By node; of the nodes of earlier documents nothing is known.
  std::vector<std::int8_t> priorities_;
};

// Enough for nearly every description, so that nothing moves while it grows. What is set aside and never touched costs
// address space only, and giving it back would cost a copy.
void SetMemoryAside(Description& description, std::size_t xmlSize) {
  description.text.reserve(xmlSize / 2);
  description.properties.reserve(xmlSize / 40);
  description.nodes.reserve(xmlSize / 256);
}

void CheckSize(std::string_view xml) {
  if (xml.size() > kMaxDescriptionBytes)
    throw RUNTIME_EXCEPTION("The description is too large: %zu bytes", xml.size());
}

}  // namespace

std::shared_ptr<const Description> BuildDescription(std::string_view xml,
                                                    const std::vector<std::string>& injected,
                                                    std::vector<std::string> notes) {
  auto description = std::make_shared<Description>();
  description->tolerated = std::move(notes);
  CheckSize(xml);
  SetMemoryAside(*description, xml.size());
  Builder(xml, *description).ReadDevice();
  for (const std::string& document : injected) {
    CheckSize(document);
    Builder(document, *description).ReadInjected();
  }
  Link(*description);
  return description;
}

}  // namespace zyn::genapi
