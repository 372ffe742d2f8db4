#include "IpText.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace ZYNSDK;

namespace {

using Pieces = std::vector<std::string>;

struct SplitCase {
  const char* name;
  const char* text;
  const char* delimiters;
  Pieces pieces;
};

struct ParseCase {
  const char* name;
  const char* text;
  bool isAddress;
  unsigned int address;
};

class Split : public testing::TestWithParam<SplitCase> {};
class Parse : public testing::TestWithParam<ParseCase> {};

const auto kName = [](const auto& test) { return std::string(test.param.name); };

}  // namespace

TEST_P(Split, GivesThePieces) {
  EXPECT_EQ(split(GetParam().text, GetParam().delimiters), GetParam().pieces);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Split,
    testing::Values(SplitCase{"Address", "1.2.3.4", ".", {"1", "2", "3", "4"}},
                    SplitCase{"EmptyPieceAtTheEnd", "1.2.", ".", {"1", "2", ""}},
                    SplitCase{"EmptyPieceInFront", ".1", ".", {"", "1"}},
                    SplitCase{"EmptyPieceInside", "1..2", ".", {"1", "", "2"}},
                    SplitCase{"NoDelimiterInTheText", "12", ".", {"12"}},
                    SplitCase{"EmptyText", "", ".", {""}}, SplitCase{"NoDelimitersAtAll", "1.2", "", {"1.2"}},
                    SplitCase{"SeveralDelimitersSkipAsManyCharacters", "1.23,45", ".,", {"1", "3", "5"}},
                    SplitCase{"SkippingPastTheEndLeavesAnEmptyPiece", "12,", ".,;", {"12", ""}}),
    kName);

TEST_P(Parse, ReadsAnAddressOrLeavesTheOutputAlone) {
  unsigned int address = 0xdeadbeef;
  EXPECT_EQ(TransIpToInt(address, GetParam().text), GetParam().isAddress);
  EXPECT_EQ(address, GetParam().isAddress ? GetParam().address : 0xdeadbeef);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Parse,
    testing::Values(ParseCase{"FirstNumberIsTheLowestByte", "192.168.1.50", true, 0x3201a8c0},
                    ParseCase{"AllBits", "255.255.255.255", true, 0xffffffff},
                    ParseCase{"LettersAreZero", "a.b.c.d", true, 0},
                    ParseCase{"TrailingLettersAndLeadingBlanks", " 10.0.0.1x", true, 0x0100000a},
                    ParseCase{"LeadingZeroIsDecimal", "010.1.1.1", true, 0x0101010a},
                    ParseCase{"EmptyPieceIsZero", "1..2.3", true, 0x03020001},
                    ParseCase{"TooLarge", "192.168.1.256", false, 0},
                    ParseCase{"Negative", "1.2.3.-1", false, 0},
                    ParseCase{"FarTooLarge", "1.2.3.99999999999999999999", false, 0},
                    ParseCase{"WrapsAround", "1.2.3.4294967297", false, 0},
                    ParseCase{"ThreePieces", "192.168.1", false, 0},
                    ParseCase{"FivePieces", "1.2.3.4.5", false, 0}, ParseCase{"Empty", "", false, 0}),
    kName);

TEST(TransIpToString, WritesTheLowestByteFirst) {
  EXPECT_EQ(TransIpToString(0x3201a8c0), "192.168.1.50");
  EXPECT_EQ(TransIpToString(0), "0.0.0.0");
  EXPECT_EQ(TransIpToString(0xffffffff), "255.255.255.255");
}
