/// Chunks of which the producer gives a list.
#ifndef GENAPI_CHUNKADAPTERGENERIC_H
#define GENAPI_CHUNKADAPTERGENERIC_H

#include "ChunkAdapter.h"

namespace GENAPI_NAMESPACE {

#pragma pack(push, 1)
/// One chunk of a buffer.
struct SingleChunkData_t {
  uint64_t ChunkID;
  ptrdiff_t ChunkOffset;
  size_t ChunkLength;
};
#pragma pack(pop)

/// The same with an identifier of any length: hexadecimal digits without prefix.
struct SingleChunkDataStr_t {
  GENICAM_NAMESPACE::gcstring ChunkID;
  ptrdiff_t ChunkOffset;
  size_t ChunkLength;
};

/// For buffers whose producer parsed them already.
class GENAPI_DECL CChunkAdapterGeneric : public CChunkAdapter {
 public:
  explicit CChunkAdapterGeneric(INodeMap* pNodeMap = nullptr, int64_t MaxChunkCacheSize = -1);
  ~CChunkAdapterGeneric() override;

  /// Always false: this adapter knows no layout.
  bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) override;
  /// Always throws RuntimeException: the list is missing.
  void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                    AttachStatistics_t* pAttachStatistics = nullptr) override;
  /// Offsets count from pBuffer. Entries with the same identifier: the last one holds.
  void AttachBuffer(uint8_t* pBuffer, SingleChunkData_t* ChunkData, int64_t NumChunks,
                    AttachStatistics_t* pAttachStatistics = nullptr);
  void AttachBuffer(uint8_t* pBuffer, SingleChunkDataStr_t* ChunkData, int64_t NumChunks,
                    AttachStatistics_t* pAttachStatistics = nullptr);
};

}  // namespace GENAPI_NAMESPACE

#endif
