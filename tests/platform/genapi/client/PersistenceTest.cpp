// Settings as texts.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "../MemoryPort.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

std::string Streamable(const std::string& kind, const char* name, const std::string& rest) {
  return "<" + kind + " Name=\"" + name + "\"><Streamable>Yes</Streamable>" + rest + "</" + kind + ">";
}

// Every kind that can be saved, and what must not be.
std::string Nodes() {
  return "<Category Name=\"Root\"><pFeature>Sel</pFeature><pFeature>Sub</pFeature><pFeature>Fixed</pFeature>"
         "<pFeature>Gone</pFeature><pFeature>NotStreamable</pFeature><pFeature>C</pFeature></Category>"
         "<Category Name=\"Sub\"><pFeature>I</pFeature><pFeature>F</pFeature><pFeature>E</pFeature>"
         "<pFeature>B</pFeature><pFeature>Hx</pFeature><pFeature>S</pFeature><pFeature>R</pFeature>"
         "<pFeature>Gain</pFeature><pFeature>I</pFeature></Category>" +
         Streamable("Integer", "I", "<Value>5</Value>") + Streamable("Float", "F", "<Value>0.1</Value>") +
         Streamable("Enumeration", "E",
                    "<EnumEntry Name=\"x\"><Value>0</Value></EnumEntry><EnumEntry Name=\"y\"><Value>1</Value>"
                    "</EnumEntry><Value>1</Value>") +
         Streamable("Boolean", "B", "<Value>true</Value>") +
         Streamable("Integer", "Hx", "<Value>255</Value><Representation>HexNumber</Representation>") +
         Streamable("String", "S", "<Value>a b</Value>") +
         Register("Register", "R", 0x20, 2, "<Streamable>Yes</Streamable>") +
         Streamable("Integer", "Fixed", "<ImposedAccessMode>RO</ImposedAccessMode><Value>5</Value>") +
         Streamable("Integer", "Gone", "<pIsAvailable>Zero</pIsAvailable><Value>5</Value>") +
         Streamable("Command", "C", "<Value>5</Value><CommandValue>1</CommandValue>") +
         "<Integer Name=\"Zero\"><Value>0</Value></Integer><Integer "
         "Name=\"NotStreamable\"><Value>5</Value></Integer>"
         "<Enumeration Name=\"Sel\"><Streamable>Yes</Streamable><EnumEntry "
         "Name=\"A\"><Value>0</Value></EnumEntry>"
         "<EnumEntry "
         "Name=\"B\"><Value>1</Value></EnumEntry><Value>1</Value><pSelected>Gain</pSelected></Enumeration>"
         "<IntReg Name=\"Gain\"><Address>0</Address><pIndex Offset=\"4\">Sel</pIndex><Length>4</Length>"
         "<AccessMode>RW</AccessMode><pPort>Device</pPort><Streamable>Yes</Streamable></IntReg>";
}

const char* const kStored =
    "I\t5\nF\t0.1\nE\ty\nB\t1\nHx\t0xff\nS\ta b\nR\t0x0000\n"
    "Gain\t{Sel=A}\t0\nGain\t{Sel=B}\t0\nSel\tB\n";

CFeatureBag BagOf(const std::string& lines) {
  std::istringstream file("# " GENAPI_PERSISTENCE_MAGIC "\n" + lines);
  CFeatureBag bag;
  file >> bag;
  return bag;
}

TEST(Persistence, StoresWhatIsStreamableAndWritableOncePerSelection) {
  Camera camera(Nodes());
  CFeatureBag bag;
  EXPECT_EQ(bag.StoreToBag(camera.map._Ptr), 10);
  EXPECT_EQ(bag.ToString(), kStored);
  EXPECT_EQ(camera.Text("Sel"), "B");
  std::ostringstream file;
  file << bag;
  EXPECT_EQ(
      file.str(),
      std::string("# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n# GenApi persistence file (version 3.4.0)\n"
                  "# Device = Vendor::Model -- Tip -- Device version = 1.2.3 -- Product GUID = P -- Product "
                  "version GUID = V\n") +
          kStored);
}

TEST(Persistence, LoadsBackWhatWasStored) {
  Camera camera(Nodes());
  camera.port.Set(0, {1, 0, 0, 0, 2, 0, 0, 0});
  camera.port.Set(0x20, {0xAB, 0xCD});
  camera.Float("F").SetValue(1.0 / 3);
  CFeatureBag stored;
  stored.StoreToBag(camera.map._Ptr);
  std::stringstream file;
  file << stored;
  CFeatureBag read;
  file >> read;
  EXPECT_TRUE(read == stored);
  Camera other(Nodes());
  EXPECT_FALSE(read == BagOf("I\t5\n"));
  gcstring_vector errors;
  EXPECT_TRUE(read.LoadFromBag(other.map._Ptr, true, &errors)) << (errors.empty() ? "" : errors[0].c_str());
  EXPECT_EQ(other.port.bytes[0], 1);
  EXPECT_EQ(other.port.bytes[4], 2);
  EXPECT_EQ(other.port.bytes[0x21], 0xCD);
  EXPECT_EQ(other.Float("F").GetValue(), 1.0 / 3) << "more digits are stored than shown";
  EXPECT_EQ(other.Text("Sel"), "B");
}

TEST(Persistence, LineEndsCommentsAndBlanksAreTolerated) {
  Camera camera(Nodes());
  const CFeatureBag bag = BagOf("# comment\r\n\r\n  I \t7\r\nGain\t{ Sel=A}\t9\r\nS\twith\ttab\r\n");
  EXPECT_TRUE(CFeatureBag(bag).LoadFromBag(camera.map._Ptr));
  EXPECT_EQ(camera.Text("I"), "7");
  EXPECT_EQ(camera.port.bytes[0], 9);
  EXPECT_EQ(camera.Text("S"), "with\ttab");
  camera.Value("B").FromString("0");
  EXPECT_TRUE(BagOf("B\ttrue\n").LoadFromBag(camera.map._Ptr)) << "another way to write it";
  EXPECT_EQ(camera.Text("B"), "1");
}

TEST(Persistence, OtherTextsAreRefusedAndLeaveTheBag) {
  CFeatureBag bag = BagOf("I\t7\n");
  for (const char* const text : {"", "I\t5\n", "# {another}\nI\t5\n"}) {
    std::istringstream file(text);
    EXPECT_THROW(file >> bag, RuntimeException) << text;
  }
  for (const char* const line : {"no tabulator", "\tvalue", "I\t{Sel=A\t5", "I\t{Sel}\t5"})
    EXPECT_THROW(BagOf(line), RuntimeException) << line;
  EXPECT_EQ(bag.ToString(), "I\t7\n");
}

TEST(Persistence, LoadingCollectsErrorsAndGoesOn) {
  Camera camera(Nodes());
  CFeatureBag bag = BagOf("Missing\t1\nFixed\t1\nE\tz\nGain\t{Sel=Q}\t4\nI\t8\nNotStreamable\t9\n");
  gcstring_vector errors;
  EXPECT_FALSE(bag.LoadFromBag(camera.map._Ptr, true, &errors));
  EXPECT_FALSE(bag.LoadFromBag(camera.map._Ptr));
  ASSERT_EQ(errors.size(), 4U);
  EXPECT_EQ(errors[0], "Error while writing node: 'Missing' not found");
  EXPECT_NE(std::string(errors[1].c_str()).find("'Fixed': Node is not writable"), std::string::npos);
  EXPECT_EQ(camera.Text("I"), "8");
  EXPECT_EQ(camera.Text("NotStreamable"), "9");
}

// Limits that depend on each other must not depend on the order of the lines.
TEST(Persistence, OrderDoesNotMatterAndLimitsAreCheckedInTheEnd) {
  const std::string nodes =
      "<Integer Name=\"Width\"><Value>100</Value><Min>1</Min><pMax>Room</pMax></Integer>"
      "<IntSwissKnife Name=\"Room\"><pVariable "
      "Name=\"O\">Offset</pVariable><Formula>100-O</Formula></IntSwissKnife>"
      "<Integer Name=\"Offset\"><Value>0</Value></Integer>"
      "<Integer Name=\"Late\"><Value>0</Value><pIsLocked>Lock</pIsLocked></Integer>"
      "<Integer Name=\"Lock\"><Value>1</Value></Integer>";
  Camera camera(nodes);
  camera.Integer("Offset").SetValue(80);
  EXPECT_TRUE(BagOf("Width\t60\nLate\t3\nOffset\t40\nLock\t0\n").LoadFromBag(camera.map._Ptr));
  EXPECT_EQ(camera.Text("Width"), "60");
  EXPECT_EQ(camera.Text("Late"), "3") << "what was locked at first is tried again";
  gcstring_vector errors;
  EXPECT_FALSE(BagOf("Width\t61\n").LoadFromBag(camera.map._Ptr, true, &errors));
  ASSERT_EQ(errors.size(), 1U);
  EXPECT_NE(std::string(errors[0].c_str()).find("Max = 60"), std::string::npos) << errors[0].c_str();
  EXPECT_TRUE(BagOf("Width\t61\n").LoadFromBag(camera.map._Ptr, false));
}

TEST(Persistence, CheckingDoesNotMoveTheSelectors) {
  Camera camera(Nodes());
  EXPECT_TRUE(BagOf("Gain\t{Sel=A}\t1\nGain\t{Sel=B}\t2\nSel\tA\n").LoadFromBag(camera.map._Ptr));
  EXPECT_EQ(camera.Text("Sel"), "A");
  EXPECT_EQ(camera.port.bytes[4], 2);
}

TEST(Persistence, FiltersAndLimitsWhatIsStored) {
  Camera camera(Nodes());
  CFeatureBag bag;
  gcstring_vector filter;
  filter.push_back("B");
  filter.push_back("Gain");
  EXPECT_EQ(bag.StoreToBag(camera.map._Ptr, -1, &filter), 3);
  EXPECT_EQ(bag.ToString(), "B\t1\nGain\t{Sel=A}\t0\nGain\t{Sel=B}\t0\n");
  EXPECT_EQ(bag.StoreToBag(camera.map._Ptr, 2), 2);
  EXPECT_EQ(bag.StoreToBag(camera.map._Ptr, 0), 0);
  EXPECT_EQ(camera.Text("Sel"), "B");
}

TEST(Persistence, InnerSelectorsAreStoredBeforeOuterOnes) {
  Camera camera(
      "<Category Name=\"Root\"><pFeature>Outer</pFeature><pFeature>Inner</pFeature><pFeature>F</pFeature>"
      "</Category>" +
      Streamable("Boolean", "Outer", "<Value>1</Value><pSelected>Inner</pSelected>") +
      Streamable("Boolean", "Inner", "<Value>0</Value><pSelected>F</pSelected>") +
      Streamable("Integer", "F", "<Value>3</Value>"));
  CFeatureBag bag;
  bag.StoreToBag(camera.map._Ptr);
  EXPECT_EQ(bag.ToString(),
            "F\t{Outer=0\tInner=0}\t3\nF\t{Outer=0\tInner=1}\t3\nF\t{Outer=1\tInner=0}\t3\n"
            "F\t{Outer=1\tInner=1}\t3\nInner\t{Outer=0}\t0\nInner\t{Outer=1}\t0\nOuter\t1\n");
}

TEST(Persistence, DevicesThatWantToKnowAreToldBeforeAndAfter) {
  std::string nodes = Nodes();
  int address = 0x40;
  for (const char* const name : {"DeviceFeaturePersistenceStart", "DeviceFeaturePersistenceEnd",
                                 "DeviceRegistersStreamingStart", "DeviceRegistersStreamingEnd"}) {
    nodes += Register("IntReg", (std::string(name) + "Reg").c_str(), address, 4) + "<Command Name=\"" + name +
             "\"><pValue>" + name + "Reg</pValue><CommandValue>1</CommandValue></Command>";
    address += 4;
  }
  Camera camera(nodes);
  CFeatureBag bag;
  bag.StoreToBag(camera.map._Ptr);
  EXPECT_EQ(camera.port.bytes[0x40] + camera.port.bytes[0x44], 2);
  EXPECT_EQ(camera.port.bytes[0x48] + camera.port.bytes[0x4C], 0);
  bag.LoadFromBag(camera.map._Ptr);
  EXPECT_EQ(camera.port.bytes[0x48] + camera.port.bytes[0x4C], 2);
}

TEST(Persistence, ValuesStayOnOneLine) {
  Camera camera(Nodes());
  camera.Value("S").FromString("two\r\nlines");
  CFeatureBag bag;
  gcstring_vector filter(1, "S");
  bag.StoreToBag(camera.map._Ptr, -1, &filter);
  EXPECT_EQ(bag.ToString(), "S\ttwo  lines\n");
  bag.LoadFromBag(camera.map._Ptr);
  EXPECT_EQ(camera.Text("S"), "two\r\nlines") << "the bag itself keeps the value";
}

TEST(Persistence, BagsCanBeCopiedNamedAndToldAbout) {
  CFeatureBag bag = BagOf("# GenApi persistence file (version 3.4.0)\n# my camera\nI\t7\n");
  bag.SetBagName("name");
  CFeatureBag copy(bag);
  CFeatureBag assigned;
  assigned = copy;
  EXPECT_TRUE(assigned == bag);
  EXPECT_EQ(assigned.GetBagName(), "name");
  std::ostringstream file;
  file << assigned;
  EXPECT_NE(file.str().find("\n# my camera\n"), std::string::npos);
  assigned.SetInfo("other");
  std::ostringstream second;
  second << assigned;
  EXPECT_NE(second.str().find("\n# other\n"), std::string::npos);
  EXPECT_THROW(bag.StoreToBag(nullptr), InvalidArgumentException);
  EXPECT_THROW(bag.LoadFromBag(nullptr), InvalidArgumentException);
}

}  // namespace
