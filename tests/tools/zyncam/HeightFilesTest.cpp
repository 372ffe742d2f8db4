// Files of 3D cameras, value by value.
#include "HeightFiles.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "Failure.h"
#include "PngReader.h"

namespace {

namespace fs = std::filesystem;
using zyntest::Decoded;
using zyntest::Read;

class HeightFiles : public testing::Test {
 protected:
  HeightFiles() {
    std::string pattern = (fs::temp_directory_path() / "zyncam-heights-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    map_.width = 2;
    map_.height = 2;
    map_.heights = {0x1234, 32768, 65535, 0};
    map_.intensities = {1, 2, 3, 255};
    map_.x = {0.5, 0};
    map_.y = {2, 0};
    map_.z = {0.001, 32768};
  }
  ~HeightFiles() override {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  std::string Path() const { return (folder_ / "file").string(); }
  std::string Content() const {
    std::ifstream file(Path(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  fs::path folder_;
  zyncam::HeightMap map_;
};

TEST_F(HeightFiles, TheHeightMapHoldsTheRawValues) {
  zyncam::WriteHeightPng(Path(), map_);
  const Decoded image = Read(Path());
  EXPECT_EQ(image.width, 2U);
  EXPECT_EQ(image.height, 2U);
  EXPECT_EQ(image.bitDepth, 16);
  EXPECT_EQ(image.bytes, (std::vector<std::uint8_t>{0x12, 0x34, 0x80, 0x00, 0xFF, 0xFF, 0x00, 0x00}));
}

TEST_F(HeightFiles, TheLowestHeightIsBlueAndTheHighestRed) {
  zyncam::WriteColours(Path(), map_);
  const Decoded image = Read(Path());
  ASSERT_EQ(image.bytes.size(), 12U);
  EXPECT_EQ(std::vector<std::uint8_t>(image.bytes.begin() + 6, image.bytes.end()),
            (std::vector<std::uint8_t>{255, 0, 0, 0, 0, 255}));
}

TEST_F(HeightFiles, AFlatMapHasOneColour) {
  map_.heights.assign(4, 100);
  zyncam::WriteColours(Path(), map_);
  const Decoded image = Read(Path());
  for (std::size_t i = 0; i < 12; i += 3) EXPECT_EQ(image.bytes[i + 2], 255) << i;
}

TEST_F(HeightFiles, TheTableHasALinePerPointInMillimetres) {
  zyncam::WriteCsv(Path(), map_);
  EXPECT_EQ(Content(),
            "point,x_mm,z_mm,height,intensity\n"
            "0,0,-28.108,4660,1\n"
            "1,0.5,0,32768,2\n");
}

TEST_F(HeightFiles, ThePlotMarksEveryColumn) {
  map_.height = 1;
  map_.heights = {0, 65535};
  zyncam::WritePlot(Path(), map_);
  const Decoded image = Read(Path());
  ASSERT_EQ(image.width, 2U);
  EXPECT_EQ(image.bytes[(image.height - 1) * 2], 0) << "the lowest point lies at the bottom";
  EXPECT_EQ(image.bytes[1], 0) << "the highest at the top";
  EXPECT_EQ(image.bytes[0], 255);
}

TEST_F(HeightFiles, ThePointCloudHasAHeaderAnd13BytesPerPoint) {
  zyncam::WritePly(Path(), map_);
  const std::string content = Content();
  const std::size_t end = content.find("end_header\n");
  ASSERT_NE(end, std::string::npos);
  EXPECT_EQ(content.size() - end - 11, 4U * 13);
  EXPECT_EQ(static_cast<unsigned char>(content.back()), 255);
}

TEST_F(HeightFiles, AFolderThatIsMissingIsAFailure) {
  EXPECT_THROW(zyncam::WriteCsv((folder_ / "none" / "x").string(), map_), zyncam::Failure);
}

}  // namespace
