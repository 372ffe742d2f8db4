// zyn-scene-check SCAN.PNG: compares a height map of a simulated laser camera, as zyncam scan writes it, with the
// formula of the scene, point by point, and prints the largest difference in raw units.
// Exit code: 0 when there is none, 1 when heights differ, 2 when the file cannot be read.

#include <png.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <vector>

#include "cameras/laser/Scene.h"

namespace {

namespace scene = zyn::cameras::scene;

struct HeightMap {
  std::int64_t width = 0;
  std::int64_t height = 0;
  std::vector<std::uint16_t> values;  // row after row

  int At(std::int64_t row, std::int64_t column) const {
    return values[static_cast<std::size_t>(row * width + column)];
  }
};

std::optional<HeightMap> Read(const char* path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_file(&image, path) == 0) return std::nullopt;
  // Files of 16 bits hold linear values, so this format gives them as they are; others would be converted.
  if (image.format != PNG_FORMAT_LINEAR_Y) {
    png_image_free(&image);
    return std::nullopt;
  }
  HeightMap map{image.width, image.height, std::vector<std::uint16_t>(PNG_IMAGE_SIZE(image) / 2)};
  if (png_image_finish_read(&image, nullptr, map.values.data(), 0, nullptr) == 0) return std::nullopt;
  return map;
}

int LargestDifference(const HeightMap& map) {
  // The ruler at the left edge tells how many profiles came before the first row.
  const std::int64_t first = map.At(0, 0) - scene::kRulerBase;
  int largest = 0;
  for (std::int64_t row = 0; row < map.height; ++row) {
    for (std::int64_t column = 0; column < map.width; ++column) {
      largest = std::max(largest, std::abs(map.At(row, column) - scene::SceneHeight(first + row, column)));
    }
  }
  return largest;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::fputs("usage: zyn-scene-check SCAN.PNG\n", stderr);
    return 2;
  }
  try {
    const auto map = Read(arguments[1]);
    if (!map) {
      std::fprintf(stderr, "%s is no grey PNG file of 16 bits\n", arguments[1]);
      return 2;
    }
    const int largest = LargestDifference(*map);
    std::printf("%d\n", largest);
    return largest == 0 ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", arguments[1], error.what());
    return 2;
  }
}
