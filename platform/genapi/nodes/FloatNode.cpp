#include "nodes/FloatNode.h"

namespace zyn::genapi {

FloatNode::FloatNode(NodeMap& map, NodeId id)
    : FloatCore(map, id),
      source_(*this),
      min_(FindSource<double>(Element::min, Element::pMin)),
      max_(FindSource<double>(Element::max, Element::pMax)),
      inc_(FindSource<double>(Element::inc, Element::pInc)) {}

double FloatNode::Compute(ReadMode read) {
  Node* const target = source_.Target();
  return target ? target->RealValue({false, read.ignoreCache}) : source_.Constant();
}

void FloatNode::Put(double value, bool verify) {
  if (Node* const target = source_.Target()) return target->WriteReal(value, verify);
  source_.SetConstant(value);
}

double FloatNode::OwnMin() {
  if (min_.present) return min_.node == kNoNode ? min_.constant : At(min_.node).RealValue({});
  Node* const target = source_.Target();
  return target ? target->RealMin() : FloatCore::OwnMin();
}

double FloatNode::OwnMax() {
  if (max_.present) return max_.node == kNoNode ? max_.constant : At(max_.node).RealValue({});
  Node* const target = source_.Target();
  return target ? target->RealMax() : FloatCore::OwnMax();
}

std::optional<double> FloatNode::OwnInc() {
  if (inc_.present) return inc_.node == kNoNode ? inc_.constant : At(inc_.node).RealValue({});
  Node* const target = source_.Target();
  return target ? target->RealInc() : std::nullopt;
}

Node* FloatNode::Inherited(Element element) {
  const NodeId link = Link(Element::pValue);
  return Find(element) || link == kNoNode ? nullptr : &At(link);
}

ERepresentation FloatNode::RepresentationOf() {
  const DepthGuard depth(*this);
  Node* const target = Inherited(Element::representation);
  return target ? target->RepresentationOf() : Node::RepresentationOf();
}

std::string_view FloatNode::UnitOf() {
  const DepthGuard depth(*this);
  Node* const target = Inherited(Element::unit);
  return target ? target->UnitOf() : Node::UnitOf();
}

EDisplayNotation FloatNode::NotationOf() {
  const DepthGuard depth(*this);
  Node* const target = Inherited(Element::displayNotation);
  return target ? target->NotationOf() : Node::NotationOf();
}

std::int64_t FloatNode::PrecisionOf() {
  const DepthGuard depth(*this);
  Node* const target = Inherited(Element::displayPrecision);
  return target ? target->PrecisionOf() : Node::PrecisionOf();
}

}  // namespace zyn::genapi
