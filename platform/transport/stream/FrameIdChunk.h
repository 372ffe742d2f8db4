/// Reads the frame identifier that a camera sends as chunk data.
#ifndef ZYN_TRANSPORT_FRAME_ID_CHUNK_H
#define ZYN_TRANSPORT_FRAME_ID_CHUNK_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "Chunks.h"

namespace GenApi_3_4 {
struct INodeMap;
}

namespace zyn::transport {

/// Where the feature "ChunkFrameID" lies, found out once per start from the camera's node map. The frames are
/// then decoded without the node map: its lock may be held by a slow register access.
class FrameIdChunk {
 public:
  /// Nothing when the camera has no such feature, or computes it from more than one register.
  /// portOrder  the byte order of the camera's registers, where the feature does not tell its own
  static std::optional<FrameIdChunk> Find(GenApi_3_4::INodeMap* camera, ByteOrder portOrder);

  FrameIdChunk(std::uint64_t chunkId, std::size_t address, std::size_t length, ByteOrder order)
      : chunkId_(chunkId), address_(address), length_(length), order_(order) {}

  /// The identifier in a buffer whose data begins at `data`. Nothing when the chunk is not there or too short.
  std::optional<std::int64_t> Read(const unsigned char* data, const std::vector<ChunkRange>& chunks) const;

 private:
  std::uint64_t chunkId_;
  std::size_t address_;
  std::size_t length_;
  ByteOrder order_;
};

}  // namespace zyn::transport

#endif
