/// Numbers as descriptions write them.
#ifndef ZYN_GENAPI_DESCRIPTION_NUMBERTEXT_H
#define ZYN_GENAPI_DESCRIPTION_NUMBERTEXT_H

#include <cstdint>
#include <optional>
#include <string_view>

namespace zyn::genapi {

/// Without the white space (XML's) at both ends.
std::string_view Trim(std::string_view text);

/// Decimal or 0x-hexadecimal, with sign. Values from 2^63 to 2^64-1 are taken as the same bits. A fraction is
/// cut off.
std::optional<std::int64_t> ParseInteger(std::string_view text);

/// A real number, "INF", "-INF", "NaN", or a 0x-hexadecimal integer.
std::optional<double> ParseReal(std::string_view text);

}  // namespace zyn::genapi

#endif
