/// Buffers announced to the stream, and the new-buffer event, for one check.
#ifndef ZYN_PRODUCER_CHECK_BUFFER_SET_H
#define ZYN_PRODUCER_CHECK_BUFFER_SET_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Bench.h"
#include "InfoTables.h"

namespace zyn::producercheck {

/// Registered for the life of the object.
class Event {
 public:
  Event(Bench& bench, GenTL::EVENTSRC_HANDLE module, GenTL::EVENT_TYPE type);
  ~Event();
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;

  GenTL::EVENT_HANDLE Handle() const { return handle_; }
  /// EventGetData for a new-buffer event.
  GenTL::GC_ERROR Fetch(GenTL::EVENT_NEW_BUFFER_DATA& data, std::uint64_t timeoutMs) const;
  GenTL::GC_ERROR Fetch(std::uint64_t timeoutMs) const;
  /// EVENT_NUM_IN_QUEUE.
  std::uint64_t Queued() const;
  /// Ends the registration now.
  GenTL::GC_ERROR Unregister();
  /// The module was closed, or the registration ended elsewhere.
  void Forget() { isRegistered_ = false; }

 private:
  Bench& bench_;
  GenTL::EVENTSRC_HANDLE module_;
  GenTL::EVENT_TYPE type_;
  GenTL::EVENT_HANDLE handle_ = nullptr;
  bool isRegistered_ = false;
};

/// Takes the buffers back in the end, as far as the producer lets it.
class BufferSet {
 public:
  /// Announces `count` buffers of `bytes` each, or as many as the stream needs when that is more. Their user
  /// pointers are UserOf(index).
  /// own  false: the producer allocates the memory
  BufferSet(Bench& bench, std::size_t count, std::size_t bytes, bool own = true);
  ~BufferSet();
  BufferSet(const BufferSet&) = delete;
  BufferSet& operator=(const BufferSet&) = delete;

  std::size_t Count() const { return handles_.size(); }
  GenTL::BUFFER_HANDLE operator[](std::size_t index) const { return handles_[index]; }
  unsigned char* Memory(std::size_t index) const { return memory_[index].get(); }
  std::size_t Bytes() const { return bytes_; }
  static void* UserOf(std::size_t index);
  /// The index of a handle; nothing for a handle that is none of these.
  std::optional<std::size_t> IndexOf(GenTL::BUFFER_HANDLE handle) const;
  /// The revoke was done, or the stream closed.
  void Forget() { handles_.clear(); }

  GenTL::GC_ERROR Queue(std::size_t index) const;
  void QueueAll() const;  ///< throws CheckFailed
  GenTL::GC_ERROR Revoke(std::size_t index, void** memory = nullptr, void** user = nullptr) const;
  bool IsTrue(std::size_t index, GenTL::BUFFER_INFO_CMD command) const;
  InfoFunction Info(std::size_t index) const;

 private:
  struct FreeMemory {
    void operator()(unsigned char* memory) const;
  };
  using Memory_ = std::unique_ptr<unsigned char, FreeMemory>;

  Bench& bench_;
  const GenTL::DS_HANDLE stream_;
  const std::size_t bytes_;
  std::vector<Memory_> memory_;
  std::vector<GenTL::BUFFER_HANDLE> handles_;
};

/// A number of DSGetInfo; nothing when the producer does not tell it.
std::optional<std::uint64_t> StreamNumber(Bench& bench, GenTL::STREAM_INFO_CMD command);

/// Fails when the producer tells another number. Producers need not tell it.
void ExpectStreamNumber(Bench& bench, GenTL::STREAM_INFO_CMD command, std::uint64_t number,
                        const std::string& what);

/// The fewest buffers that the stream starts with; 1 when it does not tell.
std::size_t FewestBuffers(Bench& bench);

/// The alignment that announced memory needs.
std::size_t Alignment(Bench& bench);

}  // namespace zyn::producercheck

#endif
