/// Makes node objects.
#ifndef ZYN_GENAPI_MAP_NODEFACTORY_H
#define ZYN_GENAPI_MAP_NODEFACTORY_H

#include <memory>

#include "nodes/Node.h"

namespace zyn::genapi {

/// An object of the class that the node's kind asks for.
std::unique_ptr<Node> MakeNode(NodeMap& map, NodeId id);

}  // namespace zyn::genapi

#endif
