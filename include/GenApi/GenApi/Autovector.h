/// Shared arrays of numbers, for lists of valid values.
#ifndef GENAPI_AUTOVECTOR_H
#define GENAPI_AUTOVECTOR_H

#include "../Base/GCTypes.h"
#include "GenApiDll.h"

namespace GENAPI_NAMESPACE {

/// A counted array of integers: copies share the elements. The count is atomic, the elements are not
/// synchronised. An index out of range throws OutOfRangeException.
class GENAPI_DECL int64_autovector_t {
 public:
  explicit int64_autovector_t();
  int64_autovector_t(const int64_autovector_t& obj);
  explicit int64_autovector_t(size_t n);
  virtual ~int64_autovector_t();

  int64_autovector_t& operator=(const int64_autovector_t& obj);
  int64_t& operator[](size_t uiIndex);
  const int64_t& operator[](size_t uiIndex) const;
  size_t size() const;

 private:
  struct Storage;
  Storage* m_pStorage;
};

/// The same for floating-point numbers.
class GENAPI_DECL double_autovector_t {
 public:
  explicit double_autovector_t();
  double_autovector_t(const double_autovector_t& obj);
  explicit double_autovector_t(size_t n);
  virtual ~double_autovector_t();

  double_autovector_t& operator=(const double_autovector_t& obj);
  double& operator[](size_t uiIndex);
  const double& operator[](size_t uiIndex) const;
  size_t size() const;

 private:
  struct Storage;
  Storage* m_pStorage;
};

}  // namespace GENAPI_NAMESPACE

#endif
