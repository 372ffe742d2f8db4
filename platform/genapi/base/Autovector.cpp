#include "GenApi/Autovector.h"

#include <atomic>
#include <utility>
#include <vector>

#include "Base/GCException.h"

namespace GENAPI_NAMESPACE {
namespace {

void CheckIndex(size_t index, size_t limit) {
  if (index >= limit) throw OUT_OF_RANGE_EXCEPTION("Index %zu is out of range, size is %zu", index, limit);
}

}  // namespace

struct int64_autovector_t::Storage {
  explicit Storage(size_t n) : items(n) {}
  std::atomic<int> owners{1};
  std::vector<int64_t> items;
};

int64_autovector_t::int64_autovector_t() : int64_autovector_t(0) {}
int64_autovector_t::int64_autovector_t(size_t n) : m_pStorage(new Storage(n)) {}
int64_autovector_t::int64_autovector_t(const int64_autovector_t& obj) : m_pStorage(obj.m_pStorage) {
  ++m_pStorage->owners;
}

int64_autovector_t::~int64_autovector_t() {
  if (--m_pStorage->owners == 0) delete m_pStorage;
}

int64_autovector_t& int64_autovector_t::operator=(const int64_autovector_t& obj) {
  int64_autovector_t copy(obj);
  std::swap(m_pStorage, copy.m_pStorage);
  return *this;
}

int64_t& int64_autovector_t::operator[](size_t uiIndex) {
  CheckIndex(uiIndex, size());
  return m_pStorage->items[uiIndex];
}

const int64_t& int64_autovector_t::operator[](size_t uiIndex) const {
  CheckIndex(uiIndex, size());
  return m_pStorage->items[uiIndex];
}

size_t int64_autovector_t::size() const {
  return m_pStorage->items.size();
}

struct double_autovector_t::Storage {
  explicit Storage(size_t n) : items(n) {}
  std::atomic<int> owners{1};
  std::vector<double> items;
};

double_autovector_t::double_autovector_t() : double_autovector_t(0) {}
double_autovector_t::double_autovector_t(size_t n) : m_pStorage(new Storage(n)) {}
double_autovector_t::double_autovector_t(const double_autovector_t& obj) : m_pStorage(obj.m_pStorage) {
  ++m_pStorage->owners;
}

double_autovector_t::~double_autovector_t() {
  if (--m_pStorage->owners == 0) delete m_pStorage;
}

double_autovector_t& double_autovector_t::operator=(const double_autovector_t& obj) {
  double_autovector_t copy(obj);
  std::swap(m_pStorage, copy.m_pStorage);
  return *this;
}

double& double_autovector_t::operator[](size_t uiIndex) {
  CheckIndex(uiIndex, size());
  return m_pStorage->items[uiIndex];
}

const double& double_autovector_t::operator[](size_t uiIndex) const {
  CheckIndex(uiIndex, size());
  return m_pStorage->items[uiIndex];
}

size_t double_autovector_t::size() const {
  return m_pStorage->items.size();
}

}  // namespace GENAPI_NAMESPACE
