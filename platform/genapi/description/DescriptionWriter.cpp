#include "description/DescriptionWriter.h"

#include <charconv>
#include <cmath>
#include <string_view>

namespace zyn::genapi {
namespace {

using namespace GENAPI_NAMESPACE;

std::string RealText(double value) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value > 0 ? "INF" : "-INF";
  char digits[64];
  return {digits, std::to_chars(digits, digits + sizeof(digits), value).ptr};
}

class Writer {
 public:
  explicit Writer(const Description& description) : in_(description) {}

  std::string Run() {
    out_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<RegisterDescription";
    WriteFacts();
    out_ += ">\n";
    std::vector<bool> isInner(in_.nodes.size(), false);
    for (NodeId id = 0; id < in_.nodes.size(); ++id)
      for (const Property& property : in_.Properties(id))
        if (IsWrittenInside(id, property)) isInner[property.Target()] = true;
    for (NodeId id = 0; id < in_.nodes.size(); ++id)
      if (!isInner[id]) WriteNode(id, XmlName(in_.nodes[id].kind), std::string(in_.Name(id)), 1);
    return out_ + "</RegisterDescription>\n";
  }

 private:
  // An entry with a name of its own was not written inside its enumeration.
  bool IsWrittenInside(NodeId id, const Property& property) const {
    if (LexicalOf(property.element, in_.nodes[id].kind) != Lexical::inner) return false;
    return property.element != Element::enumEntry ||
           in_.Name(property.Target()) != in_.Text(property.attribute);
  }

  void Escape(std::string_view text) {
    for (const char c : text) {
      switch (c) {
        case '&':
          out_ += "&amp;";
          break;
        case '<':
          out_ += "&lt;";
          break;
        case '>':
          out_ += "&gt;";
          break;
        case '"':
          out_ += "&quot;";
          break;
        default:
          out_ += c;
      }
    }
  }

  void Attribute(const char* name, std::string_view value) {
    out_.append(" ").append(name).append("=\"");
    Escape(value);
    out_ += '"';
  }

  void Version(const char* major, const char* minor, const char* subMinor, const Version_t& version) {
    Attribute(major, std::to_string(version.Major));
    Attribute(minor, std::to_string(version.Minor));
    Attribute(subMinor, std::to_string(version.SubMinor));
  }

  void WriteFacts() {
    const DeviceFacts& facts = in_.facts;
    Attribute("ModelName", facts.modelName);
    Attribute("VendorName", facts.vendorName);
    Attribute("ToolTip", facts.toolTip);
    Attribute("StandardNameSpace", facts.standardNameSpace);
    Version("SchemaMajorVersion", "SchemaMinorVersion", "SchemaSubMinorVersion", facts.schemaVersion);
    Version("MajorVersion", "MinorVersion", "SubMinorVersion", facts.deviceVersion);
    Attribute("ProductGuid", facts.productGuid);
    Attribute("VersionGuid", facts.versionGuid);
    Attribute("xmlns", facts.schemaVersion.Minor == 0 ? "http://www.genicam.org/GenApi/Version_1_0"
                                                      : "http://www.genicam.org/GenApi/Version_1_1");
  }

  void WriteNode(NodeId id, const char* element, const std::string& name, int depth) {
    const std::string indent(2 * static_cast<std::size_t>(depth), ' ');
    out_.append(indent).append("<").append(element);
    Attribute("Name", name);
    if (in_.nodes[id].nameSpace == Standard) Attribute("NameSpace", "Standard");
    if (in_.nodes[id].exposeStatic != _UndefinedYesNo)
      Attribute("ExposeStatic", in_.nodes[id].exposeStatic == Yes ? "Yes" : "No");
    out_ += ">\n";
    const auto properties = in_.Properties(id);
    for (std::size_t i = 0; i < properties.size(); ++i) {
      if (properties[i].element == Element::pOffset) continue;
      const bool hasOffset = i + 1 < properties.size() && properties[i + 1].element == Element::pOffset;
      WriteProperty(id, properties[i], hasOffset ? &properties[i + 1] : nullptr, depth + 1);
    }
    out_.append(indent).append("</").append(element).append(">\n");
  }

  void WriteProperty(NodeId id, const Property& property, const Property* offset, int depth) {
    const NodeKind kind = in_.nodes[id].kind;
    if (IsWrittenInside(id, property)) return WriteInner(id, property, depth);
    const bool isAdopted = property.element == Element::enumEntry;
    const char* const name = isAdopted ? XmlName(Element::pEnumEntry) : XmlName(property.element);
    out_.append(2 * static_cast<std::size_t>(depth), ' ').append("<").append(name);
    const std::string_view attribute = in_.Text(property.attribute);
    if (!attribute.empty() && !isAdopted) Attribute(AttributeName(property.element), attribute);
    if (offset) Attribute("pOffset", in_.Text(offset->text));
    out_ += '>';
    Escape(PropertyText(in_, kind, property));
    out_.append("</").append(name).append(">\n");
  }

  void WriteInner(NodeId id, const Property& property, int depth) {
    if (property.element == Element::enumEntry)
      return WriteNode(property.Target(), "EnumEntry", std::string(in_.Text(property.attribute)), depth);
    // Inside, the name lacks that of the node around it.
    std::string_view name = in_.Name(property.Target());
    name.remove_prefix(in_.Name(id).size() + 2);
    WriteNode(property.Target(), "IntSwissKnife", std::string(name), depth);
  }

  static const char* AttributeName(Element element) {
    switch (element) {
      case Element::valueIndexed:
      case Element::pValueIndexed:
        return "Index";
      case Element::pIndex:
        return "Offset";
      default:
        return "Name";
    }
  }

  const Description& in_;
  std::string out_;
};

}  // namespace

std::string WriteXml(const Description& description) {
  return Writer(description).Run();
}

std::string PropertyText(const Description& description, NodeKind kind, const Property& property) {
  switch (LexicalOf(property.element, kind)) {
    case Lexical::integer:
      return std::to_string(property.number);
    case Lexical::truth:
      return property.number ? "true" : "false";
    case Lexical::word:
      return WordText(property.element, property.number);
    case Lexical::inner:
      return std::string(description.Name(property.Target()));
    case Lexical::real:
      return RealText(property.Real());
    default:
      return std::string(description.Text(property.text));
  }
}

}  // namespace zyn::genapi
