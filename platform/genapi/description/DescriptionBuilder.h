/// Reads the XML of a device description.
#ifndef ZYN_GENAPI_DESCRIPTION_DESCRIPTIONBUILDER_H
#define ZYN_GENAPI_DESCRIPTION_DESCRIPTIONBUILDER_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "description/Description.h"

namespace zyn::genapi {

/// Parses and links UTF-8 XML. Elements may come in any order and unknown ones are skipped, because many
/// public descriptions need that; nodes of an unknown kind load and are never implemented. What was tolerated
/// is kept with the description. Throws RuntimeException (PropertyException for malformed numbers and words)
/// with the element and the line for: malformed XML, a root that is no RegisterDescription, schema versions
/// other than 1.x, missing or duplicate names, missing mandatory elements,
/// dangling links and reading cycles.
///
/// `injected` are further documents whose nodes are merged into those of the first, see MergeInjected.
/// `notes` begin the list of what was tolerated.
std::shared_ptr<const Description> BuildDescription(std::string_view xml,
                                                    const std::vector<std::string>& injected = {},
                                                    std::vector<std::string> notes = {});

}  // namespace zyn::genapi

#endif
