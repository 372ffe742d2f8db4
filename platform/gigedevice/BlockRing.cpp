#include "gigedevice/BlockRing.h"

#include <algorithm>
#include <utility>

namespace zyn::gigedevice {

bool Block::HasPacket(std::uint32_t packetId) const {
  if (packetId == 0 || packetId == TrailerId()) return true;
  if (packetId > TrailerId()) return false;
  return std::min(packetId * DataBytes(), frame.intendedSize) <= frame.size;
}

bool BlockRing::IsFull() const {
  if (blocks_.size() < kLeastBlocks) return false;
  // One more of the present size must fit.
  return blocks_.size() >= kMostBlocks || bytes_ + blocks_.back()->data.size() > kMostBytes;
}

std::unique_ptr<Block> BlockRing::TakeSpare() {
  const MutexLock lock(mutex_);
  if (!IsFull()) return std::make_unique<Block>();
  std::unique_ptr<Block> spare;
  while (IsFull()) {  // blocks that grew may take the place of several
    spare = std::move(blocks_.front());
    blocks_.pop_front();
    bytes_ -= spare->data.size();
  }
  return spare;
}

const Block& BlockRing::Keep(std::unique_ptr<Block> block) {
  const MutexLock lock(mutex_);
  bytes_ += block->data.size();
  blocks_.push_back(std::move(block));
  return *blocks_.back();
}

void BlockRing::Clear() {
  const MutexLock lock(mutex_);
  blocks_.clear();
  bytes_ = 0;
}

}  // namespace zyn::gigedevice
