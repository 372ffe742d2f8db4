/// Finds the chunks inside a delivered buffer.
#ifndef ZYN_TRANSPORT_CHUNKS_H
#define ZYN_TRANSPORT_CHUNKS_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <GenTL/GenTL.h>

namespace zyn::transport {

/// One chunk: `length` bytes that begin `offset` bytes after the start of the buffer.
struct ChunkRange {
  std::uint64_t id = 0;
  std::size_t offset = 0;
  std::size_t length = 0;

  bool operator==(const ChunkRange& other) const {
    return id == other.id && offset == other.offset && length == other.length;
  }
};

enum class ByteOrder { kBig, kLittle };

/// The chunks of a buffer as the camera laid them out: each chunk's data, then its ID and its length, 32 bits
/// each; found by walking backwards from the end of the valid data. In memory order. Empty when the layout
/// does not end exactly at the start.
/// order  big for GigE Vision, little for USB3 Vision; without it both are tried
std::vector<ChunkRange> ParseChunkLayout(const unsigned char* data, std::size_t size,
                                         std::optional<ByteOrder> order);

/// The chunks as the producer reports them, in memory order; those that leave the `capacity` bytes of the
/// buffer are left out. Nothing when the producer cannot tell.
/// ask  the producer's function, null when it has none
std::optional<std::vector<ChunkRange>> AskChunks(GenTL::PDSGetBufferChunkData ask, GenTL::DS_HANDLE stream,
                                                 GenTL::BUFFER_HANDLE buffer, std::size_t capacity);

/// Takes out the chunk that is the image: the one that holds the byte at `imageOffset`.
void RemoveImageChunk(std::vector<ChunkRange>& chunks, std::size_t imageOffset);

}  // namespace zyn::transport

#endif
