#include "Chunks.h"

#include <algorithm>

namespace zyn::transport {

namespace {

constexpr std::size_t kTrailerBytes = 8;
constexpr std::size_t kMostChunks = 65536;

std::uint32_t Load32(const unsigned char* at, ByteOrder order) {
  const bool isBig = order == ByteOrder::kBig;
  std::uint32_t value = 0;
  for (unsigned i = 0; i < 4; ++i) value = (value << 8U) | at[isBig ? i : 3 - i];
  return value;
}

std::vector<ChunkRange> ParseOrdered(const unsigned char* data, std::size_t size, ByteOrder order) {
  std::vector<ChunkRange> chunks;
  std::size_t end = size;
  while (end > 0) {
    if (end < kTrailerBytes || chunks.size() == kMostChunks) return {};
    const std::size_t dataEnd = end - kTrailerBytes;
    const std::uint32_t id = Load32(data + dataEnd, order);
    const std::uint32_t length = Load32(data + dataEnd + 4, order);
    if (length > dataEnd) return {};
    chunks.push_back(ChunkRange{id, dataEnd - length, length});
    end = dataEnd - length;
  }
  std::reverse(chunks.begin(), chunks.end());
  return chunks;
}

}  // namespace

std::vector<ChunkRange> ParseChunkLayout(const unsigned char* data, std::size_t size,
                                         std::optional<ByteOrder> order) {
  if (order) return ParseOrdered(data, size, *order);
  std::vector<ChunkRange> chunks = ParseOrdered(data, size, ByteOrder::kBig);
  return chunks.empty() ? ParseOrdered(data, size, ByteOrder::kLittle) : chunks;
}

std::optional<std::vector<ChunkRange>> AskChunks(GenTL::PDSGetBufferChunkData ask, GenTL::DS_HANDLE stream,
                                                 GenTL::BUFFER_HANDLE buffer, std::size_t capacity) {
  if (!ask) return std::nullopt;
  std::vector<GenTL::SINGLE_CHUNK_DATA> reported(32);
  std::size_t count = reported.size();
  GenTL::GC_ERROR error = ask(stream, buffer, reported.data(), &count);
  if (error != GenTL::GC_ERR_SUCCESS || count > reported.size()) {
    count = 0;
    error = ask(stream, buffer, nullptr, &count);
    if (error != GenTL::GC_ERR_SUCCESS || count > kMostChunks) return std::nullopt;
    reported.resize(count);
    if (count > 0) error = ask(stream, buffer, reported.data(), &count);
    if (error != GenTL::GC_ERR_SUCCESS) return std::nullopt;
  }
  std::vector<ChunkRange> chunks;
  for (std::size_t i = 0; i < std::min(count, reported.size()); ++i) {
    const auto offset = static_cast<std::size_t>(reported[i].ChunkOffset);
    const std::size_t length = reported[i].ChunkLength;
    const bool isInside = reported[i].ChunkOffset >= 0 && offset <= capacity && length <= capacity - offset;
    if (isInside) chunks.push_back(ChunkRange{reported[i].ChunkID, offset, length});
  }
  std::stable_sort(chunks.begin(), chunks.end(),
                   [](const ChunkRange& a, const ChunkRange& b) { return a.offset < b.offset; });
  return chunks;
}

void RemoveImageChunk(std::vector<ChunkRange>& chunks, std::size_t imageOffset) {
  const auto image = std::find_if(chunks.begin(), chunks.end(), [&](const ChunkRange& chunk) {
    return chunk.offset <= imageOffset && imageOffset - chunk.offset < chunk.length;
  });
  if (image != chunks.end()) chunks.erase(image);
}

}  // namespace zyn::transport
