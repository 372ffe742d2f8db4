/// Reads the XML of a device description.
#ifndef ZYN_GENAPI_DESCRIPTION_DESCRIPTIONBUILDER_H
#define ZYN_GENAPI_DESCRIPTION_DESCRIPTIONBUILDER_H

#include <memory>
#include <string>

#include "description/Description.h"

namespace zyn::genapi {

/// Parses and links UTF-8 XML. Elements may come in any order and unknown ones are skipped, because many
/// public descriptions need that. Throws RuntimeException (PropertyException for malformed numbers and words)
/// with the element and the line for: malformed XML, a root that is no RegisterDescription, schema versions
/// other than 1.x, kinds of nodes that are not known, missing or duplicate names, missing mandatory elements,
/// dangling links and reading cycles.
std::shared_ptr<const Description> BuildDescription(std::string xml);

}  // namespace zyn::genapi

#endif
