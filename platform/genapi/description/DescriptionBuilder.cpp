#include "description/DescriptionBuilder.h"

#include <algorithm>
#include <bitset>
#include <deque>
#include <utility>
#include <vector>

#include "Base/GCException.h"
#include "description/Injection.h"
#include "description/Linker.h"
#include "description/NodeDraft.h"
#include "description/NumberText.h"
#include "description/SchemaLayout.h"
#include "description/SourceText.h"
#include "description/ToleranceNotes.h"
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

// Reads one document, each node as it comes by.
class Builder {
 public:
  Builder(std::string_view xml, Description& description)
      : reader_(xml), description_(&description), notes_(reader_, description) {}

  void ReadDevice() {
    Open();
    ReadFacts();
    notes_.NoteFacts();
    ReadNodes(0);
    notes_.NoteOddities();
  }

  void ReadInjected() {
    const auto first = static_cast<NodeId>(description_->nodes.size());
    priorities_.assign(first, 0);
    Open();
    ReadNodes(0);
    notes_.NoteOddities();
    MergeInjected(*description_, first, priorities_);
  }

 private:
  void Open() {
    reader_.NextChild();
    if (reader_.Name() != "RegisterDescription")
      throw RUNTIME_EXCEPTION("The root element is '%s' at line %u, not 'RegisterDescription'",
                              FullName().c_str(), reader_.Line());
  }

  std::string_view Trimmed(std::string_view text) {
    const std::string_view trimmed = Trim(text);
    if (trimmed.size() != text.size()) notes_.NoteBlanks();
    return trimmed;
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
    notes_.NoteHugeVersion(attribute);
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
        notes_.NoteAttributesBut({"Comment"});
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
      notes_.NoteUnknownKind();
      if (Trim(reader_.Attribute("Name")).empty()) return reader_.Skip();
    } else if (IsNeverImplemented(*kind)) {
      notes_.NoteNeverImplemented();
    }
    Begin(draft_, kind.value_or(NodeKind::unknown));
    draft_.name = RequiredName();
    while (reader_.NextChild()) ReadProperty(draft_);
    Add(draft_);
  }

  void Begin(NodeDraft& draft, NodeKind kind) {
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
        notes_.NoteAttribute(name);
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
    NodeDraft structure;
    Begin(structure, NodeKind::maskedIntReg);
    structure.name = "StructReg";
    structure.layout = &StructLayout();
    std::deque<NodeDraft> entries;
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
    for (NodeDraft& entry : entries) {
      Inherit(structure, entry);
      Add(entry);
      entry = {};
    }
  }

  void Inherit(const NodeDraft& structure, NodeDraft& entry) {
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

  void CheckCount(const NodeDraft& draft) const {
    if (description_->properties.size() + draft.properties.size() > kMaxProperties)
      throw RUNTIME_EXCEPTION("The description holds too many elements, at node %s", draft.Label().c_str());
  }

  // Properties

  void ReadProperty(NodeDraft& draft) {
    const auto known = FindElement(reader_.Name());
    if (known) return ReadKnown(draft, *known);
    notes_.NoteUnknownElement(draft);
    reader_.Skip();
  }

  static bool Belongs(NodeKind kind, Element element) {
    if (IsNeverImplemented(kind)) return IsAboutAnyNode(element);
    if (element == Element::pOffset) return false;  // an attribute, see AddOffset
    if (element == Element::intSwissKnife) return IsRegisterKind(kind);
    return element != Element::enumEntry || kind == NodeKind::enumeration;
  }

  void ReadKnown(NodeDraft& draft, Element element) {
    if (!IsNeverImplemented(draft.kind)) notes_.NotePlace(draft, element);
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

  void Put(NodeDraft& draft, const Property& property, bool mayRepeat = false) {
    const bool isNew = !draft.Has(property.element);
    if (isNew || mayRepeat || MayRepeat(property.element)) {
      draft.properties.push_back(property);
      return draft.has.set(static_cast<std::size_t>(property.element)), void();
    }
    *const_cast<Property*>(draft.Find(property.element)) = property;
    notes_.NoteRepeated(draft, property);
  }

  void ReadInner(NodeDraft& draft, Element element) {
    const bool isEntry = element == Element::enumEntry;
    Property property{element, reader_.Line(), {}, {}, static_cast<std::int64_t>(draft.innerCount)};
    NodeDraft& inner = draft.AddInner();
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
        notes_.NoteAttributesBut({"Name"});
        return InternText(Trimmed(reader_.Attribute("Name")));
      case Element::valueIndexed:
      case Element::pValueIndexed:
        notes_.NoteAttributesBut({"Index"});
        return InternText(Trimmed(reader_.Attribute("Index")));
      case Element::pIndex:
        notes_.NoteAttributesBut({"Offset", "pOffset"});
        return InternText(Trimmed(reader_.Attribute("Offset")));
      default:
        notes_.NoteAttributesBut({});
        return {};
    }
  }

  // An Index or Offset is a number.
  void CheckAttribute(const NodeDraft& draft, std::string_view tag, const Property& property) const {
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
  bool ReadValue(const NodeDraft& draft, std::string_view tag, Lexical lexical, std::string_view text,
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
        notes_.NoteInteger(draft, property, text, *value);
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

  [[noreturn]] static void Malformed(const NodeDraft& draft, std::string_view tag, std::uint32_t line,
                                     std::string_view text, const char* expected) {
    throw PROPERTY_EXCEPTION("Element %s of node '%s' at line %u is not %s: '%s'", std::string(tag).c_str(),
                             draft.name.c_str(), line, expected, std::string(text.substr(0, 100)).c_str());
  }

  // Finished nodes

  NodeId Add(NodeDraft& draft) {
    CheckCount(draft);
    CheckMandatory(draft);
    notes_.NoteFinished(draft);
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
  void AddInner(NodeDraft& outer, NodeId outerId) {
    const std::uint32_t first = description_->nodes[outerId].firstProperty;
    for (std::uint32_t i = first; i < first + outer.properties.size(); ++i) {
      const Element element = description_->properties[i].element;
      if (element != Element::enumEntry && element != Element::intSwissKnife) continue;
      NodeDraft& inner = outer.inner[static_cast<std::size_t>(description_->properties[i].number)];
      const std::size_t nameBytes = outer.name.size() + inner.ownName.size();
      if (description_->text.size() + nameBytes > kMaxTextBytes)
        throw RUNTIME_EXCEPTION("The names of inner nodes are too long, at node %s", inner.Label().c_str());
      inner.name = (element == Element::enumEntry ? "EnumEntry_" : "_") + outer.name + "_" + inner.ownName;
      const NodeId id = Add(inner);
      description_->properties[i].number = id;
      if (element == Element::enumEntry) description_->nodes[id].owner = outerId;
    }
  }

  void CheckMandatory(const NodeDraft& draft) {
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

  static void RequireOneOf(const NodeDraft& draft, std::initializer_list<Element> elements) {
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
  ToleranceNotes notes_;
  NodeDraft draft_;
  NameId lastName_ = 0;
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
