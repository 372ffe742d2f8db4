/// The string type of the interface. It owns its bytes and keeps one layout whatever standard library the
/// client uses.
#ifndef BASE_GCSTRING_H
#define BASE_GCSTRING_H

#include <cstddef>
#include <istream>
#include <ostream>

#include "GCTypes.h"

#define GCSTRING_NPOS (static_cast<size_t>(-1))

namespace GENICAM_NAMESPACE {

/// A sequence of bytes (UTF-8) that is always NUL-terminated. A null `const char*` counts as "" everywhere.
/// Not synchronised. Positions beyond the end throw std::out_of_range, sizes beyond max_size()
/// std::length_error.
class GCBASE_API gcstring {
 public:
  static const size_t npos;

  gcstring();
  gcstring(const char* pc);
  gcstring(const char* pc, size_t n);
  gcstring(size_t count, char ch);
  gcstring(const gcstring& str);
  gcstring(gcstring&& str) noexcept;
  virtual ~gcstring();

  gcstring& operator=(const gcstring& str);
  gcstring& operator=(gcstring&& str) noexcept;

  gcstring& append(const gcstring& str);
  gcstring& append(size_t count, char ch);
  gcstring& assign(const gcstring& str);
  gcstring& assign(size_t count, char ch);
  gcstring& assign(const char* pc);
  gcstring& assign(const char* pc, size_t n);

  int compare(const gcstring& str) const;
  const char* c_str() const { return m_pData; }
  bool empty() const { return m_Size == 0; }
  size_t length() const { return m_Size; }
  size_t size() const { return m_Size; }
  size_t max_size() const;

  size_t find(char ch, size_t offset = 0) const;
  size_t find(const gcstring& str, size_t offset = 0) const;
  size_t find(const gcstring& str, size_t offset, size_t count) const;
  size_t find(const char* pc, size_t offset = 0) const;
  size_t find(const char* pc, size_t offset, size_t count) const;
  size_t find_first_of(const gcstring& str, size_t offset = 0) const;
  size_t find_first_not_of(const gcstring& str, size_t offset = 0) const;
  size_t find_last_of(const gcstring& str, size_t offset = GCSTRING_NPOS) const;
  size_t find_last_of(char ch, size_t offset = GCSTRING_NPOS) const;
  size_t find_last_not_of(const gcstring& str, size_t offset = GCSTRING_NPOS) const;
  size_t find_last_not_of(char ch, size_t offset = GCSTRING_NPOS) const;

  void resize(size_t n);
  void reserve(size_t n = 0);
  gcstring& erase(size_t pos, size_t len = GCSTRING_NPOS);
  gcstring substr(size_t offset = 0, size_t count = GCSTRING_NPOS) const;
  void swap(gcstring& str) noexcept;
  static size_t _npos();

  bool operator!=(const gcstring& str) const;
  bool operator!=(const char* pc) const;
  bool operator==(const gcstring& str) const;
  bool operator==(const char* pc) const;
  bool operator<(const gcstring& str) const;
  bool operator>(const gcstring& str) const;

  gcstring& operator+=(const gcstring& str);
  gcstring operator+=(const gcstring& str) const;
  gcstring& operator+=(const char* pc);
  gcstring& operator+=(char ch);
  gcstring operator+=(char ch) const;
  gcstring& operator=(const char* pc) {
    assign(pc);
    return *this;
  }

  operator const char*() const { return m_pData; }

  friend GCBASE_API gcstring operator+(const gcstring& left, const gcstring& right);
  friend GCBASE_API gcstring operator+(const gcstring& left, const char* right);
  friend GCBASE_API gcstring operator+(const char* left, const gcstring& right);

 private:
  // Texts up to this length live inside the object: reading a short feature value allocates nothing.
  enum { kInlineCapacity = 31 };

  void AppendBytes(const char* pc, size_t n);
  bool IsInline() const { return m_pData == m_Inline; }
  void Grow(size_t capacity);
  void Release();

  char* m_pData;
  size_t m_Size;
  size_t m_Capacity;
  char m_Inline[kInlineCapacity + 1];
};

/// Read one line, without its delimiter.
GCBASE_API std::istream& getline(std::istream& is, gcstring& str);
GCBASE_API std::istream& getline(std::istream& is, gcstring& str, char delim);

}  // namespace GENICAM_NAMESPACE

GCBASE_API std::ostream& operator<<(std::ostream& ostr, const GENICAM_NAMESPACE::gcstring& str);
/// Reads one word; words end at white space.
GCBASE_API std::istream& operator>>(std::istream& istr, GENICAM_NAMESPACE::gcstring& str);

#endif
