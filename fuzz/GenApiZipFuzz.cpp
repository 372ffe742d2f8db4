// What devices and files hold: archives, encodings, padding.
//
// Whatever goes in, what comes out is UTF-8, bounded in size, or an exception.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "Base/GCException.h"
#include "description/SourceText.h"

namespace {

bool IsContinuation(unsigned char c) {
  return (c & 0xC0) == 0x80;
}

// Written apart from the code under test.
bool IsUtf8(const std::string& text) {
  std::size_t following = 0;
  for (const char character : text) {
    const auto c = static_cast<unsigned char>(character);
    if (following > 0) {
      if (!IsContinuation(c)) return false;
      --following;
    } else if (c >= 0x80) {
      if (IsContinuation(c) || c >= 0xF8) return false;
      following = c >= 0xF0 ? 3 : (c >= 0xE0 ? 2 : 1);
    }
  }
  return following == 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zyn::genapi;
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  try {
    std::vector<std::string> notes;
    const std::string unpacked = IsZip(bytes) ? Unzip(bytes, notes) : bytes;
    if (unpacked.size() > kMaxDescriptionBytes) std::abort();
    const std::string text = ToCleanUtf8(unpacked, notes);
    if (!IsUtf8(text) || text.size() > 2 * unpacked.size()) std::abort();
  } catch (const GENICAM_NAMESPACE::GenericException&) {
    return 0;
  }
  return 0;
}
