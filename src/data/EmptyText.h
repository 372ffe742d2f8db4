#ifndef ZYN_DATA_EMPTY_TEXT_H
#define ZYN_DATA_EMPTY_TEXT_H

namespace ZYNSDK {

/// The one empty text that every operation answers which has no text to give.
inline constexpr char kEmptyText[] = "";

/// `text`, or the empty text for null.
inline const char* TextOrEmpty(const char* text) {
  return text ? text : kEmptyText;
}

}  // namespace ZYNSDK

#endif
