#include "PathText.h"

#include <cstring>
#include <cwchar>

namespace ZYNSDK {

std::size_t PathToWide(wchar_t* dst, const char* src) {
  if (!src || *src == '\0') return 0;
  std::mbstate_t state{};
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the state is our own
  return std::mbsrtowcs(dst, &src, std::strlen(src) + 1, &state);
}

std::size_t PathToBytes(char* dst, const wchar_t* src) {
  constexpr std::size_t kMostBytesPerCharacter = 4;
  if (!src || *src == L'\0') return 0;
  std::mbstate_t state{};
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the state is our own
  return std::wcsrtombs(dst, &src, kMostBytesPerCharacter * (std::wcslen(src) + 1), &state);
}

}  // namespace ZYNSDK
