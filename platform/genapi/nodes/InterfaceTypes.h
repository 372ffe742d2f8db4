/// Facts about node kinds for the public interface.
#ifndef ZYN_GENAPI_NODES_INTERFACETYPES_H
#define ZYN_GENAPI_NODES_INTERFACETYPES_H

#include "GenApi/Types.h"
#include "description/Description.h"

namespace zyn::genapi {

/// The interface that nodes of this kind are mainly used through.
GENAPI_NAMESPACE::EInterfaceType InterfaceTypeOf(NodeKind kind);

}  // namespace zyn::genapi

#endif
