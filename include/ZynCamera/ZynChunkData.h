/// The bytes that a camera appends to an image.
#ifndef ZYNCAMERA_ZYN_CHUNK_DATA_H
#define ZYNCAMERA_ZYN_CHUNK_DATA_H

#include "Export.h"

namespace ZYNSDK {

template <class T>
class ZynCameraBaseDataTemplate2;

/// A buffer of bytes. Every object owns its bytes. No locking: one thread at a time. Operations that store
/// bytes may raise std::bad_alloc.
class ZYNSDK_API ZynChunkData {
 public:
  ZynChunkData();  ///< no data, length 0
  /// Copies `length` bytes; no data when `data` is null or `length` is 0.
  ZynChunkData(const unsigned char* data, unsigned long long length);
  /// Design decision: the copy has length 0 whatever the source holds. Use operator= to copy the bytes.
  ZynChunkData(const ZynChunkData& other);
  ~ZynChunkData();
  /// Copies the bytes. An empty source, and so also the object itself, leaves length 0; the data must then
  /// not be read.
  ZynChunkData& operator=(const ZynChunkData& other);

  /// Replaces the content by a copy of `length` bytes. Does nothing when `length` is 0 or `data` is null.
  void setData(unsigned long long length, const unsigned char* data);

  unsigned char* getData() const;        ///< getLength() bytes, owned by this object, valid until it changes
  unsigned long long getLength() const;  ///< bytes
  unsigned char& operator[](int index);  ///< index: 0..length-1, not checked
  unsigned char operator[](int index) const;

  /// False for different lengths; otherwise compares as far as the first zero byte, so chunks that differ
  /// only behind one are equal.
  bool operator==(const ZynChunkData& other) const;
  bool operator!=(const ZynChunkData& other) const;

 private:
  ZynCameraBaseDataTemplate2<unsigned char>* storage_;
};

}  // namespace ZYNSDK

#endif
