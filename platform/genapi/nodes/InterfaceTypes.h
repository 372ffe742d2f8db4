/// Facts about node kinds and properties for the public interface.
#ifndef ZYN_GENAPI_NODES_INTERFACETYPES_H
#define ZYN_GENAPI_NODES_INTERFACETYPES_H

#include <string>

#include "GenApi/Types.h"
#include "description/Description.h"

namespace zyn::genapi {

/// The interface that nodes of this kind are mainly used through.
GENAPI_NAMESPACE::EInterfaceType InterfaceTypeOf(NodeKind kind);

/// The property as text, as the description would write it.
std::string PropertyText(const Description& description, NodeKind kind, const Property& property);

}  // namespace zyn::genapi

#endif
