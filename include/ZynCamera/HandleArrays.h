/// Arrays of strings, features and cameras.
///
/// All four work alike. Indexes count from 0. The operations that return bool answer false, and change
/// nothing, when an index is too large, unless their comment says otherwise. Storing elements may raise
/// std::bad_alloc or std::length_error. No locking: an array, and arrays that share one storage, belong to
/// one thread at a time.
#ifndef ZYNCAMERA_HANDLE_ARRAYS_H
#define ZYNCAMERA_HANDLE_ARRAYS_H

#include "CameraHandles.h"
#include "Export.h"
#include "ZynNode.h"
#include "ZynString.h"

namespace ZYNSDK {

template <class T>
class ZynCameraBaseDataTemplate1;

/// Strings. Every element owns its text.
class ZYNSDK_API ZynStringArray {
 public:
  ZynStringArray();
  ZynStringArray(const ZynString& element);  ///< one element
  /// Copies the elements into storage of its own.
  ZynStringArray(const ZynStringArray& other);
  ~ZynStringArray();
  /// Copies the elements into this array's own storage.
  ZynStringArray& operator=(const ZynStringArray& other);

  ZynString& operator[](int index);       ///< index: 0..length-1, not checked. Valid until the array changes
  ZynString operator[](int index) const;  ///< a copy; index: 0..length-1, not checked

  /// Element by element: equal counts, and every pair equal.
  bool operator==(const ZynStringArray& other) const;
  bool operator!=(const ZynStringArray& other) const;
  /// Design decision: appends the other's elements to this array, in spite of const, and returns a copy of
  /// it.
  ZynStringArray operator+=(const ZynStringArray& other) const;

  unsigned int length() const;
  void push_back(const ZynString& element);
  void push_back(const ZynStringArray& other);  ///< appends all elements of the other array
  bool removeAt(unsigned int index);
  /// Copies the element to *out. False when `out` is null or the index too large.
  bool select(unsigned int index, ZynString* out) const;
  /// Replaces the element. Design decision: returns false in every case, also after success.
  bool replace(unsigned int index, const ZynString& element);
  bool insert(unsigned int index,
              const ZynString& element);  ///< before `index`, which must be below length()
  void clear();                           ///< the memory is kept
  bool swap(unsigned int first, unsigned int second);
  void setSize(unsigned int count);  ///< appends empty strings, or drops the last elements

 private:
  ZynCameraBaseDataTemplate1<ZynString>* storage_;
};

/// Features.
class ZYNSDK_API ZynNodeArray {
 public:
  ZynNodeArray();
  ZynNodeArray(const ZynNode& element);  ///< one element
  /// Copies the elements into storage of its own.
  ZynNodeArray(const ZynNodeArray& other);
  ~ZynNodeArray();
  /// Design decision: from now on both arrays share one storage and see each other's changes. The storage is
  /// counted and goes with the last array that uses it.
  ZynNodeArray& operator=(const ZynNodeArray& other);

  ZynNode& operator[](int index);       ///< index: 0..length-1, not checked. Valid until the array changes
  ZynNode operator[](int index) const;  ///< a copy; index: 0..length-1, not checked

  /// Identity: true when both share one storage, whatever the elements are.
  bool operator==(const ZynNodeArray& other) const;
  bool operator!=(const ZynNodeArray& other) const;
  /// Design decision: appends the other's elements to this array, in spite of const, and returns a copy of
  /// it.
  ZynNodeArray operator+(const ZynNodeArray& other) const;

  unsigned int length() const;
  void push_back(const ZynNode& element);
  void push_back(const ZynNodeArray& other);  ///< appends all elements of the other array
  bool removeAt(unsigned int index);
  /// Copies the element to *out. False when `out` is null or the index too large.
  bool select(unsigned int index, ZynNode* out) const;
  /// Replaces the element. Design decision: returns false in every case, also after success.
  bool replace(unsigned int index, const ZynNode& element);
  bool insert(unsigned int index, const ZynNode& element);  ///< before `index`, which must be below length()
  void clear();                                             ///< the memory is kept
  bool swap(unsigned int first, unsigned int second);
  void setSize(unsigned int count);  ///< appends empty handles, or drops the last elements

 private:
  ZynCameraBaseDataTemplate1<ZynNode>* storage_;
};

/// 2D cameras.
class ZYNSDK_API ZynCameraArray {
 public:
  ZynCameraArray();
  ZynCameraArray(const ZynCamera& element);  ///< one element
  /// Copies the elements into storage of its own.
  ZynCameraArray(const ZynCameraArray& other);
  ~ZynCameraArray();
  /// Design decision: from now on both arrays share one storage and see each other's changes. The storage is
  /// counted and goes with the last array that uses it.
  ZynCameraArray& operator=(const ZynCameraArray& other);

  ZynCamera& operator[](int index);       ///< index: 0..length-1, not checked. Valid until the array changes
  ZynCamera operator[](int index) const;  ///< a copy; index: 0..length-1, not checked

  /// Identity: true when both share one storage, whatever the elements are.
  bool operator==(const ZynCameraArray& other) const;
  bool operator!=(const ZynCameraArray& other) const;
  /// Design decision: appends the other's elements to this array, in spite of const, and returns a copy of
  /// it.
  ZynCameraArray operator+=(const ZynCameraArray& other) const;

  unsigned int length() const;
  void push_back(const ZynCamera& element);
  void push_back(const ZynCameraArray& other);  ///< appends all elements of the other array
  bool removeAt(unsigned int index);
  /// Copies the element to *out. False when `out` is null or the index too large.
  bool select(unsigned int index, ZynCamera* out) const;
  /// Replaces the element. Design decision: returns false in every case, also after success.
  bool replace(unsigned int index, const ZynCamera& element);
  bool insert(unsigned int index,
              const ZynCamera& element);  ///< before `index`, which must be below length()
  void clear();                           ///< the memory is kept
  bool swap(unsigned int first, unsigned int second);
  void setSize(unsigned int count);  ///< appends empty handles, or drops the last elements

 private:
  ZynCameraBaseDataTemplate1<ZynCamera>* storage_;
};

/// 3D cameras.
class ZYNSDK_API Zyn3DCameraArray {
 public:
  Zyn3DCameraArray();
  Zyn3DCameraArray(const Zyn3DCamera& element);  ///< one element
  /// Copies the elements into storage of its own.
  Zyn3DCameraArray(const Zyn3DCameraArray& other);
  ~Zyn3DCameraArray();
  /// Design decision: from now on both arrays share one storage and see each other's changes. The storage is
  /// counted and goes with the last array that uses it.
  Zyn3DCameraArray& operator=(const Zyn3DCameraArray& other);

  Zyn3DCamera& operator[](int index);  ///< index: 0..length-1, not checked. Valid until the array changes
  Zyn3DCamera operator[](int index) const;  ///< a copy; index: 0..length-1, not checked

  /// Identity: true when both share one storage, whatever the elements are.
  bool operator==(const Zyn3DCameraArray& other) const;
  bool operator!=(const Zyn3DCameraArray& other) const;
  /// Design decision: appends the other's elements to this array, in spite of const, and returns a copy of
  /// it.
  Zyn3DCameraArray operator+(const Zyn3DCameraArray& other) const;

  unsigned int length() const;
  void push_back(const Zyn3DCamera& element);
  void push_back(const Zyn3DCameraArray& other);  ///< appends all elements of the other array
  bool removeAt(unsigned int index);
  /// Copies the element to *out. False when `out` is null or the index too large.
  bool select(unsigned int index, Zyn3DCamera* out) const;
  /// Replaces the element. Design decision: returns false in every case, also after success.
  bool replace(unsigned int index, const Zyn3DCamera& element);
  bool insert(unsigned int index,
              const Zyn3DCamera& element);  ///< before `index`, which must be below length()
  void clear();                             ///< the memory is kept
  bool swap(unsigned int first, unsigned int second);
  void setSize(unsigned int count);  ///< appends empty handles, or drops the last elements

 private:
  ZynCameraBaseDataTemplate1<Zyn3DCamera>* storage_;
};

}  // namespace ZYNSDK

#endif
