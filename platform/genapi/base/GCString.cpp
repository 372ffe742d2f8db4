#include "Base/GCString.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>

namespace GENICAM_NAMESPACE {
namespace {

std::string_view View(const gcstring& text) {
  return {text.c_str(), text.size()};
}
std::string_view View(const char* text) {
  return text ? std::string_view(text) : std::string_view();
}
std::size_t Length(const char* text) {
  return text ? std::strlen(text) : 0;
}

}  // namespace

const size_t gcstring::npos = GCSTRING_NPOS;

// clang-format off
gcstring::gcstring() : m_pData(m_Inline), m_Size(0), m_Capacity(kInlineCapacity), m_Inline{} {}
// clang-format on

gcstring::gcstring(const char* pc) : gcstring() {
  AppendBytes(pc, Length(pc));
}

gcstring::gcstring(const char* pc, size_t n) : gcstring() {
  assign(pc, n);
}

gcstring::gcstring(size_t count, char ch) : gcstring() {
  append(count, ch);
}

gcstring::gcstring(const gcstring& str) : gcstring() {
  AppendBytes(str.m_pData, str.m_Size);
}

gcstring::gcstring(gcstring&& str) noexcept : gcstring() {
  swap(str);
}

gcstring::~gcstring() {
  Release();
}

gcstring& gcstring::operator=(const gcstring& str) {
  if (this == &str) return *this;
  return assign(str.m_pData, str.m_Size);
}

gcstring& gcstring::operator=(gcstring&& str) noexcept {
  swap(str);
  return *this;
}

void gcstring::Release() {
  if (!IsInline()) delete[] m_pData;
}

void gcstring::Grow(size_t capacity) {
  if (capacity <= m_Capacity) return;
  if (capacity > max_size()) throw std::length_error("gcstring");
  capacity = std::max(capacity, std::min(max_size(), 2 * m_Capacity));
  char* const data = new char[capacity + 1];
  std::memcpy(data, m_pData, m_Size + 1);
  Release();
  m_pData = data;
  m_Capacity = capacity;
}

void gcstring::AppendBytes(const char* pc, size_t n) {
  if (n == 0) return;
  if (n > max_size() - m_Size) throw std::length_error("gcstring");
  if (pc >= m_pData && pc <= m_pData + m_Size) {  // a part of this very text: growing would free it
    const std::string copy(pc, n);
    Grow(m_Size + n);
    std::memcpy(m_pData + m_Size, copy.data(), n);
  } else {
    Grow(m_Size + n);
    std::memcpy(m_pData + m_Size, pc, n);
  }
  m_Size += n;
  m_pData[m_Size] = '\0';
}

gcstring& gcstring::append(const gcstring& str) {
  AppendBytes(str.m_pData, str.m_Size);
  return *this;
}

gcstring& gcstring::append(size_t count, char ch) {
  resize(m_Size + count);
  std::memset(m_pData + m_Size - count, static_cast<unsigned char>(ch), count);
  return *this;
}

gcstring& gcstring::assign(const gcstring& str) {
  return *this = str;
}

gcstring& gcstring::assign(size_t count, char ch) {
  resize(0);
  return append(count, ch);
}

gcstring& gcstring::assign(const char* pc) {
  return assign(pc, Length(pc));
}

gcstring& gcstring::assign(const char* pc, size_t n) {
  if (!pc) n = 0;
  if (pc && pc >= m_pData && pc <= m_pData + m_Size) {
    gcstring part;
    part.AppendBytes(pc, n);
    swap(part);
    return *this;
  }
  resize(0);
  AppendBytes(pc, n);
  return *this;
}

int gcstring::compare(const gcstring& str) const {
  return View(*this).compare(View(str));
}

size_t gcstring::max_size() const {
  return static_cast<size_t>(std::numeric_limits<std::ptrdiff_t>::max()) - 1;
}

size_t gcstring::find(char ch, size_t offset) const {
  return View(*this).find(ch, offset);
}
size_t gcstring::find(const gcstring& str, size_t offset) const {
  return View(*this).find(View(str), offset);
}
size_t gcstring::find(const gcstring& str, size_t offset, size_t count) const {
  return View(*this).find(View(str).substr(0, count), offset);
}
size_t gcstring::find(const char* pc, size_t offset) const {
  return View(*this).find(View(pc), offset);
}
size_t gcstring::find(const char* pc, size_t offset, size_t count) const {
  return View(*this).find(pc ? std::string_view(pc, count) : std::string_view(), offset);
}
size_t gcstring::find_first_of(const gcstring& str, size_t offset) const {
  return View(*this).find_first_of(View(str), offset);
}
size_t gcstring::find_first_not_of(const gcstring& str, size_t offset) const {
  return View(*this).find_first_not_of(View(str), offset);
}
size_t gcstring::find_last_of(const gcstring& str, size_t offset) const {
  return View(*this).find_last_of(View(str), offset);
}
size_t gcstring::find_last_of(char ch, size_t offset) const {
  return View(*this).find_last_of(ch, offset);
}
size_t gcstring::find_last_not_of(const gcstring& str, size_t offset) const {
  return View(*this).find_last_not_of(View(str), offset);
}
size_t gcstring::find_last_not_of(char ch, size_t offset) const {
  return View(*this).find_last_not_of(ch, offset);
}

void gcstring::resize(size_t n) {
  if (n > m_Size) {
    Grow(n);
    std::memset(m_pData + m_Size, 0, n - m_Size);
  }
  m_Size = n;
  m_pData[n] = '\0';
}

void gcstring::reserve(size_t n) {
  Grow(n);
}

gcstring& gcstring::erase(size_t pos, size_t len) {
  if (pos > m_Size) throw std::out_of_range("gcstring::erase");
  const size_t removed = std::min(len, m_Size - pos);
  std::memmove(m_pData + pos, m_pData + pos + removed, m_Size - pos - removed + 1);
  m_Size -= removed;
  return *this;
}

gcstring gcstring::substr(size_t offset, size_t count) const {
  if (offset > m_Size) throw std::out_of_range("gcstring::substr");
  return gcstring(m_pData + offset, std::min(count, m_Size - offset));
}

void gcstring::swap(gcstring& str) noexcept {
  if (this == &str) return;
  const bool mineInline = IsInline();
  const bool theirsInline = str.IsInline();
  std::swap_ranges(m_Inline, m_Inline + sizeof(m_Inline), str.m_Inline);
  std::swap(m_pData, str.m_pData);
  std::swap(m_Size, str.m_Size);
  std::swap(m_Capacity, str.m_Capacity);
  if (theirsInline) m_pData = m_Inline;
  if (mineInline) str.m_pData = str.m_Inline;
}

size_t gcstring::_npos() {
  return GCSTRING_NPOS;
}

bool gcstring::operator!=(const gcstring& str) const {
  return View(*this) != View(str);
}
bool gcstring::operator!=(const char* pc) const {
  return View(*this) != View(pc);
}
bool gcstring::operator==(const gcstring& str) const {
  return View(*this) == View(str);
}
bool gcstring::operator==(const char* pc) const {
  return View(*this) == View(pc);
}
bool gcstring::operator<(const gcstring& str) const {
  return View(*this) < View(str);
}
bool gcstring::operator>(const gcstring& str) const {
  return View(*this) > View(str);
}

gcstring& gcstring::operator+=(const gcstring& str) {
  return append(str);
}
gcstring gcstring::operator+=(const gcstring& str) const {
  return *this + str;
}
gcstring& gcstring::operator+=(const char* pc) {
  AppendBytes(pc, Length(pc));
  return *this;
}
gcstring& gcstring::operator+=(char ch) {
  return append(1, ch);
}
gcstring gcstring::operator+=(char ch) const {
  return gcstring(*this).append(1, ch);
}

gcstring operator+(const gcstring& left, const gcstring& right) {
  return gcstring(left).append(right);
}
gcstring operator+(const gcstring& left, const char* right) {
  return gcstring(left) += right;
}
gcstring operator+(const char* left, const gcstring& right) {
  return gcstring(left).append(right);
}

std::istream& getline(std::istream& is, gcstring& str) {
  return getline(is, str, '\n');
}

std::istream& getline(std::istream& is, gcstring& str, char delim) {
  std::string line;
  std::getline(is, line, delim);
  str.assign(line.data(), line.size());
  return is;
}

}  // namespace GENICAM_NAMESPACE

std::ostream& operator<<(std::ostream& ostr, const GENICAM_NAMESPACE::gcstring& str) {
  return ostr << std::string_view(str.c_str(), str.size());
}

std::istream& operator>>(std::istream& istr, GENICAM_NAMESPACE::gcstring& str) {
  std::string word;
  istr >> word;
  str.assign(word.data(), word.size());
  return istr;
}
