/// Merges the nodes of an injected document.
#ifndef ZYN_GENAPI_DESCRIPTION_INJECTION_H
#define ZYN_GENAPI_DESCRIPTION_INJECTION_H

#include <cstdint>
#include <span>

#include "description/Description.h"

namespace zyn::genapi {

/// Joins the nodes from `firstInjected` on with those before it, in a description that is not linked yet.
/// New names are added. Where both have a name, the priority of the injected node decides: below 0 the first
/// one stays, above 0 the injected one takes its place, and at 0 the feature lists of two categories are
/// joined while all other pairs throw RuntimeException. `priorities` is indexed by node.
void MergeInjected(Description& description, NodeId firstInjected, std::span<const std::int8_t> priorities);

}  // namespace zyn::genapi

#endif
