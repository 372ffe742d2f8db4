/// Makes the chunks of a buffer readable as features.
#ifndef GENAPI_CHUNKADAPTER_H
#define GENAPI_CHUNKADAPTER_H

#include "../Base/GCString.h"
#include "../Base/GCTypes.h"
#include "GenApiDll.h"
#include "INodeMap.h"

namespace GENAPI_NAMESPACE {

/// What became of a buffer: ports that wait for chunks, chunks found, chunks that a port took.
struct AttachStatistics_t {
  int NumChunkPorts;
  int NumChunks;
  int NumAttachedChunks;
};

/// Base of the adapters; each knows one layout. Attach it to a map once and to every buffer that carries
/// chunks. Features of chunks that the buffer does not have become not available, those of the others are
/// invalidated and their callbacks fire.
///
/// A buffer is borrowed until the next one, DetachBuffer or the end of the adapter; the map must outlive the
/// adapter or be detached. Calls of one adapter must not overlap each other; features may be used meanwhile on
/// any thread.
class GENAPI_DECL CChunkAdapter {
 public:
  virtual ~CChunkAdapter();
  CChunkAdapter(const CChunkAdapter&) = delete;
  CChunkAdapter& operator=(const CChunkAdapter&) = delete;

  void AttachNodeMap(INodeMap* pNodeMap);
  void DetachNodeMap();
  /// Whether the buffer has this adapter's layout.
  virtual bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) = 0;
  /// Throws RuntimeException when the layout is wrong; the former buffer stays attached then.
  virtual void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                            AttachStatistics_t* pAttachStatistics = nullptr) = 0;
  /// Chunks that live on as copies stay until the next buffer or ClearCaches().
  void DetachBuffer();
  /// Another buffer of the same layout takes the place of the attached one.
  void UpdateBuffer(uint8_t* pBaseAddress);
  /// Detaches chunks that live on as copies.
  void ClearCaches();

 protected:
  /// Chunks of ports with CacheChunkData are copied up to this size in bytes; below 0 always.
  explicit CChunkAdapter(INodeMap* pNodeMap = nullptr, int64_t MaxChunkCacheSize = -1);

  struct Impl;
  Impl* m_pImpl;
};

}  // namespace GENAPI_NAMESPACE

#endif
