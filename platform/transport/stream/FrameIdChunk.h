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

/// The bits of a register that hold a value.
struct BitField {
  unsigned shift = 0;   ///< from the least significant bit of the register's number
  unsigned width = 64;  ///< at least 1; bits beyond the register are 0
  bool isSigned = false;
};

/// Where the feature "ChunkFrameID" lies, found out once per start from the camera's node map. The frames are
/// then decoded without the node map: its lock may be held by a slow register access.
///
/// Read are integer registers of 1 to 8 bytes, whole or masked, of either sign and byte order, behind any number of
/// plain integers. Not read is a value that a formula makes, because its other numbers may be the camera's own and
/// change from frame to frame, and a register that lies elsewhere for each value of a selector. The frames then
/// carry the stream's identifier.
class FrameIdChunk {
 public:
  /// Nothing when the camera has no such feature, or one that is not read.
  static std::optional<FrameIdChunk> Find(GenApi_3_4::INodeMap* camera);

  /// length  bytes of the register, 1 to 8
  FrameIdChunk(std::uint64_t chunkId, std::size_t address, std::size_t length, ByteOrder order,
               BitField field = {})
      : chunkId_(chunkId), address_(address), length_(length), order_(order), field_(field) {}

  /// The identifier in a buffer whose data begins at `data`. Nothing when the chunk is not there or too short.
  std::optional<std::int64_t> Read(const unsigned char* data, const std::vector<ChunkRange>& chunks) const;

 private:
  std::uint64_t chunkId_;
  std::size_t address_;
  std::size_t length_;
  ByteOrder order_;
  BitField field_;
};

}  // namespace zyn::transport

#endif
