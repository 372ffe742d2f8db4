/// Chunks in the metadata parts of GenDC containers.
#ifndef GENAPI_CHUNKADAPTERGENDC_H
#define GENAPI_CHUNKADAPTERGENDC_H

#include "ChunkAdapterU3V.h"

namespace GENAPI_NAMESPACE {

#pragma pack(push, 1)
/// What follows the payload of a chunk; both numbers little-endian.
struct GENDC_CHUNK_TRAILER {
  uint32_t ChunkID;
  uint32_t ChunkLength;
};
#pragma pack(pop)

/// As of USB3 Vision devices.
class GENAPI_DECL CChunkAdapterGenDC : public CChunkAdapterU3V {
 public:
  explicit CChunkAdapterGenDC(INodeMap* pNodeMap = nullptr, int64_t MaxChunkCacheSize = -1);
  ~CChunkAdapterGenDC() override;
};

}  // namespace GENAPI_NAMESPACE

#endif
