#include <gtest/gtest.h>

#include <string>

#include "../MemoryPort.h"
#include "GenApi/ICacheSwitch.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

TEST(Cache, WriteThroughServesReadsAfterAReadOrAWrite) {
  Camera camera(Register("IntReg", "R", 0x10, 4) +
                "<Integer Name=\"I\"><pValue>R</pValue></Integer>"
                "<Float Name=\"F\"><pValue>I</pValue></Float>");
  EXPECT_FALSE(camera.Value("R").IsValueCacheValid());
  camera.Integer("R").GetValue();
  camera.Integer("R").GetValue();
  camera.Integer("I").GetValue();
  camera.Float("F").GetValue();
  EXPECT_EQ(camera.port.reads, 1);
  camera.Integer("I").SetValue(7);
  EXPECT_TRUE(camera.Value("R").IsValueCacheValid());
  EXPECT_EQ(camera.Float("F").GetValue(), 7);
  EXPECT_EQ(camera.Integer("R").GetValue(), 7);
  EXPECT_EQ(camera.port.reads, 1);
  EXPECT_EQ(camera.port.writes, 1);
}

TEST(Cache, WriteAroundReadsOnceAfterAWrite) {
  Camera camera(Register("IntReg", "R", 0x10, 4, "<Cachable>WriteAround</Cachable>"));
  camera.Integer("R").SetValue(7);
  camera.Integer("R").GetValue();
  camera.Integer("R").GetValue();
  EXPECT_EQ(camera.port.reads, 1);
}

TEST(Cache, NoCacheReadsEveryTimeAlsoThroughParents) {
  Camera camera(Register("IntReg", "R", 0x10, 4, "<Cachable>NoCache</Cachable>") +
                "<Integer Name=\"I\"><pValue>R</pValue></Integer>");
  camera.Integer("I").GetValue();
  camera.Integer("I").GetValue();
  camera.Integer("R").GetValue();
  EXPECT_EQ(camera.port.reads, 3);
  EXPECT_EQ(camera.Node("I").GetCachingMode(), NoCache);
  EXPECT_FALSE(camera.Node("I").IsCachable());
}

TEST(Cache, ModesCombineOverWhatIsRead) {
  Camera camera(
      Register("IntReg", "Through", 0x10, 4) +
      Register("IntReg", "Around", 0x14, 4, "<Cachable>WriteAround</Cachable>") +
      "<Integer Name=\"I\"><pValue>Around</pValue></Integer><Float "
      "Name=\"F\"><pValue>Through</pValue></Float>"
      "<IntSwissKnife Name=\"K\"><pVariable Name=\"A\">Around</pVariable><Formula>A</Formula></IntSwissKnife>"
      "<Integer Name=\"Limited\"><pValue>Through</pValue><pMax>Around</pMax></Integer>");
  EXPECT_EQ(camera.Node("I").GetCachingMode(), WriteAround);
  EXPECT_EQ(camera.Node("F").GetCachingMode(), WriteAround);
  EXPECT_EQ(camera.Node("K").GetCachingMode(), WriteThrough);
  EXPECT_EQ(camera.Node("Limited").GetCachingMode(), WriteThrough);
}

TEST(Cache, IgnoringItReadsTheDeviceAndTheNextReadDoesToo) {
  Camera camera(Register("IntReg", "R", 0x10, 4));
  camera.Integer("R").GetValue();
  camera.port.bytes[0x10] = 9;
  EXPECT_EQ(camera.Integer("R").GetValue(true), 0);
  EXPECT_EQ(camera.Integer("R").GetValue(false, true), 9);
  camera.Integer("R").GetValue();
  EXPECT_EQ(camera.port.reads, 3);
}

TEST(Cache, RegistersAtOnePlaceShareTheirBytesAndSeeEachOthersWrites) {
  Camera camera(Register("IntReg", "Whole", 0x10, 4) +
                Register("MaskedIntReg", "Low", 0x10, 4, "<LSB>0</LSB><MSB>7</MSB>") +
                "<Integer Name=\"Parent\"><pValue>Low</pValue></Integer>");
  camera.Integer("Whole").GetValue();
  camera.Integer("Parent").GetValue();
  EXPECT_EQ(camera.port.reads, 1);
  camera.Integer("Whole").SetValue(0x1234);
  EXPECT_EQ(camera.Integer("Parent").GetValue(), 0x34);
  camera.Integer("Low").SetValue(0xFF);
  EXPECT_EQ(camera.Integer("Whole").GetValue(), 0x12FF);
  EXPECT_EQ(camera.port.reads, 1);
}

TEST(Cache, WriteOnlyMasksRememberWhatWasWritten) {
  Camera camera(Register("MaskedIntReg", "Low", 0x10, 1, "<LSB>0</LSB><MSB>3</MSB>", "WO") +
                Register("MaskedIntReg", "High", 0x10, 1, "<LSB>4</LSB><MSB>7</MSB>", "WO"));
  camera.port.bytes[0x10] = 0xFF;
  camera.Integer("Low").SetValue(5);
  camera.Integer("High").SetValue(6);
  EXPECT_EQ(camera.port.bytes[0x10], 0x65);
  EXPECT_EQ(camera.port.reads, 0);
}

// A device may take the reading of such a register for something else, or fail.
TEST(Cache, WriteOnlyRegistersAreNeverRead) {
  Camera camera(
      Register("IntReg", "Whole", 0x10, 4, "<PollingTime>1</PollingTime>", "WO") +
      Register("MaskedIntReg", "Part", 0x14, 4, "<Bit>3</Bit>", "WO") +
      Register("FloatReg", "Real", 0x18, 4, "", "WO") + Register("StringReg", "Text", 0x1C, 4, "", "WO") +
      Register("Register", "Raw", 0x20, 4, "", "WO") +
      "<Integer Name=\"I\"><pValue>Whole</pValue><Min>0</Min><Max>9</Max></Integer>"
      "<Enumeration Name=\"E\"><EnumEntry Name=\"A\"><Value>1</Value></EnumEntry><pValue>Whole</pValue>"
      "</Enumeration><Boolean Name=\"B\"><pValue>Part</pValue></Boolean>"
      "<Command "
      "Name=\"C\"><pValue>Part</pValue><CommandValue>1</CommandValue><PollingTime>1</PollingTime></Command>"
      "<Converter Name=\"K\"><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>Whole</pValue>"
      "</Converter>");
  const struct {
    const char* name;
    const char* text;
  } rows[] = {{"Whole", "1"}, {"Part", "1"}, {"Real", "1"}, {"Text", "a"}, {"Raw", "0x01"},
              {"I", "5"},     {"E", "A"},    {"B", "true"}, {"C", "1"},    {"K", "2"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    for (const bool verify : {true, false}) camera.Value(row.name).FromString(row.text, verify);
    EXPECT_THROW(camera.Text(row.name), AccessException);
    EXPECT_THROW(camera.Value(row.name).ToString(true, true), AccessException);
    camera.map._Poll(1);
    camera.map._InvalidateNodes();
  }
  EXPECT_TRUE(camera.As<ICommand>("C").IsDone());
  EXPECT_EQ(camera.port.reads, 0);
  EXPECT_EQ(camera.port.writes, 20);
}

TEST(Cache, SelectorsMoveRegistersWithoutStaleValues) {
  Camera camera(
      Register("IntReg", "Sel", 0x10, 1, "<pSelected>Gain</pSelected>") +
      "<IntReg Name=\"Gain\"><Address>0x20</Address><pIndex Offset=\"4\">Sel</pIndex><Length>4</Length>"
      "<AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>"
      "<Integer Name=\"Feature\"><pValue>Gain</pValue></Integer>");
  camera.port.bytes[0x20] = 1;
  camera.port.bytes[0x24] = 2;
  EXPECT_EQ(camera.Integer("Feature").GetValue(), 1);
  camera.Integer("Sel").SetValue(1);
  EXPECT_EQ(camera.Integer("Feature").GetValue(), 2);
  camera.Integer("Feature").SetValue(7);
  EXPECT_EQ(camera.port.bytes[0x24], 7);
  camera.Integer("Sel").SetValue(0);
  EXPECT_EQ(camera.Integer("Feature").GetValue(), 1);
  EXPECT_TRUE(camera.As<ISelector>("Sel").IsSelector());
  FeatureList_t list;
  camera.As<ISelector>("Gain").GetSelectingFeatures(list);
  EXPECT_EQ(list.size(), 1U);
  camera.As<ISelector>("Sel").GetSelectedFeatures(list);
  ASSERT_EQ(list.size(), 2U);
  EXPECT_EQ(list[0]->GetNode()->GetName(), "Gain");
  EXPECT_EQ(list[1]->GetNode()->GetName(), "Feature");
}

TEST(Cache, AddressesAreSums) {
  Camera camera(
      "<Integer Name=\"Sixteen\"><Value>0x10</Value></Integer><Integer "
      "Name=\"Two\"><Value>2</Value></Integer>"
      "<IntReg Name=\"R\"><Address>0x1000</Address><Address>0x20</Address><pAddress>Sixteen</pAddress>"
      "<IntSwissKnife Name=\"K\"><pVariable "
      "Name=\"X\">Two</pVariable><Formula>X*0x100</Formula></IntSwissKnife>"
      "<pIndex "
      "Offset=\"2\">Two</pIndex><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>"
      "<IntReg Name=\"Twice\"><pAddress>Sixteen</pAddress><pAddress>Two</pAddress><pIndex Offset=\"-2\">Two"
      "</pIndex><pIndex Offset=\"0x100\">Two</pIndex><pIndex>Two</pIndex><IntSwissKnife "
      "Name=\"A\"><Formula>0x1000"
      "</Formula></IntSwissKnife><IntSwissKnife Name=\"B\"><Formula>0x2000</Formula></IntSwissKnife>"
      "<Length>4</Length><pPort>Device</pPort></IntReg>"
      "<IntReg "
      "Name=\"ByLength\"><Address>0x10</Address><pIndex>Two</pIndex><Length>4</Length><pPort>Device</pPort></"
      "IntReg>"
      "<IntReg Name=\"ByNode\"><Address>0x10</Address><pIndex "
      "pOffset=\"Sixteen\">Two</pIndex><Length>4</Length>"
      "<pPort>Device</pPort></IntReg>");
  EXPECT_EQ(camera.As<IRegister>("R").GetAddress(), 0x1234);
  EXPECT_EQ(camera.As<IRegister>("Twice").GetAddress(), 0x3000 + 16 + 2 - 4 + 0x200 + 8);
  EXPECT_EQ(camera.As<IRegister>("ByLength").GetAddress(), 0x18);
  EXPECT_EQ(camera.As<IRegister>("ByNode").GetAddress(), 0x30);
}

// Places are told apart by address and length; descriptions say with pInvalidator where they overlap.
TEST(Cache, RegistersThatOverlapDoNotSeeEachOther) {
  Camera camera(Register("IntReg", "Whole", 0x10, 4) + Register("IntReg", "Part", 0x12, 2) +
                Register("IntReg", "Told", 0x12, 1, "<pInvalidator>Whole</pInvalidator>"));
  EXPECT_EQ(camera.Integer("Part").GetValue(), 0);
  EXPECT_EQ(camera.Integer("Told").GetValue(), 0);
  camera.Integer("Whole").SetValue(0x01020304);
  EXPECT_EQ(camera.Integer("Part").GetValue(), 0);
  EXPECT_EQ(camera.Integer("Told").GetValue(), 2);
}

TEST(Cache, LengthsMayComeFromNodes) {
  Camera camera(
      Register("IntReg", "Count", 0x10, 1) +
      "<StringReg Name=\"S\"><Address>0x20</Address><pLength>Count</pLength><AccessMode>RW</AccessMode>"
      "<pPort>Device</pPort></StringReg>");
  camera.port.Set(0x10, {3});
  camera.port.Set(0x20, {'a', 'b', 'c', 'd'});
  EXPECT_EQ(camera.Text("S"), "abc");
  camera.Integer("Count").SetValue(4);
  EXPECT_EQ(camera.Text("S"), "abcd");
  EXPECT_EQ(camera.As<IRegister>("S").GetLength(), 4);
}

TEST(Cache, InvalidatorsForgetWhatTheyInvalidate) {
  Camera camera(Register("IntReg", "Trigger", 0x10, 1) +
                Register("IntReg", "Status", 0x11, 1, "<pInvalidator>Trigger</pInvalidator>") +
                "<Integer Name=\"Feature\"><pValue>Status</pValue></Integer>");
  camera.Integer("Feature").GetValue();
  camera.port.bytes[0x11] = 4;
  EXPECT_EQ(camera.Integer("Feature").GetValue(), 0);
  camera.Integer("Trigger").SetValue(1);
  EXPECT_EQ(camera.Integer("Feature").GetValue(), 4);
}

TEST(Cache, ConditionsAreReadAgainWhenTheyChange) {
  Camera camera(Register("IntReg", "Lock", 0x10, 1) +
                "<Integer Name=\"I\"><pIsLocked>Lock</pIsLocked><Value>1</Value></Integer>");
  EXPECT_EQ(camera.Access("I"), RW);
  camera.port.bytes[0x10] = 1;
  EXPECT_EQ(camera.Access("I"), RW);  // nobody told the map
  camera.map._InvalidateNodes();
  EXPECT_EQ(camera.Access("I"), RO);
  camera.Integer("Lock").SetValue(0);
  EXPECT_EQ(camera.Access("I"), RW);
  EXPECT_EQ(camera.Node("I").IsAccessModeCacheable(), Yes);
}

TEST(Cache, VolatileConditionsAreReadEveryTime) {
  Camera camera(Register("IntReg", "Lock", 0x10, 1, "<Cachable>NoCache</Cachable>") +
                "<Integer Name=\"I\"><pIsLocked>Lock</pIsLocked><Value>1</Value></Integer>"
                "<Integer Name=\"J\"><pValue>I</pValue></Integer>");
  EXPECT_EQ(camera.Access("J"), RW);
  camera.port.bytes[0x10] = 1;
  EXPECT_EQ(camera.Access("J"), RO);
  EXPECT_EQ(camera.Node("J").IsAccessModeCacheable(), No);
}

TEST(Cache, PollingForgetsAfterItsTime) {
  Camera camera(Register("IntReg", "R", 0x10, 1, "<PollingTime>1000</PollingTime>"));
  camera.Integer("R").GetValue();
  camera.map._Poll(500);
  camera.Integer("R").GetValue();
  EXPECT_EQ(camera.port.reads, 1);
  camera.map._Poll(500);
  camera.Integer("R").GetValue();
  EXPECT_EQ(camera.port.reads, 2);
  EXPECT_EQ(camera.Node("R").GetPollingTime(), 1000);
  EXPECT_EQ(camera.Node("Device").GetPollingTime(), -1);
}

TEST(Cache, AFailedWriteForgetsTheValue) {
  Camera camera(Register("IntReg", "R", 0x10, 1) + "<Integer Name=\"I\"><pValue>R</pValue></Integer>");
  camera.Integer("I").GetValue();
  camera.port.fails = true;
  EXPECT_THROW(camera.Integer("I").SetValue(5), TimeoutException);
  EXPECT_THROW(camera.Integer("I").GetValue(), TimeoutException);
  camera.port.fails = false;
  camera.port.bytes[0x10] = 8;
  EXPECT_EQ(camera.Integer("I").GetValue(), 8);
}

TEST(Cache, IndexedValuesFollowTheirIndex) {
  Camera camera(
      "<Integer Name=\"Index\"><Value>0</Value></Integer><Integer "
      "Name=\"Other\"><Value>50</Value><Max>60</Max></Integer>"
      "<Integer Name=\"I\"><pIndex>Index</pIndex><ValueIndexed Index=\"0\">10</ValueIndexed>"
      "<pValueIndexed Index=\"1\">Other</pValueIndexed><ValueDefault>99</ValueDefault></Integer>");
  EXPECT_EQ(camera.Integer("I").GetValue(), 10);
  camera.Integer("I").SetValue(11);
  EXPECT_EQ(camera.Integer("I").GetValue(), 11);
  camera.Integer("Index").SetValue(1);
  EXPECT_EQ(camera.Integer("I").GetValue(), 50);
  EXPECT_EQ(camera.Integer("I").GetMax(), 60);
  camera.Integer("Index").SetValue(2);
  EXPECT_EQ(camera.Integer("I").GetValue(), 99);
  camera.Integer("Index").SetValue(0);
  EXPECT_EQ(camera.Integer("I").GetValue(), 11);
}

TEST(Cache, PortsForgetEverythingBehindThem) {
  Camera camera(Register("IntReg", "R", 0x10, 1));
  camera.Integer("R").GetValue();
  camera.port.bytes[0x10] = 3;
  camera.port.InvalidateNode();
  EXPECT_EQ(camera.Integer("R").GetValue(), 3);
}

TEST(Cache, CommandsAreDoneWhenTheDeviceSaysSo) {
  Camera camera(Register("IntReg", "R", 0x10, 1) +
                "<Command Name=\"C\"><pValue>R</pValue><CommandValue>5</CommandValue></Command>");
  auto& command = camera.As<ICommand>("C");
  EXPECT_TRUE(command.IsDone());
  EXPECT_EQ(camera.port.reads, 0);
  command.Execute();
  EXPECT_EQ(camera.port.bytes[0x10], 5);
  EXPECT_FALSE(command.IsDone());
  EXPECT_EQ(camera.Text("C"), "1");
  camera.port.bytes[0x10] = 0;
  EXPECT_TRUE(command.IsDone());
  EXPECT_EQ(camera.Text("C"), "0");
}

TEST(Cache, TwoMapsOfOneFactoryAreIndependent) {
  CNodeMapFactory factory(Description("<Integer Name=\"I\"><Value>1</Value></Integer>").c_str());
  CNodeMapRef first(factory.CreateNodeMap("One", false));
  CNodeMapRef second(factory.CreateNodeMap("Two"));
  CIntegerPtr(first._GetNode("I"))->SetValue(5);
  EXPECT_EQ(CIntegerPtr(second._GetNode("I"))->GetValue(), 1);
  EXPECT_EQ(second._GetDeviceName(), "Two");
}

TEST(Cache, WhatAWriteLocksOrLimitsIsSeenByTheWrittenNodeItself) {
  Camera camera(Register("IntReg", "R", 0x10, 4) +
                "<IntSwissKnife Name=\"IsFive\"><pVariable "
                "Name=\"V\">R</pVariable><Formula>V=5</Formula></IntSwissKnife>"
                "<IntSwissKnife Name=\"Rest\"><pVariable "
                "Name=\"V\">R</pVariable><Formula>100-V</Formula></IntSwissKnife>"
                "<Integer Name=\"Locked\"><pIsLocked>IsFive</pIsLocked><pValue>R</pValue></Integer>"
                "<Integer Name=\"Limited\"><pValue>R</pValue><pMax>Rest</pMax></Integer>"
                "<Float Name=\"LimitedFloat\"><pValue>R</pValue><pMax>Rest</pMax></Float>");
  EXPECT_EQ(camera.Access("Locked"), RW);
  camera.Integer("Locked").SetValue(5);
  EXPECT_EQ(camera.Access("Locked"), RO);
  EXPECT_EQ(camera.port.reads, 1) << "the value written stays known: only the first lock was read";
  EXPECT_EQ(camera.Integer("Limited").GetMax(), 95);
  camera.Integer("Limited").SetValue(30);
  EXPECT_EQ(camera.Integer("Limited").GetMax(), 70);
  EXPECT_EQ(camera.Float("LimitedFloat").GetMax(), 70);
  camera.Float("LimitedFloat").SetValue(40);
  EXPECT_EQ(camera.Float("LimitedFloat").GetMax(), 60);
  EXPECT_EQ(camera.Access("Locked"), RW);
}

TEST(Cache, LimitsAreRememberedUntilWhatTheyComeFromChanges) {
  Camera camera(
      Register("IntReg", "Max", 0x10, 4) +
      Register("IntReg", "Live", 0x14, 4, "<Cachable>NoCache</Cachable>") +
      "<Integer Name=\"I\"><Value>0</Value><pMax>Max</pMax></Integer>"
      "<Integer Name=\"Outer\"><pValue>I</pValue></Integer><Float Name=\"F\"><pValue>Outer</pValue></Float>"
      "<Integer Name=\"J\"><Value>0</Value><pMax>Live</pMax></Integer>"
      "<Integer Name=\"OuterJ\"><pValue>J</pValue></Integer>");
  camera.port.bytes[0x10] = 50;
  EXPECT_EQ(camera.Float("F").GetMax(), 50);
  camera.port.bytes[0x10] = 60;
  camera.Integer("Max").GetValue(false, true);  // its own value is to be read anew now
  EXPECT_EQ(camera.Float("F").GetMax(), 50);
  EXPECT_EQ(camera.Integer("Outer").GetMax(), 50);
  camera.Integer("Max").SetValue(70);
  EXPECT_EQ(camera.Float("F").GetMax(), 70);
  camera.Node("Max").InvalidateNode();
  camera.port.bytes[0x10] = 80;
  EXPECT_EQ(camera.Integer("I").GetMax(), 80);
  camera.Integer("I").ImposeMax(40);
  EXPECT_EQ(camera.Float("F").GetMax(), 40);
  camera.Integer("I").ImposeMax(90);
  EXPECT_EQ(camera.Float("F").GetMax(), 80);
  for (const int limit : {5, 6}) {
    camera.port.bytes[0x14] = static_cast<unsigned char>(limit);
    EXPECT_EQ(camera.Integer("OuterJ").GetMax(), limit) << "an uncached register is asked every time";
  }
}

// For devices that change what their description lets programs remember.
TEST(Cache, SwitchedOffNothingOfTheDeviceIsRemembered) {
  Camera camera(
      Register("IntReg", "R", 0x10, 1) + Register("IntReg", "Lock", 0x11, 1) +
      Register("IntReg", "Max", 0x12, 1) +
      Register("MaskedIntReg", "Low", 0x13, 1, "<LSB>0</LSB><MSB>3</MSB>") +
      Register("StringReg", "S", 0x14, 2) + Register("FloatReg", "F4", 0x18, 4) +
      "<Integer Name=\"I\"><pIsLocked>Lock</pIsLocked><pValue>R</pValue><pMax>Max</pMax></Integer>"
      "<Float Name=\"F\"><pValue>I</pValue></Float><Integer Name=\"Constant\"><Value>1</Value></Integer>"
      "<SwissKnife Name=\"K\"><pVariable Name=\"A\">R</pVariable><Formula>A*2</Formula></SwissKnife>");
  ICacheSwitch& cache = dynamic_cast<ICacheSwitch&>(*camera.map._Ptr);
  const auto ask = [&] {
    const auto text = [&](const char* name) { return camera.Text(name) + " "; };
    return text("R") + text("I") + text("F") + text("K") + text("Low") + text("S") + text("F4") +
           text("Constant") + std::to_string(camera.Float("F").GetMax()) + " " +
           std::to_string(camera.Access("I"));
  };
  const auto change = [&](int by) {
    camera.port.Set(0x10,
                    {by, by % 2, 100 + by, 0x50 + by, 'a' + by, 0, 0, 0, 0, 0, by % 2 ? 0x80 : 0, 0x3F});
  };
  EXPECT_TRUE(cache.IsCachingEnabled());
  change(2);
  const std::string first = ask();
  EXPECT_EQ(first, "2 2 2 4 2 c 0.5 1 102.000000 4");
  change(3);
  EXPECT_EQ(ask(), first) << "nobody told the map";
  cache.SetCachingEnabled(false);
  EXPECT_FALSE(cache.IsCachingEnabled());
  EXPECT_EQ(ask(), "3 3 3 6 3 d 1 1 103.000000 3");
  change(4);
  EXPECT_EQ(ask(), "4 4 4 8 4 e 0.5 1 104.000000 4");
  EXPECT_EQ(camera.Node("K").GetCachingMode(), NoCache);
  EXPECT_EQ(camera.Node("Constant").GetCachingMode(), WriteThrough);
  EXPECT_EQ(camera.Node("I").IsAccessModeCacheable(), No);
  camera.Integer("R").SetValue(9);
  EXPECT_EQ(camera.Integer("R").IsValueCacheValid(), false);
  camera.port.bytes[0x13] = 0xA0;
  camera.Integer("Low").SetValue(1);
  EXPECT_EQ(camera.port.bytes[0x13], 0xA1) << "the other bits as they are now";
  cache.SetCachingEnabled(true);
  change(5);
  const std::string last = ask();
  EXPECT_EQ(last, "5 5 5 10 5 f 1 1 105.000000 3");
  const int reads = camera.port.reads;
  EXPECT_EQ(ask(), last);
  EXPECT_EQ(camera.port.reads, reads);
  EXPECT_EQ(camera.Node("I").IsAccessModeCacheable(), Yes);
}

}  // namespace
