#include "map/NodeFactory.h"

#include "nodes/AbsentNodes.h"
#include "nodes/BooleanNode.h"
#include "nodes/CategoryNode.h"
#include "nodes/CommandNode.h"
#include "nodes/ConverterNode.h"
#include "nodes/EnumEntryNode.h"
#include "nodes/EnumerationNode.h"
#include "nodes/FloatNode.h"
#include "nodes/FloatRegNode.h"
#include "nodes/IntConverterNode.h"
#include "nodes/IntRegNode.h"
#include "nodes/IntSwissKnifeNode.h"
#include "nodes/IntegerNode.h"
#include "nodes/PlainNode.h"
#include "nodes/PortNode.h"
#include "nodes/RegisterNode.h"
#include "nodes/StringNode.h"
#include "nodes/StringRegNode.h"
#include "nodes/SwissKnifeNode.h"

namespace zyn::genapi {

std::unique_ptr<Node> MakeNode(NodeMap& map, NodeId id) {
  switch (map.Facts().nodes[id].kind) {
    case NodeKind::node:
      return std::make_unique<PlainNode>(map, id);
    case NodeKind::category:
      return std::make_unique<CategoryNode>(map, id);
    case NodeKind::integer:
      return std::make_unique<IntegerNode>(map, id);
    case NodeKind::intReg:
    case NodeKind::maskedIntReg:
      return std::make_unique<IntRegNode>(map, id);
    case NodeKind::boolean:
      return std::make_unique<BooleanNode>(map, id);
    case NodeKind::command:
      return std::make_unique<CommandNode>(map, id);
    case NodeKind::enumeration:
      return std::make_unique<EnumerationNode>(map, id);
    case NodeKind::enumEntry:
      return std::make_unique<EnumEntryNode>(map, id);
    case NodeKind::floating:
      return std::make_unique<FloatNode>(map, id);
    case NodeKind::floatReg:
      return std::make_unique<FloatRegNode>(map, id);
    case NodeKind::string:
      return std::make_unique<StringNode>(map, id);
    case NodeKind::stringReg:
      return std::make_unique<StringRegNode>(map, id);
    case NodeKind::reg:
      return std::make_unique<RegisterNode>(map, id);
    case NodeKind::converter:
      return std::make_unique<ConverterNode>(map, id);
    case NodeKind::intConverter:
      return std::make_unique<IntConverterNode>(map, id);
    case NodeKind::swissKnife:
      return std::make_unique<SwissKnifeNode>(map, id);
    case NodeKind::intSwissKnife:
      return std::make_unique<IntSwissKnifeNode>(map, id);
    case NodeKind::port:
      return std::make_unique<PortNode>(map, id);
    case NodeKind::intKey:
    case NodeKind::smartFeature:
      return std::make_unique<AbsentInteger>(map, id);
    case NodeKind::textDesc:
      return std::make_unique<AbsentString>(map, id);
    case NodeKind::confRom:
    case NodeKind::advFeatureLock:
    case NodeKind::unknown:
      return std::make_unique<AbsentNode>(map, id);
  }
  throw LOGICAL_ERROR_EXCEPTION("Unknown kind of node");
}

}  // namespace zyn::genapi
