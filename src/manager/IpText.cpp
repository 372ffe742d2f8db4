#include "IpText.h"

#include <cstdlib>

namespace ZYNSDK {

std::vector<std::string> split(const std::string& text, const std::string& delimiters) {
  std::vector<std::string> pieces;
  std::size_t position = 0;
  while (position < text.size() && !delimiters.empty()) {
    const std::size_t match = text.find_first_of(delimiters, position);
    if (match == std::string::npos) break;
    pieces.push_back(text.substr(position, match - position));
    position = match + delimiters.size();
  }
  pieces.push_back(position < text.size() ? text.substr(position) : std::string());
  return pieces;
}

bool TransIpToInt(unsigned int& out, const std::string& text) {
  constexpr std::size_t kPieces = 4;
  constexpr int kBitsPerPiece = 8;
  const std::vector<std::string> pieces = split(text, ".");
  if (pieces.size() != kPieces) return false;
  unsigned int address = 0;
  for (std::size_t i = 0; i < kPieces; ++i) {
    const long value = std::strtol(pieces[i].c_str(), nullptr, 10);
    if (value < 0 || value > 255) return false;
    address |= static_cast<unsigned int>(value) << (kBitsPerPiece * i);
  }
  out = address;
  return true;
}

std::string TransIpToString(unsigned int address) {
  std::string text = std::to_string(address & 255U);
  for (int shift = 8; shift < 32; shift += 8) text += '.' + std::to_string(address >> shift & 255U);
  return text;
}

}  // namespace ZYNSDK
