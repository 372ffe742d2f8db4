/// Gets the XML text of a description out of what devices and files hold.
#ifndef ZYN_GENAPI_DESCRIPTION_SOURCETEXT_H
#define ZYN_GENAPI_DESCRIPTION_SOURCETEXT_H

#include <cstddef>
#include <string>
#include <vector>

namespace zyn::genapi {

/// Larger descriptions are refused, packed or not. A camera's 20,000 features take 6 MiB.
constexpr std::size_t kMaxDescriptionBytes = std::size_t{32} << 20;

/// The bytes of a file. Throws RuntimeException when it cannot be read.
std::string ReadFile(const std::string& path);

bool IsZip(const std::string& data);

/// The first entry ending in .xml, else the first file. Throws RuntimeException for broken archives, and for
/// entries that unpack to more than kMaxDescriptionBytes. What had to be guessed is appended to `notes`.
std::string Unzip(const std::string& data, std::vector<std::string>& notes);

/// As UTF-8, without byte-order mark, leading white space, and whatever follows the root element. UTF-16 in
/// either byte order is recognised by its mark or its first characters; bytes that are not UTF-8 are taken as
/// Latin-1. What had to be repaired is appended to `notes`.
std::string ToCleanUtf8(std::string data, std::vector<std::string>& notes);

}  // namespace zyn::genapi

#endif
