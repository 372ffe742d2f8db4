#include "Fault.h"

#include <cstdlib>
#include <string_view>

namespace faulty {

namespace {

std::optional<int> TakeNumber(std::string& text, char mark) {
  const std::size_t at = text.find(mark);
  if (at == std::string::npos) return std::nullopt;
  const int number = std::atoi(text.c_str() + at + 1);
  text.erase(at, text.find_first_not_of("0123456789", at + 1) - at);
  return number;
}

Fault Parse(const std::string& text) {
  Fault fault;
  const std::size_t colon = text.find(':');
  fault.function = text.substr(0, colon);
  fault.call = TakeNumber(fault.function, '@');
  fault.number = TakeNumber(fault.function, '#');
  if (colon == std::string::npos) return fault;
  const std::string action = text.substr(colon + 1);
  const std::size_t mark = action.find_first_of("=>");
  fault.action = action.substr(0, mark);
  if (mark != std::string::npos) fault.argument = action.substr(mark + 1);
  return fault;
}

}  // namespace

const Fault& TheFault() {
  static const Fault fault = [] {
    const char* text = std::getenv("ZYN_FAULT");
    return Parse(text != nullptr ? text : "");
  }();
  return fault;
}

bool Has(const char* mistake) {
  return TheFault().function == mistake;
}

}  // namespace faulty
