#include "nodes/IntegerNode.h"

namespace zyn::genapi {

IntegerNode::IntegerNode(NodeMap& map, NodeId id)
    : IntegerCore(map, id),
      source_(*this),
      min_(FindSource<std::int64_t>(Element::min, Element::pMin)),
      max_(FindSource<std::int64_t>(Element::max, Element::pMax)),
      inc_(FindSource<std::int64_t>(Element::inc, Element::pInc)) {}

std::int64_t IntegerNode::Compute(ReadMode read) {
  Node* const target = source_.Target();
  return target ? target->IntegerValue({false, read.ignoreCache}) : source_.Constant();
}

void IntegerNode::Put(std::int64_t value, bool verify) {
  PutCopies(value, verify, true);
  if (Node* const target = source_.Target()) {
    target->WriteInteger(value, verify);
  } else {
    source_.SetConstant(value);
  }
  PutCopies(value, verify, false);
}

// Copies are written where the description puts them, before or after the value.
void IntegerNode::PutCopies(std::int64_t value, bool verify, bool beforeValue) {
  bool before = true;
  for (const Property& property : Properties()) {
    if (property.element == Element::pValue) before = false;
    if (property.element == Element::pValueCopy && before == beforeValue)
      At(property.Target()).WriteInteger(value, verify);
  }
}

bool IntegerNode::KeepsWrittenValue() {
  Node* const target = source_.Target();
  return !target || target->IsIntegerKind();
}

std::int64_t IntegerNode::OwnMin() {
  if (min_.present) return min_.node == kNoNode ? min_.constant : At(min_.node).IntegerValue({});
  Node* const target = source_.Target();
  return target ? target->IntegerMin() : INT64_MIN;
}

std::int64_t IntegerNode::OwnMax() {
  if (max_.present) return max_.node == kNoNode ? max_.constant : At(max_.node).IntegerValue({});
  Node* const target = source_.Target();
  return target ? target->IntegerMax() : INT64_MAX;
}

std::int64_t IntegerNode::OwnInc() {
  if (inc_.present) return inc_.node == kNoNode ? inc_.constant : At(inc_.node).IntegerValue({});
  Node* const target = source_.Target();
  return target ? target->IntegerInc() : 1;
}

ERepresentation IntegerNode::RepresentationOf() {
  const NodeId link = Link(Element::pValue);
  if (Find(Element::representation) || link == kNoNode) return Node::RepresentationOf();
  const DepthGuard depth(*this);
  return At(link).RepresentationOf();
}

std::string_view IntegerNode::UnitOf() {
  const NodeId link = Link(Element::pValue);
  if (Find(Element::unit) || link == kNoNode) return Node::UnitOf();
  const DepthGuard depth(*this);
  return At(link).UnitOf();
}

}  // namespace zyn::genapi
