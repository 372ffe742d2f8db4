/// Port nodes.
#ifndef ZYN_GENAPI_NODES_PORTNODE_H
#define ZYN_GENAPI_NODES_PORTNODE_H

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "nodes/Node.h"

namespace zyn::genapi {

/// Passes register access on to what is connected, and remembers bytes. Bytes are kept per address and
/// length, so that a register whose address a selector moves never sees another's; registers at the same
/// place share them.
class PortNode final : public Node,
                       public IPortConstruct,
                       public IPortStacked,
                       public IChunkPort,
                       public IPortRecorder {
 public:
  using Node::Node;

  /// Bytes of one place.
  struct Memory {
    bool valid = false;
    std::vector<std::uint8_t> bytes;
    /// The registers that used them.
    std::vector<NodeId> users;
  };

  EAccessMode GetAccessMode() const override { return Node::GetAccessMode(); }
  void Read(void* pBuffer, int64_t Address, int64_t Length) override;
  void Write(const void* pBuffer, int64_t Address, int64_t Length) override;
  /// One after the other when the connected port takes one write only.
  void Write(PORT_REGISTER_STACK_ENTRY* pEntries, size_t numEntries) override;
  void SetPortImpl(IPort* pPort) override;
  EYesNo GetSwapEndianess() override;
  gcstring GetChunkID() const override;
  EYesNo CacheChunkData() const override;
  void Replay(IPortWriteList* pPortRecorder, bool Invalidate) override;
  void StartRecording(IPortWriteList* pPortRecorder) override;
  void StopRecording() override;

  void Forget(bool device) override;

  /// Null disconnects. Forgets everything behind the port.
  void Connect(IPort* port);

  /// From now on writes are kept back, if the connected port takes several at once. A read sends them first.
  void BeginStack();
  /// Sends what was kept back. When that fails, nothing behind the port is believed any more.
  void FlushStack();
  void EndStack() { isStacking_ = false; }
  /// Ends it, and forgets what was kept back.
  void DropStack();

  /// The memory of that place; the reference holds until the next call.
  Memory& At(std::int64_t address, std::int64_t length);
  /// Changes when all memory was given up.
  unsigned MemoryGeneration() const { return generation_; }
  /// What is known of that place, if anything, is no longer valid. Allocates nothing.
  void ForgetPlace(std::int64_t address, std::int64_t length);

 private:
  struct Place {
    std::int64_t address;
    std::int64_t length;
    bool operator==(const Place&) const = default;
  };
  struct PlaceHash {
    std::size_t operator()(const Place& place) const {
      return static_cast<std::size_t>(place.address) * 0x9E3779B97F4A7C15ULL +
             static_cast<std::size_t>(place.length);
    }
  };

  struct PendingWrite {
    std::int64_t address;
    std::vector<std::uint8_t> bytes;
  };

  EAccessMode BaseAccess() override;
  IPort& Connected();
  void GiveUpMemory();

  IPort* connected_ = nullptr;
  IPortWriteList* recorder_ = nullptr;
  bool isStacking_ = false;
  std::vector<PendingWrite> pending_;
  std::unordered_map<Place, Memory, PlaceHash> memory_;
  unsigned generation_ = 0;
};

}  // namespace zyn::genapi

#endif
