// Chunk data as a camera sends it. What is found must cover the data without a gap, and lie inside it;
// everything else must be refused. The first byte chooses a byte order and a length, the second an address,
// for reading an identifier.
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <vector>

#include "stream/Chunks.h"
#include "stream/FrameIdChunk.h"

namespace {

using namespace zyn::transport;

constexpr std::size_t kTrailerBytes = 8;

void Require(bool isTrue) {
  if (!isTrue) std::abort();
}

std::uint64_t Number(const unsigned char* from, std::size_t length, ByteOrder order) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < length; ++i) {
    const std::size_t significance = order == ByteOrder::kBig ? length - 1 - i : i;
    value |= std::uint64_t{from[i]} << (8 * significance);
  }
  return value;
}

void CheckCover(const std::vector<ChunkRange>& chunks, const std::vector<unsigned char>& data,
                ByteOrder order) {
  std::size_t end = 0;
  for (const ChunkRange& chunk : chunks) {
    Require(chunk.offset == end);
    Require(chunk.length <= data.size() - end && data.size() - end - chunk.length >= kTrailerBytes);
    const unsigned char* trailer = data.data() + end + chunk.length;
    Require(Number(trailer, 4, order) == chunk.id && Number(trailer + 4, 4, order) == chunk.length);
    end += chunk.length + kTrailerBytes;
  }
  Require(chunks.empty() || end == data.size());
}

// Data that ends with the trailer of one chunk over all of it, or of an empty chunk behind such a one, has
// a layout.
bool IsOneChunk(const std::vector<unsigned char>& data, ByteOrder order) {
  return data.size() >= kTrailerBytes &&
         Number(data.data() + data.size() - 4, 4, order) == data.size() - kTrailerBytes;
}

void CheckIdentifier(const std::vector<ChunkRange>& chunks, const std::vector<unsigned char>& data,
                     std::size_t address, std::size_t length, ByteOrder order) {
  for (const ChunkRange& wanted : chunks) {
    const ChunkRange* first = &wanted;
    for (const ChunkRange& chunk : chunks) {
      if (chunk.id != wanted.id) continue;
      first = &chunk;
      break;
    }
    const auto found = FrameIdChunk(wanted.id, address, length, order).Read(data.data(), chunks);
    const bool isInside = address + length <= first->length;
    Require(found.has_value() == isInside);
    if (!found) continue;
    Require(static_cast<std::uint64_t>(*found) ==
            Number(data.data() + first->offset + address, length, order));
  }
}

void CheckRemoval(const std::vector<ChunkRange>& chunks, std::size_t imageOffset) {
  std::vector<ChunkRange> rest = chunks;
  RemoveImageChunk(rest, imageOffset);
  std::size_t kept = 0;
  for (const ChunkRange& chunk : chunks) {
    const bool isImage = chunk.offset <= imageOffset && imageOffset < chunk.offset + chunk.length;
    if (isImage) continue;
    Require(kept < rest.size() && rest[kept] == chunk);
    ++kept;
  }
  Require(kept == rest.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
  if (size < 2) return 0;
  const std::size_t length = 1 + input[0] % 8;
  const ByteOrder idOrder = (input[0] & 8U) != 0 ? ByteOrder::kBig : ByteOrder::kLittle;
  const std::size_t address = input[1];
  const std::vector<unsigned char> data(input + 2, input + size);
  std::vector<ChunkRange> either;
  for (const ByteOrder order : {ByteOrder::kLittle, ByteOrder::kBig}) {
    const std::vector<ChunkRange> chunks = ParseChunkLayout(data.data(), data.size(), order);
    CheckCover(chunks, data, order);
    Require(!chunks.empty() || !IsOneChunk(data, order));
    CheckIdentifier(chunks, data, address, length, idOrder);
    for (std::size_t offset = 0; offset <= data.size(); offset += 1 + data.size() / 16)
      CheckRemoval(chunks, offset);
    if (!chunks.empty()) either = chunks;  // big endian comes second, and goes first where both fit
  }
  Require(ParseChunkLayout(data.data(), data.size(), std::nullopt) == either);
  return 0;
}
