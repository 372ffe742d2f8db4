#include <gtest/gtest.h>

#include "../MemoryPort.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

// Nodes in every access mode, as targets of conditions.
std::string Targets() {
  return Register("IntReg", "Zero", 0x10, 1) + Register("IntReg", "Two", 0x11, 1) +
         Register("IntReg", "WriteOnly", 0x12, 1, "", "WO") +
         "<Integer Name=\"Never\"><Value>1</Value><pIsImplemented>False</pIsImplemented></Integer>"
         "<Integer Name=\"NotNow\"><Value>1</Value><pIsAvailable>False</pIsAvailable></Integer>"
         "<Integer Name=\"False\"><Value>0</Value></Integer>"
         "<Boolean Name=\"Truth\"><Value>true</Value></Boolean>"
         "<Float Name=\"Tiny\"><Value>0.4</Value></Float><Float Name=\"Huge\"><Value>1e30</Value></Float>"
         "<Enumeration Name=\"NoError\"><pIsImplemented>False</pIsImplemented><EnumEntry Name=\"A\"><Value>0"
         "</Value></EnumEntry><Value>0</Value></Enumeration>"
         "<Enumeration Name=\"OneCountsZero\"><EnumEntry Name=\"A\"><Value>1</Value>"
         "<NumericValue>0</NumericValue></EnumEntry><Value>1</Value></Enumeration>"
         "<Enumeration Name=\"ZeroCountsOne\"><EnumEntry Name=\"A\"><Value>0</Value>"
         "<NumericValue>1</NumericValue></EnumEntry><Value>0</Value></Enumeration>";
}

struct AccessRow {
  const char* elements;
  EAccessMode expected;
};

TEST(AccessMode, ConditionsRestrictIt) {
  const AccessRow rows[] = {
      {"", RW},
      {"<ImposedAccessMode>RO</ImposedAccessMode>", RO},
      {"<pIsImplemented>Two</pIsImplemented>", RW},
      {"<pIsImplemented>Zero</pIsImplemented>", NI},
      {"<pIsImplemented>Never</pIsImplemented>", NI},
      {"<pIsImplemented>NotNow</pIsImplemented>", NA},
      {"<pIsImplemented>WriteOnly</pIsImplemented>", NA},
      {"<pIsAvailable>Zero</pIsAvailable>", NA},
      {"<pIsAvailable>Never</pIsAvailable>", NI},
      {"<pIsAvailable>WriteOnly</pIsAvailable>", NA},
      {"<pIsAvailable>Truth</pIsAvailable>", RW},
      {"<pIsLocked>Two</pIsLocked>", RO},
      {"<pIsLocked>Truth</pIsLocked>", RO},
      {"<pIsLocked>Zero</pIsLocked>", RW},
      {"<pIsLocked>Never</pIsLocked>", NI},
      // any number but zero, and of an enumeration the value that the device holds
      {"<pIsLocked>Tiny</pIsLocked>", RO},
      {"<pIsLocked>Huge</pIsLocked>", RO},
      {"<pIsLocked>OneCountsZero</pIsLocked>", RO},
      {"<pIsLocked>ZeroCountsOne</pIsLocked>", RW},
      {"<pIsLocked>NotNow</pIsLocked>", NA},
      {"<pIsImplemented>NotNow</pIsImplemented><pIsAvailable>Never</pIsAvailable>", NI},
      {"<pMin>NotNow</pMin>", NA},
      {"<pMin>Never</pMin>", NI},
      {"<pMin>WriteOnly</pMin>", RW},
      // what is only mentioned says nothing about access
      {"<pAlias>Never</pAlias>", RW},
      {"<pCastAlias>NotNow</pCastAlias>", RW},
      {"<pInvalidator>Never</pInvalidator>", RW},
      {"<pSelected>Never</pSelected>", RW},
      {"<pError>NoError</pError>", RW},
  };
  for (const AccessRow& row : rows) {
    SCOPED_TRACE(row.elements);
    Camera camera(Targets() + "<Integer Name=\"I\"><Value>1</Value>" + row.elements + "</Integer>");
    camera.port.bytes[0x11] = 2;
    EXPECT_EQ(camera.Access("I"), row.expected);
  }
}

TEST(AccessMode, AWriteOnlyLimitThrowsOnlyWhenItIsRead) {
  Camera camera(Targets() + "<Integer Name=\"I\"><Value>1</Value><pMin>WriteOnly</pMin></Integer>");
  EXPECT_EQ(camera.Integer("I").GetValue(), 1);
  EXPECT_THROW(camera.Integer("I").GetMin(), AccessException);
}

TEST(AccessMode, HelpersThatMustBeReadMakeWriteOnlyMeanNotAvailable) {
  Camera camera(Targets() +
                "<Command Name=\"C\"><Value>0</Value><pCommandValue>WriteOnly</pCommandValue></Command>"
                "<Integer Name=\"I\"><pIndex>WriteOnly</pIndex><ValueIndexed Index=\"0\">1</ValueIndexed>"
                "<ValueDefault>2</ValueDefault></Integer>");
  EXPECT_EQ(camera.Access("C"), NA);
  EXPECT_EQ(camera.Access("I"), NA);
}

TEST(AccessMode, RegistersAreNotImplementedUntilConnected) {
  Camera camera(Targets());
  EXPECT_EQ(camera.Access("Two"), RW);
  camera.map._Connect(static_cast<IPort*>(nullptr));
  EXPECT_EQ(camera.Access("Two"), NI);
  camera.port.mode = RO;
  camera.map._Connect(&camera.port);
  EXPECT_EQ(camera.Access("Two"), RO);
  EXPECT_FALSE(camera.map._Connect(&camera.port, "Nothing"));
  EXPECT_FALSE(camera.map._Connect(&camera.port, "Two"));
}

TEST(AccessMode, PortsOfChunksAndEventsWaitForTheirAdapter) {
  Camera camera(
      "<Port Name=\"Chunk\"><ChunkID>0A</ChunkID></Port><Port Name=\"Event\"><EventID>9001</EventID></Port>");
  EXPECT_EQ(camera.Access("Chunk"), NA);
  EXPECT_EQ(camera.Access("Event"), NI);
  EXPECT_EQ(camera.As<IChunkPort>("Chunk").GetChunkID(), "0A");
  EXPECT_EQ(camera.Node("Event").GetEventID(), "9001");
}

TEST(AccessMode, CategoriesFollowTheirFeatures) {
  Camera camera(
      Targets() +
      "<Category Name=\"Root\"><pFeature>Some</pFeature><pFeature>None</pFeature><pFeature>Gone</pFeature>"
      "</Category><Category Name=\"Some\"><Visibility>Guru</Visibility><pIsAvailable>False</pIsAvailable>"
      "<pFeature>NotNow</pFeature></Category><Category Name=\"None\"><pFeature>Never</pFeature></Category>"
      "<Category Name=\"Empty\"/>");
  EXPECT_EQ(camera.Access("Root"), RO);
  EXPECT_EQ(camera.Access("Some"), RO);
  EXPECT_EQ(camera.Access("None"), NI);
  EXPECT_EQ(camera.Access("Empty"), NI);
  EXPECT_EQ(camera.Node("Some").GetVisibility(), Beginner);
  EXPECT_EQ(camera.Node("Empty").GetVisibility(), Invisible);
  FeatureList_t features;
  camera.As<ICategory>("Root").GetFeatures(features);
  EXPECT_EQ(features.size(), 2U);
  EXPECT_EQ(camera.Text("Some"), "Some");
  EXPECT_THROW(camera.Value("Some").FromString("x"), AccessException);
  EXPECT_TRUE(camera.Node("NotNow").IsFeature());
  EXPECT_FALSE(camera.Node("Two").IsFeature());
}

std::string Choice() {
  return Targets() +
         "<Enumeration Name=\"En\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry>"
         "<EnumEntry Name=\"Off\"><pIsAvailable>False</pIsAvailable><Value>1</Value></EnumEntry>"
         "<EnumEntry Name=\"Gone\"><pIsImplemented>False</pIsImplemented><Value>2</Value></EnumEntry>"
         "<EnumEntry Name=\"Twin\"><pIsImplemented>False</pIsImplemented><Value>3</Value></EnumEntry>"
         "<EnumEntry Name=\"RealTwin\"><Value>3</Value></EnumEntry>"
         "<EnumEntry "
         "Name=\"Self\"><pIsAvailable>En</pIsAvailable><Value>4</Value></EnumEntry>"
         "<EnumEntry Name=\"Far\"><pIsAvailable>FarFromEn</pIsAvailable><Value>5</Value></EnumEntry>"
         "<pValue>Two</pValue></Enumeration><Boolean Name=\"FarFromEn\"><pValue>IsThree</pValue></Boolean>"
         "<IntSwissKnife Name=\"IsThree\"><pVariable Name=\"V\">En</pVariable><Formula>V=3</Formula>"
         "</IntSwissKnife>";
}

TEST(AccessMode, EntriesThatCannotBeChosenAreRefused) {
  Camera camera(Choice());
  auto& choice = camera.As<IEnumeration>("En");
  EXPECT_THROW(choice = "Off", AccessException);
  EXPECT_NO_THROW(choice.FromString("Off", false));
  EXPECT_THROW(choice = "Gone", AccessException);
  EXPECT_THROW(choice.FromString("Gone", false), AccessException);
  StringList_t names;
  choice.GetSymbolics(names);
  EXPECT_FALSE(names.contains("Off"));
  NodeList_t entries;
  choice.GetEntries(entries);
  EXPECT_EQ(entries.size(), 7U);
}

TEST(AccessMode, AmongEqualEntriesTheAvailableOneCounts) {
  Camera camera(Choice());
  camera.port.bytes[0x11] = 3;
  EXPECT_EQ(camera.Text("En"), "RealTwin");
}

TEST(AccessMode, AnEntryMayDependOnItsOwnEnumeration) {
  Camera camera(Choice());
  camera.port.bytes[0x11] = 3;
  EXPECT_EQ(camera.Access("EnumEntry_En_Self"), RO);
  EXPECT_EQ(camera.Access("EnumEntry_En_Far"), RO);
  EXPECT_EQ(camera.Access("En"), RW);
  camera.As<IEnumeration>("En") = "A";
  EXPECT_EQ(camera.Access("EnumEntry_En_Self"), NA);
  EXPECT_EQ(camera.Access("EnumEntry_En_Far"), NA);
  // An enumeration needs one entry that may be chosen, and here each asks the enumeration.
  Camera closed(
      Targets() +
      "<Enumeration Name=\"En\"><EnumEntry Name=\"A\"><pIsAvailable>Some</pIsAvailable><Value>3</Value>"
      "</EnumEntry><EnumEntry Name=\"B\"><pIsAvailable>En</pIsAvailable><Value>4</Value></EnumEntry>"
      "<pValue>Two</pValue></Enumeration><Integer Name=\"Some\"><pValue>En</pValue></Integer>");
  closed.port.bytes[0x11] = 3;
  EXPECT_EQ(closed.Access("EnumEntry_En_B"), RO);
  EXPECT_EQ(closed.Access("En"), RW);
  EXPECT_EQ(closed.Access("EnumEntry_En_A"), RO);
  EXPECT_EQ(closed.Text("En"), "A");
}

// What cameras call TLParamsLocked: the program says that it streams, and the description what must not change then.
TEST(AccessMode, AConstantOfTheProgramLocksWhatTheDescriptionSays) {
  Camera camera(
      Register("IntReg", "WidthReg", 0x20, 4) +
      "<Integer Name=\"TLParamsLocked\"><Value>0</Value><Min>0</Min><Max>1</Max></Integer>"
      "<Integer Name=\"Width\"><pIsLocked>TLParamsLocked</pIsLocked><pValue>WidthReg</pValue></Integer>"
      "<Command Name=\"AcquisitionStart\"><pIsAvailable>TLParamsLocked</pIsAvailable>"
      "<pValue>WidthReg</pValue><CommandValue>1</CommandValue></Command>");
  IInteger& locked = camera.Integer("TLParamsLocked");
  EXPECT_EQ(camera.Access("TLParamsLocked"), RW);
  EXPECT_THROW(camera.As<ICommand>("AcquisitionStart").Execute(), AccessException);
  locked.SetValue(1);
  EXPECT_EQ(camera.Access("Width"), RO);
  EXPECT_THROW(camera.Integer("Width").SetValue(100), AccessException);
  EXPECT_NO_THROW(camera.As<ICommand>("AcquisitionStart").Execute());
  EXPECT_THROW(locked.SetValue(2), OutOfRangeException);
  locked.SetValue(0);
  EXPECT_NO_THROW(camera.Integer("Width").SetValue(100));
}

TEST(AccessMode, ErrorsNameTheNodeAndTheCall) {
  Camera camera("<Integer Name=\"I\"><Value>1</Value><ImposedAccessMode>RO</ImposedAccessMode></Integer>");
  try {
    camera.Integer("I").SetValue(2);
    FAIL();
  } catch (const AccessException& error) {
    EXPECT_STREQ(error.GetDescription(), "Node is not writable.");
    EXPECT_NE(std::string(error.what()).find("thrown in node 'I' while calling 'I.SetValue()'"),
              std::string::npos)
        << error.what();
  }
  EXPECT_THROW(camera.Integer("I").SetValue(2, false), AccessException);
}

TEST(AccessMode, AnErrorRegisterTurnsIntoAnException) {
  Camera camera(
      "<Enumeration Name=\"Err\"><EnumEntry Name=\"Ok\"><Value>0</Value></EnumEntry><EnumEntry Name=\"Hot\">"
      "<ToolTip>Let it cool down</ToolTip><DisplayName>Too hot</DisplayName><Value>3</Value></EnumEntry>"
      "<Value>3</Value></Enumeration><Integer Name=\"I\"><pError>Err</pError><Value>1</Value></Integer>");
  EXPECT_NO_THROW(camera.Integer("I").SetValue(2, false));
  try {
    camera.Integer("I").SetValue(2);
    FAIL();
  } catch (const RuntimeException& error) {
    EXPECT_STREQ(error.GetDescription(), "Too hot : Let it cool down");
  }
}

}  // namespace
