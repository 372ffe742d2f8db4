/// Files of what 3D cameras deliver. All functions throw Failure when a file cannot be written.
#ifndef ZYNCAM_HEIGHT_FILES_H
#define ZYNCAM_HEIGHT_FILES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zyncam {

/// What turns a raw value into millimetres: (value - offset) * resolution.
struct Axis {
  double resolution = 1;
  double offset = 0;

  double Millimetres(double value) const { return (value - offset) * resolution; }
};

/// Rows of raw 16-bit heights with a brightness for each point: a scan, or one profile as a single row.
struct HeightMap {
  int width = 0;   ///< points per row
  int height = 0;  ///< rows
  std::vector<std::uint16_t> heights;
  std::vector<std::uint8_t> intensities;
  Axis x, y, z;

  std::size_t Points() const { return heights.size(); }
};

/// One line per point of the first row: "point,x_mm,z_mm,height,intensity", with a heading.
void WriteCsv(const std::string& path, const HeightMap& map);

/// The first row as a curve: a PNG of at most 1000 x 400 pixels whose height is the range of the heights.
void WritePlot(const std::string& path, const HeightMap& map);

/// The raw heights as 16-bit PNG.
void WriteHeightPng(const std::string& path, const HeightMap& map);

/// Size, resolutions and offsets as JSON: what the PNG file does not tell.
void WriteSidecar(const std::string& path, const HeightMap& map);

/// The heights as colours, blue for the lowest that occurs to red for the highest.
void WriteColours(const std::string& path, const HeightMap& map);

/// A binary little-endian point cloud in millimetres: x, y, z as 32-bit floats and the intensity as a byte.
void WritePly(const std::string& path, const HeightMap& map);

}  // namespace zyncam

#endif
