#include "cameras/registers/Feature.h"

namespace zyn::cameras {

Feature& Feature::Range(Integer min, Integer max, Integer step) {
  min_.constant = min;
  max_.constant = max;
  step_ = step;
  return *this;
}

Feature& Feature::Range(Integer min, std::function<Integer()> max, Integer step) {
  min_.constant = min;
  max_.computed = std::move(max);
  step_ = step;
  return *this;
}

Feature& Feature::FloatRange(double min, double max) {
  floatMin_.constant = min;
  floatMax_.constant = max;
  return *this;
}

Feature& Feature::FloatRange(double min, std::function<double()> max) {
  floatMin_.constant = min;
  floatMax_.computed = std::move(max);
  return *this;
}

}  // namespace zyn::cameras
