/// Finds the chunks of a payload from the trailers at its end.
#ifndef ZYN_PRODUCER_CHUNK_TRAILERS_H
#define ZYN_PRODUCER_CHUNK_TRAILERS_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "producer/Frame.h"

namespace zyn::producer {

/// Walks backwards over records of "data, 32-bit ID, 32-bit length" that fill `size` bytes without a gap.
/// Returns them in memory order; the image, where there is one, is the first. Throws Error with
/// GC_ERR_PARSING_CHUNK_DATA when the lengths do not add up.
std::vector<Chunk> ParseChunkTrailers(ChunkTrailers format, const std::uint8_t* payload, std::size_t size);

}  // namespace zyn::producer

#endif
