#include "nodes/ConverterNode.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zyn::genapi {

ConverterNode::ConverterNode(NodeMap& map, NodeId id)
    : FloatCore(map, id),
      toDevice_(*this, Element::formulaTo, "FROM"),
      fromDevice_(*this, Element::formulaFrom, "TO") {}

void ConverterNode::CompileFormulas() {
  toDevice_.Compile();
  fromDevice_.Compile();
}

double ConverterNode::Compute(ReadMode read) {
  return fromDevice_.Evaluate(Target().RealValue({false, read.ignoreCache}), read);
}

void ConverterNode::Put(double value, bool verify) {
  Target().WriteReal(toDevice_.Evaluate(value, {}), verify);
}

std::pair<double, double> ConverterNode::Limits() {
  constexpr double kLargest = std::numeric_limits<double>::max();
  const std::pair<double, double> unlimited(-kLargest, kLargest);
  const auto slope = static_cast<ESlope>(Number(Element::slope, Automatic));
  if (slope == Varying) return unlimited;
  const double rawMin = Target().RealMin();
  const double rawMax = Target().RealMax();
  double first = 0;
  double second = 0;
  try {
    first = fromDevice_.Evaluate(rawMin, {});
    second = fromDevice_.Evaluate(rawMax, {});
  } catch (const GENICAM_NAMESPACE::LogicalErrorException&) {
    return unlimited;  // a formula that divides by the limit
  }
  if (std::isnan(first) || std::isnan(second)) return unlimited;
  first = std::clamp(first, -kLargest, kLargest);
  second = std::clamp(second, -kLargest, kLargest);
  if (slope == Increasing) return {first, second};
  if (slope == Decreasing) return {second, first};
  return std::minmax({first, second});
}

// The step is a difference: an offset in the formula must not count.
std::optional<double> ConverterNode::OwnInc() {
  if (Number(Element::isLinear, No) != Yes || !Target().IsIntegerKind()) return std::nullopt;
  const auto step = static_cast<double>(Target().IntegerInc());
  return std::fabs(fromDevice_.Evaluate(step, {}) - fromDevice_.Evaluate(0, {}));
}

}  // namespace zyn::genapi
