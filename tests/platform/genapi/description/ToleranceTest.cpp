// Descriptions that are not quite right and mean what they say, and where that can be asked for.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../MemoryPort.h"
#include "GenApi/ILoadNotes.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

gcstring_vector NotesOf(const std::string& xml) {
  CNodeMapRef map;
  map._LoadXMLFromString(gcstring(xml.data(), xml.size()));
  gcstring_vector notes;
  dynamic_cast<ILoadNotes&>(*map._Ptr).GetLoadNotes(notes);
  return notes;
}

struct NoteRow {
  const char* name;
  std::string nodes;
  const char* note;
};

// Of a register whose elements are all there and in order.
const std::string kPlace =
    "<Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>";

TEST(Tolerance, WhatWasToleratedInANodeCanBeAskedFor) {
  const std::string bits = "<MaskedIntReg Name=\"X\">" + kPlace;
  const std::string little = "<Endianess>LittleEndian</Endianess>";
  const NoteRow rows[] = {
      {"unknown element", "<Integer Name=\"X\"><Value>1</Value>\n<Colour>red</Colour></Integer>",
       "Element 'Colour' at line 4 of node X (Integer, line 3) is unknown and was skipped"},
      {"unknown element of a structure",
       "<StructReg Comment=\"c\">" + kPlace + little +
           "<Colour/><StructEntry Name=\"X\"><Bit>0</Bit></StructEntry></StructReg>",
       "Element 'Colour' at line 3 of node StructReg (MaskedIntReg, line 3) is unknown and was skipped"},
      {"unknown attribute", "<Integer Name=\"X\" Colour=\"red\" x:y=\"\"><Value>1</Value></Integer>",
       "Attribute 'Colour' of element 'Integer' at line 3 is unknown and was skipped"},
      {"unknown attribute of an element", "<Integer Name=\"X\"><Value Colour=\"red\">1</Value></Integer>",
       "Attribute 'Colour' of element 'Value' at line 3 is unknown and was skipped"},
      {"element of another kind", "<Integer Name=\"X\"><Value>1</Value><Slope>Varying</Slope></Integer>",
       "Element Slope at line 3 of node X (Integer, line 3) does not belong to this kind of node"},
      {"node inside another kind",
       "<Integer Name=\"X\"><Value>1</Value><EnumEntry Name=\"E\"><Value>1</Value></EnumEntry></Integer>",
       "Element EnumEntry at line 3 of node X (Integer, line 3) does not belong to this kind of node"},
      {"order", "<Integer Name=\"X\"><Min>1</Min>\n<Value>1</Value><ToolTip>t</ToolTip></Integer>",
       "Elements of node X (Integer, line 3) are not in the order of the schema, first Value at line 4"},
      {"order in a register",
       "<IntReg Name=\"X\"><pPort>Device</pPort><Address>0</Address><Length>4</Length>"
       "<AccessMode>RO</AccessMode><Endianess>BigEndian</Endianess></IntReg>",
       "Elements of node X (IntReg, line 3) are not in the order of the schema, first Address at line 3"},
      {"unknown kind", "<DcamLock Name=\"X\"><FeatureID>1</FeatureID></DcamLock>",
       "Element 'DcamLock' (name 'X') at line 3: no such kind of node is known"},
      {"unknown element at the top", "<Vendor/>",
       "Element 'Vendor' (name '') at line 3: no such kind of node is known"},
      {"legacy kind", "<ConfRom Name=\"X\" Foo=\"1\"><Length>4</Length></ConfRom>",
       "Element 'ConfRom' (name 'X') at line 3: nodes of this kind are never implemented"},
      {"entries of schema 1.0",
       "<EnumEntry Name=\"E\"><Value>1</Value></EnumEntry>"
       "<Enumeration Name=\"X\"><pEnumEntry>E</pEnumEntry><Value>1</Value></Enumeration>",
       "Element pEnumEntry at line 3 of node X (Enumeration, line 3) belongs to schema 1.0"},
      {"repeated element", "<Integer Name=\"X\"><Value>1</Value>\n<Value>2</Value></Integer>",
       "Element Value of node X (Integer, line 3) is repeated; the one at line 4 holds"},
      {"missing feature", "<Category Name=\"Root\"><pFeature>Y</pFeature></Category>",
       "Element pFeature at line 3 of node Root (Category, line 3): there is no node 'Y'"},
      {"missing invalidator", "<Integer Name=\"X\"><pInvalidator>Y</pInvalidator><Value>1</Value></Integer>",
       "Element pInvalidator at line 3 of node X (Integer, line 3): there is no node 'Y'"},
      {"missing selected", "<Integer Name=\"X\"><Value>1</Value><pSelected>Y</pSelected></Integer>",
       "Element pSelected at line 3 of node X (Integer, line 3): there is no node 'Y'"},
      {"missing alias", "<Node Name=\"X\"><pAlias>Y</pAlias></Node>",
       "Element pAlias at line 3 of node X (Node, line 3): there is no node 'Y'"},
      {"missing cast alias", "<Node Name=\"X\"><pCastAlias>Y</pCastAlias></Node>",
       "Element pCastAlias at line 3 of node X (Node, line 3): there is no node 'Y'"},
      {"exchanged bits", bits + "<LSB>7</LSB><MSB>0</MSB>" + little + "</MaskedIntReg>",
       "Elements LSB and MSB of node X (MaskedIntReg, line 3) are exchanged for its byte order"},
      {"half a range of bits", bits + "<LSB>7</LSB>" + little + "</MaskedIntReg>",
       "Node X (MaskedIntReg, line 3) has no element MSB: it has one bit"},
      {"bit and range", bits + "<Bit>7</Bit><LSB>0</LSB>" + little + "</MaskedIntReg>",
       "Node X (MaskedIntReg, line 3) has both LSB and Bit; Bit holds"},
      {"no byte order", bits + "<Bit>7</Bit></MaskedIntReg>",
       "Node X (MaskedIntReg, line 3) has no element Endianess: it is little-endian"},
      {"no address",
       "<Register Name=\"X\"><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort></Register>",
       "Node X (Register, line 3) has no element Address: it is 0"},
      {"no access mode",
       "<StringReg Name=\"X\"><Address>0</Address><Length>4</Length><pPort>Device</pPort></StringReg>",
       "Node X (StringReg, line 3) has no element AccessMode: it is read-only"},
      {"no command value", "<Command Name=\"X\"><Value>0</Value></Command>",
       "Node X (Command, line 3) has no element CommandValue: 1 is written"},
      {"no entry", "<Enumeration Name=\"X\"><Value>0</Value></Enumeration>",
       "Node X (Enumeration, line 3) has no element EnumEntry: it is never implemented"},
      {"no indexed value",
       "<Integer Name=\"I\"><Value>0</Value></Integer><Integer Name=\"X\"><pIndex>I</pIndex>"
       "<ValueDefault>1</ValueDefault></Integer>",
       "Node X (Integer, line 3) has no element ValueIndexed: the default always holds"},
      {"no default value",
       "<Integer Name=\"I\"><Value>0</Value></Integer><Float Name=\"X\"><pIndex>I</pIndex>"
       "<ValueIndexed Index=\"0\">1</ValueIndexed></Float>",
       "Node X (Float, line 3) has no element ValueDefault: other indices have no value"},
      {"value and link",
       "<Integer Name=\"I\"><Value>0</Value></Integer><Integer "
       "Name=\"X\"><Value>1</Value><pValue>I</pValue></Integer>",
       "Node X (Integer, line 3) has both Value and pValue; pValue holds"},
      {"limit and link",
       "<Integer Name=\"I\"><Value>0</Value></Integer><Integer "
       "Name=\"X\"><Value>1</Value><Min>0</Min><pMin>I</pMin></Integer>",
       "Node X (Integer, line 3) has both Min and pMin; pMin holds"},
      {"unsigned number", "<Integer Name=\"X\"><Value>0xFFFFFFFFFFFFFFFF</Value></Integer>",
       "Element Value at line 3 of node X (Integer, line 3): '0xFFFFFFFFFFFFFFFF' was taken as -1"},
      {"real number", "<Integer Name=\"X\"><Value>1e3</Value></Integer>",
       "Element Value at line 3 of node X (Integer, line 3): '1e3' was taken as 1000"},
      {"white space around a value", "<Integer Name=\"X\">\n<Value> 1</Value></Integer>",
       "White space around values and names was ignored, first at line 4"},
      {"white space around a link",
       "<Integer Name=\"I\"><Value>1</Value></Integer><Integer Name=\"X\"><pValue>I\n</pValue></Integer>",
       "White space around values and names was ignored, first at line 3"},
      {"white space around a name", "<Node Name=\" X\"/>",
       "White space around values and names was ignored, first at line 3"},
      {"loose ampersand", "<Node Name=\"X\"><ToolTip>\nblack & white</ToolTip></Node>",
       "A & that begins no known reference stands for itself, first at line 3"},
      {"text between elements", "<Integer Name=\"X\">\nvalue:<Value>1</Value></Integer>",
       "Text between elements was skipped, first at line 3"},
      {"element in a text", "<Integer Name=\"X\">\n<Value>1<Unit>px</Unit></Value></Integer>",
       "Elements inside a text were skipped, first at line 4"},
  };
  for (const NoteRow& row : rows) {
    const gcstring_vector notes = NotesOf(Description(row.nodes));
    ASSERT_EQ(notes.size(), 1U) << row.name;
    EXPECT_STREQ(notes[0].c_str(), row.note) << row.name;
  }
}

TEST(Tolerance, ACleanDescriptionHasNoNotes) {
  EXPECT_EQ(NotesOf(Description("<Group Comment=\"g\"><Extension>text<X y=\"\">z</X></Extension>"
                                "<Integer Name=\"X\" NameSpace=\"Standard\" MergePriority=\"1\" "
                                "ExposeStatic=\"No\"><Extension><Y/></Extension><ToolTip>a &amp; b</ToolTip>"
                                "<Value>-1</Value></Integer></Group>"
                                "<MaskedIntReg Name=\"M\">" +
                                kPlace +
                                "<LSB>7</LSB><MSB>0</MSB><Endianess>BigEndian</Endianess></MaskedIntReg>"
                                "<IntReg Name=\"R\"><pIndex Offset=\"4\">X</pIndex><Address>0</Address>"
                                "<Length>4</Length><AccessMode/><pPort>Device</pPort><Endianess/></IntReg>"
                                "<StructReg Comment=\"s\">" +
                                kPlace +
                                "<Endianess/><StructEntry Name=\"S\"><pInvalidator>X</pInvalidator>"
                                "<AccessMode>RO</AccessMode><Bit>1</Bit></StructEntry></StructReg>"))
                .size(),
            0U);
}

// Schema 1.0 has another order, and entries outside of their enumeration.
TEST(Tolerance, AnOlderSchemaIsNotJudgedByTheNewerOne) {
  std::string xml = Description(
      "<Integer Name=\"X\"><Min>0</Min><Value>1</Value></Integer><EnumEntry Name=\"E\"><Value>1</Value>"
      "</EnumEntry><Enumeration Name=\"N\"><pEnumEntry>E</pEnumEntry><Value>1</Value></Enumeration>");
  xml.replace(xml.find("SchemaMinorVersion=\"1\""), 22, "SchemaMinorVersion=\"0\"");
  EXPECT_EQ(NotesOf(xml).size(), 0U);
}

TEST(Tolerance, MapsWithoutADescriptionHaveNoNotes) {
  CNodeMapRef map(CNodeMapFactory::CreateEmptyNodeMap());
  gcstring_vector notes(1, "old");
  dynamic_cast<ILoadNotes&>(*map._Ptr).GetLoadNotes(notes);
  EXPECT_EQ(notes.size(), 0U);
}

struct TextRow {
  const char* name;
  std::string xml;
  std::vector<const char*> notes;
};

std::string WithProlog(const std::string& prolog) {
  std::string xml = Description("");
  return prolog + xml.substr(xml.find('\n'));
}

TEST(Tolerance, WhatWasToleratedInATextCanBeAskedFor) {
  const std::string good = Description("");
  const char* const encoding = "The text is not in the encoding 'UTF-16' that it declares";
  std::string noNameSpace = good;
  noNameSpace.replace(noNameSpace.find(" xmlns"), 50, "");
  std::string otherNameSpace = good;
  otherNameSpace.replace(otherNameSpace.find("Version_1_1"), 11, "Version_9_9");
  const char* const nameSpace =
      "RegisterDescription at line 2 is in no known XML name space; its attributes say which schema it "
      "follows";
  const TextRow rows[] = {
      {"nothing", good, {}},
      {"byte-order mark", "\xEF\xBB\xBF" + good, {}},
      {"no prolog", WithProlog(""), {}},
      {"blanks without a prolog", WithProlog(" \n"), {}},
      {"blanks in front", " \n" + good, {"White space in front of the XML declaration was skipped"}},
      {"padding", good + std::string(100, '\0') + " \r\n", {}},
      {"rubbish", good + "rubbish", {"What follows the root element was skipped"}},
      {"Latin-1 that does not say so",
       WithProlog("<?xml version=\"1.0\"?><!-- \xB5 -->"),
       {"Bytes that are not UTF-8 were taken as Latin-1"}},
      {"Latin-1", WithProlog("<?xml version='1.0' encoding='iso-8859-1'?><!-- \xB5 -->"), {}},
      {"lower case", WithProlog("<?xml version='1.0' encoding='utf-8'?>"), {}},
      {"another encoding", WithProlog("<?xml version=\"1.0\" encoding=\"utf-16\"?>"), {encoding}},
      {"no name space", noNameSpace, {nameSpace}},
      {"another name space", otherNameSpace, {nameSpace}},
      {"prefix",
       "<g:RegisterDescription xmlns:g=\"http://www.genicam.org/GenApi/Version_1_0\" ModelName=\"\" "
       "VendorName=\"\" "
       "StandardNameSpace=\"\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"0\" SchemaSubMinorVersion=\"0\" "
       "MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\" ProductGuid=\"\"/>",
       {"RegisterDescription at line 1 lacks the attributes VersionGuid"}},
  };
  for (const TextRow& row : rows) {
    SCOPED_TRACE(row.name);
    const gcstring_vector notes = NotesOf(row.xml);
    ASSERT_EQ(notes.size(), row.notes.size());
    for (std::size_t i = 0; i < row.notes.size(); ++i) EXPECT_STREQ(notes[i].c_str(), row.notes[i]);
  }
}

TEST(Tolerance, RepairedTextIsNotedInOrder) {
  const gcstring_vector notes = NotesOf(
      Description("<Integer Name=\"X\"><ToolTip>\xB5</ToolTip><Value>1</Value></Integer>") + "rubbish");
  ASSERT_EQ(notes.size(), 2U);
  EXPECT_EQ(notes[0], "What follows the root element was skipped");
  EXPECT_EQ(notes[1], "Bytes that are not UTF-8 were taken as Latin-1");
}

// A device's memory may still hold the end of an older, longer description.
TEST(Tolerance, WhatAnOlderDescriptionLeftBehindTheZerosIsSkipped) {
  const std::string xml = Description("<Integer Name=\"X\"><Value>1</Value></Integer>");
  const gcstring_vector notes =
      NotesOf(xml + std::string(5, '\0') + "alue></Integer></RegisterDescription>\n");
  ASSERT_EQ(notes.size(), 1U);
  EXPECT_EQ(notes[0], "What follows the root element was skipped");
}

TEST(Tolerance, VersionsOfMoreThanSixteenBitsAreCut) {
  std::string xml = Description("");
  xml.replace(xml.find(" MajorVersion=\"1\""), 17, " MajorVersion=\"20261121\"");
  CNodeMapRef map;
  map._LoadXMLFromString(xml.c_str());
  Version_t version = {0, 0, 0};
  CDeviceInfoPtr(map._Ptr)->GetDeviceVersion(version);
  EXPECT_EQ(version.Major, 65535);
  EXPECT_EQ(version.SubMinor, 3);
  const gcstring_vector notes = NotesOf(xml);
  ASSERT_EQ(notes.size(), 1U);
  EXPECT_EQ(notes[0],
            "Attribute MajorVersion of RegisterDescription at line 2 is beyond 16 bits; 65535 stands for it");
}

TEST(Tolerance, WhatWasRepairedInAnInjectedDescriptionIsNotedToo) {
  CNodeMapRef map;
  map._LoadXMLFromStringInject(
      Description("").c_str(),
      "<RegisterDescription><Node Name=\"X\"><ToolTip>\xB5</ToolTip></Node></RegisterDescription>");
  gcstring_vector notes;
  dynamic_cast<ILoadNotes&>(*map._Ptr).GetLoadNotes(notes);
  ASSERT_EQ(notes.size(), 1U);
  EXPECT_EQ(notes[0], "Bytes that are not UTF-8 were taken as Latin-1");
}

TEST(Tolerance, WholeNumbersMayBeWrittenAsRealOnes) {
  Camera camera(
      "<Integer Name=\"I\"><Value>1e3</Value><Min>-2.0</Min></Integer>"
      "<IntSwissKnife Name=\"K\"><Constant Name=\"C\">3.</Constant><Formula>C</Formula></IntSwissKnife>");
  EXPECT_EQ(camera.Integer("I").GetValue(), 1000);
  EXPECT_EQ(camera.Integer("I").GetMin(), -2);
  EXPECT_EQ(camera.Integer("K").GetValue(), 3);
}

TEST(Tolerance, ManyNotesAreCounted) {
  std::string nodes = "<Integer Name=\"X\"><Value>1</Value>";
  for (int i = 0; i < 1003; ++i) nodes += "<Colour/>";
  const gcstring_vector notes = NotesOf(Description(nodes + "</Integer>"));
  ASSERT_EQ(notes.size(), 1001U);
  EXPECT_EQ(notes[1000], "and 3 more");
}

struct AbsentRow {
  const char* kind;
  EInterfaceType type;
};

// Configuration memories of older buses, and kinds that nobody knows.
TEST(Tolerance, LegacyAndUnknownKindsLoadAndAreNeverImplemented) {
  const AbsentRow rows[] = {{"ConfRom", intfIValue},        {"TextDesc", intfIString},
                            {"IntKey", intfIInteger},       {"AdvFeatureLock", intfIValue},
                            {"SmartFeature", intfIInteger}, {"DcamLock", intfIValue}};
  for (const AbsentRow& row : rows) {
    SCOPED_TRACE(row.kind);
    const std::string kind = row.kind;
    Camera camera("<" + kind +
                  " Name=\"X\"><ToolTip>tip</ToolTip><Value>not a number</Value><pPort>None</pPort>"
                  "<Key>1</Key></" +
                  kind +
                  ">"
                  "<Integer Name=\"Locked\"><pIsLocked>X</pIsLocked><Value>1</Value></Integer>"
                  "<Integer Name=\"Other\"><Value>1</Value></Integer>");
    EXPECT_EQ(camera.Access("X"), NI);
    EXPECT_EQ(camera.Node("X").GetPrincipalInterfaceType(), row.type);
    EXPECT_EQ(camera.Node("X").GetToolTip(), "tip");
    EXPECT_THROW(camera.Text("X"), AccessException);
    EXPECT_THROW(camera.Value("X").FromString("1"), AccessException);
    EXPECT_EQ(camera.Access("Locked"), NI);
    EXPECT_EQ(camera.Integer("Other").GetValue(), 1);
  }
  Camera camera(
      "<TextDesc Name=\"T\"/><IntKey Name=\"K\"/><SmartFeature Name=\"F\"/>"
      "<String Name=\"S\"><pValue>T</pValue></String><Integer Name=\"I\"><pValue>K</pValue></Integer>"
      "<IntReg Name=\"R\"><pAddress>F</pAddress><Length>4</Length><pPort>Device</pPort></IntReg>");
  EXPECT_EQ(camera.Access("S"), NI);
  EXPECT_EQ(camera.Access("I"), NI);
  EXPECT_EQ(camera.Access("R"), NI);
  EXPECT_THROW(camera.As<IString>("T").GetValue(), AccessException);
  EXPECT_THROW(camera.Integer("K").GetMin(), AccessException);
}

// The older schema keeps entries beside their enumeration.
TEST(Tolerance, EnumEntriesMayStandOutsideTheirEnumeration) {
  Camera camera(
      "<EnumEntry Name=\"Low\"><Value>1</Value></EnumEntry>"
      "<EnumEntry "
      "Name=\"High\"><Value>2</Value><Symbolic>HighSpeed</Symbolic><pIsAvailable>Fast</pIsAvailable>"
      "</EnumEntry><EnumEntry Name=\"Lonely\"><Value>3</Value></EnumEntry>"
      "<Integer Name=\"Fast\"><Value>1</Value></Integer>"
      "<Enumeration Name=\"Mode\"><pEnumEntry>Low</pEnumEntry><pEnumEntry>High</pEnumEntry><Value>1</Value>"
      "</Enumeration>"
      "<IntSwissKnife Name=\"K\"><pVariable Name=\"M.Entry.HighSpeed\">Mode</pVariable>"
      "<Formula>M.Entry.HighSpeed</Formula></IntSwissKnife>");
  IEnumeration& mode = camera.As<IEnumeration>("Mode");
  EXPECT_EQ(mode.ToString(), "Low");
  mode = "HighSpeed";
  EXPECT_EQ(mode.GetIntValue(), 2);
  EXPECT_EQ(camera.Integer("K").GetValue(), 2);
  camera.Integer("Fast").SetValue(0);
  gcstring_vector symbolics;
  mode.GetSymbolics(symbolics);
  ASSERT_EQ(symbolics.size(), 1U);
  EXPECT_EQ(symbolics[0], "Low");
  EXPECT_EQ(camera.As<IEnumEntry>("Lonely").GetSymbolic(), "Lonely");
  EXPECT_EQ(camera.Node("Low").GetDisplayName(), "Low");
  EXPECT_THROW(
      Camera("<Enumeration Name=\"E\"><pEnumEntry>Device</pEnumEntry><Value>1</Value></Enumeration>"),
      RuntimeException);
}

std::string ToUtf16(const std::string& latin1, bool bigEndian) {
  std::string out;
  for (const char c : latin1) {
    if (bigEndian) out += '\0';
    out += c;
    if (!bigEndian) out += '\0';
  }
  return out;
}

TEST(Tolerance, Utf16IsReadWithAndWithoutMarkInBothOrders) {
  std::string xml = Description("<Integer Name=\"X\"><ToolTip>\xB5?#</ToolTip><Value>1</Value></Integer>");
  for (const bool bigEndian : {false, true}) {
    for (const bool hasMark : {false, true}) {
      std::string text = ToUtf16(xml, bigEndian);
      // A character beyond the first plane, and half of one.
      const std::string half = bigEndian ? std::string("\xD8\x3D", 2) : std::string("\x3D\xD8", 2);
      const std::string replaced = ToUtf16("?#", bigEndian);
      const std::string with =
          (bigEndian ? std::string("\xD8\x3D\xDE\x00", 4) : std::string("\x3D\xD8\x00\xDE", 4)) + half;
      text.replace(text.find(replaced), replaced.size(), with);
      if (hasMark) text = (bigEndian ? "\xFE\xFF" : "\xFF\xFE") + text;
      CNodeMapFactory factory(ContentType_Xml, text.data(), text.size());
      CNodeMapRef map(factory.CreateNodeMap());
      EXPECT_EQ(map._GetNode("X")->GetToolTip(), "\xC2\xB5\xF0\x9F\x98\x80\xEF\xBF\xBD")
          << bigEndian << hasMark;
    }
  }
  const std::string odd = ToUtf16(xml, false) + "x";
  const gcstring_vector notes = NotesOf(odd);
  ASSERT_EQ(notes.size(), 1U);
  EXPECT_EQ(notes[0], "Units that are not UTF-16 were replaced");
}

}  // namespace
