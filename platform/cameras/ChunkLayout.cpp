#include "cameras/ChunkLayout.h"

#include <cassert>

#include "cameras/ChunkIds.h"
#include "cameras/registers/BigEndian.h"

namespace zyn::cameras {

void AppendChunk(Frame& frame, std::uint32_t id, std::size_t length) {
  assert(frame.chunkCount < Frame::kMostChunks);
  frame.chunks[frame.chunkCount++] = FrameChunk{id, frame.intendedSize, length};
  frame.intendedSize += length + kChunkTagBytes;
}

void NumberLayout(Frame& frame) {
  std::uint32_t hash = 2166136261U;  // FNV-1a over words
  for (std::size_t i = 0; i < frame.chunkCount; ++i) {
    hash = (hash ^ frame.chunks[i].id) * 16777619U;
    hash = (hash ^ static_cast<std::uint32_t>(frame.chunks[i].length)) * 16777619U;
  }
  frame.chunkLayoutId = frame.chunkCount == 0 ? 0 : hash | 1U;
}

void WriteTags(std::span<std::uint8_t> buffer, const Frame& frame) {
  for (std::size_t i = 0; i < frame.chunkCount; ++i) {
    const FrameChunk& chunk = frame.chunks[i];
    std::uint8_t* tag = buffer.data() + chunk.offset + chunk.length;
    StoreBig(tag, chunk.id, 4);
    StoreBig(tag + 4, chunk.length, 4);
  }
}

std::uint8_t* ChunkData(std::span<std::uint8_t> buffer, const Frame& frame, std::uint32_t id) {
  for (std::size_t i = 0; i < frame.chunkCount; ++i) {
    if (frame.chunks[i].id == id) return buffer.data() + frame.chunks[i].offset;
  }
  return nullptr;
}

}  // namespace zyn::cameras
