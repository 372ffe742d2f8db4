#include "nodes/IntConverterNode.h"

#include <algorithm>

namespace zyn::genapi {

IntConverterNode::IntConverterNode(NodeMap& map, NodeId id)
    : IntegerCore(map, id),
      toDevice_(*this, Element::formulaTo, "FROM"),
      fromDevice_(*this, Element::formulaFrom, "TO") {}

void IntConverterNode::CompileFormulas() {
  toDevice_.Compile();
  fromDevice_.Compile();
}

std::int64_t IntConverterNode::Compute(ReadMode read) {
  return fromDevice_.Evaluate(Target().IntegerValue({false, read.ignoreCache}), read);
}

void IntConverterNode::Put(std::int64_t value, bool verify) {
  Target().WriteInteger(toDevice_.Evaluate(value, {}), verify);
}

std::pair<std::int64_t, std::int64_t> IntConverterNode::Limits() {
  const std::pair<std::int64_t, std::int64_t> unlimited(INT64_MIN, INT64_MAX);
  const auto slope = static_cast<ESlope>(Number(Element::slope, Automatic));
  if (slope == Varying) return unlimited;
  const std::int64_t rawMin = Target().IntegerMin();
  const std::int64_t rawMax = Target().IntegerMax();
  std::int64_t first = 0;
  std::int64_t second = 0;
  try {
    first = fromDevice_.Evaluate(rawMin, {});
    second = fromDevice_.Evaluate(rawMax, {});
  } catch (const GENICAM_NAMESPACE::LogicalErrorException&) {
    return unlimited;  // a formula that divides by the limit
  }
  if (slope == Increasing) return {first, second};
  if (slope == Decreasing) return {second, first};
  return std::minmax({first, second});
}

}  // namespace zyn::genapi
