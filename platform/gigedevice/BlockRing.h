/// The last blocks that were sent, so that lost packets of them can be sent again.
#ifndef ZYN_GIGEDEVICE_BLOCK_RING_H
#define ZYN_GIGEDEVICE_BLOCK_RING_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

#include "ThreadAnnotations.h"
#include "cameras/Frame.h"
#include "gigedevice/GvspWire.h"
#include "gigedevice/StreamTarget.h"

namespace zyn::gigedevice {

/// One frame on the wire. Packet 0 is the leader, 1 to `payloadPackets` the data, the next one the trailer.
struct Block {
  cameras::Frame frame;
  std::vector<std::uint8_t> data;
  StreamTarget target;
  std::uint64_t id = 0;  ///< as on the wire
  std::uint32_t payloadPackets = 0;

  std::uint32_t TrailerId() const { return payloadPackets + 1; }
  std::size_t DataBytes() const { return DataBytesPerPacket(target.packetSize, target.hasExtendedIds); }
  /// Of a frame that was damaged in the camera, the end is missing for good.
  bool HasPacket(std::uint32_t packetId) const;
};

/// Thread-safe. Keeps kLeastBlocks blocks, and as many more as fit into kMostBytes: receivers ask several times within
/// a tenth of a second, in which a fast camera sends many small blocks. The memory of the oldest is used again.
class BlockRing {
 public:
  static constexpr std::size_t kLeastBlocks = 4;
  static constexpr std::size_t kMostBlocks = 256;
  static constexpr std::size_t kMostBytes = std::size_t{16} << 20U;

  /// A block to fill: the oldest one, which is forgotten thereby, or a new one.
  std::unique_ptr<Block> TakeSpare() ZYN_EXCLUDES(mutex_);

  /// Keeps a filled block. The result stays valid and unchanged until kLeastBlocks more blocks were asked for: who
  /// fills blocks may read it.
  const Block& Keep(std::unique_ptr<Block> block) ZYN_EXCLUDES(mutex_);

  /// Calls `use` with the block of this number. It cannot be forgotten meanwhile. False when it is not there.
  template <class Use>
  bool With(std::uint64_t id, bool hasExtendedIds, Use use) ZYN_EXCLUDES(mutex_) {
    const MutexLock lock(mutex_);
    for (auto block = blocks_.rbegin(); block != blocks_.rend(); ++block) {
      if ((*block)->id != id || (*block)->target.hasExtendedIds != hasExtendedIds) continue;
      use(static_cast<const Block&>(**block));
      return true;
    }
    return false;
  }

  void Clear() ZYN_EXCLUDES(mutex_);

 private:
  bool IsFull() const ZYN_REQUIRES(mutex_);

  Mutex mutex_;
  std::deque<std::unique_ptr<Block>> blocks_ ZYN_GUARDED_BY(mutex_);  // the newest is the last
  std::size_t bytes_ ZYN_GUARDED_BY(mutex_) = 0;                      // of their memory
};

}  // namespace zyn::gigedevice

#endif
