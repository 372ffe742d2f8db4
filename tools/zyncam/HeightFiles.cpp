#include "HeightFiles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>

#include "JsonText.h"
#include "OutputFile.h"
#include "PngWriter.h"

namespace zyncam {
namespace {

constexpr int kPlotWidth = 1000;
constexpr int kPlotHeight = 400;

struct Range {
  int lowest = 0;
  int highest = 0;
  int Size() const { return std::max(1, highest - lowest); }
};

Range RangeOf(const std::uint16_t* first, const std::uint16_t* behind) {
  if (first == behind) return {};
  const auto [lowest, highest] = std::minmax_element(first, behind);
  return {*lowest, *highest};
}

using Colour = std::array<std::uint8_t, 3>;

// Blue, cyan, green, yellow, red at equal distances, and straight lines between them.
Colour ColourOf(int height, const Range& range) {
  constexpr std::array<Colour, 5> kStops = {Colour{0, 0, 255}, Colour{0, 255, 255}, Colour{0, 255, 0},
                                            Colour{255, 255, 0}, Colour{255, 0, 0}};
  const double place = 4.0 * (height - range.lowest) / range.Size();
  const auto below = std::min<std::size_t>(3, static_cast<std::size_t>(place));
  const double share = place - static_cast<double>(below);
  Colour colour{};
  for (std::size_t i = 0; i < colour.size(); ++i) {
    colour[i] =
        static_cast<std::uint8_t>(std::lround(kStops[below][i] * (1 - share) + kStops[below + 1][i] * share));
  }
  return colour;
}

void AppendFloat(std::string& text, double value) {
  const auto narrow = static_cast<float>(value);
  std::uint32_t bits = 0;
  std::memcpy(&bits, &narrow, sizeof bits);
  for (int shift = 0; shift < 32; shift += 8) text += static_cast<char>(bits >> shift & 0xFF);
}

std::string PlyHeader(std::size_t points) {
  return "ply\nformat binary_little_endian 1.0\ncomment millimetres\nelement vertex " +
         std::to_string(points) +
         "\nproperty float x\nproperty float y\nproperty float z\nproperty uchar intensity\nend_header\n";
}

nlohmann::ordered_json AxisJson(const Axis& axis) {
  return {{"resolution", axis.resolution}, {"offset", axis.offset}};
}

}  // namespace

void WriteCsv(const std::string& path, const HeightMap& map) {
  std::string text = "point,x_mm,z_mm,height,intensity\n";
  for (int point = 0; point < map.width; ++point) {
    const auto at = static_cast<std::size_t>(point);
    char line[128];
    std::snprintf(line, sizeof line, "%d,%.6g,%.6g,%d,%d\n", point, map.x.Millimetres(point),
                  map.z.Millimetres(map.heights[at]), map.heights[at], map.intensities[at]);
    text += line;
  }
  WriteFile(path, text.data(), text.size());
}

// Each column of the picture shows the first point that falls on it, joined with the column before.
void WritePlot(const std::string& path, const HeightMap& map) {
  const int width = std::min(kPlotWidth, map.width);
  const Range range = RangeOf(map.heights.data(), map.heights.data() + map.width);
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width) * kPlotHeight, 255);
  int former = -1;
  for (int column = 0; column < width; ++column) {
    const auto point = static_cast<std::size_t>(static_cast<std::int64_t>(column) * map.width / width);
    const int row =
        (kPlotHeight - 1) - (map.heights[point] - range.lowest) * (kPlotHeight - 1) / range.Size();
    const int from = former < 0 ? row : former;
    for (int y = std::min(from, row); y <= std::max(from, row); ++y)
      pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
             static_cast<std::size_t>(column)] = 0;
    former = row;
  }
  WritePng(path, pixels.data(), width, kPlotHeight, static_cast<std::size_t>(width), LayoutOf("Mono8"));
}

void WriteHeightPng(const std::string& path, const HeightMap& map) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(map.Points() * 2);
  for (const std::uint16_t height : map.heights) {
    bytes.push_back(static_cast<std::uint8_t>(height));
    bytes.push_back(static_cast<std::uint8_t>(height >> 8));
  }
  WritePng(path, bytes.data(), map.width, map.height, static_cast<std::size_t>(map.width) * 2,
           LayoutOf("Mono16"));
}

void WriteSidecar(const std::string& path, const HeightMap& map) {
  nlohmann::ordered_json json;
  json["width"] = map.width;
  json["height"] = map.height;
  json["unit"] = "mm";
  json["formula"] = "(value - offset) * resolution; x: column, y: row, z: pixel";
  json["x"] = AxisJson(map.x);
  json["y"] = AxisJson(map.y);
  json["z"] = AxisJson(map.z);
  const std::string text = JsonText(json) + "\n";
  WriteFile(path, text.data(), text.size());
}

void WriteColours(const std::string& path, const HeightMap& map) {
  const Range range = RangeOf(map.heights.data(), map.heights.data() + map.Points());
  std::vector<std::uint8_t> bytes;
  bytes.reserve(map.Points() * 3);
  for (const std::uint16_t height : map.heights) {
    const Colour colour = ColourOf(height, range);
    bytes.insert(bytes.end(), colour.begin(), colour.end());
  }
  WritePng(path, bytes.data(), map.width, map.height, static_cast<std::size_t>(map.width) * 3,
           LayoutOf("RGB8"));
}

void WritePly(const std::string& path, const HeightMap& map) {
  constexpr std::size_t kVertexBytes = 13;
  std::string text = PlyHeader(map.Points());
  text.reserve(text.size() + map.Points() * kVertexBytes);
  std::size_t at = 0;
  for (int row = 0; row < map.height; ++row) {
    for (int column = 0; column < map.width; ++column, ++at) {
      AppendFloat(text, map.x.Millimetres(column));
      AppendFloat(text, map.y.Millimetres(row));
      AppendFloat(text, map.z.Millimetres(map.heights[at]));
      text += static_cast<char>(map.intensities[at]);
    }
  }
  WriteFile(path, text.data(), text.size());
}

}  // namespace zyncam
