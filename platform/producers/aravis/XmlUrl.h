/// The place of a camera's description, as its registers tell it.
#ifndef ZYN_ARAVIS_XML_URL_H
#define ZYN_ARAVIS_XML_URL_H

#include <optional>
#include <string_view>

#include "producer/Descriptions.h"

namespace zyn::aravis {

/// Reads the text of an XML URL register, up to its first zero byte: "Local:name.zip;ADDRESS;LENGTH",
/// "File:name.xml" or "http:…", with or without "?SchemaVersion=1.1.0". Tolerates what cameras write: any case of the
/// scheme, slashes after it, blanks, "0x" before the numbers. Nothing for an empty text or one of another form.
std::optional<producer::XmlLocation> ParseXmlUrl(std::string_view text);

}  // namespace zyn::aravis

#endif
