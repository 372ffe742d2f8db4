#ifndef ZYN_DATA_PATH_TEXT_H
#define ZYN_DATA_PATH_TEXT_H

#include <cstddef>

namespace ZYNSDK {

/// Converts `src` and its terminator, in the program's locale. `dst` has room for strlen(src) + 1 wide
/// characters. Returns the wide characters written without the terminator, size_t(-1) for bytes that are no
/// text, 0 for an empty `src` (then nothing is written).
std::size_t PathToWide(wchar_t* dst, const char* src);

/// The other way. `dst` has room for 4 * (wcslen(src) + 1) bytes.
std::size_t PathToBytes(char* dst, const wchar_t* src);

}  // namespace ZYNSDK

#endif
