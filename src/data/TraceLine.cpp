#include "TraceLine.h"

#include <iostream>

namespace ZYNSDK {

void TraceLine(const std::string& line) {
  std::cout << line + '\n' << std::flush;
}

}  // namespace ZYNSDK
