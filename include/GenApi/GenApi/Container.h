/// Lists of nodes and of values.
#ifndef GENAPI_CONTAINER_H
#define GENAPI_CONTAINER_H

#include "../Base/GCVectorIterator.h"
#include "GenApiDll.h"
#include "Types.h"

namespace GENAPI_NAMESPACE {

GENICAM_INTERFACE INode;
GENICAM_INTERFACE IValue;

/// A list of borrowed nodes; the node map owns them. Behaves as std::vector, with positions given as
/// iterators or as indices. at(), erase() and insert() with an index out of range throw OutOfRangeException.
/// Not synchronised.
class GENAPI_DECL node_vector {
 public:
  typedef INode* T;
  typedef GENICAM_NAMESPACE::ConstVectorIterator<T> const_iterator;
  typedef GENICAM_NAMESPACE::VectorIterator<T> iterator;

  node_vector();
  explicit node_vector(size_t uiSize);
  node_vector(const node_vector& obj);
  virtual ~node_vector();
  node_vector& operator=(const node_vector& obj);

  void assign(size_t n, const T& val);
  void assign(const node_vector& obj);
  void clear();
  iterator erase(iterator pos);
  void erase(size_t uiIndex);
  T& at(size_t uiIndex);
  const T& at(size_t uiIndex) const;
  T& back();
  const T& back() const;
  T& front();
  const T& front() const;
  iterator begin();
  const_iterator begin() const;
  iterator end();
  const_iterator end() const;
  size_t capacity() const;
  size_t max_size() const;
  size_t size() const;
  iterator insert(iterator pos, const T& val);
  void insert(size_t uiIndex, const T& val);
  bool empty() const;
  void pop_back();
  void push_back(const T& val);
  void resize(size_t uiSize);
  void reserve(size_t uiSize);
  const T& operator[](size_t uiIndex) const;
  T& operator[](size_t uiIndex);

 private:
  struct Storage;
  Storage* m_pStorage;
};

/// A list of borrowed values; otherwise as node_vector.
class GENAPI_DECL value_vector {
 public:
  typedef IValue* T;
  typedef GENICAM_NAMESPACE::ConstVectorIterator<T> const_iterator;
  typedef GENICAM_NAMESPACE::VectorIterator<T> iterator;

  value_vector();
  explicit value_vector(size_t uiSize);
  value_vector(const value_vector& obj);
  virtual ~value_vector();
  value_vector& operator=(const value_vector& obj);

  void assign(size_t n, const T& val);
  void assign(const value_vector& obj);
  void clear();
  iterator erase(iterator pos);
  void erase(size_t uiIndex);
  T& at(size_t uiIndex);
  const T& at(size_t uiIndex) const;
  T& back();
  const T& back() const;
  T& front();
  const T& front() const;
  iterator begin();
  const_iterator begin() const;
  iterator end();
  const_iterator end() const;
  size_t capacity() const;
  size_t max_size() const;
  size_t size() const;
  iterator insert(iterator pos, const T& val);
  void insert(size_t uiIndex, const T& val);
  bool empty() const;
  void pop_back();
  void push_back(const T& val);
  void resize(size_t uiSize, const T& val);
  void resize(size_t uiSize) { resize(uiSize, nullptr); }
  void reserve(size_t uiSize);
  const T& operator[](size_t uiIndex) const;
  T& operator[](size_t uiIndex);

 private:
  struct Storage;
  Storage* m_pStorage;
};

typedef node_vector NodeList_t;
typedef value_vector FeatureList_t;

}  // namespace GENAPI_NAMESPACE

#endif
