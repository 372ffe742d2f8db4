#include "GenApi/Container.h"

#include <vector>

#include "Base/GCException.h"

namespace GENAPI_NAMESPACE {
namespace {

void CheckIndex(size_t index, size_t limit) {
  if (index >= limit) throw OUT_OF_RANGE_EXCEPTION("Index %zu is out of range, size is %zu", index, limit);
}

}  // namespace

struct node_vector::Storage {
  std::vector<INode*> items;
};

node_vector::node_vector() : m_pStorage(new Storage) {}
node_vector::node_vector(size_t uiSize) : m_pStorage(new Storage{std::vector<INode*>(uiSize)}) {}
node_vector::node_vector(const node_vector& obj) : m_pStorage(new Storage(*obj.m_pStorage)) {}
node_vector::~node_vector() {
  delete m_pStorage;
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): std::vector sees to it
node_vector& node_vector::operator=(const node_vector& obj) {
  m_pStorage->items = obj.m_pStorage->items;
  return *this;
}

void node_vector::assign(size_t n, INode* const& val) {
  m_pStorage->items.assign(n, T(val));
}
void node_vector::assign(const node_vector& obj) {
  *this = obj;
}
void node_vector::clear() {
  m_pStorage->items.clear();
}

node_vector::iterator node_vector::erase(iterator pos) {
  const auto index = static_cast<size_t>(pos - begin());
  erase(index);
  return begin() + static_cast<std::ptrdiff_t>(index);
}

void node_vector::erase(size_t uiIndex) {
  CheckIndex(uiIndex, size());
  m_pStorage->items.erase(m_pStorage->items.begin() + static_cast<std::ptrdiff_t>(uiIndex));
}

INode*& node_vector::at(size_t uiIndex) {
  CheckIndex(uiIndex, size());
  return m_pStorage->items[uiIndex];
}

INode* const& node_vector::at(size_t uiIndex) const {
  CheckIndex(uiIndex, size());
  return m_pStorage->items[uiIndex];
}

INode*& node_vector::back() {
  return m_pStorage->items.back();
}
INode* const& node_vector::back() const {
  return m_pStorage->items.back();
}
INode*& node_vector::front() {
  return m_pStorage->items.front();
}
INode* const& node_vector::front() const {
  return m_pStorage->items.front();
}
node_vector::iterator node_vector::begin() {
  return iterator(m_pStorage->items.data());
}
node_vector::const_iterator node_vector::begin() const {
  return const_iterator(m_pStorage->items.data());
}
node_vector::iterator node_vector::end() {
  return iterator(m_pStorage->items.data() + size());
}
node_vector::const_iterator node_vector::end() const {
  return const_iterator(m_pStorage->items.data() + size());
}
size_t node_vector::capacity() const {
  return m_pStorage->items.capacity();
}
size_t node_vector::max_size() const {
  return m_pStorage->items.max_size();
}
size_t node_vector::size() const {
  return m_pStorage->items.size();
}

node_vector::iterator node_vector::insert(iterator pos, INode* const& val) {
  const auto index = static_cast<size_t>(pos - begin());
  insert(index, val);
  return begin() + static_cast<std::ptrdiff_t>(index);
}

void node_vector::insert(size_t uiIndex, INode* const& val) {
  CheckIndex(uiIndex, size() + 1);
  m_pStorage->items.insert(m_pStorage->items.begin() + static_cast<std::ptrdiff_t>(uiIndex), val);
}

bool node_vector::empty() const {
  return m_pStorage->items.empty();
}
void node_vector::pop_back() {
  m_pStorage->items.pop_back();
}
void node_vector::push_back(INode* const& val) {
  m_pStorage->items.push_back(val);
}
void node_vector::resize(size_t uiSize) {
  m_pStorage->items.resize(uiSize);
}
void node_vector::reserve(size_t uiSize) {
  m_pStorage->items.reserve(uiSize);
}

INode* const& node_vector::operator[](size_t uiIndex) const {
  return m_pStorage->items[uiIndex];
}
INode*& node_vector::operator[](size_t uiIndex) {
  return m_pStorage->items[uiIndex];
}

struct value_vector::Storage {
  std::vector<IValue*> items;
};

value_vector::value_vector() : m_pStorage(new Storage) {}
value_vector::value_vector(size_t uiSize) : m_pStorage(new Storage{std::vector<IValue*>(uiSize)}) {}
value_vector::value_vector(const value_vector& obj) : m_pStorage(new Storage(*obj.m_pStorage)) {}
value_vector::~value_vector() {
  delete m_pStorage;
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): std::vector sees to it
value_vector& value_vector::operator=(const value_vector& obj) {
  m_pStorage->items = obj.m_pStorage->items;
  return *this;
}

void value_vector::assign(size_t n, IValue* const& val) {
  m_pStorage->items.assign(n, T(val));
}
void value_vector::assign(const value_vector& obj) {
  *this = obj;
}
void value_vector::clear() {
  m_pStorage->items.clear();
}

value_vector::iterator value_vector::erase(iterator pos) {
  const auto index = static_cast<size_t>(pos - begin());
  erase(index);
  return begin() + static_cast<std::ptrdiff_t>(index);
}

void value_vector::erase(size_t uiIndex) {
  CheckIndex(uiIndex, size());
  m_pStorage->items.erase(m_pStorage->items.begin() + static_cast<std::ptrdiff_t>(uiIndex));
}

IValue*& value_vector::at(size_t uiIndex) {
  CheckIndex(uiIndex, size());
  return m_pStorage->items[uiIndex];
}

IValue* const& value_vector::at(size_t uiIndex) const {
  CheckIndex(uiIndex, size());
  return m_pStorage->items[uiIndex];
}

IValue*& value_vector::back() {
  return m_pStorage->items.back();
}
IValue* const& value_vector::back() const {
  return m_pStorage->items.back();
}
IValue*& value_vector::front() {
  return m_pStorage->items.front();
}
IValue* const& value_vector::front() const {
  return m_pStorage->items.front();
}
value_vector::iterator value_vector::begin() {
  return iterator(m_pStorage->items.data());
}
value_vector::const_iterator value_vector::begin() const {
  return const_iterator(m_pStorage->items.data());
}
value_vector::iterator value_vector::end() {
  return iterator(m_pStorage->items.data() + size());
}
value_vector::const_iterator value_vector::end() const {
  return const_iterator(m_pStorage->items.data() + size());
}
size_t value_vector::capacity() const {
  return m_pStorage->items.capacity();
}
size_t value_vector::max_size() const {
  return m_pStorage->items.max_size();
}
size_t value_vector::size() const {
  return m_pStorage->items.size();
}

value_vector::iterator value_vector::insert(iterator pos, IValue* const& val) {
  const auto index = static_cast<size_t>(pos - begin());
  insert(index, val);
  return begin() + static_cast<std::ptrdiff_t>(index);
}

void value_vector::insert(size_t uiIndex, IValue* const& val) {
  CheckIndex(uiIndex, size() + 1);
  m_pStorage->items.insert(m_pStorage->items.begin() + static_cast<std::ptrdiff_t>(uiIndex), val);
}

bool value_vector::empty() const {
  return m_pStorage->items.empty();
}
void value_vector::pop_back() {
  m_pStorage->items.pop_back();
}
void value_vector::push_back(IValue* const& val) {
  m_pStorage->items.push_back(val);
}
void value_vector::resize(size_t uiSize, IValue* const& val) {
  m_pStorage->items.resize(uiSize, val);
}
void value_vector::reserve(size_t uiSize) {
  m_pStorage->items.reserve(uiSize);
}

IValue* const& value_vector::operator[](size_t uiIndex) const {
  return m_pStorage->items[uiIndex];
}
IValue*& value_vector::operator[](size_t uiIndex) {
  return m_pStorage->items[uiIndex];
}

}  // namespace GENAPI_NAMESPACE
