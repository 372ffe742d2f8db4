/// Numbers as descriptions write them.
#ifndef ZYN_GENAPI_DESCRIPTION_NUMBERTEXT_H
#define ZYN_GENAPI_DESCRIPTION_NUMBERTEXT_H

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace zyn::genapi {

/// Without the white space (XML's) at both ends.
std::string_view Trim(std::string_view text);

/// Decimal or 0x-hexadecimal, with sign. Values from 2^63 to 2^64-1 are taken as the same bits. "1.0" and "1e3"
/// are integers, "1.5" is none.
std::optional<std::int64_t> ParseInteger(std::string_view text);

/// Integers with semicolons between them; empty places are left out.
std::optional<std::vector<std::int64_t>> ParseIntegerList(std::string_view text);

/// A real number, "INF", "-INF", "NaN", or a 0x-hexadecimal integer.
std::optional<double> ParseReal(std::string_view text);

}  // namespace zyn::genapi

#endif
