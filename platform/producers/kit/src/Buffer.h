/// One announced buffer.
#ifndef ZYN_PRODUCER_BUFFER_H
#define ZYN_PRODUCER_BUFFER_H

#include <memory>
#include <new>

#include "Handles.h"
#include "producer/Frame.h"

namespace zyn::producer {

class BufferQueues;

/// Memory that the kit allocated for DSAllocAndAnnounceBuffer.
class OwnedMemory {
 public:
  OwnedMemory() = default;
  /// Throws std::bad_alloc.
  OwnedMemory(std::size_t size, std::size_t alignment)
      : alignment_(static_cast<std::align_val_t>(alignment)), memory_(::operator new(size, alignment_)) {}
  ~OwnedMemory() {
    if (memory_ != nullptr) ::operator delete(memory_, alignment_);
  }
  OwnedMemory(const OwnedMemory&) = delete;
  OwnedMemory& operator=(const OwnedMemory&) = delete;

  std::uint8_t* Get() const { return static_cast<std::uint8_t*>(memory_); }

 private:
  std::align_val_t alignment_{1};
  void* memory_ = nullptr;
};

/// Belongs to one BufferQueues, whose lock guards everything that changes. Also the target of the buffer
/// handle.
class Buffer : public HandleTarget, public StreamBuffer {
 public:
  enum class Place {
    unqueued,  // the consumer's
    input,     // waits for data
    taken,     // in the backend's hands
    output     // waits for the consumer
  };
  /// Where a taken buffer goes when it comes back.
  enum class Return { asUsual, toInput, toUnqueued };

  /// Announces memory of the consumer.
  Buffer(const BufferQueues* queues, std::uint8_t* memory, std::size_t size, void* user)
      : StreamBuffer(memory, size, user), owner(queues) {}
  /// Announces memory of our own.
  Buffer(const BufferQueues* queues, std::unique_ptr<OwnedMemory> own, std::size_t size, void* user)
      : StreamBuffer(own->Get(), size, user), owner(queues), ownMemory(std::move(own)) {}

  const BufferQueues* const owner;
  const std::unique_ptr<OwnedMemory> ownMemory;

  Place place = Place::unqueued;
  Return comesBack = Return::asUsual;
  bool started = false;  // the fill has begun
  bool newData = false;
  FrameInfo info = Empty();

  static FrameInfo Empty() {
    FrameInfo none;
    none.payloadType = GenTL::PAYLOAD_TYPE_UNKNOWN;
    none.imagePresent = false;
    return none;
  }
};

}  // namespace zyn::producer

#endif
