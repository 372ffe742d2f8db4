/// Chunks of GigE Vision devices.
#ifndef GENAPI_CHUNKADAPTERGEV_H
#define GENAPI_CHUNKADAPTERGEV_H

#include "ChunkAdapter.h"

namespace GENAPI_NAMESPACE {

#pragma pack(push, 1)
/// What follows the payload of a chunk; both numbers big-endian.
struct GVCP_CHUNK_TRAILER {
  uint32_t ChunkID;
  uint32_t ChunkLength;
};
#pragma pack(pop)

/// Chunks follow each other, each with its trailer behind it; the last trailer ends the buffer.
class GENAPI_DECL CChunkAdapterGEV : public CChunkAdapter {
 public:
  explicit CChunkAdapterGEV(INodeMap* pNodeMap = nullptr, int64_t MaxChunkCacheSize = -1);
  ~CChunkAdapterGEV() override;

  bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) override;
  void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                    AttachStatistics_t* pAttachStatistics = nullptr) override;
};

}  // namespace GENAPI_NAMESPACE

#endif
