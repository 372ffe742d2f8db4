/// Text as the SDK hands it in and out.
#ifndef ZYNCAMERA_ZYN_STRING_H
#define ZYNCAMERA_ZYN_STRING_H

#include <string>

#include "Export.h"

namespace ZYNSDK {

/// A string of bytes in no particular encoding. Every object owns its text. No locking: one thread at a time.
///
/// Text comes in as far as its first NUL byte. The one way to store a NUL is to assign the character '\0'.
/// Every operation that stores text may raise std::bad_alloc or std::length_error.
class ZYNSDK_API ZynString {
 public:
  ZynString();
  ZynString(const ZynString& other);
  /// Takes `text` up to its NUL; null gives an empty string. `length` is accepted and ignored: the text is
  /// neither cut to it nor read past its NUL because of it.
  ZynString(const char* text, unsigned int length);
  ~ZynString();

  ZynString& operator=(const char* text);  ///< text: NUL-terminated, not null
  ZynString& operator=(const ZynString& other);
  // NOLINTNEXTLINE(performance-noexcept-move-constructor): it copies, which may raise std::bad_alloc
  ZynString& operator=(ZynString&& other);  ///< copies: the source keeps its text
  ZynString& operator=(char character);     ///< the text becomes this one character
  void setStr(const char* text);            ///< as operator=(const char*)

  /// The NUL-terminated text. Owned by the string, valid until it changes or ends.
  const char* getStr() const;
  unsigned int length() const;  ///< bytes stored
  void clear();                 ///< length becomes 0; the memory is kept

  /// True when this string's length is that of the other's text up to its first NUL, and the bytes are equal.
  bool operator==(const ZynString& other) const;
  bool operator!=(const ZynString& other) const;
  ZynString operator+(const ZynString& other) const;  ///< a new string; neither operand changes
  ZynString& operator+=(const ZynString& other);

 private:
  std::string* text_;
};

}  // namespace ZYNSDK

#endif
