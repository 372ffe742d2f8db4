/// A list of gcstring.
#ifndef BASE_GCSTRINGVECTOR_H
#define BASE_GCSTRINGVECTOR_H

#include "GCString.h"
#include "GCVectorIterator.h"

namespace GENICAM_NAMESPACE {

/// Owns its strings. Behaves as std::vector, with positions given as iterators or as indices.
/// at() and erase()/insert() with an index out of range throw OutOfRangeException. Not synchronised.
class GCBASE_API gcstring_vector {
 public:
  typedef ConstVectorIterator<gcstring> const_iterator;
  typedef VectorIterator<gcstring> iterator;

  gcstring_vector();
  explicit gcstring_vector(size_t uiSize, const gcstring& str = gcstring());
  gcstring_vector(const gcstring_vector& obj);
  virtual ~gcstring_vector();
  gcstring_vector& operator=(const gcstring_vector& obj);

  void assign(size_t n, const gcstring& val);
  gcstring_vector& assign(const gcstring_vector& obj);
  void clear();
  iterator erase(iterator pos);
  void erase(size_t uiIndex);
  gcstring& at(size_t uiIndex);
  const gcstring& at(size_t uiIndex) const;
  gcstring& back();
  const gcstring& back() const;
  gcstring& front();
  const gcstring& front() const;
  iterator begin();
  const_iterator begin() const;
  iterator end();
  const_iterator end() const;
  size_t capacity() const;
  size_t max_size() const;
  size_t size() const;
  iterator insert(iterator pos, const gcstring& str);
  void insert(size_t uiIndex, const gcstring& str);
  bool empty() const;
  void pop_back();
  void push_back(const gcstring& str);
  void resize(size_t n, const gcstring& val = gcstring());
  void reserve(size_t uiSize);
  bool contains(const gcstring& val) const;
  const gcstring& operator[](size_t uiIndex) const;
  gcstring& operator[](size_t uiIndex);

 private:
  struct Storage;
  Storage* m_pStorage;
};

}  // namespace GENICAM_NAMESPACE

#endif
