/// The buffers of one data stream and the places they move through: announced, waiting for data, being
/// filled, waiting for the consumer.
#ifndef ZYN_PRODUCER_BUFFER_QUEUES_H
#define ZYN_PRODUCER_BUFFER_QUEUES_H

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Answer.h"
#include "Buffer.h"
#include "ThreadAnnotations.h"
#include "producer/Backend.h"

namespace zyn::producer {

/// What happens to frames when the consumer is slow; numbers of the feature StreamBufferHandlingMode.
enum class HandlingMode : std::int64_t {
  oldestFirst = 1,           // every frame in order; lost when no buffer waits
  oldestFirstOverwrite = 2,  // as above, but the oldest unfetched frame makes room
  newestOnly = 3             // only the newest frame can be fetched
};

/// Any thread. Its lock is a leaf, and is never held while something outside is called.
class BufferQueues final : public StreamSink {
 public:
  struct Settings {
    std::string tlType;
    std::uint64_t timestampFrequency = 0;                              ///< 0 when unknown
    std::function<void()> onOutput;                                    ///< a buffer reached the output queue
    std::function<void(GenTL::GC_ERROR, const std::string&)> onError;  ///< raises EVENT_ERROR
  };
  struct Counts {
    std::uint64_t delivered = 0, underruns = 0, started = 0;
    std::size_t announced = 0, queued = 0, awaiting = 0;
    bool acquiring = false;
  };

  explicit BufferQueues(Settings settings) : settings_(std::move(settings)) {}

  /// Set once, before the stream is used.
  void SetTraits(const StreamTraits& traits) { traits_ = traits; }

  // ---- announcing ----
  std::shared_ptr<Buffer> Announce(void* memory, std::size_t size, void* user) ZYN_EXCLUDES(mutex_);
  std::shared_ptr<Buffer> Allocate(std::size_t size, void* user) ZYN_EXCLUDES(mutex_);
  /// Takes the buffer out of the list. Throws Error with GC_ERR_BUSY unless it is unqueued.
  void Revoke(Buffer& buffer) ZYN_EXCLUDES(mutex_);
  /// Takes out all. The stream is stopped.
  std::vector<std::shared_ptr<Buffer>> RevokeAll() ZYN_EXCLUDES(mutex_);
  std::shared_ptr<Buffer> At(std::size_t index) const ZYN_EXCLUDES(mutex_);

  // ---- moving ----
  /// Both return whether the backend should be told that buffers wait.
  bool Queue(Buffer& buffer) ZYN_EXCLUDES(mutex_);
  bool Flush(GenTL::ACQ_QUEUE_TYPE operation) ZYN_EXCLUDES(mutex_);
  /// Output buffers become unqueued.
  void DiscardOutput() ZYN_EXCLUDES(mutex_);
  /// Gives the next delivered buffer to the consumer. Returns false when there is none.
  bool Fetch(GenTL::EVENT_NEW_BUFFER_DATA& entry) ZYN_EXCLUDES(mutex_);

  // ---- acquiring ----
  /// Throws Error: GC_ERR_INVALID_BUFFER when fewer than `minimum` are announced, GC_ERR_RESOURCE_IN_USE.
  void BeginAcquisition(std::uint64_t frames) ZYN_EXCLUDES(mutex_);
  /// From here on the backend gets no more buffers. Throws Error with GC_ERR_RESOURCE_IN_USE when it is not
  /// running.
  void EndAcquisition() ZYN_EXCLUDES(mutex_);
  /// True from BeginAcquisition to EndAcquisition.
  bool Started() const ZYN_EXCLUDES(mutex_);

  // ---- asking ----
  Counts Count() const ZYN_EXCLUDES(mutex_);
  HandlingMode Mode() const ZYN_EXCLUDES(mutex_);
  void SetMode(HandlingMode mode) ZYN_EXCLUDES(mutex_);
  void Info(const Buffer& buffer, GenTL::BUFFER_INFO_CMD command, const Answer& answer) const
      ZYN_EXCLUDES(mutex_);
  std::size_t Parts(const Buffer& buffer) const ZYN_EXCLUDES(mutex_);
  void PartInfo(const Buffer& buffer, std::size_t index, GenTL::BUFFER_PART_INFO_CMD command,
                const Answer& answer) const ZYN_EXCLUDES(mutex_);
  void SegmentInfo(const Buffer& buffer, GenTL::SEGMENT_INFO_CMD command, const Answer& answer) const
      ZYN_EXCLUDES(mutex_);
  std::vector<Chunk> Chunks(const Buffer& buffer) const ZYN_EXCLUDES(mutex_);

  // ---- StreamSink ----
  StreamBuffer* TakeQueued() override ZYN_EXCLUDES(mutex_);
  StreamBuffer* TakeForFrame() override ZYN_EXCLUDES(mutex_);
  void MarkStarted(StreamBuffer& buffer) override ZYN_EXCLUDES(mutex_);
  void Deliver(StreamBuffer& buffer, FrameInfo&& info) override ZYN_EXCLUDES(mutex_);
  void GiveBack(StreamBuffer& buffer) override ZYN_EXCLUDES(mutex_);
  void CountUnderruns(std::uint64_t frames) override ZYN_EXCLUDES(mutex_);
  void ReportError(GenTL::GC_ERROR code, const std::string& text) override;

 private:
  void CheckNewMemory(const void* memory, std::size_t size) const ZYN_REQUIRES(mutex_);
  std::shared_ptr<Buffer> Add(std::shared_ptr<Buffer> buffer) ZYN_REQUIRES(mutex_);
  bool WantsMore() const ZYN_REQUIRES(mutex_);
  Buffer* TakeInput() ZYN_REQUIRES(mutex_);
  void ToInput(Buffer& buffer) ZYN_REQUIRES(mutex_);
  void ToUnqueued(Buffer& buffer) ZYN_REQUIRES(mutex_);
  void Start(Buffer& buffer) ZYN_REQUIRES(mutex_);
  bool ToOutput(Buffer& buffer, FrameInfo&& info) ZYN_REQUIRES(mutex_);
  void MakeRoom() ZYN_REQUIRES(mutex_);
  void EmptyOutput(Buffer::Place place) ZYN_REQUIRES(mutex_);
  void EmptyInput() ZYN_REQUIRES(mutex_);
  void RedirectTaken(Buffer::Return where) ZYN_REQUIRES(mutex_);
  std::size_t InputToOutput() ZYN_REQUIRES(mutex_);
  void UnqueuedToInput() ZYN_REQUIRES(mutex_);
  void ImageInfo(const Buffer& buffer, GenTL::BUFFER_INFO_CMD command, const Answer& answer) const
      ZYN_REQUIRES(mutex_);
  void FrameFacts(const Buffer& buffer, GenTL::BUFFER_INFO_CMD command, const Answer& answer) const
      ZYN_REQUIRES(mutex_);
  const std::vector<Part>& PartsOf(const Buffer& buffer) const ZYN_REQUIRES(mutex_);

  const Settings settings_;
  StreamTraits traits_;

  mutable Mutex mutex_;
  std::vector<std::shared_ptr<Buffer>> announced_ ZYN_GUARDED_BY(mutex_);
  std::deque<Buffer*> input_ ZYN_GUARDED_BY(mutex_);
  std::deque<Buffer*> output_ ZYN_GUARDED_BY(mutex_);
  std::size_t taken_ ZYN_GUARDED_BY(mutex_) = 0;
  HandlingMode mode_ ZYN_GUARDED_BY(mutex_) = HandlingMode::oldestFirst;
  bool started_ ZYN_GUARDED_BY(mutex_) = false;
  std::uint64_t wanted_ ZYN_GUARDED_BY(mutex_) = 0;     // frames asked for; GENTL_INFINITE: no limit
  std::uint64_t delivered_ ZYN_GUARDED_BY(mutex_) = 0;  // since the start
  std::uint64_t underruns_ ZYN_GUARDED_BY(mutex_) = 0;  // since the stream opened
  std::uint64_t fills_ ZYN_GUARDED_BY(mutex_) = 0;      // since the stream opened
};

}  // namespace zyn::producer

#endif
