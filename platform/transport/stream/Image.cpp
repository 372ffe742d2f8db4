#include "Image.h"

#include <utility>

namespace zyn::transport {

Image::Image(std::shared_ptr<FrameMemory> memory, FrameLayout layout, std::weak_ptr<FrameHome> home,
             std::size_t slot)
    : memory_(std::move(memory)), layout_(std::move(layout)), home_(std::move(home)), slot_(slot) {
  chunks_.reserve(layout_.chunks.size());
  for (const ChunkRange& chunk : layout_.chunks) {
    chunks_.emplace_back(memory_->Data() + chunk.offset, chunk.length);
  }
}

void Image::Chunks(std::list<KELGENICAM::IChunk*>& chunks) {
  chunks.clear();
  for (Chunk& chunk : chunks_) chunks.push_back(&chunk);
}

void Image::Release() {
  if (const std::shared_ptr<FrameHome> home = home_.lock()) home->TakeBack(slot_);
  delete this;
}

}  // namespace zyn::transport
