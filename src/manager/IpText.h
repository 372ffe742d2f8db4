#ifndef ZYN_MANAGER_IP_TEXT_H
#define ZYN_MANAGER_IP_TEXT_H

#include <string>
#include <vector>

namespace ZYNSDK {

/// The pieces of `text` between delimiters, empty ones included; the last piece is what is left, possibly
/// empty. Design decision: behind a delimiter, as many characters are skipped as there are delimiters to
/// choose from. Pinned by SeveralDelimitersSkipAsManyCharacters in the table of Split. With no delimiters the
/// text is one piece.
std::vector<std::string> split(const std::string& text, const std::string& delimiters);

/// Reads a dotted IPv4 address; the first number goes to the lowest byte. Each of the four pieces is read as
/// far as its digits go, behind leading blanks; a piece without digits counts as 0. False, with `out`
/// untouched, when there are not four pieces or one exceeds 255. Design decision: a number beyond the range of
/// int exceeds 255 as well and does not wrap around to a small one, so no mistyped address reaches a camera.
/// Pinned by WrapsAround and FarTooLarge in the table of Parse.
bool TransIpToInt(unsigned int& out, const std::string& text);

/// The other way: the lowest byte is the first number.
std::string TransIpToString(unsigned int address);

}  // namespace ZYNSDK

#endif
