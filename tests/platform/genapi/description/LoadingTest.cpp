// What loads, and what is refused with the element and the line.
#include <gtest/gtest.h>
#include <zip.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "../MemoryPort.h"
#include "GenApi/ILoadNotes.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

std::string ErrorOf(const std::string& xml) {
  try {
    CNodeMapRef map;
    map._LoadXMLFromString(gcstring(xml.data(), xml.size()));
  } catch (const GenericException& error) {
    return error.GetDescription();
  }
  return "no error";
}

struct HostileRow {
  const char* name;
  const char* nodes;
  std::vector<const char*> mentioned;
};

// The first node stands in line 3.
TEST(Loading, BrokenDescriptionsAreRefusedWithElementAndLine) {
  const HostileRow rows[] = {
      {"no name", "<Integer><Value>1</Value></Integer>", {"Integer", "line 3", "name"}},
      {"no value", "<Integer Name=\"X\"/>", {"X (Integer, line 3)", "Value"}},
      {"no port",
       "\n<IntReg Name=\"X\"><Address>0</Address><Length>4</Length></IntReg>",
       {"X (IntReg, line 4)", "pPort"}},
      {"no formula", "<SwissKnife Name=\"X\"/>", {"X (SwissKnife, line 3)", "Formula"}},
      {"duplicate",
       "<Integer Name=\"X\"><Value>1</Value></Integer>\n<Float Name=\"X\"><Value>1</Value></Float>",
       {"duplicate", "X (Integer, line 3)", "X (Float, line 4)"}},
      {"dangling",
       "<Integer Name=\"X\">\n<pValue>Y</pValue></Integer>",
       {"pValue", "line 4", "X (Integer", "'Y'"}},
      {"dangling limit",
       "<Integer Name=\"X\"><Value>1</Value><pMin>Y</pMin></Integer>",
       {"pMin", "line 3", "'Y'"}},
      {"no number", "<Integer Name=\"X\"><Value>abc</Value></Integer>", {"Value", "'X'", "line 3", "'abc'"}},
      {"empty number", "<Integer Name=\"X\"><Value/></Integer>", {"Value", "'X'", "line 3"}},
      {"fraction of an integer",
       "<Integer Name=\"X\"><Value>2.5</Value></Integer>",
       {"Value", "'X'", "line 3", "an integer", "'2.5'"}},
      {"fraction in an integer formula",
       "<IntSwissKnife Name=\"X\"><Constant Name=\"C\">0.5</Constant><Formula>C</Formula></IntSwissKnife>",
       {"Constant", "'X'", "line 3", "an integer", "'0.5'"}},
      {"no index",
       "<Integer Name=\"I\"><Value>0</Value></Integer>\n<Float Name=\"X\"><pIndex>I</pIndex>"
       "<ValueIndexed Index=\"a\">1</ValueIndexed><ValueDefault>1</ValueDefault></Float>",
       {"Attribute Index", "ValueIndexed", "'X'", "line 4", "an integer", "'a'"}},
      {"no index of a node",
       "<Integer Name=\"I\"><Value>0</Value></Integer>\n<Integer Name=\"X\"><pIndex>I</pIndex>"
       "<pValueIndexed Index=\"0.5\">I</pValueIndexed><ValueDefault>1</ValueDefault></Integer>",
       {"Attribute Index", "pValueIndexed", "'X'", "line 4", "an integer", "'0.5'"}},
      {"no offset",
       "<Register Name=\"X\"><Length>1</Length><pPort>Device</pPort>\n<pIndex Offset=\"4 bytes\">I</pIndex>"
       "</Register><Integer Name=\"I\"><Value>0</Value></Integer>",
       {"Attribute Offset", "pIndex", "'X'", "line 4", "an integer", "'4 bytes'"}},
      {"no valid values",
       "<Integer Name=\"X\"><Value>1</Value>\n<ValidValueSet>1;two;3</ValidValueSet></Integer>",
       {"ValidValueSet", "'X'", "line 4", "integers", "'1;two;3'"}},
      {"no word",
       "<Integer Name=\"X\"><Value>1</Value><Visibility>All</Visibility></Integer>",
       {"Visibility", "'All'"}},
      {"no truth", "<Boolean Name=\"X\"><Value>yes</Value></Boolean>", {"Value", "'yes'"}},
      {"self",
       "<Integer Name=\"X\"><pValue>X</pValue></Integer>",
       {"read cycle", "X -> X", "pValue", "line 3"}},
      {"cycle",
       "<Integer Name=\"A\"><pValue>B</pValue></Integer>\n<Float "
       "Name=\"B\"><Value>1</Value><pMax>C</pMax></Float>\n"
       "<SwissKnife Name=\"C\"><pVariable Name=\"V\">A</pVariable><Formula>V</Formula></SwissKnife>",
       {"read cycle", "A -> B -> C -> A", "pVariable", "line 5"}},
      {"category cycle",
       "<Category Name=\"Root\"><pFeature>Sub</pFeature></Category>\n<Category "
       "Name=\"Sub\"><pFeature>Root</pFeature></Category>",
       {"read cycle", "Root -> Sub -> Root"}},
      {"port of another kind",
       "<Integer Name=\"P\"><Value>1</Value></Integer>\n<Register "
       "Name=\"X\"><Length>1</Length><pPort>P</pPort></Register>",
       {"pPort", "line 4", "P (Integer"}},
  };
  for (const HostileRow& row : rows) {
    const std::string error = ErrorOf(Description(row.nodes));
    for (const char* const text : row.mentioned)
      EXPECT_NE(error.find(text), std::string::npos) << row.name << ": '" << text << "' is not in: " << error;
  }
}

TEST(Loading, AFormulaRefersToANodeThatMustExist) {
  EXPECT_NE(
      ErrorOf(Description("<SwissKnife Name=\"X\"><pVariable Name=\"V\">Y</pVariable><Formula>V</Formula>"
                          "</SwissKnife>"))
          .find("dangling"),
      std::string::npos);
}

TEST(Loading, WrongDocumentsAreRefused) {
  EXPECT_NE(ErrorOf("").find("Error while parsing"), std::string::npos);
  EXPECT_NE(ErrorOf("hello").find("Error while parsing"), std::string::npos);
  EXPECT_NE(ErrorOf("<Other/>").find("'Other' at line 1"), std::string::npos);
  EXPECT_NE(ErrorOf("<RegisterDescription SchemaMajorVersion=\"2\" SchemaMinorVersion=\"0\"/>").find("2.0"),
            std::string::npos);
  EXPECT_NE(ErrorOf("<RegisterDescription MajorVersion=\"x\"/>").find("MajorVersion"), std::string::npos);
  EXPECT_NE(ErrorOf("<RegisterDescription>\n<Integer Name=\"X\">\n<Value>1</Integer>")
                .find("line 3 in element 'Value'"),
            std::string::npos)
      << ErrorOf("<RegisterDescription>\n<Integer Name=\"X\">\n<Value>1</Integer>");
}

// A description cut anywhere either fails cleanly or, once the last tag is there, loads.
TEST(Loading, TruncationAtEveryPlaceIsAnError) {
  const std::string whole = Description(
      Register("IntReg", "R", 0x10, 4) + "<Integer Name=\"I\"><!-- c --><pValue>R</pValue></Integer>" +
      "<Enumeration Name=\"E\"><EnumEntry "
      "Name=\"A\"><Value>0</Value></EnumEntry><Value><![CDATA[0]]></Value></Enumeration>");
  const std::size_t end = whole.rfind('>');
  for (std::size_t length = 0; length < end; ++length)
    ASSERT_NE(ErrorOf(whole.substr(0, length)), "no error") << whole.substr(0, length);
  EXPECT_EQ(ErrorOf(whole.substr(0, end + 1)), "no error");
}

// One damaged byte must never do worse than an exception.
TEST(Loading, DamageAtEveryPlaceIsSurvived) {
  const std::string whole = Description(Register("IntReg", "R", 0x10, 4) +
                                        "<IntSwissKnife Name=\"K\"><pVariable Name=\"A\">R</pVariable>"
                                        "<Formula>A&lt;&lt;2</Formula></IntSwissKnife>");
  for (std::size_t at = 0; at < whole.size(); ++at) {
    for (const char c : {'\0', '<', '&', '9', '\xFF'}) {
      std::string damaged = whole;
      damaged[at] = c;
      try {
        CNodeMapRef map;
        map._LoadXMLFromString(gcstring(damaged.data(), damaged.size()));
        MemoryPort port;
        map._Connect(&port);
        if (CValuePtr value = map._GetNode("K")) value->ToString();
      } catch (const GenericException&) {
        continue;
      }
    }
  }
}

TEST(Loading, DepthDoesNotExhaustTheStack) {
  constexpr int kDepth = 50000;
  std::string groups;
  for (int i = 0; i < kDepth; ++i) groups += "<Group>";
  std::string closing;
  for (int i = 0; i < kDepth; ++i) closing += "</Group>";
  EXPECT_NE(ErrorOf(Description(groups + closing)).find("Group at line 3"), std::string::npos);

  std::string chain;
  for (int i = 0; i < kDepth; ++i)
    chain += "<Integer Name=\"N" + std::to_string(i) + "\"><pValue>N" + std::to_string(i + 1) +
             "</pValue></Integer>\n";
  chain += "<Integer Name=\"N" + std::to_string(kDepth) + "\"><Value>1</Value></Integer>";
  Camera camera(chain);
  EXPECT_THROW(camera.Access("N0"), RuntimeException);
  EXPECT_THROW(camera.Integer("N0").GetValue(), RuntimeException);
  EXPECT_THROW(camera.Integer("N0").GetUnit(), RuntimeException);
  EXPECT_THROW(camera.Node("N0").GetCachingMode(), RuntimeException);
  EXPECT_EQ(camera.Integer("N49990").GetValue(), 1);
  EXPECT_NO_THROW(camera.Integer(("N" + std::to_string(kDepth)).c_str()).SetValue(2));
}

TEST(Loading, ImpossibleRegistersThrowOnUse) {
  Camera camera(
      Register("IntReg", "Nine", 0, 9) + Register("FloatReg", "Three", 0, 3) +
      Register("Register", "Negative", 0, -1) + Register("MaskedIntReg", "Bits", 0, 2, "<Bit>16</Bit>") +
      "<Register "
      "Name=\"Huge\"><Address>0</Address><Length>0x7FFFFFFFFFFFFFFF</Length><AccessMode>RW</AccessMode>"
      "<pPort>Device</pPort></Register>");
  EXPECT_THROW(camera.Integer("Nine").GetValue(), OutOfRangeException);
  EXPECT_THROW(camera.Float("Three").GetValue(), OutOfRangeException);
  EXPECT_THROW(camera.Text("Negative"), OutOfRangeException);
  EXPECT_THROW(camera.Text("Huge"), OutOfRangeException);
  EXPECT_THROW(camera.Integer("Bits").GetValue(), OutOfRangeException);
}

TEST(Loading, UsualSloppinessIsTolerated) {
  EXPECT_EQ(ErrorOf("\xEF\xBB\xBF" + Description("")), "no error");
  EXPECT_EQ(ErrorOf(" \n" + Description("")), "no error");
  EXPECT_EQ(ErrorOf(Description("") + std::string(1000, '\0')), "no error");
  EXPECT_EQ(ErrorOf(Description("") + "rubbish"), "no error");
  EXPECT_EQ(ErrorOf("<RegisterDescription/>"), "no error");
  Camera camera(
      "<Group Comment=\"g\"><Group><Integer Name=\"I\" "
      "NameSpace=\"Standard\"><Representation>HexNumber</Representation>"
      "<Unknown>1</Unknown><Extension><Value>99</Value><Integer Name=\"I\"/></Extension><ToolTip>\xB5 and "
      "\xC2\xB0</ToolTip>"
      "<Value> 0xFFFFFFFFFFFFFFFF </Value></Integer></Group></Group>"
      "<Integer Name=\"J\"><pValue> I "
      "</pValue><pInvalidator>Missing</pInvalidator><pSelected>Missing</pSelected></Integer>"
      "<Category Name=\"Root\"><pFeature>Missing</pFeature><pFeature>J</pFeature></Category>"
      "<Integer Name=\"1-odd name\"><Value>1</Value></Integer>"
      "<IntReg "
      "Name=\"R\"><Address>0</Address><Length>2</Length><AccessMode/><Endianess/><pPort>Device</pPort></"
      "IntReg>"
      "<SwissKnife Name=\"K\"><Formula>1 <!-- and --> + <![CDATA[2]]></Formula></SwissKnife>");
  EXPECT_EQ(camera.Integer("J").GetValue(), -1);
  EXPECT_EQ(camera.Node("I").GetToolTip(), "\xC2\xB5 and \xC2\xB0");
  EXPECT_EQ(camera.Node("I").GetDescription(), "");
  EXPECT_EQ(camera.Node("I").GetDisplayName(), "I");
  EXPECT_NE(camera.map._GetNode("1-odd name"), nullptr);
  EXPECT_EQ(camera.Access("R"), RO);
  EXPECT_EQ(camera.Float("K").GetValue(), 3);
}

// What an entry of a structure does not say itself, the structure says for it.
TEST(Loading, EntriesTakeOverWhatTheirStructureSays) {
  Camera camera(
      "<StructReg Comment=\"s\"><ToolTip>of "
      "all</ToolTip><Visibility>Guru</Visibility><pIsLocked>Lock</pIsLocked>"
      "<Streamable>Yes</Streamable><Address>0x100</Address><pIndex pOffset=\"Eight\">One</pIndex>"
      "<IntSwissKnife Name=\"Part\"><pVariable "
      "Name=\"V\">One</pVariable><Formula>V*2</Formula></IntSwissKnife>"
      "<Length>2</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable>"
      "<PollingTime>40</PollingTime><pInvalidator>One</pInvalidator><Endianess>BigEndian</Endianess>"
      "<StructEntry Name=\"Plain\"><LSB>15</LSB><MSB>8</MSB></StructEntry>"
      "<StructEntry Name=\"Own\"><ToolTip>its own</ToolTip><Visibility>Expert</Visibility>"
      "<pIsLocked>Open</pIsLocked><AccessMode>RO</AccessMode><Cachable>WriteAround</Cachable>"
      "<PollingTime>80</PollingTime><Streamable>No</Streamable><Bit>15</Bit><Sign>Signed</Sign></StructEntry>"
      "</StructReg>"
      "<Integer Name=\"One\"><Value>1</Value></Integer><Integer Name=\"Eight\"><Value>8</Value></Integer>"
      "<Integer Name=\"Lock\"><Value>1</Value></Integer><Integer Name=\"Open\"><Value>0</Value></Integer>");
  for (const char* const name : {"Plain", "Own"}) {
    EXPECT_EQ(camera.As<IRegister>(name).GetAddress(), 0x10A) << name;
    EXPECT_EQ(camera.As<IRegister>(name).GetLength(), 2) << name;
  }
  INode& plain = camera.Node("Plain");
  INode& own = camera.Node("Own");
  EXPECT_EQ(plain.GetToolTip(), "of all");
  EXPECT_EQ(own.GetToolTip(), "its own");
  EXPECT_EQ(plain.GetVisibility(), Guru);
  EXPECT_EQ(own.GetVisibility(), Expert);
  EXPECT_EQ(plain.GetAccessMode(), RO) << "locked";
  EXPECT_EQ(own.GetAccessMode(), RO) << "by itself";
  camera.Integer("Lock").SetValue(0);
  EXPECT_EQ(plain.GetAccessMode(), RW);
  EXPECT_EQ(plain.GetCachingMode(), NoCache);
  EXPECT_EQ(own.GetCachingMode(), WriteAround);
  EXPECT_EQ(plain.GetPollingTime(), 40);
  EXPECT_EQ(own.GetPollingTime(), 80);
  EXPECT_TRUE(plain.IsStreamable());
  EXPECT_FALSE(own.IsStreamable());
  camera.port.Set(0x10A, {0x12, 0x35});
  EXPECT_EQ(camera.Integer("Plain").GetValue(), 0x35);
  EXPECT_EQ(camera.Integer("Own").GetValue(), -1);
  NodeList_t invalidating;
  plain.GetChildren(invalidating, ctInvalidatingChildren);
  EXPECT_NE(std::find(invalidating.begin(), invalidating.end(), &camera.Node("One")), invalidating.end());
  EXPECT_EQ(camera.map._GetNode("StructReg"), nullptr);
  EXPECT_NE(camera.map._GetNode("_Plain_Part"), nullptr);
  EXPECT_NE(camera.map._GetNode("_Own_Part"), nullptr);
}

TEST(Loading, NamesMayBeQualified) {
  Camera camera(
      "<Integer Name=\"I\" NameSpace=\"Standard\"><Value>1</Value></Integer><Integer "
      "Name=\"J\"><Value>1</Value></Integer>");
  EXPECT_NE(camera.map._GetNode("Std::I"), nullptr);
  EXPECT_EQ(camera.map._GetNode("Cust::I"), nullptr);
  EXPECT_NE(camera.map._GetNode("Cust::J"), nullptr);
  EXPECT_EQ(camera.map._GetNode("i"), nullptr);
  EXPECT_EQ(camera.Node("I").GetName(true), "Std::I");
  NodeList_t nodes;
  camera.map._GetNodes(nodes);
  ASSERT_EQ(nodes.size(), 3U);
  EXPECT_EQ(nodes[0]->GetName(), "I");
  EXPECT_EQ(nodes[2]->GetName(), "Device");
}

TEST(Loading, TheMapKnowsItsDevice) {
  Camera camera("");
  CDeviceInfoPtr info(camera.map._Ptr);
  EXPECT_EQ(info->GetModelName(), "Model");
  EXPECT_EQ(info->GetVendorName(), "Vendor");
  EXPECT_EQ(info->GetStandardNameSpace(), "None");
  EXPECT_EQ(info->GetToolTip(), "Tip");
  Version_t version;
  info->GetDeviceVersion(version);
  EXPECT_EQ(version.SubMinor, 3);
  info->GetSchemaVersion(version);
  EXPECT_EQ(version.Minor, 1);
  EXPECT_EQ(camera.map._GetDeviceName(), "Device");
  EXPECT_THROW(camera.map._LoadXMLFromString("<RegisterDescription/>"), RuntimeException);
}

// Archives

std::string Zip(const std::vector<std::pair<std::string, std::string>>& entries) {
  zip_error_t error;
  zip_error_init(&error);
  zip_source_t* const target = zip_source_buffer_create(nullptr, 0, 0, &error);
  zip_source_keep(target);
  zip_t* const archive = zip_open_from_source(target, ZIP_TRUNCATE, &error);
  for (const auto& [name, content] : entries)
    zip_file_add(archive, name.c_str(), zip_source_buffer(archive, content.data(), content.size(), 0), 0);
  EXPECT_EQ(zip_close(archive), 0);
  zip_source_open(target);
  std::string bytes(64U << 20, '\0');
  bytes.resize(static_cast<std::size_t>(zip_source_read(target, bytes.data(), bytes.size())));
  zip_source_close(target);
  zip_source_free(target);
  return bytes;
}

std::string ZipErrorOf(const std::string& data) {
  try {
    CNodeMapRef map;
    map._LoadXMLFromZIPData(data.data(), data.size());
  } catch (const GenericException& error) {
    return error.GetDescription();
  }
  return "no error";
}

TEST(ZippedLoading, TakesTheXmlFile) {
  const std::string zip =
      Zip({{"readme.txt", "hello"},
           {"a/Camera.XML", Description("<Integer Name=\"Zipped\"><Value>1</Value></Integer>")}});
  CNodeMapRef map;
  map._LoadXMLFromZIPData(zip.data(), zip.size());
  EXPECT_NE(map._GetNode("Zipped"), nullptr);
  EXPECT_EQ(ZipErrorOf(zip + std::string(4096, '\0')), "no error");
  EXPECT_EQ(ZipErrorOf(Zip({{"noextension", Description("")}})), "no error");
}

TEST(ZippedLoading, RecognisesArchivesByTheirContent) {
  const std::string zip = Zip({{"x.xml", Description("")}});
  const std::string path = testing::TempDir() + "zyn_genapi_misnamed.xml";
  std::ofstream(path, std::ios::binary) << zip;
  CNodeMapRef fromFile;
  EXPECT_NO_THROW(fromFile._LoadXMLFromFile(path.c_str()));
  CNodeMapRef fromZipFile;
  EXPECT_NO_THROW(fromZipFile._LoadXMLFromZIPFile(path.c_str()));
  std::remove(path.c_str());
  CNodeMapRef missing;
  EXPECT_THROW(missing._LoadXMLFromFile(path.c_str()), RuntimeException);
}

TEST(ZippedLoading, WhatWasToleratedInAnArchiveCanBeAskedFor) {
  const std::string good = Zip({{"x.xml", Description("")}});
  const struct {
    const char* name;
    EContentType_t type;
    std::string bytes;
    const char* note;
  } rows[] = {
      {"nothing", ContentType_ZippedXml, good, nullptr},
      {"zeros behind", ContentType_ZippedXml, good + std::string(100, '\0'), nullptr},
      {"erased memory behind", ContentType_ZippedXml, good + std::string(100, '\xFF'), nullptr},
      {"rubbish behind", ContentType_ZippedXml, good + "rubbish", "What follows the zip archive was skipped"},
      {"another name", ContentType_ZippedXml, Zip({{"x.txt", Description("")}}),
       "The zip archive holds no file ending in .xml; the first file was taken"},
      {"a wrong type", ContentType_Xml, good, "A zip archive stood where a text was expected"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    CNodeMapFactory factory(row.type, row.bytes.data(), row.bytes.size());
    CNodeMapRef map(factory.CreateNodeMap());
    gcstring_vector notes;
    dynamic_cast<ILoadNotes&>(*map._Ptr).GetLoadNotes(notes);
    ASSERT_EQ(notes.size(), row.note ? 1U : 0U);
    if (row.note) {
      EXPECT_STREQ(notes[0].c_str(), row.note);
    }
  }
}

TEST(ZippedLoading, RefusesDamageAndBombs) {
  EXPECT_NE(ZipErrorOf(Description("")), "no error");
  EXPECT_NE(ZipErrorOf(""), "no error");
  EXPECT_NE(ZipErrorOf(Zip({{"empty/", ""}})), "no error");
  const std::string bomb = Zip({{"x.xml", std::string(std::size_t{65} << 20, ' ')}});
  EXPECT_LT(bomb.size(), 1U << 20);
  EXPECT_NE(ZipErrorOf(bomb).find("unpacks to more than"), std::string::npos);
  const std::string good = Zip({{"x.xml", Description(std::string(500, ' '))}});
  for (std::size_t length = 0; length < good.size(); ++length)
    ASSERT_NE(ZipErrorOf(good.substr(0, length)), "no error") << length;
}

}  // namespace
