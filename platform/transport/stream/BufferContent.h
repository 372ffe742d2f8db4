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

/// The first part of a multi-part buffer that is an image, a depth map or a plane of one. `base` and
/// `capacity` describe the buffer. Nothing when there is none.
std::optional<PartFacts> FindImagePart(const ProducerLibrary& producer, GenTL::DS_HANDLE stream,
                                       GenTL::BUFFER_HANDLE buffer, const unsigned char* base,
                                       std::size_t capacity);

/// The chunks of a complete buffer, the image itself included where it is one: from the producer, or from the
/// layout in memory when the producer cannot tell. Empty when there are none.
std::vector<ChunkRange> FindChunks(const ProducerLibrary& producer, GenTL::DS_HANDLE stream,
                                   GenTL::BUFFER_HANDLE buffer, const BufferFacts& facts,
                                   const unsigned char* base, std::size_t capacity,
                                   std::optional<ByteOrder> order);

}  // namespace zyn::transport

#endif
