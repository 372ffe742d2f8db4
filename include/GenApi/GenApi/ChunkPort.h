/// The port of one kind of chunk.
#ifndef GENAPI_CHUNKPORT_H
#define GENAPI_CHUNKPORT_H

#include "../Base/GCString.h"
#include "GenApiDll.h"
#include "IPortConstruct.h"

namespace GENAPI_NAMESPACE {

/// Serves a Port node out of the chunk of a buffer. Address 0 is the first byte of the chunk's payload. Access
/// mode NA while no chunk is attached. The buffer is borrowed, unless the chunk is cached. To be used with the
/// lock of the node map held; values that the map has cached are not invalidated here.
class GENAPI_DECL CChunkPort : public IPortConstruct {
 public:
  explicit CChunkPort(IPort* pPort = nullptr);
  ~CChunkPort() override;
  CChunkPort(const CChunkPort&) = delete;
  CChunkPort& operator=(const CChunkPort&) = delete;

  EAccessMode GetAccessMode() const override;
  void Read(void* pBuffer, int64_t Address, int64_t Length) override;
  void Write(const void* pBuffer, int64_t Address, int64_t Length) override;
  void SetPortImpl(IPort* pPort) override;
  EYesNo GetSwapEndianess() override;

  /// Connects to a Port node that has a chunk identifier; without one it is left alone.
  void AttachPort(IPort* pPort);
  void DetachPort();
  /// The chunk lies ChunkOffset bytes behind pBaseAddress. Cache copies it, so that it outlives the buffer.
  void AttachChunk(uint8_t* pBaseAddress, int64_t ChunkOffset, int64_t Length, bool Cache);
  void DetachChunk();
  /// Whether the node serves this chunk; leading zeros do not matter. The bytes are most significant first.
  bool CheckChunkID(uint8_t* pChunkIDBuffer, int ChunkIDLength) const;
  bool CheckChunkID(uint64_t ChunkID) const;
  bool CheckChunkID(const GENICAM_NAMESPACE::gcstring& ChunkID) const;
  /// The same chunk in another buffer of the same layout.
  void UpdateBuffer(uint8_t* pBaseAddress);
  /// Forgets the copy of a cached chunk, and with it the chunk.
  void ClearCache();
  /// Bytes of the identifier as it is written.
  int GetChunkIDLength() const;
  /// Whether the chunk is a copy that outlives the buffer.
  bool IsCached() const { return m_pCopy != nullptr; }
  /// The node this port serves; null while not attached.
  IPort* GetPort() const { return m_pPort; }

 private:
  uint8_t* At(int64_t Address, int64_t Length) const;

  struct Copy;
  IPort* m_pPort;
  uint8_t* m_pBaseAddress;
  int64_t m_ChunkOffset;
  int64_t m_Length;
  Copy* m_pCopy;
};

}  // namespace GENAPI_NAMESPACE

#endif
