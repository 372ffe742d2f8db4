// How values pass through nodes that hold each other, what is checked on the way, and what an error says.
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "../MemoryPort.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

// Remembers the addresses of writes.
class OrderPort : public MemoryPort {
 public:
  void Write(const void* buffer, int64_t address, int64_t length) override {
    MemoryPort::Write(buffer, address, length);
    order.push_back(address);
  }
  std::vector<int64_t> order;
};

TEST(Copies, AreWrittenInTheOrderOfTheDescriptionAndNeverRead) {
  Camera camera(Register("IntReg", "A", 0x10, 1) + Register("IntReg", "B", 0x20, 1) +
                Register("IntReg", "C", 0x30, 1) + Register("IntReg", "D", 0x40, 1, "", "WO") +
                "<Integer Name=\"I\"><pValueCopy>A</pValueCopy><pValueCopy>B</pValueCopy><pValue>C</pValue>"
                "<pValueCopy>D</pValueCopy></Integer>");
  OrderPort port;
  camera.map._Connect(&port);
  camera.Integer("I").SetValue(7);
  EXPECT_EQ(port.order, (std::vector<int64_t>{0x10, 0x20, 0x30, 0x40}));
  EXPECT_EQ(camera.Integer("A").GetValue(), 7);
  port.bytes[0x10] = 1;
  camera.map._InvalidateNodes();
  EXPECT_EQ(camera.Integer("I").GetValue(), 7);
  EXPECT_EQ(camera.Access("I"), RW) << "a write-only copy does not bar reading";
  camera.map._Connect(&camera.port);
}

struct CopyRow {
  const char* copy;
  EAccessMode expected;
};

TEST(Copies, RestrictWriting) {
  const CopyRow rows[] = {{"RW", RW}, {"RO", RO}, {"WO", RW}, {"Never", NI}, {"NotNow", NA}};
  for (const CopyRow& row : rows) {
    SCOPED_TRACE(row.copy);
    Camera camera(Register("IntReg", "RW", 0, 1) + Register("IntReg", "RO", 1, 1, "", "RO") +
                  Register("IntReg", "WO", 2, 1, "", "WO") +
                  "<Integer Name=\"Zero\"><Value>0</Value></Integer>" +
                  "<Integer Name=\"Never\"><pIsImplemented>Zero</pIsImplemented><Value>0</Value></Integer>"
                  "<Integer Name=\"NotNow\"><pIsAvailable>Zero</pIsAvailable><Value>0</Value></Integer>"
                  "<Integer Name=\"I\"><pValue>RW</pValue><pValueCopy>" +
                  row.copy + "</pValueCopy></Integer>");
    EXPECT_EQ(camera.Access("I"), row.expected);
  }
}

std::string ErrorOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const OutOfRangeException& error) {
    return std::string("OutOfRange: ") + error.GetDescription();
  } catch (const LogicalErrorException& error) {
    return std::string("LogicalError: ") + error.GetDescription();
  } catch (const GenericException& error) {
    return std::string("another: ") + error.GetDescription();
  }
  return "none";
}

TEST(Checks, SayWhichLimitAndWhichValue) {
  Camera camera(
      "<Integer Name=\"I\"><Value>1</Value><Min>1</Min><Max>100</Max><Inc>2</Inc></Integer>"
      "<Integer Name=\"NoStep\"><Value>1</Value><Inc>0</Inc></Integer>"
      "<Float Name=\"F\"><Value>1</Value><Min>-1</Min><Max>2.5</Max><Inc>0.5</Inc></Float>"
      "<Integer Name=\"Set\"><Value>1</Value><Min>2</Min><Max>10</Max>"
      "<ValidValueSet>1; 2;0x8;64</ValidValueSet></Integer>");
  IInteger& integer = camera.Integer("I");
  EXPECT_EQ(ErrorOf([&] { integer.SetValue(101); }),
            "OutOfRange: Value = 101 must be equal or smaller than Max = 100.");
  EXPECT_EQ(ErrorOf([&] { integer.SetValue(0); }),
            "OutOfRange: Value = 0 must be equal or greater than Min = 1.");
  EXPECT_EQ(
      ErrorOf([&] { integer.SetValue(8); }),
      "OutOfRange: The difference between Value = 8 and Min = 1 must be dividable without rest by Inc = 2.");
  EXPECT_EQ(ErrorOf([&] { camera.Integer("NoStep").SetValue(1); }),
            "LogicalError: Increment must be larger than 0.");
  IFloat& real = camera.Float("F");
  EXPECT_EQ(ErrorOf([&] { real.SetValue(2.6); }),
            "OutOfRange: Value 2.600000 must be smaller than or equal 2.500000.");
  EXPECT_EQ(ErrorOf([&] { real.SetValue(-2); }),
            "OutOfRange: Value -2.000000 must be greater than or equal -1.000000.");
  EXPECT_NO_THROW(real.SetValue(1.3)) << "the increment of a float is a hint";
  EXPECT_TRUE(real.HasInc());
  EXPECT_EQ(real.GetInc(), 0.5);
  EXPECT_EQ(real.GetIncMode(), fixedIncrement);
  EXPECT_EQ(real.GetListOfValidValues().size(), 0U);
  IInteger& set = camera.Integer("Set");
  EXPECT_EQ(set.GetIncMode(), listIncrement);
  EXPECT_NO_THROW(set.SetValue(3)) << "and so is the list of an integer";
  const int64_autovector_t inside = set.GetListOfValidValues();
  ASSERT_EQ(inside.size(), 2U);
  EXPECT_EQ(inside[0], 2);
  EXPECT_EQ(inside[1], 8);
  const int64_autovector_t all = set.GetListOfValidValues(false);
  ASSERT_EQ(all.size(), 4U);
  EXPECT_EQ(all[3], 64);
  EXPECT_EQ(integer.GetIncMode(), fixedIncrement);
  EXPECT_EQ(integer.GetListOfValidValues().size(), 0U);
}

// The outer limits stand in place of the inner ones, which still count when the inner node is written.
TEST(Checks, AreMadeAtEveryNodeAndNamedByBoth) {
  Camera camera(Register("IntReg", "Inner", 0x10, 1) +
                "<Integer Name=\"Outer\"><pValue>Inner</pValue><Min>-5</Min><Max>1000</Max></Integer>");
  IInteger& outer = camera.Integer("Outer");
  EXPECT_EQ(outer.GetMin(), -5);
  EXPECT_EQ(outer.GetMax(), 1000);
  try {
    outer.SetValue(300);
    FAIL() << "no exception";
  } catch (const OutOfRangeException& error) {
    EXPECT_NE(std::string(error.what())
                  .find("OutOfRangeException thrown in node 'Inner' while calling 'Outer.SetValue()'"),
              std::string::npos)
        << error.what();
  }
  outer.SetValue(300, false);
  EXPECT_EQ(outer.GetValue(), 300 - 256);
}

TEST(Checks, CountWhatWasImposed) {
  Camera camera(
      "<Integer Name=\"I\"><Value>5</Value><Min>0</Min><Max>10</Max></Integer>"
      "<Integer Name=\"Over\"><pValue>I</pValue></Integer>"
      "<Float Name=\"F\"><Value>5</Value><Min>0</Min><Max>10</Max></Float>");
  camera.Integer("I").ImposeMin(2);
  camera.Integer("I").ImposeMax(20);
  EXPECT_EQ(camera.Integer("I").GetMin(), 2);
  EXPECT_EQ(camera.Integer("I").GetMax(), 10) << "limits only become tighter";
  EXPECT_EQ(camera.Integer("Over").GetMin(), 2);
  EXPECT_THROW(camera.Integer("I").SetValue(1), OutOfRangeException);
  camera.Float("F").ImposeMin(-3);
  camera.Float("F").ImposeMax(6);
  EXPECT_EQ(camera.Float("F").GetMin(), 0);
  EXPECT_EQ(camera.Float("F").GetMax(), 6);
  EXPECT_THROW(camera.Float("F").SetValue(7), OutOfRangeException);
  INode& node = camera.Node("I");
  node.ImposeAccessMode(RO);
  EXPECT_EQ(node.GetAccessMode(), RO);
  EXPECT_EQ(camera.Access("Over"), RO);
  node.ImposeAccessMode(RW);
  EXPECT_EQ(camera.Access("Over"), RW);
  node.ImposeVisibility(Guru);
  EXPECT_EQ(node.GetVisibility(), Guru);
}

TEST(Checks, OfAReadAskTheErrorRegisterWhateverTheKindOfRead) {
  Camera camera(
      "<Enumeration Name=\"Err\"><EnumEntry Name=\"Ok\"><Value>0</Value></EnumEntry><EnumEntry Name=\"Hot\">"
      "<Value>3</Value></EnumEntry><Value>3</Value></Enumeration>" +
      Register("IntReg", "I", 0x10, 1, "<pError>Err</pError>") +
      Register("StringReg", "S", 0x20, 4, "<pError>Err</pError>") +
      "<Boolean Name=\"B\"><pError>Err</pError><Value>true</Value></Boolean>"
      "<Float Name=\"F\"><pError>Err</pError><Value>1</Value></Float>"
      "<Enumeration Name=\"E\"><pError>Err</pError><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry>"
      "<Value>0</Value></Enumeration>");
  for (const char* const name : {"I", "S", "B", "F", "E"}) {
    EXPECT_NO_THROW(camera.Value(name).ToString()) << name;
    EXPECT_THROW(camera.Value(name).ToString(true), RuntimeException) << name;
  }
  EXPECT_THROW(camera.Integer("I").GetValue(true), RuntimeException);
  EXPECT_THROW(camera.Float("F").GetValue(true), RuntimeException);
  EXPECT_THROW(camera.As<IBoolean>("B").GetValue(true), RuntimeException);
  EXPECT_THROW(camera.As<IString>("S").GetValue(true), RuntimeException);
  EXPECT_THROW(camera.As<IEnumeration>("E").GetIntValue(true), RuntimeException);
  EXPECT_THROW(camera.As<IEnumeration>("E").GetCurrentEntry(true), RuntimeException);
  uint8_t byte = 0;
  EXPECT_THROW(camera.As<IRegister>("I").Get(&byte, 1, true), RuntimeException);
  camera.Value("Err").FromString("Ok");
  EXPECT_NO_THROW(camera.Value("I").ToString(true));
}

TEST(Conversions, OfIntegersOverOtherKinds) {
  Camera camera(
      "<Float Name=\"F\"><Value>2.5</Value></Float><Integer Name=\"OfF\"><pValue>F</pValue></Integer>"
      "<Boolean Name=\"B\"><Value>false</Value></Boolean><Integer Name=\"OfB\"><pValue>B</pValue></Integer>"
      "<Enumeration Name=\"E\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry><EnumEntry "
      "Name=\"B\"><Value>1"
      "</Value><NumericValue>10.6</NumericValue></EnumEntry><EnumEntry Name=\"C\"><Value>2</Value>"
      "<pIsAvailable>OfB</pIsAvailable><NumericValue>12</NumericValue></EnumEntry><Value>1</Value></"
      "Enumeration>"
      "<Integer Name=\"OfE\"><pValue>E</pValue></Integer><Float Name=\"Real\"><pValue>B</pValue></Float>"
      "<Integer Name=\"Plain\"><Value>0</Value></Integer><Float "
      "Name=\"OfPlain\"><pValue>Plain</pValue></Float>");
  EXPECT_EQ(camera.Integer("OfF").GetValue(), 3) << "halves go away from zero";
  camera.Float("F").SetValue(-2.5);
  EXPECT_EQ(camera.Integer("OfF").GetValue(), -3);
  camera.Float("F").SetValue(1e30);
  EXPECT_THROW(camera.Integer("OfF").GetValue(), RuntimeException);
  camera.Integer("OfF").SetValue(4);
  EXPECT_EQ(camera.Float("F").GetValue(), 4);
  EXPECT_THROW(camera.Float("OfPlain").SetValue(1e30), OutOfRangeException);
  EXPECT_THROW(camera.Float("OfPlain").SetValue(1e30, false), OutOfRangeException);
  EXPECT_EQ(camera.Integer("OfB").GetValue(), 0);
  EXPECT_EQ(camera.Integer("OfE").GetValue(), 11) << "the numeric value, rounded";
  camera.Integer("OfE").SetValue(12);
  EXPECT_EQ(camera.Text("E"), "B") << "the nearest entry that is available";
  EXPECT_THROW(camera.Integer("OfB").SetValue(5), OutOfRangeException);
  camera.Integer("OfB").SetValue(5, false);
  EXPECT_TRUE(camera.As<IBoolean>("B").GetValue());
  EXPECT_EQ(camera.Integer("OfB").GetValue(), 1);
  EXPECT_EQ(camera.Float("Real").GetValue(), 1);
  EXPECT_EQ(camera.Float("Real").GetMin(), 0);
  EXPECT_EQ(camera.Float("Real").GetMax(), 1);
  camera.Integer("OfE").SetValue(12);
  EXPECT_EQ(camera.Text("E"), "C");
  camera.Integer("OfE").SetValue(4);
  EXPECT_EQ(camera.Text("E"), "A");
}

TEST(Conversions, LimitsPassThroughIntegersAndFloats) {
  Camera camera(
      "<Float Name=\"F\"><Value>0</Value><Min>-1.4</Min><Max>2.6</Max></Float>"
      "<Integer Name=\"OfF\"><pValue>F</pValue></Integer><Float Name=\"OfOfF\"><pValue>OfF</pValue></Float>" +
      Register("IntReg", "Far", 0x10, 8) +
      "<Integer Name=\"Limited\"><Value>-2</Value><pMax>Far</pMax></Integer>"
      "<Float Name=\"Real\"><Value>-2</Value><pMax>Far</pMax></Float>");
  EXPECT_EQ(camera.Integer("OfF").GetMin(), -1);
  EXPECT_EQ(camera.Integer("OfF").GetMax(), 3) << "rounded as the value is";
  EXPECT_THROW(camera.Integer("OfF").SetValue(3), OutOfRangeException) << "which the float itself refuses";
  camera.Integer("OfF").SetValue(2);
  EXPECT_EQ(camera.Float("F").GetValue(), 2);
  EXPECT_EQ(camera.Float("OfOfF").GetMax(), 3);
  EXPECT_EQ(camera.Float("OfOfF").GetInc(), 1);
  // All bits set are -1, also where a limit is meant.
  for (int i = 0; i < 8; ++i) camera.port.bytes[static_cast<std::size_t>(0x10 + i)] = 0xFF;
  EXPECT_EQ(camera.Integer("Limited").GetMax(), -1);
  EXPECT_EQ(camera.Float("Real").GetMax(), -1);
  EXPECT_THROW(camera.Integer("Limited").SetValue(0), OutOfRangeException);
  EXPECT_NO_THROW(camera.Integer("Limited").SetValue(-1));
}

TEST(Conversions, WhereATargetIsOfNoUseTheUseFails) {
  Camera camera(
      "<String Name=\"S\"><Value>x</Value></String><Integer Name=\"OfS\"><pValue>S</pValue></Integer>"
      "<Float Name=\"RealOfS\"><pValue>S</pValue></Float><Integer Name=\"L\"><pIsLocked>S</pIsLocked>"
      "<Value>1</Value></Integer><String Name=\"OfCommand\"><pValue>C</pValue></String>"
      "<Category Name=\"C\"><pFeature>S</pFeature></Category>");
  EXPECT_THROW(camera.Integer("OfS").GetValue(), RuntimeException);
  EXPECT_THROW(camera.Integer("OfS").SetValue(1), RuntimeException);
  EXPECT_THROW(camera.Float("RealOfS").GetValue(), RuntimeException);
  EXPECT_THROW(camera.Access("L"), RuntimeException);
  EXPECT_THROW(camera.As<IString>("OfCommand").SetValue("x"), AccessException);
}

TEST(Enumerations, HoldValuesThatNoEntryHas) {
  Camera camera(Register("IntReg", "R", 0x10, 1) +
                "<Enumeration Name=\"E\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry><pValue>R</pValue>"
                "</Enumeration>");
  camera.port.bytes[0x10] = 9;
  auto& enumeration = camera.As<IEnumeration>("E");
  EXPECT_EQ(enumeration.GetIntValue(), 9);
  EXPECT_EQ(enumeration.GetCurrentEntry(), nullptr);
  EXPECT_THROW(enumeration.GetIntValue(true), OutOfRangeException);
  EXPECT_THROW(enumeration.ToString(), InvalidArgumentException);
}

TEST(Commands, MayBeAskedWhetherTheyAreDoneWhileTheyAreNotAvailable) {
  Camera camera(
      Register("IntReg", "R", 0x10, 1) + Register("IntReg", "W", 0x11, 1, "", "WO") +
      "<Integer Name=\"Idle\"><Value>1</Value></Integer><Integer Name=\"Has\"><Value>1</Value></Integer>"
      "<Command Name=\"C\"><pIsImplemented>Has</pIsImplemented><pIsAvailable>Idle</pIsAvailable>"
      "<pValue>R</pValue><CommandValue>1</CommandValue></Command>"
      "<Command Name=\"CW\"><pValue>W</pValue><CommandValue>1</CommandValue></Command>"
      "<Command Name=\"CC\"><Value>0</Value><CommandValue>1</CommandValue></Command>");
  auto& command = camera.As<ICommand>("C");
  command.Execute();
  camera.Integer("Idle").SetValue(0);
  EXPECT_FALSE(command.IsDone());
  camera.port.bytes[0x10] = 0;
  EXPECT_TRUE(command.IsDone());
  EXPECT_TRUE(command.IsDone());
  camera.Integer("Has").SetValue(0);
  EXPECT_THROW(command.IsDone(), AccessException);
  camera.As<ICommand>("CW").Execute();
  EXPECT_TRUE(camera.As<ICommand>("CW").IsDone()) << "it cannot be asked";
  camera.As<ICommand>("CC").Execute();
  EXPECT_TRUE(camera.As<ICommand>("CC").IsDone());
  EXPECT_EQ(camera.Text("CC"), "0");
}

TEST(Commands, AreCheckedAgainstTheirTarget) {
  Camera camera(Register("IntReg", "R", 0x10, 1) + Register("IntReg", "Number", 0x12, 1) +
                "<Command Name=\"C\"><pValue>R</pValue><CommandValue>300</CommandValue></Command>"
                "<Command Name=\"P\"><pValue>R</pValue><pCommandValue>Number</pCommandValue></Command>");
  EXPECT_THROW(camera.As<ICommand>("C").Execute(), OutOfRangeException);
  EXPECT_TRUE(camera.As<ICommand>("C").IsDone()) << "it did not start";
  EXPECT_NO_THROW(camera.As<ICommand>("C").Execute(false));
  EXPECT_EQ(camera.port.bytes[0x10], 300 - 256);
  camera.Integer("Number").SetValue(9);
  camera.Value("P").FromString("true");
  EXPECT_EQ(camera.port.bytes[0x10], 9);
}

struct SlopeRow {
  const char* slope;
  double min, max;
};

TEST(Converters, TakeTheirLimitsFromTheSlopeTheyName) {
  constexpr double kMax = std::numeric_limits<double>::max();
  const SlopeRow rows[] = {
      {"Increasing", 20, 200}, {"Decreasing", 200, 20}, {"Automatic", 20, 200}, {"Varying", -kMax, kMax}};
  for (const SlopeRow& row : rows) {
    const std::string inside =
        "<FormulaTo>FROM/2</FormulaTo><FormulaFrom>TO*2</FormulaFrom><pValue>I</pValue><Slope>" +
        std::string(row.slope) + "</Slope>";
    Camera camera(
        "<Integer Name=\"I\"><Value>10</Value><Min>10</Min><Max>100</Max></Integer>"
        "<Converter Name=\"C\"><Streamable>Yes</Streamable>" +
        inside + "</Converter><IntConverter Name=\"IC\">" + inside + "</IntConverter>");
    EXPECT_EQ(camera.Float("C").GetMin(), row.min) << row.slope;
    EXPECT_EQ(camera.Float("C").GetMax(), row.max) << row.slope;
    const bool isUnlimited = row.max == kMax;
    EXPECT_EQ(camera.Integer("IC").GetMin(), isUnlimited ? INT64_MIN : static_cast<int64_t>(row.min))
        << row.slope;
    EXPECT_EQ(camera.Integer("IC").GetMax(), isUnlimited ? INT64_MAX : static_cast<int64_t>(row.max))
        << row.slope;
    EXPECT_EQ(camera.Integer("IC").GetInc(), 1);
  }
}

TEST(Strings, FillTheirRegister) {
  Camera camera(
      Register("StringReg", "S", 0x10, 4) + Register("StringReg", "RoS", 0x10, 4, "", "RO") +
      "<String Name=\"Kept\"><Value>x</Value></String><String Name=\"Over\"><pValue>S</pValue></String>");
  camera.As<IString>("Over").SetValue("abcd");
  EXPECT_EQ(camera.Text("S"), "abcd") << "without a terminator";
  EXPECT_EQ(camera.As<IString>("Over").GetMaxLength(), 4);
  camera.As<IString>("S").SetValue(gcstring("a\0b", 3));
  EXPECT_EQ(camera.As<IString>("S").GetValue().size(), 1U) << "it ends at the first NUL";
  camera.As<IString>("S").SetValue("ab");
  EXPECT_EQ(camera.As<IString>("S").GetMaxLength(), 4);
  EXPECT_EQ(camera.As<IString>("RoS").GetMaxLength(), 2) << "what cannot be written is as long as it is";
  EXPECT_EQ(camera.As<IString>("Kept").GetMaxLength(), static_cast<int64_t>(gcstring().max_size()));
}

}  // namespace
