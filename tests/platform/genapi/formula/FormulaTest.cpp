// Formulas through nodes, in both arithmetics.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "../MemoryPort.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

std::string Escape(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == '&') {
      out += "&amp;";
    } else if (c == '<') {
      out += "&lt;";
    } else {
      out += c;
    }
  }
  return out;
}

// A is 3 and B is 2.5 in both (in integer formulas B is 3).
std::string Knives(const std::string& formula) {
  const std::string inside =
      "<pVariable Name=\"A\">IA</pVariable><pVariable Name=\"B\">FB</pVariable><Formula>" + Escape(formula) +
      "</Formula>";
  return "<Integer Name=\"IA\"><Value>3</Value></Integer><Float Name=\"FB\"><Value>2.5</Value></Float>"
         "<SwissKnife Name=\"Real\">" +
         inside + "</SwissKnife><IntSwissKnife Name=\"Whole\">" + inside + "</IntSwissKnife>";
}

double Real(const std::string& formula) {
  return Camera(Knives(formula)).Float("Real").GetValue();
}
int64_t Whole(const std::string& formula) {
  return Camera(Knives(formula)).Integer("Whole").GetValue();
}

struct BothRow {
  const char* formula;
  double real;
  int64_t whole;
};

TEST(Formula, GivesTheSameEverywhereOrByItsArithmetic) {
  const BothRow rows[] = {
      {"7/2", 3.5, 3},
      {"-7/2", -3.5, -3},
      {"7/-2", -3.5, -3},
      {"-7%3", -1, -1},
      {"7%-3", 1, 1},
      {"10/4*4", 10, 8},
      {"3/2*2", 3, 2},
      {"2**62", 4611686018427387904.0, 4611686018427387904},
      {"2**63", 9223372036854775808.0, INT64_MIN},
      {"~5", -6, -6},
      {"~0", -1, -1},
      {"~~5", 5, 5},
      {"-~5", 6, 6},
      {"0xFFFFFFFF&0xFF", 255, 255},
      {"-1&0xFF", 255, 255},
      {"1<<40", 1099511627776.0, 1099511627776},
      {"-8>>1", -4, -4},
      {"-1>>63", -1, -1},
      {"1=1?1=2:3", 0, 0},
      {"0?1:0?2:3", 3, 3},
      {"A=1?1:A=2?2:A=3?33:4", 33, 33},
      {"1<2=1", 1, 1},
      {"1+1=2", 1, 1},
      {"5-3>1", 1, 1},
      {"10-5-2", 3, 3},
      {"100/10/2", 5, 5},
      {"-SGN(5)", -1, -1},
      {"NEG(5)", -5, -5},
      // precedence
      {"1|2&4", 0, 0},
      {"1<<2+1", 5, 5},
      {"1|1<<1", 2, 2},
      {"2**3**2", 64, 64},
      {"1||0&&0", 0, 0},
      {"A=3&&B>2", 0, 0},
      {"-(2)**2", -4, -4},
      {"-(2)&3", -2, -2},
      {"NEG 2**2", -4, -4},
      {"-2**2", 4, 4},
      {"-A**2", 9, 9},
      {"-5&3", 3, 3},
      {"~(5)&3", 2, 2},
      {"-(3)+5", -8, -8},
      {"-(3)<5", -1, -1},
      {"SQRT 16+9", 5, 5},
      // signs anywhere, whitespace, zeros, capitals
      {"2+-3", -1, -1},
      {"--5", 5, 5},
      {"2*-3", -6, -6},
      {"2>>-1", 0, 0},
      {" 1 +\n\t2 ", 3, 3},
      {"010", 10, 10},
      {"0X10", 16, 16},
      {"sgn(-4)", -1, -1},
      {"A<>3", 0, 0},
      {"A>=3", 1, 1},
      {"A<=2", 0, 0},
      {"6^3", 5, 5},
      // only what is needed is evaluated
      {"1?5:1/0", 5, 5},
      {"0&&1/0", 0, 0},
      {"1||1/0", 1, 1},
      {"(~(~0xC2000221|0xFEFFFFFF)) ? 2:0", 0, 0},
      {"(0 & 1)=0?((0 & 1)+2):1", 2, 2},
  };
  for (const BothRow& row : rows) {
    SCOPED_TRACE(row.formula);
    EXPECT_EQ(Real(row.formula), row.real);
    EXPECT_EQ(Whole(row.formula), row.whole);
  }
}

TEST(Formula, RealArithmetic) {
  const struct {
    const char* formula;
    double expected;
  } rows[] = {{"7.5%2", 1.5},
              {"2**0.5", std::sqrt(2.0)},
              {"ROUND(2.5)", 3},
              {"ROUND(-2.5)", -3},
              {"ROUND(2.456,2)", 2.46},
              {"ROUND(1234,-2)", 1200},
              {"TRUNC(-2.7)", -2},
              {"FLOOR(-2.2)", -3},
              {"CEIL(-2.2)", -2},
              {"PI", std::acos(-1.0)},
              {"E()", std::exp(1.0)},
              {"LG(1000)", 3},
              {"LN(E)", 1},
              {"ABS(-2.5)", 2.5},
              {"1.5E-3", 0.0015},
              {".5", 0.5},
              {"3.", 3},
              {"(4/(20/10000))", 2000},
              {"0.1+0.2=0.3", 0},
              {"SQRT(16)+9", 13}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.formula);
    EXPECT_DOUBLE_EQ(Real(row.formula), row.expected);
  }
  EXPECT_TRUE(std::isnan(Real("SQRT(-1)")));
  EXPECT_TRUE(std::isinf(Real("LN(0)")));
}

TEST(Formula, IntegerArithmeticIsDefinedAtItsEdges) {
  EXPECT_EQ(Whole("0x8000000000000000/-1"), INT64_MIN);
  EXPECT_EQ(Whole("0x8000000000000000%-1"), 0);
  EXPECT_EQ(Whole("0x7FFFFFFFFFFFFFFF+1"), INT64_MIN);
  EXPECT_EQ(Whole("99999999999999999999"), INT64_MAX);
  EXPECT_EQ(Whole("3**40"), INT64_MIN);
  EXPECT_EQ(Whole("2**-1"), 0);
  EXPECT_EQ(Whole("1.9"), 1);
  EXPECT_EQ(Whole("9007199254740993"), 9007199254740993);
  EXPECT_EQ(Whole("B"), 3);
}

struct BadRow {
  const char* formula;
  const char* message;
};

TEST(Formula, SaysWhatIsWrong) {
  const BadRow rows[] = {
      {"1/0", "#Infinity somewhere!"},   {"1%0", "#Infinity somewhere!"},
      {"6/2&1", "#Infinity somewhere!"}, {"foo+1", "# foo - Unknown function/variable!"},
      {"", "#Invalid formula"},          {"()", "#Invalid formula"},
      {"1 2", "#Invalid formula"},       {"(1", "#Brackets do not match!"},
      {"1)", "#Brackets do not match!"}, {"1?2", "#Logical expression error!"},
      {"1==2", "#Syntax error!"},        {"1,2", "#Syntax error!"},
      {"!1", "#Syntax error!"},          {"1+", "#Invalid formula"},
      {"12x", "#Syntax error!"},
  };
  for (const BadRow& row : rows) {
    SCOPED_TRACE(row.formula);
    try {
      Whole(row.formula);
      ADD_FAILURE();
    } catch (const LogicalErrorException& error) {
      EXPECT_NE(std::string(error.GetDescription()).find(row.message), std::string::npos)
          << error.GetDescription();
    }
    EXPECT_THROW(Real(row.formula), LogicalErrorException);
  }
  EXPECT_THROW(Real("1e30&1"), LogicalErrorException);
}

TEST(Formula, DeepNestingIsRefused) {
  EXPECT_EQ(Whole(std::string(50, '(') + "1" + std::string(50, ')')), 1);
  EXPECT_THROW(Whole(std::string(100000, '(') + "1" + std::string(100000, ')')), LogicalErrorException);
  EXPECT_THROW(Whole(std::string(100000, '-') + "1"), LogicalErrorException);
  EXPECT_THROW(Whole(std::string(100000, '~') + "1"), LogicalErrorException);
  std::string wide = "1";
  for (int i = 0; i < 1000; ++i) wide += "+(1";
  EXPECT_THROW(Whole(wide + std::string(1000, ')')), LogicalErrorException);
}

TEST(Formula, ExpressionsUseEachOtherInAnyOrder) {
  Camera camera(
      "<SwissKnife Name=\"K\"><Constant Name=\"C\">2</Constant><Expression Name=\"E1\">E2*C</Expression>"
      "<Expression Name=\"E2\">C+1</Expression><Formula>E1+E2</Formula></SwissKnife>"
      "<SwissKnife Name=\"Loop\"><Expression Name=\"E1\">E2</Expression><Expression "
      "Name=\"E2\">E1</Expression>"
      "<Formula>E1</Formula></SwissKnife>");
  EXPECT_EQ(camera.Float("K").GetValue(), 9);
  EXPECT_THROW(camera.Float("Loop").GetValue(), LogicalErrorException);
}

TEST(Formula, ExpressionsAreEvaluatedOnceEach) {
  std::string knife = "<IntSwissKnife Name=\"K\"><Expression Name=\"E0\">1</Expression>";
  for (int i = 1; i < 60; ++i) {
    const std::string previous = "E" + std::to_string(i - 1);
    knife += "<Expression Name=\"E" + std::to_string(i) + "\">" + previous + "+" + previous + "</Expression>";
  }
  Camera camera(knife + "<Formula>E59</Formula></IntSwissKnife>");
  EXPECT_EQ(camera.Integer("K").GetValue(), int64_t{1} << 59);  // 2^59 additions would never end
}

TEST(Formula, VariablesNameFacetsOfNodes) {
  Camera camera(
      "<Integer Name=\"I\"><Value>6</Value><Min>2</Min><Max>10</Max><Inc>2</Inc></Integer>"
      "<Enumeration Name=\"En\"><EnumEntry Name=\"X\"><Value>7</Value></EnumEntry><EnumEntry "
      "Name=\"Y\"><Value>8</Value>"
      "<NumericValue>80.5</NumericValue></EnumEntry><Value>8</Value></Enumeration>"
      "<Boolean Name=\"Bo\"><Value>true</Value></Boolean>"
      "<IntSwissKnife Name=\"K\"><pVariable Name=\"V\">I</pVariable><pVariable Name=\"V.Min\">I</pVariable>"
      "<pVariable Name=\"V.Max\">I</pVariable><pVariable Name=\"V.Inc\">I</pVariable>"
      "<pVariable Name=\"V.AccessMode\">I</pVariable><pVariable Name=\"En.Entry.X\">En</pVariable>"
      "<Formula>V.Value*1000000 + V.Max*10000 + V.Min*1000 + V.Inc*100 + V.AccessMode*10 + "
      "En.Entry.X</Formula>"
      "</IntSwissKnife>"
      "<SwissKnife Name=\"N\"><pVariable Name=\"X\">En</pVariable><pVariable Name=\"B\">Bo</pVariable>"
      "<Formula>X+B</Formula></SwissKnife>");
  EXPECT_EQ(camera.Integer("K").GetValue(), 6102247);
  EXPECT_EQ(camera.Float("N").GetValue(), 81.5);
}

TEST(Formula, ParsingAllFormulasReportsTheBadOnes) {
  Camera camera(
      "<SwissKnife Name=\"Good\"><Formula>1/0</Formula></SwissKnife>"
      "<SwissKnife Name=\"Bad\"><Formula>1+</Formula></SwissKnife>");
  gcstring_vector errors;
  EXPECT_FALSE(camera.map._ParseSwissKnifes(&errors));
  ASSERT_EQ(errors.size(), 1U);
  EXPECT_NE(std::string(errors[0].c_str()).find("Bad"), std::string::npos);
}

}  // namespace
