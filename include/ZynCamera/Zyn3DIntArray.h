/// The heights of a laser profile.
#ifndef ZYNCAMERA_ZYN_3D_INT_ARRAY_H
#define ZYNCAMERA_ZYN_3D_INT_ARRAY_H

#include "Export.h"

namespace ZYNSDK {

template <class T>
class ZynVector;

/// An array of 32-bit integers. Every value is legal; none marks a missing point.
///
/// Design decision: copying and assigning share the values, so a change through one array is seen through
/// all its copies; DeepCopy gives values of their own. Arrays may be copied and ended on different threads;
/// the values, and arrays that share them, belong to one thread at a time.
///
/// An index is valid from 0 to Length() - 1. An operation with an invalid one does nothing, unless its
/// comment says otherwise. Operations that store values may raise std::bad_alloc, or std::length_error
/// beyond 2147483647 values; the array is then as before.
class ZYNSDK_API Zyn3DIntArray {
 public:
  Zyn3DIntArray();  ///< no values
  /// Copies `count` values. No values when `data` is null. A negative count raises std::length_error.
  Zyn3DIntArray(int* data, int count);
  Zyn3DIntArray(const Zyn3DIntArray& other);             ///< shares the other's values
  Zyn3DIntArray& operator=(const Zyn3DIntArray& other);  ///< gives up its values and shares the other's
  ~Zyn3DIntArray();

  Zyn3DIntArray DeepCopy() const;  ///< an array with its own copy of the values

  void Append(const int& value);
  void Append(const Zyn3DIntArray& other);  ///< all values that the other, which may be this one, holds now
  int Length() const;
  void Remove(int index);
  void Select(int index, int* out) const;  ///< copies the value to *out; does nothing when `out` is null
  /// Inserts before `index`, which must be valid: neither behind the last value nor into an empty array.
  void Insert(int index, int value);
  void Replace(int index, int value);
  void Swap(int first, int second);
  bool IsValid(int index) const;
  void Clear();  ///< no values for all that share them; their memory is given back

  int operator[](int index) const;  ///< 0 for an invalid index: test IsValid first
  int& operator[](int index);       ///< index: not checked. Valid until the array grows or is cleared

  /// The values; null for a new array and after Clear. Valid until the array grows or is cleared.
  int* Data() const;
  /// Appends zeros or drops the last values. A negative size raises std::length_error. Keeps the memory.
  void SetSize(int count);

 private:
  friend int* AppendForOverwrite(Zyn3DIntArray& array, int count);

  ZynVector<int>* values_;
};

}  // namespace ZYNSDK

#endif
