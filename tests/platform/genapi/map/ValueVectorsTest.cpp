// Values, limits and texts of every kind of node on one memory image.
#include <gtest/gtest.h>

#include <limits>

#include "../MemoryPort.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

std::string Nodes() {
  return Register("IntReg", "R16L", 0x100, 2, "<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess>") +
         Register("IntReg", "R16B", 0x100, 2, "<Sign>Signed</Sign><Endianess>BigEndian</Endianess>") +
         Register("IntReg", "R24", 0x100, 3, "<Sign>Signed</Sign><Endianess>LittleEndian</Endianess>") +
         Register("IntReg", "R32", 0x104, 4, "<Endianess>BigEndian</Endianess>", "RO") +
         Register("IntReg", "R64", 0x108, 8, "<Endianess>BigEndian</Endianess>") +
         Register("IntReg", "W64", 0x108, 8, "<Sign>Signed</Sign>", "WO") +
         Register("MaskedIntReg", "MB", 0x110, 4,
                  "<LSB>31</LSB><MSB>24</MSB><Endianess>BigEndian</Endianess>") +
         Register("MaskedIntReg", "ML", 0x110, 4, "<LSB>0</LSB><MSB>7</MSB><Sign>Signed</Sign>") +
         Register("MaskedIntReg", "BitB", 0x110, 4, "<Bit>0</Bit><Endianess>BigEndian</Endianess>") +
         Register("MaskedIntReg", "BitL", 0x110, 4, "<Bit>0</Bit>") +
         Register("MaskedIntReg", "BitS", 0x110, 4,
                  "<Bit>31</Bit><Sign>Signed</Sign><Endianess>BigEndian</Endianess>") +
         "<StructReg Comment=\"s\"><Address>0x110</Address><Length>4</Length><AccessMode>RW</AccessMode>"
         "<pPort>Device</pPort><Endianess>BigEndian</Endianess>"
         "<StructEntry Name=\"SE\"><LSB>31</LSB><MSB>16</MSB></StructEntry>"
         "<StructEntry Name=\"SEBit\"><AccessMode>RO</AccessMode><Bit>0</Bit></StructEntry></StructReg>" +
         Register("FloatReg", "F4", 0x130, 4, "<Endianess>LittleEndian</Endianess>") +
         Register("FloatReg", "F8", 0x138, 8, "<Endianess>BigEndian</Endianess>") +
         Register("StringReg", "Str", 0x200, 8) + Register("Register", "Raw", 0x200, 8) +
         "<Integer Name=\"I1\"><Value>7</Value><Min>1</Min><Max>100</Max><Inc>2</Inc><Unit>px</Unit>"
         "<Representation>Linear</Representation></Integer>"
         "<Integer Name=\"IR\"><pValue>R16L</pValue><Min>5</Min><pMax>I1</pMax></Integer>"
         "<Float Name=\"FI\"><pValue>I1</pValue></Float>"
         "<Float Name=\"FA\"><Value>123456789</Value></Float>"
         "<Float Name=\"FS\"><Value>123456.789</Value><DisplayNotation>Scientific</DisplayNotation></Float>"
         "<Float Name=\"FF\"><Value>1.5</Value><DisplayNotation>Fixed</DisplayNotation>"
         "<DisplayPrecision>2</DisplayPrecision></Float>"
         "<Enumeration Name=\"En\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry><EnumEntry "
         "Name=\"B\"><Value>5</Value>"
         "<NumericValue>5.5</NumericValue></EnumEntry><EnumEntry "
         "Name=\"C\"><Value>9</Value></EnumEntry><Value>5</Value>"
         "</Enumeration><Float Name=\"FE\"><pValue>En</pValue></Float>"
         "<Integer Name=\"Hex\"><Value>0xFF</Value><Representation>HexNumber</Representation></Integer>"
         "<Integer Name=\"HexNeg\"><Value>-1</Value><Representation>HexNumber</Representation></Integer>"
         "<Integer Name=\"HexZero\"><Value>0</Value><Representation>HexNumber</Representation></Integer>"
         "<Integer "
         "Name=\"Ip\"><Value>0xC0A80102</Value><Representation>IPV4Address</Representation></Integer>"
         "<Integer "
         "Name=\"Mac\"><Value>0x123456789ABC</Value><Representation>MACAddress</Representation></Integer>"
         "<Integer Name=\"Truth\"><Value>1</Value><Representation>Boolean</Representation></Integer>"
         "<SwissKnife Name=\"SK\"><pVariable Name=\"A\">I1</pVariable><Constant Name=\"B\">1.5</Constant>"
         "<Formula>A/2+B</Formula></SwissKnife>"
         "<IntSwissKnife Name=\"ISK\"><pVariable "
         "Name=\"A\">I1</pVariable><Formula>A/2</Formula></IntSwissKnife>"
         "<Converter "
         "Name=\"C10\"><FormulaTo>FROM*10</FormulaTo><FormulaFrom>TO/10</FormulaFrom><pValue>R16L</pValue>"
         "</Converter>"
         "<Converter "
         "Name=\"CInv\"><FormulaTo>1000/FROM</FormulaTo><FormulaFrom>1000/TO</FormulaFrom><pValue>I1</pValue>"
         "<Slope>Decreasing</Slope></Converter>"
         "<Converter "
         "Name=\"CLin\"><FormulaTo>FROM*10</FormulaTo><FormulaFrom>TO/10</FormulaFrom><pValue>I1</pValue>"
         "<Slope>Increasing</Slope><IsLinear>Yes</IsLinear></Converter>"
         "<Integer Name=\"Tens\"><Value>10</Value><Min>10</Min><Max>100</Max><Inc>10</Inc></Integer>"
         "<Integer Name=\"Odd\"><Value>1</Value><Min>1</Min><Max>100</Max><Inc>2</Inc></Integer>"
         "<IntConverter "
         "Name=\"IC\"><FormulaTo>FROM*2</FormulaTo><FormulaFrom>TO/2</FormulaFrom><pValue>Tens</pValue>"
         "<Slope>Increasing</Slope></IntConverter>"
         "<IntConverter Name=\"ICAuto\"><FormulaTo>FROM*2</FormulaTo><FormulaFrom>TO/2</FormulaFrom>"
         "<pValue>Tens</pValue></IntConverter>"
         "<Float Name=\"FTens\"><pValue>Tens</pValue></Float><Float "
         "Name=\"FOdd\"><pValue>Odd</pValue></Float>"
         "<Converter "
         "Name=\"CTwo\"><FormulaTo>FROM*2</FormulaTo><FormulaFrom>TO/2</FormulaFrom><pValue>Tens</pValue>"
         "</Converter>"
         "<Converter "
         "Name=\"CThree\"><FormulaTo>FROM*3</FormulaTo><FormulaFrom>TO/3</FormulaFrom><pValue>R16L</pValue>"
         "</Converter>"
         "<Float Name=\"Real\"><Value>777</Value></Float><Integer Name=\"IF\"><pValue>Real</pValue></Integer>"
         "<Boolean Name=\"Bo\"><pValue>R16L</pValue><OnValue>5</OnValue><OffValue>3</OffValue></Boolean>"
         "<Command Name=\"Cmd\"><pValue>R16L</pValue><CommandValue>1</CommandValue></Command>"
         "<Command Name=\"CmdWo\"><pValue>W64</pValue><CommandValue>1</CommandValue></Command>"
         "<Command Name=\"CmdRo\"><pValue>R32</pValue><CommandValue>1</CommandValue></Command>";
}

class ValueVectors : public testing::Test {
 protected:
  ValueVectors() : camera(Nodes()) {
    camera.port.Set(0x100, {0x05, 0x00, 0xFF, 0x80, 0xF0, 0, 0, 0x01, 0xF0, 0, 0, 0, 0, 0, 0, 0x01});
    camera.port.Set(0x110, {0x80, 0x12, 0x34, 0x56});
    camera.port.Set(0x130, {0, 0, 0xC0, 0x3F, 0, 0, 0, 0, 0x3F, 0xF8});
    camera.port.Set(0x200, {0x41, 0x42, 0x00, 0xFF, 0x45, 0x46, 0x47, 0x48});
  }
  Camera camera;
};

struct IntegerRow {
  const char* name;
  EAccessMode access;
  const char* text;
  int64_t min, max, inc;
};

TEST_F(ValueVectors, IntegersHaveTextLimitsAndAccess) {
  const IntegerRow rows[] = {
      {"R16L", RW, "5", 0, 65535, 1},
      {"R16B", RW, "1280", -32768, 32767, 1},
      {"R24", RW, "-65531", -8388608, 8388607, 1},
      {"R32", RO, "4026531841", 0, 4294967295, 1},
      {"R64", RW, "-1152921504606846975", 0, INT64_MAX, 1},
      {"MB", RW, "86", 0, 255, 1},
      {"ML", RW, "-128", -128, 127, 1},
      {"BitB", RW, "1", 0, 1, 1},
      {"BitL", RW, "0", 0, 1, 1},
      {"BitS", RW, "0", -1, 0, 1},
      {"SE", RW, "13398", 0, 65535, 1},
      {"SEBit", RO, "1", 0, 1, 1},
      {"I1", RW, "7", 1, 100, 2},
      {"IR", RW, "5", 5, 7, 1},
      {"Hex", RW, "0xff", INT64_MIN, INT64_MAX, 1},
      {"HexNeg", RW, "0xffffffffffffffff", INT64_MIN, INT64_MAX, 1},
      {"HexZero", RW, "0", INT64_MIN, INT64_MAX, 1},
      {"Ip", RW, "192.168.1.2", INT64_MIN, INT64_MAX, 1},
      {"Mac", RW, "12:34:56:78:9a:bc", INT64_MIN, INT64_MAX, 1},
      {"Truth", RW, "true", INT64_MIN, INT64_MAX, 1},
      {"ISK", RO, "3", INT64_MIN, INT64_MAX, 1},
      {"IC", RW, "5", 5, 50, 1},
      {"ICAuto", RW, "5", 5, 50, 1},
      {"IF", RW, "777", INT64_MIN, INT64_MAX, 1},
  };
  for (const IntegerRow& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(camera.Access(row.name), row.access);
    EXPECT_EQ(camera.Text(row.name), row.text);
    EXPECT_EQ(camera.Integer(row.name).GetMin(), row.min);
    EXPECT_EQ(camera.Integer(row.name).GetMax(), row.max);
    EXPECT_EQ(camera.Integer(row.name).GetInc(), row.inc);
  }
}

struct FloatRow {
  const char* name;
  EAccessMode access;
  const char* text;
  double min, max;
  double inc;  // 0: none
};

TEST_F(ValueVectors, FloatsHaveTextLimitsAndAccess) {
  constexpr double kMax = std::numeric_limits<double>::max();
  constexpr double kFloatMax = std::numeric_limits<float>::max();
  const FloatRow rows[] = {
      {"F4", RW, "1.5", -kFloatMax, kFloatMax, 0},
      {"F8", RW, "1.5", -kMax, kMax, 0},
      {"FI", RW, "7", 1, 100, 2},
      {"FA", RW, "1.23457e+08", -kMax, kMax, 0},
      {"FS", RW, "1.234568e+05", -kMax, kMax, 0},
      {"FF", RW, "1.50", -kMax, kMax, 0},
      {"FE", RW, "5.5", -kMax, kMax, 0},
      {"SK", RO, "5", -kMax, kMax, 0},
      {"C10", RW, "0.5", 0, 6553.5, 0},
      {"CInv", RW, "142.857", 10, 1000, 0},
      {"CLin", RW, "0.7", 0.1, 10, 0.2},
  };
  for (const FloatRow& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(camera.Access(row.name), row.access);
    EXPECT_EQ(camera.Text(row.name), row.text);
    EXPECT_DOUBLE_EQ(camera.Float(row.name).GetMin(), row.min);
    EXPECT_DOUBLE_EQ(camera.Float(row.name).GetMax(), row.max);
    EXPECT_EQ(camera.Float(row.name).HasInc(), row.inc != 0);
    if (row.inc != 0) {
      EXPECT_DOUBLE_EQ(camera.Float(row.name).GetInc(), row.inc);
    } else {
      EXPECT_THROW(camera.Float(row.name).GetInc(), RuntimeException);
    }
  }
  EXPECT_EQ(camera.Float("FI").GetUnit(), "px");
  EXPECT_EQ(camera.Float("FI").GetRepresentation(), Linear);
}

TEST_F(ValueVectors, TextsAndBytes) {
  EXPECT_EQ(camera.Text("Str"), "AB");
  EXPECT_EQ(camera.As<IString>("Str").GetMaxLength(), 8);
  EXPECT_EQ(camera.Text("Raw"), "0x414200ff45464748");
  camera.As<IString>("Str").SetValue("AB");
  EXPECT_EQ(camera.port.bytes[0x203], 0);
  EXPECT_THROW(camera.As<IString>("Str").SetValue("123456789", false), OutOfRangeException);
  uint8_t buffer[9] = {1, 2};
  EXPECT_THROW(camera.As<IRegister>("Raw").Get(buffer, 9), OutOfRangeException);
  EXPECT_THROW(camera.As<IRegister>("Raw").Set(buffer, 9), OutOfRangeException);
  camera.As<IRegister>("Raw").Set(buffer, 2);
  EXPECT_EQ(camera.Text("Raw"), "0x0102000000000000");
  EXPECT_EQ(camera.As<IRegister>("R16L").GetAddress(), 0x100);
  EXPECT_EQ(camera.As<IRegister>("R16L").GetLength(), 2);
}

TEST_F(ValueVectors, FloatsOverIntegersSnapToTheGrid) {
  const struct {
    const char* name;
    double written;
    const char* integer;
    int64_t expected;
  } rows[] = {{"FTens", 44, "Tens", 40}, {"FTens", 46, "Tens", 50},   {"FTens", 45, "Tens", 40},
              {"FTens", 55, "Tens", 50}, {"CTwo", 12.6, "Tens", 20},  {"FOdd", 8.4, "Odd", 7},
              {"FOdd", 3.9, "Odd", 3},   {"CThree", 3.4, "R16L", 10}, {"FE", 5.4, "En", 5},
              {"FE", 8, "En", 9},        {"FE", 100, "En", 9}};
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.name << " = " << row.written);
    camera.Float(row.name).SetValue(row.written);
    auto* const enumeration = dynamic_cast<IEnumeration*>(&camera.Node(row.integer));
    EXPECT_EQ(enumeration ? enumeration->GetIntValue() : camera.Integer(row.integer).GetValue(),
              row.expected);
  }
  camera.Float("CThree").SetValue(3.4);
  EXPECT_EQ(camera.Text("CThree"), "3.33333");
}

TEST_F(ValueVectors, MaskedWritesKeepTheOtherBits) {
  camera.Integer("MB").SetValue(255);
  EXPECT_EQ(camera.port.bytes[0x110], 0x80);
  EXPECT_EQ(camera.port.bytes[0x112], 0x34);
  EXPECT_EQ(camera.port.bytes[0x113], 0xFF);
}

TEST_F(ValueVectors, WhatTheTargetRefusesIsRefused) {
  EXPECT_THROW(camera.Integer("IC").SetValue(11), OutOfRangeException);
  camera.Integer("IC").SetValue(15);
  EXPECT_EQ(camera.Integer("Tens").GetValue(), 30);
  EXPECT_THROW(camera.Value("CmdRo").FromString("1"), AccessException);
  EXPECT_THROW(camera.As<ICommand>("CmdRo").Execute(), AccessException);
  EXPECT_THROW(camera.Value("W64").ToString(), AccessException);
  EXPECT_THROW(camera.Value("CmdWo").ToString(), AccessException);
  EXPECT_EQ(camera.Access("Cmd"), RW);
  EXPECT_EQ(camera.Access("CmdWo"), WO);
  EXPECT_EQ(camera.Access("CmdRo"), RO);
  EXPECT_EQ(camera.Text("Cmd"), "0");
  EXPECT_EQ(camera.Text("CmdRo"), "0");
  EXPECT_EQ(camera.Access("W64"), WO);
  EXPECT_EQ(camera.Integer("W64").GetMin(), INT64_MIN) << "what cannot be read has limits all the same";
  EXPECT_EQ(camera.Integer("W64").GetMax(), INT64_MAX);
  EXPECT_THROW(camera.Integer("R64").GetValue(true), OutOfRangeException);
}

TEST_F(ValueVectors, WithoutVerificationValuesAreCutToTheRegister) {
  camera.Integer("R16L").SetValue(70000, false);
  EXPECT_EQ(camera.Integer("R16L").GetValue(), 0x1170);
  EXPECT_THROW(camera.Integer("R16L").SetValue(70000), OutOfRangeException);
}

TEST_F(ValueVectors, BooleansKnowTwoNumbersOnly) {
  EXPECT_EQ(camera.Text("Bo"), "1");
  camera.As<IBoolean>("Bo").SetValue(false);
  EXPECT_EQ(camera.port.bytes[0x100], 3);
  camera.Integer("R16L").SetValue(4);
  EXPECT_THROW(camera.As<IBoolean>("Bo").GetValue(), LogicalErrorException);
  EXPECT_THROW(camera.Value("Bo").FromString("TRUE"), InvalidArgumentException);
  camera.Value("Bo").FromString("true");
  EXPECT_EQ(camera.port.bytes[0x100], 5);
}

TEST_F(ValueVectors, IntegersReadTexts) {
  const struct {
    const char* name;
    const char* text;
    int64_t expected;
  } good[] = {{"Hex", "0x10", 16},
              {"Hex", "12abc", 12},
              {"Hex", "1.5", 1},
              {"Hex", " 42", 42},
              {"Hex", "-7", -7},
              {"Ip", "10.0.0.1", 0x0A000001},
              {"Mac", "00:00:00:00:01:02", 0x102},
              {"Truth", "false", 0},
              {"Hex", "99999999999999999999", INT64_MAX},
              {"Hex", "0xFFFFFFFFFFFFFFFF", -1}};
  for (const auto& row : good) {
    SCOPED_TRACE(row.text);
    camera.Value(row.name).FromString(row.text);
    EXPECT_EQ(camera.Integer(row.name).GetValue(), row.expected);
  }
  const struct {
    const char* name;
    const char* text;
  } bad[] = {{"Hex", "abc"}, {"Hex", ""},    {"Hex", "ff"},     {"Ip", "10.0.0"}, {"Ip", "10.0.0.256"},
             {"Mac", "1"},   {"Truth", "1"}, {"FA", "abc"},     {"FA", "nan"},    {"FA", "inf"},
             {"Raw", "0x0"}, {"Raw", "xy"},  {"En", "Nothing"}, {"Cmd", "0"}};
  for (const auto& row : bad) {
    SCOPED_TRACE(row.text);
    EXPECT_THROW(camera.Value(row.name).FromString(row.text), InvalidArgumentException);
  }
}

TEST_F(ValueVectors, EnumerationsKnowTheirEntries) {
  auto& choice = camera.As<IEnumeration>("En");
  EXPECT_EQ(camera.Text("En"), "B");
  EXPECT_EQ(choice.GetIntValue(), 5);
  EXPECT_EQ(choice.GetCurrentEntry()->GetSymbolic(), "B");
  EXPECT_EQ(choice.GetCurrentEntry()->GetNumericValue(), 5.5);
  EXPECT_EQ(choice.GetEntryByName("C")->GetValue(), 9);
  EXPECT_EQ(choice.GetEntryByName("EnumEntry_En_C"), nullptr);
  EXPECT_NE(camera.map._GetNode("EnumEntry_En_C"), nullptr);
  EXPECT_EQ(choice.GetEntry(1), nullptr);
  EXPECT_THROW(choice.SetIntValue(1), InvalidArgumentException);
  EXPECT_THROW(choice.SetIntValue(1, false), InvalidArgumentException);
  StringList_t symbolics(1, "old");
  choice.GetSymbolics(symbolics);
  ASSERT_EQ(symbolics.size(), 3U);
  EXPECT_EQ(symbolics[2], "C");
  choice = "A";
  EXPECT_EQ(choice.GetIntValue(), 0);
}

TEST_F(ValueVectors, NodesCanBeCastIntoAllTheirInterfacesAndNoOthers) {
  INode* const node = camera.map._GetNode("R16L");
  EXPECT_NE(dynamic_cast<IInteger*>(node), nullptr);
  EXPECT_NE(dynamic_cast<IRegister*>(node), nullptr);
  EXPECT_NE(dynamic_cast<ISelector*>(node), nullptr);
  EXPECT_EQ(dynamic_cast<IFloat*>(node), nullptr);
  EXPECT_EQ(dynamic_cast<IInteger*>(node)->GetNode(), node);
  EXPECT_EQ(dynamic_cast<IValue*>(dynamic_cast<IRegister*>(node))->GetNode(), node);
  EXPECT_EQ(dynamic_cast<IInteger*>(camera.map._GetNode("En")), nullptr);
  EXPECT_EQ(dynamic_cast<IInteger*>(camera.map._GetNode("Bo")), nullptr);
  EXPECT_NE(dynamic_cast<IPortConstruct*>(camera.map._GetNode("Device")), nullptr);
  EXPECT_EQ(dynamic_cast<IValue*>(camera.map._GetNode("Device")), nullptr);
  EXPECT_NE(dynamic_cast<IDeviceInfo*>(camera.map._Ptr), nullptr);
  EXPECT_EQ(node->GetPrincipalInterfaceType(), intfIInteger);
  EXPECT_EQ(GetInterfaceName(node), "IInteger");
}

}  // namespace
