#include "Base/GCStringVector.h"

#include <algorithm>
#include <vector>

#include "Base/GCException.h"

namespace GENICAM_NAMESPACE {
namespace {

void CheckIndex(size_t index, size_t limit) {
  if (index >= limit) throw OUT_OF_RANGE_EXCEPTION("Index %zu is out of range, size is %zu", index, limit);
}

}  // namespace

struct gcstring_vector::Storage {
  std::vector<gcstring> items;
};

gcstring_vector::gcstring_vector() : m_pStorage(new Storage) {}
gcstring_vector::gcstring_vector(size_t uiSize, const gcstring& str)
    : m_pStorage(new Storage{std::vector<gcstring>(uiSize, str)}) {}
gcstring_vector::gcstring_vector(const gcstring_vector& obj) : m_pStorage(new Storage(*obj.m_pStorage)) {}
gcstring_vector::~gcstring_vector() {
  delete m_pStorage;
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): std::vector sees to it
gcstring_vector& gcstring_vector::operator=(const gcstring_vector& obj) {
  m_pStorage->items = obj.m_pStorage->items;
  return *this;
}

void gcstring_vector::assign(size_t n, const gcstring& val) {
  m_pStorage->items.assign(n, gcstring(val));
}
gcstring_vector& gcstring_vector::assign(const gcstring_vector& obj) {
  return *this = obj;
}
void gcstring_vector::clear() {
  m_pStorage->items.clear();
}

gcstring_vector::iterator gcstring_vector::erase(iterator pos) {
  const auto index = static_cast<size_t>(pos - begin());
  erase(index);
  return begin() + static_cast<std::ptrdiff_t>(index);
}

void gcstring_vector::erase(size_t uiIndex) {
  CheckIndex(uiIndex, size());
  m_pStorage->items.erase(m_pStorage->items.begin() + static_cast<std::ptrdiff_t>(uiIndex));
}

gcstring& gcstring_vector::at(size_t uiIndex) {
  CheckIndex(uiIndex, size());
  return m_pStorage->items[uiIndex];
}

const gcstring& gcstring_vector::at(size_t uiIndex) const {
  CheckIndex(uiIndex, size());
  return m_pStorage->items[uiIndex];
}

gcstring& gcstring_vector::back() {
  return m_pStorage->items.back();
}
const gcstring& gcstring_vector::back() const {
  return m_pStorage->items.back();
}
gcstring& gcstring_vector::front() {
  return m_pStorage->items.front();
}
const gcstring& gcstring_vector::front() const {
  return m_pStorage->items.front();
}
gcstring_vector::iterator gcstring_vector::begin() {
  return iterator(m_pStorage->items.data());
}
gcstring_vector::const_iterator gcstring_vector::begin() const {
  return const_iterator(m_pStorage->items.data());
}
gcstring_vector::iterator gcstring_vector::end() {
  return iterator(m_pStorage->items.data() + size());
}
gcstring_vector::const_iterator gcstring_vector::end() const {
  return const_iterator(m_pStorage->items.data() + size());
}
size_t gcstring_vector::capacity() const {
  return m_pStorage->items.capacity();
}
size_t gcstring_vector::max_size() const {
  return m_pStorage->items.max_size();
}
size_t gcstring_vector::size() const {
  return m_pStorage->items.size();
}

gcstring_vector::iterator gcstring_vector::insert(iterator pos, const gcstring& str) {
  const auto index = static_cast<size_t>(pos - begin());
  insert(index, str);
  return begin() + static_cast<std::ptrdiff_t>(index);
}

void gcstring_vector::insert(size_t uiIndex, const gcstring& str) {
  CheckIndex(uiIndex, size() + 1);
  m_pStorage->items.insert(m_pStorage->items.begin() + static_cast<std::ptrdiff_t>(uiIndex), str);
}

bool gcstring_vector::empty() const {
  return m_pStorage->items.empty();
}
void gcstring_vector::pop_back() {
  m_pStorage->items.pop_back();
}
void gcstring_vector::push_back(const gcstring& str) {
  m_pStorage->items.push_back(str);
}
void gcstring_vector::resize(size_t n, const gcstring& val) {
  m_pStorage->items.resize(n, gcstring(val));
}
void gcstring_vector::reserve(size_t uiSize) {
  m_pStorage->items.reserve(uiSize);
}

bool gcstring_vector::contains(const gcstring& val) const {
  return std::find(m_pStorage->items.begin(), m_pStorage->items.end(), val) != m_pStorage->items.end();
}

const gcstring& gcstring_vector::operator[](size_t uiIndex) const {
  return m_pStorage->items[uiIndex];
}
gcstring& gcstring_vector::operator[](size_t uiIndex) {
  return m_pStorage->items[uiIndex];
}

}  // namespace GENICAM_NAMESPACE
