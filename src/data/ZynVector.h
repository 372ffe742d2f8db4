#ifndef ZYN_DATA_ZYN_VECTOR_H
#define ZYN_DATA_ZYN_VECTOR_H

#include <memory>

#include "RecycledVector.h"

namespace ZYNSDK {

/// What stands behind one Zyn3DIntArray: its share of a vector of values. Copying and assigning share the
/// vector; the last share frees it. Only the count of shares is safe to use from several threads.
template <class T>
class ZynVector {
 public:
  using Values = RecycledVector<T>;

  ZynVector() : ZynVector(std::make_shared<Values>()) {}
  ZynVector(const T* data, std::size_t count) : ZynVector(std::make_shared<Values>(data, count)) {}

  Values& operator*() const { return *values_; }
  Values* operator->() const { return values_; }

  /// A share of a new vector with the same values.
  ZynVector DeepCopy() const { return ZynVector(std::make_shared<Values>(*values_)); }

 private:
  explicit ZynVector(std::shared_ptr<Values> shared) : values_(shared.get()), shared_(std::move(shared)) {}

  Values* values_;  // always shared_'s target
  std::shared_ptr<Values> shared_;
};

}  // namespace ZYNSDK

#endif
