/// Identifiers of chunks and events.
#ifndef ZYN_GENAPI_CHUNKS_HEXID_H
#define ZYN_GENAPI_CHUNKS_HEXID_H

#include <cstdint>
#include <string>
#include <string_view>

namespace zyn::genapi {

/// Hexadecimal digits in lower case without prefix, blanks and leading zeros, so that equal numbers of any
/// length are equal texts. "0" for zero, empty when the text is no such number.
std::string NormalizedHexId(std::string_view text);
std::string NormalizedHexId(std::uint64_t id);

}  // namespace zyn::genapi

#endif
