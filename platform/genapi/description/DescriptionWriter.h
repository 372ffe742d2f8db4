/// Writes descriptions.
#ifndef ZYN_GENAPI_DESCRIPTION_DESCRIPTIONWRITER_H
#define ZYN_GENAPI_DESCRIPTION_DESCRIPTIONWRITER_H

#include <string>

#include "description/Description.h"

namespace zyn::genapi {

/// XML that BuildDescription reads back as the same nodes.
std::string WriteXml(const Description& description);

/// The property as text, as a description writes it.
std::string PropertyText(const Description& description, NodeKind kind, const Property& property);

}  // namespace zyn::genapi

#endif
