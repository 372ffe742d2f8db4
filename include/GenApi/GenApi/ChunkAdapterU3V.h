/// Chunks of USB3 Vision devices.
#ifndef GENAPI_CHUNKADAPTERU3V_H
#define GENAPI_CHUNKADAPTERU3V_H

#include "ChunkAdapter.h"

namespace GENAPI_NAMESPACE {

#pragma pack(push, 1)
/// What follows the payload of a chunk; both numbers little-endian.
struct U3V_CHUNK_TRAILER {
  uint32_t ChunkID;
  uint32_t ChunkLength;
};
#pragma pack(pop)

/// As of GigE Vision devices, but with little-endian trailers.
class GENAPI_DECL CChunkAdapterU3V : public CChunkAdapter {
 public:
  explicit CChunkAdapterU3V(INodeMap* pNodeMap = nullptr, int64_t MaxChunkCacheSize = -1);
  ~CChunkAdapterU3V() override;

  bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) override;
  void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                    AttachStatistics_t* pAttachStatistics = nullptr) override;
};

}  // namespace GENAPI_NAMESPACE

#endif
