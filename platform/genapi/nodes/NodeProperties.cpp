// What a node says about itself as texts: the elements of the description and what follows from them.
#include <array>
#include <string>

#include "GenApi/EnumClasses.h"
#include "description/DescriptionWriter.h"
#include "nodes/Node.h"

namespace zyn::genapi {
namespace {

gcstring Copy(std::string_view text) {
  return {text.data(), text.size()};
}

gcstring YesOrNo(bool isTrue) {
  return isTrue ? "Yes" : "No";
}

gcstring NamesOf(const NodeList_t& nodes) {
  gcstring names;
  for (INode* const node : nodes) {
    if (!names.empty()) names += "\t";
    names += node->GetName();
  }
  return names;
}

gcstring Linked(const Node& node, ELinkType type) {
  NodeList_t nodes;
  node.GetChildren(nodes, type);
  return NamesOf(nodes);
}

struct Derived {
  const char* name;
  gcstring (*text)(const Node& node);
};

constexpr std::array kDerived = {
    Derived{"Name", [](const Node& node) { return node.GetName(false); }},
    Derived{"NodeType", [](const Node& node) { return gcstring(XmlName(node.Kind())); }},
    Derived{"NameSpace", [](const Node& node) { return ENameSpaceClass::ToString(node.GetNameSpace()); }},
    Derived{"DeviceName", [](const Node& node) { return node.GetDeviceName(); }},
    Derived{"Visibility", [](const Node& node) { return EVisibilityClass::ToString(node.GetVisibility()); }},
    Derived{"ImposedAccessMode",
            [](const Node& node) { return EAccessModeClass::ToString(node.ImposedAccess()); }},
    Derived{"Streamable", [](const Node& node) { return YesOrNo(node.IsStreamable()); }},
    Derived{"IsFeature", [](const Node& node) { return YesOrNo(node.IsFeature()); }},
    Derived{"IsDeprecated", [](const Node& node) { return YesOrNo(node.IsDeprecated()); }},
    // Whoever does not say so exposes features and nothing else.
    Derived{"ExposeStatic",
            [](const Node& node) {
              const EYesNo own = node.Record().exposeStatic;
              return YesOrNo(own == _UndefinedYesNo ? node.IsFeature() : own == Yes);
            }},
    Derived{"pTerminal", [](const Node& node) { return Linked(node, ctTerminalNodes); }},
    Derived{"pDependent", [](const Node& node) { return Linked(node, ctDependingNodes); }},
};

const Derived* FindDerived(const gcstring& name) {
  for (const Derived& property : kDerived)
    if (name == property.name) return &property;
  return nullptr;
}

}  // namespace

void Node::GetPropertyNames(gcstring_vector& PropertyNames) const {
  const Call call(*this, "GetPropertyNames");
  PropertyNames.clear();
  for (const Derived& property : kDerived) PropertyNames.push_back(property.name);
  for (const Property& property : Properties())
    if (!PropertyNames.contains(XmlName(property.element)))
      PropertyNames.push_back(XmlName(property.element));
}

bool Node::GetProperty(const gcstring& PropertyName, gcstring& ValueStr, gcstring& AttributeStr) {
  const Call call(*this, "GetProperty");
  AttributeStr = "";
  if (const Derived* const derived = FindDerived(PropertyName)) {
    ValueStr = derived->text(*this);
    return true;
  }
  bool found = false;
  for (const Property& property : Properties()) {
    if (PropertyName != XmlName(property.element)) continue;
    if (found) {
      ValueStr += "\t";
      AttributeStr += "\t";
    } else {
      ValueStr = "";
    }
    found = true;
    ValueStr += Copy(PropertyText(map_.Facts(), Kind(), property));
    AttributeStr += Copy(map_.Facts().Text(property.attribute));
  }
  return found;
}

}  // namespace zyn::genapi
