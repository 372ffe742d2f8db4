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
  const char* nodes;
  const char* note;
};

TEST(Tolerance, WhatWasToleratedCanBeAskedFor) {
  const NoteRow rows[] = {
      {"unknown element", "<Integer Name=\"X\"><Value>1</Value>\n<Colour>red</Colour></Integer>",
       "Element 'Colour' at line 4 of node X (Integer, line 3) is unknown and was skipped"},
      {"unknown kind", "<DcamLock Name=\"X\"><FeatureID>1</FeatureID></DcamLock>",
       "Element 'DcamLock' (name 'X') at line 3: no such kind of node is known"},
      {"unknown element at the top", "<Vendor/>",
       "Element 'Vendor' (name '') at line 3: no such kind of node is known"},
      {"repeated element", "<Integer Name=\"X\"><Value>1</Value>\n<Value>2</Value></Integer>",
       "Element Value of node X (Integer, line 3) is repeated; the one at line 4 holds"},
      {"missing feature", "<Category Name=\"Root\"><pFeature>Y</pFeature></Category>",
       "Element pFeature at line 3 of node Root (Category, line 3): there is no node 'Y'"},
      {"missing invalidator", "<Integer Name=\"X\"><Value>1</Value><pInvalidator>Y</pInvalidator></Integer>",
       "Element pInvalidator at line 3 of node X (Integer, line 3): there is no node 'Y'"},
      {"missing selected", "<Integer Name=\"X\"><Value>1</Value><pSelected>Y</pSelected></Integer>",
       "Element pSelected at line 3 of node X (Integer, line 3): there is no node 'Y'"},
      {"exchanged bits",
       "<MaskedIntReg Name=\"X\"><Address>0</Address><Length>4</Length><pPort>Device</pPort>"
       "<LSB>7</LSB><MSB>0</MSB></MaskedIntReg>",
       "Elements LSB and MSB of node X (MaskedIntReg, line 3) are exchanged for its byte order"},
      {"unknown element of a structure",
       "<StructReg><Length>4</Length><pPort>Device</pPort><Extension><X/></Extension>\n<Colour/>"
       "<StructEntry Name=\"X\"><Bit>0</Bit></StructEntry></StructReg>",
       "Element 'Colour' at line 4 of node StructReg (MaskedIntReg, line 3) is unknown and was skipped"},
  };
  for (const NoteRow& row : rows) {
    const gcstring_vector notes = NotesOf(Description(row.nodes));
    ASSERT_EQ(notes.size(), 1U) << row.name;
    EXPECT_STREQ(notes[0].c_str(), row.note) << row.name;
  }
}

TEST(Tolerance, ACleanDescriptionHasNoNotes) {
  EXPECT_EQ(NotesOf(Description(
                        "<Group Comment=\"g\"><Extension><X/></Extension>"
                        "<Integer Name=\"X\"><Extension><Y/></Extension><Value>1</Value></Integer></Group>"
                        "<MaskedIntReg Name=\"M\"><Address>0</Address><Length>4</Length><pPort>Device</pPort>"
                        "<LSB>7</LSB><MSB>0</MSB><Endianess>BigEndian</Endianess></MaskedIntReg>"))
                .size(),
            0U);
}

TEST(Tolerance, RepairedTextIsNotedToo) {
  const gcstring_vector notes = NotesOf(
      Description("<Integer Name=\"X\"><ToolTip>\xB5</ToolTip><Value>1</Value></Integer>") + "rubbish");
  ASSERT_EQ(notes.size(), 2U);
  EXPECT_EQ(notes[0], "What follows the root element was skipped");
  EXPECT_EQ(notes[1], "Bytes that are not UTF-8 were taken as Latin-1");
  EXPECT_EQ(NotesOf(Description("") + std::string(100, '\0')).size(), 0U) << "padding is usual";
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
  const std::string xml = "<RegisterDescription MajorVersion=\"20261121\" SubMinorVersion=\"7\"/>";
  CNodeMapRef map;
  map._LoadXMLFromString(xml.c_str());
  Version_t version = {0, 0, 0};
  CDeviceInfoPtr(map._Ptr)->GetDeviceVersion(version);
  EXPECT_EQ(version.Major, 65535);
  EXPECT_EQ(version.SubMinor, 7);
  const gcstring_vector notes = NotesOf(xml);
  ASSERT_EQ(notes.size(), 1U);
  EXPECT_EQ(notes[0],
            "Attribute MajorVersion of RegisterDescription at line 1 is beyond 16 bits; 65535 stands for it");
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
  EXPECT_NO_THROW(CNodeMapRef(CNodeMapFactory(ContentType_Xml, odd.data(), odd.size()).CreateNodeMap()));
}

}  // namespace
