#include "TraceLine.h"

#include <cstdio>

namespace ZYNSDK {

// Past std::cout: what the application did to its state, width or exception mask must not reach this line.
void TraceLine(const std::string& line) {
  const std::string whole = line + '\n';
  std::fwrite(whole.data(), 1, whole.size(), stdout);
  std::fflush(stdout);
}

}  // namespace ZYNSDK
