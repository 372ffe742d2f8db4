/// Numbers as users read and write them.
#ifndef ZYN_GENAPI_NODES_VALUETEXT_H
#define ZYN_GENAPI_NODES_VALUETEXT_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "GenApi/Types.h"

namespace zyn::genapi {

/// Decimal, 0x-hexadecimal, dotted IP address, MAC address, or true and false, as the representation says.
std::string FormatInteger(std::int64_t value, GENAPI_NAMESPACE::ERepresentation representation);

/// The same backwards. Decimal texts may be followed by anything, and saturate; the other forms are taken
/// exactly.
std::optional<std::int64_t> ParseIntegerText(std::string_view text,
                                             GENAPI_NAMESPACE::ERepresentation representation);

/// `precision` digits; more when the text would otherwise lie outside the limits while the value does not.
std::string FormatReal(double value, GENAPI_NAMESPACE::EDisplayNotation notation, std::int64_t precision,
                       double min, double max);

/// A finite number at the beginning of the text.
std::optional<double> ParseRealText(std::string_view text);

}  // namespace zyn::genapi

#endif
