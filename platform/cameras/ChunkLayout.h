/// Lays out the chunks of a frame, and writes their tags.
#ifndef ZYN_CAMERAS_CHUNK_LAYOUT_H
#define ZYN_CAMERAS_CHUNK_LAYOUT_H

#include <cstddef>
#include <cstdint>
#include <span>

#include "cameras/Frame.h"

namespace zyn::cameras {

/// Appends a chunk of `length` bytes and its tag to the frame's layout. `frame.intendedSize` grows with it.
void AppendChunk(Frame& frame, std::uint32_t id, std::size_t length);

/// Derives the layout's number from the IDs and lengths of the chunks: never 0.
void NumberLayout(Frame& frame);

/// Writes the tags of all chunks. The buffer holds the whole frame.
void WriteTags(std::span<std::uint8_t> buffer, const Frame& frame);

/// The place of a chunk's data. Null when the frame has no such chunk.
std::uint8_t* ChunkData(std::span<std::uint8_t> buffer, const Frame& frame, std::uint32_t id);

}  // namespace zyn::cameras

#endif
