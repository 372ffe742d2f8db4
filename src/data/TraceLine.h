#ifndef ZYN_DATA_TRACE_LINE_H
#define ZYN_DATA_TRACE_LINE_H

#include <string>

namespace ZYNSDK {

/// Writes one line to standard output and flushes it, in one piece, so lines of several threads do not mix. A
/// line that cannot be written is lost; the state of std::cout does not matter.
void TraceLine(const std::string& line);

}  // namespace ZYNSDK

#endif
