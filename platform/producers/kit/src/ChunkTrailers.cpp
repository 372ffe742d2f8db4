#include "ChunkTrailers.h"

#include <algorithm>

#include "producer/Error.h"

namespace zyn::producer {
namespace {

constexpr std::size_t kTrailerBytes = 8;
constexpr std::size_t kLengthAt = 4;
constexpr std::size_t kMaximumChunks = 65536;  // a payload of zeros would be read as millions of empty chunks

std::uint32_t Load32(ChunkTrailers format, const std::uint8_t* at) {
  if (format == ChunkTrailers::bigEndian) {
    return static_cast<std::uint32_t>(at[0]) << 24 | static_cast<std::uint32_t>(at[1]) << 16 |
           static_cast<std::uint32_t>(at[2]) << 8 | at[3];
  }
  return static_cast<std::uint32_t>(at[3]) << 24 | static_cast<std::uint32_t>(at[2]) << 16 |
         static_cast<std::uint32_t>(at[1]) << 8 | at[0];
}

}  // namespace

std::vector<Chunk> ParseChunkTrailers(ChunkTrailers format, const std::uint8_t* payload, std::size_t size) {
  std::vector<Chunk> chunks;
  std::size_t end = size;
  while (end > 0) {
    if (end < kTrailerBytes) throw Error(GenTL::GC_ERR_PARSING_CHUNK_DATA, "A chunk trailer is cut off.");
    const std::uint8_t* const trailer = payload + end - kTrailerBytes;
    const std::size_t length = Load32(format, trailer + kLengthAt);
    if (length > end - kTrailerBytes)
      throw Error(GenTL::GC_ERR_PARSING_CHUNK_DATA, "A chunk is longer than the payload before it.");
    if (chunks.size() == kMaximumChunks)
      throw Error(GenTL::GC_ERR_PARSING_CHUNK_DATA, "The payload has too many chunks to be chunk data.");
    end -= kTrailerBytes + length;
    chunks.push_back({Load32(format, trailer), end, length});
  }
  std::reverse(chunks.begin(), chunks.end());
  return chunks;
}

}  // namespace zyn::producer
