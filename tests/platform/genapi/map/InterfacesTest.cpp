// What each kind of node can be cast into, and how nodes are linked.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "../MemoryPort.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

template <class Interface>
std::string NameIf(INode* node, const char* name) {
  return dynamic_cast<Interface*>(node) ? std::string(" ") + name : std::string();
}

// Of the interfaces that not every node has.
std::string CastsOf(INode* node) {
  return NameIf<IValue>(node, "Value") + NameIf<IInteger>(node, "Integer") + NameIf<IFloat>(node, "Float") +
         NameIf<IBoolean>(node, "Boolean") + NameIf<ICommand>(node, "Command") +
         NameIf<IString>(node, "String") + NameIf<IRegister>(node, "Register") +
         NameIf<ICategory>(node, "Category") + NameIf<IEnumeration>(node, "Enumeration") +
         NameIf<IEnumEntry>(node, "EnumEntry") + NameIf<IPort>(node, "Port") +
         NameIf<IPortConstruct>(node, "PortConstruct") + NameIf<IChunkPort>(node, "ChunkPort") +
         NameIf<IPortReplay>(node, "PortReplay") + NameIf<IPortRecorder>(node, "PortRecorder");
}

struct KindRow {
  const char* name;
  EInterfaceType principal;
  const char* principalName;
  const char* casts;
};

TEST(Interfaces, EachKindOfNodeHasItsOwnAndNoOthers) {
  const std::string converter =
      "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>Integer</pValue>";
  const std::string real = "<pValue>Float</pValue>";
  Camera camera(
      "<Node Name=\"Node\"/><Category Name=\"Category\"><pFeature>Integer</pFeature></Category>"
      "<Integer Name=\"Integer\"><Value>1</Value></Integer>"
      "<Integer Name=\"IntegerOverFloat\">" +
      real + "</Integer><IntSwissKnife Name=\"IntSwissKnife\"><Formula>1</Formula></IntSwissKnife>" +
      "<IntConverter Name=\"IntConverter\">" + converter + "</IntConverter>" +
      Register("IntReg", "IntReg", 0, 4) + Register("MaskedIntReg", "MaskedIntReg", 0, 4, "<Bit>0</Bit>") +
      "<StructReg><Address>0</Address><Length>4</Length><pPort>Device</pPort>"
      "<StructEntry Name=\"StructEntry\"><Bit>1</Bit></StructEntry></StructReg>"
      "<Float Name=\"Float\"><Value>1</Value></Float><Float "
      "Name=\"FloatOverInteger\"><pValue>Integer</pValue>"
      "</Float><SwissKnife Name=\"SwissKnife\"><Formula>1</Formula></SwissKnife><Converter "
      "Name=\"Converter\">" +
      converter + "</Converter>" + Register("FloatReg", "FloatReg", 0, 4) +
      "<Boolean Name=\"Boolean\"><Value>true</Value></Boolean>"
      "<Command Name=\"Command\"><Value>0</Value><CommandValue>1</CommandValue></Command>"
      "<Enumeration Name=\"Enumeration\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry><Value>0</Value>"
      "</Enumeration><String Name=\"String\"><Value>x</Value></String>" +
      Register("StringReg", "StringReg", 0, 4) + Register("Register", "Register", 0, 4));
  const KindRow rows[] = {
      {"Node", intfIValue, "IValue", " Value"},
      {"Category", intfICategory, "ICategory", " Value Category"},
      {"Integer", intfIInteger, "IInteger", " Value Integer"},
      {"IntegerOverFloat", intfIInteger, "IInteger", " Value Integer"},
      {"IntSwissKnife", intfIInteger, "IInteger", " Value Integer"},
      {"IntConverter", intfIInteger, "IInteger", " Value Integer"},
      {"IntReg", intfIInteger, "IInteger", " Value Integer Register"},
      {"MaskedIntReg", intfIInteger, "IInteger", " Value Integer Register"},
      {"StructEntry", intfIInteger, "IInteger", " Value Integer Register"},
      {"Float", intfIFloat, "IFloat", " Value Float"},
      {"FloatOverInteger", intfIFloat, "IFloat", " Value Float"},
      {"SwissKnife", intfIFloat, "IFloat", " Value Float"},
      {"Converter", intfIFloat, "IFloat", " Value Float"},
      {"FloatReg", intfIFloat, "IFloat", " Value Float Register"},
      {"Boolean", intfIBoolean, "IBoolean", " Value Boolean"},
      {"Command", intfICommand, "ICommand", " Value Command"},
      {"Enumeration", intfIEnumeration, "IEnumeration", " Value Enumeration"},
      {"EnumEntry_Enumeration_A", intfIEnumEntry, "IEnumEntry", " Value EnumEntry"},
      {"String", intfIString, "IString", " Value String"},
      {"StringReg", intfIString, "IString", " Value String Register"},
      {"Register", intfIRegister, "IRegister", " Value Register"},
      {"Device", intfIPort, "IPort", " Port PortConstruct ChunkPort PortReplay PortRecorder"},
  };
  for (const KindRow& row : rows) {
    SCOPED_TRACE(row.name);
    INode* const node = camera.map._GetNode(row.name);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(CastsOf(node), row.casts);
    EXPECT_EQ(node->GetPrincipalInterfaceType(), row.principal);
    EXPECT_EQ(GetInterfaceName(node), row.principalName);
    EXPECT_EQ(dynamic_cast<INode*>(dynamic_cast<ISelector*>(node)), node);
    auto* const data = dynamic_cast<IUserData*>(node);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->SetUserData(&camera), nullptr);
    EXPECT_EQ(data->GetUserData(), &camera);
    auto* const value = dynamic_cast<IValue*>(node);
    EXPECT_EQ(value ? value->GetNode() : node, node);
  }
  INodeMap* const map = camera.map._Ptr;
  EXPECT_EQ(dynamic_cast<INodeMap*>(dynamic_cast<IDeviceInfo*>(map)), map);
  EXPECT_EQ(dynamic_cast<INodeMap*>(dynamic_cast<IDestroy*>(map)), map);
  EXPECT_EQ(dynamic_cast<INodeMap*>(dynamic_cast<IUserData*>(map)), map);
  EXPECT_EQ(GetInterfaceName(&camera.port), "IBase") << "a port of the program is no node";
}

using List = std::vector<std::string>;

List Sorted(const NodeList_t& nodes) {
  List names;
  for (size_t i = 0; i < nodes.size(); ++i) names.emplace_back(nodes[i]->GetName().c_str());
  std::sort(names.begin(), names.end());
  return names;
}

List Children(Camera& camera, const char* name, ELinkType type) {
  NodeList_t nodes(3);
  camera.Node(name).GetChildren(nodes, type);
  return Sorted(nodes);
}

TEST(Links, AreListedByWhatTheyAreFor) {
  Camera camera(
      "<Integer Name=\"I\"><pIsLocked>Lock</pIsLocked><pInvalidator>Inv</pInvalidator><pAlias>P</pAlias>"
      "<pValue>Inner</pValue><pMin>Low</pMin></Integer><Integer Name=\"Inner\"><pValue>R</pValue></Integer>"
      "<IntReg Name=\"R\"><pAddress>Base</pAddress><Length>4</Length><AccessMode>RW</AccessMode>"
      "<pPort>Device</pPort></IntReg>"
      "<Integer Name=\"Lock\"><Value>0</Value></Integer><Integer Name=\"Inv\"><Value>0</Value></Integer>"
      "<Integer Name=\"Low\"><Value>0</Value></Integer><Integer Name=\"Base\"><Value>0</Value></Integer>"
      "<Integer Name=\"Sel\"><Value>0</Value><pSelected>I</pSelected></Integer>"
      "<Float Name=\"P\"><pValue>I</pValue></Float>");
  EXPECT_EQ(Children(camera, "I", ctReadingChildren), (List{"Inner", "Lock", "Low"}));
  EXPECT_EQ(Children(camera, "I", ctWritingChildren), List{"Inner"});
  EXPECT_EQ(Children(camera, "I", ctInvalidatingChildren), (List{"Inner", "Inv", "Lock", "Low", "Sel"}));
  EXPECT_EQ(Children(camera, "I", ctValueChangingChildren), List{"Inner"});
  EXPECT_EQ(Children(camera, "I", ctTerminalNodes), List{"R"});
  EXPECT_EQ(Children(camera, "I", ctDependingNodes), List{"P"});
  EXPECT_EQ(Children(camera, "I", ctParentNodes), (List{"P", "Sel"}));
  EXPECT_EQ(Children(camera, "R", ctDependingNodes), (List{"I", "Inner", "P"}));
  EXPECT_EQ(Children(camera, "R", ctReadingChildren), (List{"Base", "Device"}));
  EXPECT_EQ(Children(camera, "P", ctTerminalNodes), List{"R"});
  NodeList_t parents(1);
  camera.Node("Inner").GetParents(parents);
  EXPECT_EQ(Sorted(parents), List{"I"});
}

TEST(Facts, OfANodeAreThoseOfItsDescription) {
  Camera camera(
      "<Integer Name=\"I\" NameSpace=\"Standard\"><ToolTip>tip</ToolTip><Description>long</Description>"
      "<DisplayName>Shown</DisplayName><Visibility>Expert</Visibility><DocuURL>http://x</DocuURL>"
      "<IsDeprecated>Yes</IsDeprecated><EventID>9001</EventID><pAlias>J</pAlias><pCastAlias>F</pCastAlias>"
      "<Streamable>Yes</Streamable><Value>1</Value></Integer><Integer Name=\"J\"><Value>1</Value></Integer>"
      "<Float Name=\"F\"><Value>1</Value></Float>"
      "<Enumeration Name=\"E\"><EnumEntry Name=\"A\"><Value>3</Value><Symbolic>Aa</Symbolic></EnumEntry>"
      "<EnumEntry Name=\"B\"><Value>4</Value><DisplayName>Bee</DisplayName><NumericValue>4.5</NumericValue>"
      "<IsSelfClearing>Yes</IsSelfClearing></EnumEntry><Value>3</Value></Enumeration>"
      "<Node Name=\"N\"/>");
  INode& node = camera.Node("I");
  EXPECT_EQ(node.GetName(true), "Std::I");
  EXPECT_EQ(node.GetNameSpace(), Standard);
  EXPECT_EQ(node.GetToolTip(), "tip");
  EXPECT_EQ(node.GetDescription(), "long");
  EXPECT_EQ(node.GetDisplayName(), "Shown");
  EXPECT_EQ(node.GetVisibility(), Expert);
  EXPECT_EQ(node.GetDocuURL(), "http://x");
  EXPECT_TRUE(node.IsDeprecated());
  EXPECT_EQ(node.GetEventID(), "9001");
  EXPECT_EQ(node.GetAlias(), &camera.Node("J"));
  EXPECT_EQ(node.GetCastAlias(), &camera.Node("F"));
  EXPECT_TRUE(node.IsStreamable());
  EXPECT_EQ(node.GetNodeMap(), camera.map._Ptr);
  EXPECT_EQ(node.GetDeviceName(), "Device");
  INode& plain = camera.Node("J");
  EXPECT_EQ(plain.GetName(true), "Cust::J");
  EXPECT_EQ(plain.GetVisibility(), Beginner);
  EXPECT_FALSE(plain.IsStreamable() || plain.IsDeprecated() || plain.IsFeature());
  EXPECT_EQ(plain.GetAlias(), nullptr);
  EXPECT_EQ(plain.GetPollingTime(), -1);
  IEnumEntry& first = camera.As<IEnumEntry>("EnumEntry_E_A");
  EXPECT_EQ(first.GetSymbolic(), "Aa");
  EXPECT_EQ(first.GetNode()->GetDisplayName(), "Aa");
  EXPECT_EQ(first.GetNumericValue(), 3);
  EXPECT_FALSE(first.IsSelfClearing());
  EXPECT_EQ(first.ToString(), "3");
  EXPECT_THROW(first.FromString("3"), AccessException);
  IEnumEntry& second = camera.As<IEnumEntry>("EnumEntry_E_B");
  EXPECT_EQ(second.GetSymbolic(), "B");
  EXPECT_EQ(second.GetNode()->GetDisplayName(), "Bee");
  EXPECT_EQ(second.GetNumericValue(), 4.5);
  EXPECT_TRUE(second.IsSelfClearing());
  EXPECT_EQ(camera.Text("N"), "");
  camera.Value("N").FromString("kept");
  EXPECT_EQ(camera.Text("N"), "kept");
}

}  // namespace
