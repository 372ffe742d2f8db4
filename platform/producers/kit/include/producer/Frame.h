/// Buffers on their way through a backend, and what a backend tells about a filled one.
#ifndef ZYN_PRODUCER_FRAME_H
#define ZYN_PRODUCER_FRAME_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "GenTL/GenTL.h"

namespace zyn::producer {

/// A buffer in the hands of a backend: between StreamSink::TakeQueued or TakeForFrame and StreamSink::Deliver
/// or GiveBack. Owned by the kit. The first three members do not change in that time.
class StreamBuffer {
 public:
  std::uint8_t* Memory() const { return memory_; }
  std::size_t Size() const { return size_; }  ///< capacity, bytes
  void* UserPointer() const { return user_; }

  /// Free for the backend, for instance for its own buffer object. Null when the buffer was announced, and
  /// kept until it is revoked; see Stream::OnBufferRevoked.
  void* backendData = nullptr;

 protected:
  StreamBuffer(std::uint8_t* memory, std::size_t size, void* user)
      : memory_(memory), size_(size), user_(user) {}
  ~StreamBuffer() = default;

 private:
  std::uint8_t* const memory_;
  const std::size_t size_;
  void* const user_;
};

/// How chunk trailers are written at the end of the valid data: each chunk is its bytes, then its ID, then
/// its length, 32 bits each.
enum class ChunkTrailers { none, bigEndian, littleEndian };

/// One chunk, when the backend knows the layout itself.
struct Chunk {
  std::uint64_t id = 0;
  std::size_t offset = 0;  ///< bytes from the start of the buffer
  std::size_t length = 0;  ///< bytes
};

/// One part of a multi-part payload. An empty optional means "does not apply, or unknown".
struct Part {
  std::size_t offset = 0;  ///< bytes from the start of the buffer
  std::size_t size = 0;    ///< valid bytes
  GenTL::PARTDATATYPE_ID dataType = GenTL::PART_DATATYPE_2D_IMAGE;
  std::uint64_t dataFormat = 0;  ///< PFNC 32-bit code
  std::optional<std::size_t> width, height, deliveredHeight, xOffset, yOffset;
  std::optional<std::size_t> xPadding;  ///< pixels
  std::optional<std::uint64_t> sourceId, regionId, purposeId;
};

/// What is known about one filled buffer. An empty optional makes the consumer take the value from the
/// camera.
struct FrameInfo {
  std::uint64_t frameId = 0;
  std::optional<std::uint64_t> timestamp;    ///< device ticks
  std::optional<std::uint64_t> timestampNs;  ///< empty: computed from the ticks where the frequency is known
  GenTL::PAYLOADTYPE_INFO_ID payloadType = GenTL::PAYLOAD_TYPE_IMAGE;  ///< not the code on the wire

  std::size_t sizeFilled = 0;     ///< bytes written; at most the buffer's size
  std::size_t dataSize = 0;       ///< bytes the camera meant to send, lost ones included; 0: as sizeFilled
  bool incomplete = false;        ///< anything is missing or damaged
  bool largerThanBuffer = false;  ///< the payload did not fit; the kit then sets incomplete as well, and
                                  ///< raises EVENT_ERROR with GC_ERR_BUFFER_TOO_SMALL on the stream

  bool imagePresent = true;     ///< one plain image lies in the buffer
  std::size_t imageOffset = 0;  ///< bytes from the start of the buffer
  std::optional<std::uint64_t> pixelFormat;
  GenTL::PIXELFORMAT_NAMESPACE_ID pixelFormatNamespace = GenTL::PIXELFORMAT_NAMESPACE_PFNC_32BIT;
  GenTL::PIXELENDIANNESS_ID pixelEndianness = GenTL::PIXELENDIANNESS_LITTLE;
  std::optional<std::size_t> width;            ///< pixels
  std::optional<std::size_t> height;           ///< lines expected
  std::optional<std::size_t> deliveredHeight;  ///< lines received; empty: as height
  std::optional<std::size_t> xOffset, yOffset;
  std::size_t xPadding = 0;  ///< bytes after each line
  std::size_t yPadding = 0;  ///< bytes after the image

  /// Set one of the two when the payload carries chunks. Trailers are parsed when a consumer asks, never for
  /// an incomplete frame; the walk starts at the end of the `sizeFilled` bytes.
  ChunkTrailers chunkTrailers = ChunkTrailers::none;
  std::vector<Chunk> chunks;
  std::size_t chunkPayloadSize = 0;  ///< bytes of chunk data, trailers included; 0: as sizeFilled
  std::uint64_t chunkLayoutId = 0;   ///< changes with the layout; 0 when the camera has none

  std::vector<Part> parts;  ///< for PAYLOAD_TYPE_MULTI_PART; may be empty then too
  std::string fileName;     ///< for PAYLOAD_TYPE_FILE
};

}  // namespace zyn::producer

#endif
