#ifndef ZYN_FAKES_LASER_FEATURES_H
#define ZYN_FAKES_LASER_FEATURES_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "TestNodeMap.h"

namespace fakes {

/// What a laser-profile camera offers: its features, each with a 32-bit register of its own. Change the lists,
/// then make the node map.
struct LaserFeatures {
  struct Feature {
    std::string name;
    std::int64_t address;
  };

  std::vector<Feature> booleans = {
      {"EnableExtraction", 0x00}, {"EnableImage", 0x04}, {"EnableCalibration", 0x08}, {"BatchEnable", 0x0c}};
  std::vector<Feature> integers = {{"AcquisitionLineCount", 0x10},
                                   {"AcquisitionFrameCount", 0x14},
                                   {"BatchNumber", 0x18},
                                   {"OutlineLengthMax", 0x1c}};
  std::vector<Feature> floats = {{"ZUpSizeInfo", 0x20}, {"ZDownSizeInfo", 0x24}, {"XSizeInfo", 0x28}};

  static std::int64_t AddressOf(const std::string& name);  ///< of one of the above
  void Drop(const std::string& name);                      ///< the camera does not have it
  std::string Nodes() const;
  std::vector<std::string> Names() const;
};

/// A laser-profile camera's node map over registers in memory.
class LaserNodeMap : public TestNodeMap {
 public:
  explicit LaserNodeMap(const LaserFeatures& features = {});

  void PutInt(const std::string& name, int value);
  void PutFloat(const std::string& name, float value);
  int GetInt(const std::string& name) const;
  /// Feature and value of every write, in order.
  std::vector<std::pair<std::string, int>> Written() const;
};

}  // namespace fakes

#endif
