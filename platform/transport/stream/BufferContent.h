/// Asks a producer for what a buffer holds beside its one image: parts and chunks.
#ifndef ZYN_TRANSPORT_BUFFER_CONTENT_H
#define ZYN_TRANSPORT_BUFFER_CONTENT_H

#include <optional>
#include <vector>

#include "../producer/ProducerLibrary.h"
#include "BufferFacts.h"
#include "Chunks.h"
#include "FrameLayout.h"

namespace zyn::transport {

/// What the parts of a multi-part buffer say about its image.
struct PartTable {
  bool isDamaged = false;          ///< cannot be read, or names a place outside the buffer
  std::optional<PartFacts> image;  ///< inside the buffer; nothing when no part is an image
};

/// The image is the first part that is one, a depth map, or a plane of either; a confidence map only where there
/// is nothing else. `base` and `capacity` describe the buffer.
PartTable ReadPartTable(const ProducerLibrary& producer, GenTL::DS_HANDLE stream, GenTL::BUFFER_HANDLE buffer,
                        const unsigned char* base, std::size_t capacity);

/// The chunks of a complete buffer, the image itself included where it is one: from the producer, or from the
/// layout in memory when the producer cannot tell. Empty when there are none.
std::vector<ChunkRange> FindChunks(const ProducerLibrary& producer, GenTL::DS_HANDLE stream,
                                   GenTL::BUFFER_HANDLE buffer, const BufferFacts& facts,
                                   const unsigned char* base, std::size_t capacity,
                                   std::optional<ByteOrder> order);

}  // namespace zyn::transport

#endif
