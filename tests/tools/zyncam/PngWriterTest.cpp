#include "PngWriter.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "Failure.h"
#include "PngReader.h"

namespace {

namespace fs = std::filesystem;
using zyntest::Decoded;
using zyntest::Read;

class PngWriter : public testing::Test {
 protected:
  PngWriter() {
    std::string pattern = (fs::temp_directory_path() / "zyncam-png-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~PngWriter() override {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }
  std::string Path() const { return (folder_ / "image.png").string(); }

  fs::path folder_;
};

using zyncam::LayoutOf;
using zyncam::WritePng;

TEST_F(PngWriter, EightBitPixelsArriveUnchangedAndPaddingIsLeftOut) {
  const std::vector<std::uint8_t> pixels = {1, 2, 3, 99, 4, 5, 255, 99};
  WritePng(Path(), pixels.data(), 3, 2, 4, LayoutOf("Mono8"));
  const Decoded image = Read(Path());
  EXPECT_EQ(image.width, 3U);
  EXPECT_EQ(image.height, 2U);
  EXPECT_EQ(image.bitDepth, 8);
  EXPECT_EQ(image.colorType, PNG_COLOR_TYPE_GRAY);
  EXPECT_EQ(image.bytes, (std::vector<std::uint8_t>{1, 2, 3, 4, 5, 255}));
}

TEST_F(PngWriter, TwelveBitPixelsUseAllSixteenBitsAndSayHowManyCount) {
  const std::vector<std::uint8_t> pixels = {0xff, 0x0f, 0x01,
                                            0x00};  // 4095 and 1, least significant byte first
  WritePng(Path(), pixels.data(), 2, 1, 4, LayoutOf("Mono12"));
  const Decoded image = Read(Path());
  EXPECT_EQ(image.bitDepth, 16);
  EXPECT_EQ(image.significantBits, 12);
  EXPECT_EQ(image.bytes, (std::vector<std::uint8_t>{0xff, 0xf0, 0x00, 0x10}));
}

TEST_F(PngWriter, ColourIsWrittenRedFirst) {
  const std::vector<std::uint8_t> pixels = {1, 2, 3, 4, 5, 6};
  WritePng(Path(), pixels.data(), 2, 1, 6, LayoutOf("BGR8"));
  EXPECT_EQ(Read(Path()).bytes, (std::vector<std::uint8_t>{3, 2, 1, 6, 5, 4}));
  WritePng(Path(), pixels.data(), 2, 1, 6, LayoutOf("RGB8"));
  const Decoded image = Read(Path());
  EXPECT_EQ(image.colorType, PNG_COLOR_TYPE_RGB);
  EXPECT_EQ(image.bytes, pixels);
}

TEST_F(PngWriter, AFileThatCannotBeWrittenIsNamed) {
  const std::uint8_t pixel = 0;
  try {
    WritePng((folder_ / "missing" / "x.png").string(), &pixel, 1, 1, 1, LayoutOf("Mono8"));
    FAIL() << "no failure";
  } catch (const zyncam::Failure& failure) {
    EXPECT_EQ(failure.Exit(), zyncam::kExitOutput);
    EXPECT_NE(std::string(failure.what()).find("x.png"), std::string::npos);
  }
}

TEST_F(PngWriter, AnImageWithRowsShorterThanItsPixelsIsRefusedAndLeavesNoFile) {
  const std::array<std::uint8_t, 4> pixels{};
  EXPECT_THROW(WritePng(Path(), pixels.data(), 3, 1, 2, LayoutOf("Mono8")), zyncam::Failure);
  EXPECT_FALSE(fs::exists(Path()));
}

struct FormatCase {
  const char* format;
  bool known;
  int bits;
  int channels;
};

class PixelFormats : public testing::TestWithParam<FormatCase> {};

TEST_P(PixelFormats, AreUnderstoodByName) {
  const zyncam::PixelLayout layout = LayoutOf(GetParam().format);
  EXPECT_EQ(layout.known, GetParam().known);
  if (!layout.known) return;
  EXPECT_EQ(layout.bitsPerSample, GetParam().bits);
  EXPECT_EQ(layout.channels, GetParam().channels);
}

INSTANTIATE_TEST_SUITE_P(Names, PixelFormats,
                         testing::Values(FormatCase{"Mono8", true, 8, 1}, FormatCase{"Mono10", true, 10, 1},
                                         FormatCase{"Mono16", true, 16, 1},
                                         FormatCase{"BayerRG12", true, 12, 1}, FormatCase{"RGB8", true, 8, 3},
                                         FormatCase{"BGR8", true, 8, 3},
                                         FormatCase{"Mono12Packed", false, 0, 0},
                                         FormatCase{"Mono4p", false, 0, 0},
                                         FormatCase{"YUV422_8", false, 0, 0}, FormatCase{"Mono", false, 0, 0},
                                         FormatCase{"", false, 0, 0}),
                         [](const testing::TestParamInfo<FormatCase>& param) {
                           const std::string name = param.param.format;
                           return name.empty() ? std::string("Empty") : name;
                         });

}  // namespace
