/// Random-access iterators over a contiguous array, shared by the list types of the interface.
#ifndef BASE_GCVECTORITERATOR_H
#define BASE_GCVECTORITERATOR_H

#include <cstddef>
#include <iterator>

#include "GCTypes.h"

namespace GENICAM_NAMESPACE {

/// Reads elements. Invalid after the list changed its size.
template <class T>
class ConstVectorIterator {
 public:
  typedef std::random_access_iterator_tag iterator_category;
  typedef T value_type;
  typedef std::ptrdiff_t difference_type;
  typedef const T* pointer;
  typedef const T& reference;

  explicit ConstVectorIterator(T* ptr = nullptr) : _ptr(ptr) {}

  reference operator*() const { return *_ptr; }
  pointer operator->() const { return _ptr; }
  reference operator[](difference_type n) const { return _ptr[n]; }
  ConstVectorIterator& operator++() {
    ++_ptr;
    return *this;
  }
  ConstVectorIterator operator++(int) {
    ConstVectorIterator old(*this);
    ++_ptr;
    return old;
  }
  ConstVectorIterator& operator--() {
    --_ptr;
    return *this;
  }
  ConstVectorIterator operator--(int) {
    ConstVectorIterator old(*this);
    --_ptr;
    return old;
  }
  ConstVectorIterator& operator+=(difference_type n) {
    _ptr += n;
    return *this;
  }
  ConstVectorIterator& operator-=(difference_type n) {
    _ptr -= n;
    return *this;
  }
  ConstVectorIterator operator+(difference_type n) const { return ConstVectorIterator(_ptr + n); }
  ConstVectorIterator operator-(difference_type n) const { return ConstVectorIterator(_ptr - n); }
  difference_type operator-(const ConstVectorIterator& other) const { return _ptr - other._ptr; }
  bool operator==(const ConstVectorIterator& other) const { return _ptr == other._ptr; }
  bool operator!=(const ConstVectorIterator& other) const { return _ptr != other._ptr; }
  bool operator<(const ConstVectorIterator& other) const { return _ptr < other._ptr; }
  bool operator>(const ConstVectorIterator& other) const { return _ptr > other._ptr; }
  bool operator<=(const ConstVectorIterator& other) const { return _ptr <= other._ptr; }
  bool operator>=(const ConstVectorIterator& other) const { return _ptr >= other._ptr; }

 protected:
  T* _ptr;
};

/// Reads and writes elements. Converts to the reading kind.
template <class T>
class VectorIterator : public ConstVectorIterator<T> {
 public:
  typedef std::random_access_iterator_tag iterator_category;
  typedef T value_type;
  typedef std::ptrdiff_t difference_type;
  typedef T* pointer;
  typedef T& reference;

  explicit VectorIterator(T* ptr = nullptr) : ConstVectorIterator<T>(ptr) {}

  reference operator*() const { return *this->_ptr; }
  pointer operator->() const { return this->_ptr; }
  reference operator[](difference_type n) const { return this->_ptr[n]; }
  VectorIterator& operator++() {
    ++this->_ptr;
    return *this;
  }
  VectorIterator operator++(int) {
    VectorIterator old(*this);
    ++this->_ptr;
    return old;
  }
  VectorIterator& operator--() {
    --this->_ptr;
    return *this;
  }
  VectorIterator operator--(int) {
    VectorIterator old(*this);
    --this->_ptr;
    return old;
  }
  VectorIterator& operator+=(difference_type n) {
    this->_ptr += n;
    return *this;
  }
  VectorIterator& operator-=(difference_type n) {
    this->_ptr -= n;
    return *this;
  }
  VectorIterator operator+(difference_type n) const { return VectorIterator(this->_ptr + n); }
  VectorIterator operator-(difference_type n) const { return VectorIterator(this->_ptr - n); }
  difference_type operator-(const ConstVectorIterator<T>& other) const {
    return static_cast<const ConstVectorIterator<T>&>(*this) - other;
  }
};

}  // namespace GENICAM_NAMESPACE

#endif
