// Values as texts, in whatever language the program runs.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "../MemoryPort.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

struct FloatRow {
  const char* elements;
  const char* text;
};

TEST(Texts, OfFloatsFollowNotationAndPrecision) {
  const FloatRow rows[] = {
      {"<Value>1.5</Value>", "1.5"},
      {"<Value>0.0000001</Value>", "1e-07"},
      {"<Value>123456789</Value>", "1.23457e+08"},
      {"<Value>123456.789</Value><DisplayNotation>Scientific</DisplayNotation>", "1.234568e+05"},
      {"<Value>1.5</Value><DisplayNotation>Fixed</DisplayNotation>", "1.500000"},
      {"<Value>2.75</Value><DisplayNotation>Fixed</DisplayNotation><DisplayPrecision>1</DisplayPrecision>",
       "2.8"},
      {"<Value>1.5</Value><DisplayPrecision>-1</DisplayPrecision>", "1.5"},
      {"<Value>1.5</Value><DisplayNotation>Fixed</DisplayNotation><DisplayPrecision>-1</DisplayPrecision>",
       "1.500000"},
      {"<Value>0.1</Value><DisplayPrecision>17</DisplayPrecision>", "0.10000000000000001"},
      {"<Value>INF</Value>", "inf"},
      {"<Value>-INF</Value>", "-inf"},
      {"<Value>NaN</Value>", "nan"},
      {"<Value>0.999999999</Value><Max>0.999999999</Max>", "0.999999999"},
  };
  for (const FloatRow& row : rows) {
    Camera camera("<Float Name=\"F\">" + std::string(row.elements) + "</Float>");
    EXPECT_EQ(camera.Text("F"), row.text) << row.elements;
  }
}

TEST(Texts, OfFloatsAreReadAsFarAsTheyAreNumbers) {
  Camera camera("<Float Name=\"F\"><Value>0</Value></Float>");
  const struct {
    const char* text;
    double expected;
  } good[] = {{"1.5", 1.5},    {" 2", 2},  {"+3", 3},   {"-4.25e1", -42.5},
              {"1.5abc", 1.5}, {"5 6", 5}, {".5", 0.5}, {"1e-320", 1e-320}};
  for (const auto& row : good) {
    camera.Value("F").FromString(row.text);
    EXPECT_EQ(camera.Float("F").GetValue(), row.expected) << row.text;
  }
  for (const char* const text : {"", "abc", "nan", "inf", "-inf", "0x10", "-0X1", "1e400", "e5", "+-1"})
    EXPECT_THROW(camera.Value("F").FromString(text), InvalidArgumentException) << text;
}

TEST(Texts, OfIntegersTakeTheirFormFromTheNodeTheyAreOver) {
  Camera camera(
      "<Integer Name=\"Ip\"><Value>0xC0A80102</Value><Representation>IPV4Address</Representation></Integer>"
      "<Integer Name=\"Over\"><pValue>Ip</pValue></Integer>"
      "<Integer Name=\"Own\"><pValue>Ip</pValue><Representation>HexNumber</Representation></Integer>");
  EXPECT_EQ(camera.Text("Over"), "192.168.1.2");
  camera.Value("Over").FromString("10.0.0.1");
  EXPECT_EQ(camera.Text("Own"), "0xa000001");
  EXPECT_THROW(camera.Value("Over").FromString("10"), InvalidArgumentException);
}

#ifdef ZYN_COMMA_LOCALE_DIR

// Has a comma where others have a point, for one scope. Made here: which languages a machine knows is its owner's choice.
class CommaLocale {
 public:
  CommaLocale() : before_(std::setlocale(LC_ALL, nullptr)) {  // NOLINT(concurrency-mt-unsafe): one thread
    setenv("LOCPATH", ZYN_COMMA_LOCALE_DIR, 1);               // NOLINT(concurrency-mt-unsafe)
    isSet_ = std::setlocale(LC_ALL, "zyn_comma") != nullptr;  // NOLINT(concurrency-mt-unsafe)
  }
  ~CommaLocale() {
    std::setlocale(LC_ALL, before_.c_str());  // NOLINT(concurrency-mt-unsafe)
    unsetenv("LOCPATH");                      // NOLINT(concurrency-mt-unsafe)
  }
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;
  bool IsSet() const { return isSet_; }

 private:
  const std::string before_;
  bool isSet_ = false;
};

TEST(Texts, OfFloatsDoNotDependOnTheLanguageOfTheProgram) {
  Camera camera(
      "<Float Name=\"F\"><Value>1234567.5</Value><DisplayPrecision>9</DisplayPrecision></Float>"
      "<Float "
      "Name=\"X\"><Value>1.5</Value><DisplayNotation>Fixed</DisplayNotation><Streamable>Yes</Streamable>"
      "<DisplayPrecision>2</DisplayPrecision></Float><Category "
      "Name=\"Root\"><pFeature>X</pFeature></Category>");
  const CommaLocale comma;
  ASSERT_TRUE(comma.IsSet());
  char text[32];
  std::snprintf(text, sizeof(text), "%.1f", 1.5);
  ASSERT_STREQ(text, "1,5") << "the language counts here";
  EXPECT_EQ(camera.Text("F"), "1234567.5");
  EXPECT_EQ(camera.Text("X"), "1.50");
  camera.Value("F").FromString("2.25");
  EXPECT_EQ(camera.Float("F").GetValue(), 2.25);
  CFeatureBag bag;
  bag.StoreToBag(camera.map._Ptr);
  EXPECT_EQ(bag.ToString(), "X\t1.50\n");
  CNodeMapFactory factory(Description("<Float Name=\"G\"><Value>0.125</Value></Float>").c_str());
  CNodeMapRef map(factory.CreateNodeMap());
  EXPECT_EQ(CFloatPtr(map._GetNode("G"))->GetValue(), 0.125);
}

#endif

}  // namespace
