/// Resolves the links of a description.
#ifndef ZYN_GENAPI_DESCRIPTION_LINKER_H
#define ZYN_GENAPI_DESCRIPTION_LINKER_H

#include "description/Description.h"

namespace zyn::genapi {

/// Turns names into node ids, refuses dangling links and reading cycles, and works out what can be known
/// without a device: what depends on what, features, the visibility of categories, polled nodes. Throws
/// RuntimeException with the element and the line.
void Link(Description& description);

}  // namespace zyn::genapi

#endif
