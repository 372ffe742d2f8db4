#include "DeviceTexts.h"

#include <algorithm>

namespace zyn::aravis {
namespace {

bool IsContinuation(char c) {
  return (static_cast<unsigned char>(c) & 0xC0U) == 0x80;
}

// Bytes of the well-formed UTF-8 character at the start of `text`; 0 when there is none.
std::size_t CharacterBytes(std::string_view text) {
  const auto first = static_cast<unsigned char>(text.front());
  if (first < 0x20 || first == 0x7F) return 0;
  if (first < 0x80) return 1;
  if (first < 0xC2 || first > 0xF4) return 0;
  const std::size_t bytes = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  if (text.size() < bytes ||
      !std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(bytes), IsContinuation)) {
    return 0;
  }
  const auto second = static_cast<unsigned char>(text[1]);
  const bool isOverlong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
  const bool isSurrogate = first == 0xED && second > 0x9F;
  const bool isBeyondUnicode = first == 0xF4 && second > 0x8F;
  const bool isControl = first == 0xC2 && second < 0xA0;
  return isOverlong || isSurrogate || isBeyondUnicode || isControl ? 0 : bytes;
}

}  // namespace

std::string CleanUtf8(std::string_view text) {
  std::string clean;
  while (!text.empty()) {
    const std::size_t bytes = CharacterBytes(text);
    if (bytes == 0) {
      clean += '?';
    } else {
      clean += text.substr(0, bytes);
    }
    text.remove_prefix(std::max<std::size_t>(bytes, 1));
  }
  return clean;
}

std::string DeviceId(const gige::DeviceDescription& device) {
  if (!device.mac.IsZero()) return ToText(device.mac);
  if (device.serial.empty()) return ToText(device.ip);
  std::string id = device.serial;
  std::replace_if(
      id.begin(), id.end(), [](char c) { return c < 0x20 || c > 0x7E; }, '?');
  return id;
}

}  // namespace zyn::aravis
