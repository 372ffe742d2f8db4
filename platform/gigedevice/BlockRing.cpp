#include "gigedevice/BlockRing.h"

#include <algorithm>
#include <utility>

namespace zyn::gigedevice {

bool Block::HasPacket(std::uint32_t packetId) const {
  if (packetId == 0 || packetId == TrailerId()) return true;
  if (packetId > TrailerId()) return false;
  return std::min(packetId * DataBytes(), frame.intendedSize) <= frame.size;
}

std::unique_ptr<Block> BlockRing::TakeSpare() {
  const MutexLock lock(mutex_);
  if (blocks_.size() < kCapacity) return std::make_unique<Block>();
  std::unique_ptr<Block> oldest = std::move(blocks_.front());
  blocks_.pop_front();
  return oldest;
}

const Block& BlockRing::Keep(std::unique_ptr<Block> block) {
  const MutexLock lock(mutex_);
  blocks_.push_back(std::move(block));
  return *blocks_.back();
}

void BlockRing::Clear() {
  const MutexLock lock(mutex_);
  blocks_.clear();
}

}  // namespace zyn::gigedevice
