#include "description/DescriptionBuilder.h"

#include <pugixml.hpp>

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "Base/GCException.h"
#include "description/Injection.h"
#include "description/LineIndex.h"
#include "description/Linker.h"
#include "description/NumberText.h"

namespace zyn::genapi {
namespace {

using pugi::xml_node;
using namespace std::string_view_literals;

constexpr int kMaxGroupDepth = 100;
constexpr std::size_t kMaxText = std::numeric_limits<std::uint32_t>::max() / 2;

std::string_view LocalName(const xml_node& element) {
  const std::string_view name = element.name();
  const std::size_t colon = name.find(':');
  return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

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

// Reads one document.
class Builder {
 public:
  Builder(std::string&& xml, Description& description)
      : xml_(std::move(xml)), lines_(xml_), description_(&description) {}

  void ReadDevice() {
    const xml_node root = Open();
    ReadFacts(root);
    ReadNodes(root);
  }

  void ReadInjected() {
    const auto first = static_cast<NodeId>(description_->nodes.size());
    ReadNodes(Open());
    MergeInjected(*description_, first, priorities_);
  }

 private:
  xml_node Open() {
    Parse();
    const xml_node root = document_.document_element();
    if (LocalName(root) != "RegisterDescription")
      throw RUNTIME_EXCEPTION("The root element is '%s' at line %u, not 'RegisterDescription'", root.name(),
                              Line(root));
    return root;
  }

  unsigned Line(const xml_node& element) const { return lines_.LineOf(element.offset_debug()); }

  void Parse() {
    if (xml_.size() > kMaxText)
      throw RUNTIME_EXCEPTION("The description is too large: %zu bytes", xml_.size());
    constexpr unsigned kOptions =
        pugi::parse_cdata | pugi::parse_escapes | pugi::parse_wconv_attribute | pugi::parse_eol;
    const pugi::xml_parse_result result =
        document_.load_buffer_inplace(xml_.data(), xml_.size(), kOptions, pugi::encoding_utf8);
    if (!result)
      throw RUNTIME_EXCEPTION("Error while parsing XML at line %u in element '%s': %s",
                              lines_.LineOf(result.offset), LastElementRead(), result.description());
  }

  // After a failure the document holds what was read until then.
  const char* LastElementRead() const {
    xml_node last = document_;
    for (xml_node child = last.last_child(); child; child = last.last_child()) {
      if (child.type() != pugi::node_element) break;
      last = child;
    }
    return last.name();
  }

  int ReadVersionPart(const xml_node& root, const char* attribute, int absent) const {
    const std::string_view text = Trim(root.attribute(attribute).value());
    if (text.empty()) return absent;
    const auto value = ParseInteger(text);
    if (!value || *value < 0 || *value > 0xffff)
      throw PROPERTY_EXCEPTION("Attribute %s of RegisterDescription at line %u is no version number: '%s'",
                               attribute, Line(root), root.attribute(attribute).value());
    return static_cast<int>(*value);
  }

  Version_t ReadVersion(const xml_node& root, const char* major, const char* minor, const char* subMinor,
                        int absentMajor) {
    return {static_cast<std::uint16_t>(ReadVersionPart(root, major, absentMajor)),
            static_cast<std::uint16_t>(ReadVersionPart(root, minor, 0)),
            static_cast<std::uint16_t>(ReadVersionPart(root, subMinor, 0))};
  }

  void ReadFacts(const xml_node& root) {
    DeviceFacts& facts = description_->facts;
    facts.modelName = root.attribute("ModelName").value();
    facts.vendorName = root.attribute("VendorName").value();
    facts.toolTip = root.attribute("ToolTip").value();
    facts.standardNameSpace = root.attribute("StandardNameSpace").as_string("None");
    facts.productGuid = root.attribute("ProductGuid").value();
    facts.versionGuid = root.attribute("VersionGuid").value();
    facts.schemaVersion =
        ReadVersion(root, "SchemaMajorVersion", "SchemaMinorVersion", "SchemaSubMinorVersion", 1);
    facts.deviceVersion = ReadVersion(root, "MajorVersion", "MinorVersion", "SubMinorVersion", 0);
    if (facts.schemaVersion.Major != 1)
      throw RUNTIME_EXCEPTION(
          "RegisterDescription at line %u has schema version %u.%u; supported are 1.0 and 1.1", Line(root),
          facts.schemaVersion.Major, facts.schemaVersion.Minor);
  }

  // Groups nest; the walk keeps its own stack, so depth cannot exhaust the thread's.
  void ReadNodes(const xml_node& root) {
    std::vector<xml_node> open{root.first_child()};
    while (!open.empty()) {
      const xml_node element = open.back();
      if (!element) {
        open.pop_back();
        continue;
      }
      open.back() = element.next_sibling();
      if (element.type() != pugi::node_element) continue;
      const std::string_view name = LocalName(element);
      if (name == "Group") {
        if (open.size() > kMaxGroupDepth)
          throw RUNTIME_EXCEPTION("Element Group at line %u is nested too deeply", Line(element));
        open.push_back(element.first_child());
      } else if (name == "StructReg") {
        ReadStruct(element);
      } else if (name != "Extension") {
        ReadTopNode(element, name);
      }
    }
  }

  void ReadTopNode(const xml_node& element, std::string_view kindName) {
    const auto kind = FindNodeKind(kindName);
    if (!kind) {
      description_->Tolerate("Element '" + std::string(element.name()) + "' (name '" +
                             element.attribute("Name").value() + "') at line " +
                             std::to_string(Line(element)) + ": no such kind of node is known");
      if (Trim(element.attribute("Name").value()).empty()) return;
    }
    AddNode(element, kind.value_or(NodeKind::unknown), Intern(RequiredName(element)), xml_node());
  }

  std::string_view RequiredName(const xml_node& element) const {
    const std::string_view name = Trim(element.attribute("Name").value());
    if (name.empty())
      throw RUNTIME_EXCEPTION("Element '%s' at line %u has no name", element.name(), Line(element));
    return name;
  }

  // A structure is as many masked registers as it has entries; what an entry does not say, the structure says
  // for it.
  void ReadStruct(const xml_node& element) {
    for (const xml_node& entry : element.children())
      if (LocalName(entry) == "StructEntry")
        AddNode(entry, NodeKind::maskedIntReg, Intern(RequiredName(entry)), element);
  }

  NodeId AddNode(const xml_node& element, NodeKind kind, TextRef name, const xml_node& inherited) {
    Description& out = *description_;
    const auto id = static_cast<NodeId>(out.nodes.size());
    NodeRecord record{};
    record.kind = kind;
    record.nameSpace = element.attribute("NameSpace").value() == "Standard"sv ? GENAPI_NAMESPACE::Standard
                                                                              : GENAPI_NAMESPACE::Custom;
    record.line = Line(element);
    record.firstProperty = static_cast<std::uint32_t>(out.properties.size());
    record.name = name;
    record.owner = kNoNode;
    out.nodes.push_back(record);
    priorities_.resize(out.nodes.size(), 0);
    priorities_[id] = PriorityOf(element);
    std::vector<std::pair<xml_node, NodeId>> inner;
    ReadProperties(id, element, inner);
    if (inherited) ReadInherited(id, inherited, inner);
    out.nodes[id].propertyCount = static_cast<std::uint32_t>(out.properties.size()) - record.firstProperty;
    CheckMandatory(id);
    AddInnerNodes(id, inner);
    return id;
  }

  static std::int8_t PriorityOf(const xml_node& element) {
    const std::string_view text = Trim(element.attribute("MergePriority").value());
    if (text.empty() || text == "0") return 0;
    return text.front() == '-' ? -1 : 1;
  }

  // Nodes inside a node follow it, so that every node's properties stay together.
  void AddInnerNodes(NodeId outer, const std::vector<std::pair<xml_node, NodeId>>& inner) {
    for (const auto& [element, property] : inner) {
      const std::string outerName(description_->Name(outer));
      const bool isEntry = description_->properties[property].element == Element::enumEntry;
      const std::string name = isEntry ? "EnumEntry_" + outerName + "_" + std::string(RequiredName(element))
                                       : "_" + outerName + "_" + InnerName(element, property);
      const NodeId id =
          AddNode(element, isEntry ? NodeKind::enumEntry : NodeKind::intSwissKnife, Append(name), xml_node());
      Property& link = description_->properties[property];
      link.number = id;
      if (isEntry) {
        description_->nodes[id].owner = outer;
        link.attribute = Intern(RequiredName(element));
      }
    }
  }

  static std::string InnerName(const xml_node& element, NodeId property) {
    const std::string_view name = Trim(element.attribute("Name").value());
    return name.empty() ? std::to_string(property) : std::string(name);
  }

  void ReadProperties(NodeId id, const xml_node& element, std::vector<std::pair<xml_node, NodeId>>& inner) {
    for (const xml_node& child : element.children()) {
      if (child.type() != pugi::node_element) continue;
      if (const auto known = FindElement(LocalName(child))) {
        AddProperty(id, child, *known, inner);
      } else {
        NoteUnknown(id, child);
      }
    }
  }

  void NoteUnknown(NodeId id, const xml_node& child) {
    if (LocalName(child) == "Extension" || IsNeverImplemented(description_->nodes[id].kind)) return;
    description_->Tolerate("Element '" + std::string(child.name()) + "' at line " +
                           std::to_string(Line(child)) + " of node " + description_->Label(id) +
                           " is unknown and was skipped");
  }

  void ReadInherited(NodeId id, const xml_node& structure, std::vector<std::pair<xml_node, NodeId>>& inner) {
    const auto first = static_cast<std::ptrdiff_t>(description_->nodes[id].firstProperty);
    const auto own = static_cast<std::ptrdiff_t>(description_->properties.size());
    for (const xml_node& child : structure.children()) {
      const auto known = child.type() == pugi::node_element ? FindElement(LocalName(child)) : std::nullopt;
      if (!known) continue;
      const auto begin = description_->properties.begin() + first;
      const auto end = description_->properties.begin() + own;
      const bool overridden =
          std::any_of(begin, end, [&](const Property& property) { return property.element == *known; });
      if (!overridden) AddProperty(id, child, *known, inner);
    }
  }

  void AddProperty(NodeId id, const xml_node& child, Element element,
                   std::vector<std::pair<xml_node, NodeId>>& inner) {
    Description& out = *description_;
    const NodeKind kind = out.nodes[id].kind;
    if (IsNeverImplemented(kind) && !IsAboutAnyNode(element)) return;
    if (element == Element::pOffset) return;  // an attribute, see AddOffset
    if (element == Element::intSwissKnife && !IsRegisterKind(kind)) return;
    if (element == Element::enumEntry && kind != NodeKind::enumeration) return;
    Property property{element, Line(child), {}, ReadAttribute(child, element), 0};
    const Lexical lexical = LexicalOf(element, kind);
    std::string joined;
    const std::string_view text = lexical == Lexical::inner ? ""sv : TextOf(child, joined);
    if (!ReadText(id, child, lexical, text, property)) return;
    const bool replaces = !MayRepeat(element) && Replace(id, property);
    if (!replaces) out.properties.push_back(property);
    if (element == Element::pIndex) AddOffset(child, property.line);
    if (lexical == Lexical::inner) inner.emplace_back(child, static_cast<NodeId>(out.properties.size() - 1));
  }

  // The node that an index's attribute pOffset names follows the index as a property of its own.
  void AddOffset(const xml_node& child, std::uint32_t line) {
    const std::string_view name = Trim(child.attribute("pOffset").value());
    if (!name.empty()) description_->properties.push_back({Element::pOffset, line, Intern(name), {}, 0});
  }

  // Returns false when an empty element leaves the default.
  bool ReadText(NodeId id, const xml_node& child, Lexical lexical, std::string_view text,
                Property& property) {
    switch (lexical) {
      case Lexical::inner:
        return true;
      case Lexical::text:
        property.text = Append(text);
        return true;
      case Lexical::link:
        if (Trim(text).empty()) Malformed(id, child, text, "the name of a node");
        property.text = Intern(Trim(text));
        return true;
      case Lexical::word: {
        if (Trim(text).empty()) return false;
        const auto word = FindWord(property.element, Trim(text));
        if (!word) Malformed(id, child, text, "a known word");
        property.number = *word;
        return true;
      }
      case Lexical::integer: {
        const auto value = ParseInteger(text);
        if (!value) Malformed(id, child, text, "an integer");
        property.number = *value;
        return true;
      }
      case Lexical::real: {
        const auto value = ParseReal(text);
        if (!value) Malformed(id, child, text, "a number");
        property.number = std::bit_cast<std::int64_t>(*value);
        return true;
      }
      case Lexical::truth:
        property.number = ReadTruth(id, child, text);
        return true;
    }
    return true;
  }

  std::int64_t ReadTruth(NodeId id, const xml_node& child, std::string_view text) const {
    const std::string_view word = Trim(text);
    if (word == "true" || word == "1") return 1;
    if (word != "false" && word != "0") Malformed(id, child, text, "true or false");
    return 0;
  }

  [[noreturn]] void Malformed(NodeId id, const xml_node& child, std::string_view text,
                              const char* expected) const {
    throw PROPERTY_EXCEPTION("Element %s of node '%s' at line %u is not %s: '%s'", child.name(),
                             std::string(description_->Name(id)).c_str(), Line(child), expected,
                             std::string(text.substr(0, 100)).c_str());
  }

  // An address offset may be a number or, in another attribute, a node's name.
  TextRef ReadAttribute(const xml_node& child, Element element) {
    switch (element) {
      case Element::constant:
      case Element::expression:
      case Element::pVariable:
        return Intern(Trim(child.attribute("Name").value()));
      case Element::valueIndexed:
      case Element::pValueIndexed:
        return Intern(Trim(child.attribute("Index").value()));
      case Element::pIndex:
        return Intern(Trim(child.attribute("Offset").value()));
      default:
        return {};
    }
  }

  bool Replace(NodeId id, const Property& property) {
    Description& out = *description_;
    for (std::size_t i = out.nodes[id].firstProperty; i < out.properties.size(); ++i) {
      if (out.properties[i].element != property.element) continue;
      out.properties[i] = property;
      out.Tolerate("Element " + std::string(XmlName(property.element)) + " of node " + out.Label(id) +
                   " is repeated; the one at line " + std::to_string(property.line) + " holds");
      return true;
    }
    return false;
  }

  // Comments and CDATA sections split a text into parts.
  static std::string_view TextOf(const xml_node& element, std::string& joined) {
    std::string_view single;
    bool several = false;
    for (const xml_node& part : element.children()) {
      if (part.type() != pugi::node_pcdata && part.type() != pugi::node_cdata) continue;
      if (single.empty() && !several) {
        single = part.value();
        continue;
      }
      if (!several) joined = single;
      several = true;
      joined += part.value();
    }
    return several ? std::string_view(joined) : single;
  }

  void CheckMandatory(NodeId id) {
    switch (description_->nodes[id].kind) {
      case NodeKind::integer:
        return RequireOneOf(id, {Element::value, Element::pValue, Element::pIndex});
      case NodeKind::floating:
        return RequireOneOf(id, {Element::value, Element::pValue, Element::pIndex});
      case NodeKind::boolean:
      case NodeKind::command:
      case NodeKind::enumeration:
      case NodeKind::string:
        return RequireOneOf(id, {Element::value, Element::pValue});
      case NodeKind::enumEntry:
        return RequireOneOf(id, {Element::value});
      case NodeKind::swissKnife:
      case NodeKind::intSwissKnife:
        return RequireOneOf(id, {Element::formula});
      case NodeKind::converter:
      case NodeKind::intConverter:
        RequireOneOf(id, {Element::formulaTo});
        RequireOneOf(id, {Element::formulaFrom});
        return RequireOneOf(id, {Element::pValue});
      case NodeKind::maskedIntReg:
        RequireOneOf(id, {Element::bit, Element::lsb, Element::msb});
        NoteBitOrder(id);
        [[fallthrough]];
      case NodeKind::intReg:
      case NodeKind::floatReg:
      case NodeKind::stringReg:
      case NodeKind::reg:
        RequireOneOf(id, {Element::pPort});
        return RequireOneOf(id, {Element::length, Element::pLength});
      default:
        return;
    }
  }

  // Little-endian registers count from the least significant bit, big-endian ones from the most significant.
  void NoteBitOrder(NodeId id) {
    const Property* const lsb = description_->Find(id, Element::lsb);
    const Property* const msb = description_->Find(id, Element::msb);
    const Property* const order = description_->Find(id, Element::endianess);
    if (!lsb || !msb) return;
    const bool isBig = order && order->number == GENAPI_NAMESPACE::BigEndian;
    if (isBig ? lsb->number >= msb->number : msb->number >= lsb->number) return;
    description_->Tolerate("Elements LSB and MSB of node " + description_->Label(id) +
                           " are exchanged for its byte order");
  }

  void RequireOneOf(NodeId id, std::initializer_list<Element> elements) const {
    for (const Element element : elements)
      if (HasProperty(id, element)) return;
    throw RUNTIME_EXCEPTION("Node %s has no element %s", description_->Label(id).c_str(),
                            XmlName(*elements.begin()));
  }

  bool HasProperty(NodeId id, Element element) const { return description_->Find(id, element) != nullptr; }

  TextRef Append(std::string_view text) {
    if (text.empty()) return {};
    std::string& pool = description_->text;
    const TextRef ref{static_cast<std::uint32_t>(pool.size()), static_cast<std::uint32_t>(text.size())};
    if (pool.size() + text.size() > 2 * kMaxText) throw RUNTIME_EXCEPTION("The description is too large");
    pool.append(text);
    return ref;
  }

  // Names repeat: each is kept once. The keys lie in the document, which outlives the index.
  TextRef Intern(std::string_view text) {
    if (text.empty()) return {};
    const auto [entry, isNew] = interned_.try_emplace(text);
    if (isNew) entry->second = Append(text);
    return entry->second;
  }

  std::string xml_;
  LineIndex lines_;
  pugi::xml_document document_;
  Description* const description_;
  // By node; of the nodes of earlier documents nothing is known.
  std::vector<std::int8_t> priorities_;
  std::unordered_map<std::string_view, TextRef> interned_;
};

}  // namespace

std::shared_ptr<const Description> BuildDescription(std::string xml, std::vector<std::string> injected,
                                                    std::vector<std::string> notes) {
  auto description = std::make_shared<Description>();
  description->tolerated = std::move(notes);
  Builder(std::move(xml), *description).ReadDevice();
  for (std::string& document : injected) Builder(std::move(document), *description).ReadInjected();
  Link(*description);
  return description;
}

}  // namespace zyn::genapi
