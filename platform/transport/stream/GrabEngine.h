/// The host side of one running acquisition: buffers, their thread, and the waiting Grab calls.
#ifndef ZYN_TRANSPORT_GRAB_ENGINE_H
#define ZYN_TRANSPORT_GRAB_ENGINE_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <list>
#include <memory>
#include <optional>
#include <vector>

#include <KELGeniCam.h>

#include "../camera/Notifier.h"
#include "../module/DeviceLink.h"
#include "../producer/Background.h"
#include "../producer/ProducerLibrary.h"
#include "BufferFacts.h"
#include "FrameIdChunk.h"
#include "FrameLayout.h"
#include "FramePool.h"
#include "Image.h"
#include "ThreadAnnotations.h"

namespace zyn::transport {

/// What an acquisition is started with.
struct GrabSetup {
  ProducerPtr producer;
  std::shared_ptr<void> stream;  ///< the data stream's handle
  std::shared_ptr<DeviceLink> link;
  std::shared_ptr<Notifier> notifier;
  std::shared_ptr<FramePool> pool;
  KELGENICAM::GRAB_STRATEGY strategy = KELGENICAM::GRAB_ONE_BY_ONE;
  int frameCount = -1;  ///< frames to deliver, -1 for no limit
  std::size_t payloadBytes = 0;
  std::size_t announceMin = 0;  ///< fewest buffers the producer accepts, 0 when it does not tell
  std::size_t alignment = 1;
  CameraSettings settings;
  std::optional<ByteOrder> chunkOrder;
  std::optional<FrameIdChunk> frameIdChunk;
  /// Memory that the producer refused to give back. It may still write there, so it lives as long as the data
  /// stream is open.
  std::shared_ptr<std::vector<std::shared_ptr<FrameMemory>>> stranded;
};

/// A thread of its own fetches filled buffers from the producer as they come, so that a slow application
/// never keeps the producer waiting, and applies the strategy. Where a buffer is at any time is written in its
/// slot; every change happens under the mutex, every call of the producer outside.
///
/// The buffers are our own memory. A producer that fills only what it allocated itself gets to do that; then each
/// fetched frame is copied, because that memory goes when its buffer is revoked, and a frame may stay in the
/// application's hands much longer. Its buffer is queued again when the application releases the frame, as always.
///
/// The strategy "upcoming image" works the other way round: nothing is fetched while nobody waits. When a call
/// comes, the buffers being filled at that moment are noted, and what is already filled is thrown away; the
/// first frame in any other buffer began after the call.
///
/// Thread-safe. Always owned by a shared_ptr.
class GrabEngine final : public FrameHome, public std::enable_shared_from_this<GrabEngine> {
 public:
  /// Announces the buffers and starts the host's acquisition; the camera is started after that. On failure
  /// nothing is left behind. Returns a RESULT.
  static int Start(GrabSetup setup, std::shared_ptr<GrabEngine>& engine);
  ~GrabEngine() override = default;

  /// See ICamera::Grab. Both arguments were checked.
  int Grab(KELGENICAM::IImage** image, int timeoutMs) ZYN_EXCLUDES(mutex_);

  /// Ends every waiting Grab, and those to come, with RESULT_ABORTED. Does not block.
  void Abort() ZYN_EXCLUDES(mutex_);

  /// Ends every waiting Grab, and those to come, with RESULT_DEVICE_LOST. Does not block.
  void MarkLost() ZYN_EXCLUDES(mutex_);

  /// Ends the host's acquisition and takes the buffers back from the producer. Frames that the application
  /// holds stay readable. Called once, after Abort or MarkLost. Blocks on the producer.
  /// kill  do not wait for a frame in progress
  void Stop(bool kill) ZYN_EXCLUDES(mutex_);

  void TakeBack(std::size_t slot) override ZYN_EXCLUDES(mutex_);

 private:
  using Clock = std::chrono::steady_clock;

  enum class Place {
    kProducer,     // queued, being filled, or filled and not fetched
    kEngine,       // fetched, on its way
    kReady,        // waits for a Grab
    kApplication,  // handed out
    kDead          // the producer refused to take it back
  };

  // Memory that the producer allocated. Null where the announced memory is ours.
  struct Theirs {
    const unsigned char* data = nullptr;
    std::size_t size = 0;
  };

  struct Slot {
    std::shared_ptr<FrameMemory> memory;  // what was announced; else the latest frame's copy, if there is one
    Theirs theirs;
    GenTL::BUFFER_HANDLE handle = nullptr;
    Place place = Place::kEngine;
    FrameLayout layout;
  };

  // A frame or a failure on its way to a Grab call.
  struct Delivery {
    std::optional<std::size_t> slot;
    int result = KELGENICAM::RESULT_OK;
  };

  // One Grab call waiting for the upcoming image.
  struct Waiter {
    bool isPrepared = false;
    std::vector<bool> excluded;  // by slot: was being filled when the call came
    std::optional<Delivery> delivery;
  };

  explicit GrabEngine(GrabSetup setup);

  int Prepare() ZYN_EXCLUDES(mutex_);
  int Announce() ZYN_REQUIRES(mutex_);
  int AnnounceOne() ZYN_REQUIRES(mutex_);
  int AnnounceOurs() ZYN_REQUIRES(mutex_);
  int AnnounceTheirs() ZYN_REQUIRES(mutex_);
  int QueueAll() ZYN_REQUIRES(mutex_);
  GenTL::GC_ERROR StartAcquisition();
  void StartThread();
  void JoinThread() ZYN_EXCLUDES(mutex_);
  void TakeBuffersBack() ZYN_EXCLUDES(mutex_);

  void Run();
  bool AwaitDemand() ZYN_EXCLUDES(mutex_);
  void PrepareWaiters() ZYN_EXCLUDES(mutex_);
  std::vector<bool> SlotsBeingFilled() ZYN_EXCLUDES(mutex_);
  std::optional<std::size_t> Fetch(std::uint64_t timeoutMs, GenTL::GC_ERROR& error);
  std::optional<std::size_t> SlotOf(const GenTL::EVENT_NEW_BUFFER_DATA& data) const ZYN_REQUIRES(mutex_);
  std::optional<std::size_t> Arrived(const GenTL::EVENT_NEW_BUFFER_DATA& data) ZYN_EXCLUDES(mutex_);
  void HandleFailure(GenTL::GC_ERROR error) ZYN_EXCLUDES(mutex_);
  std::shared_ptr<FrameMemory> Copy(std::size_t slot) ZYN_EXCLUDES(mutex_);
  FrameLayout Inspect(GenTL::BUFFER_HANDLE buffer, const unsigned char* announced, const FrameMemory& memory);
  void Deliver(std::size_t slot) ZYN_EXCLUDES(mutex_);
  bool GiveToWaiter(const Delivery& delivery) ZYN_REQUIRES(mutex_);
  void DeliverFailure(int result) ZYN_EXCLUDES(mutex_);
  bool IsTooMuchReady(bool isStarved) const ZYN_REQUIRES(mutex_);
  std::vector<std::size_t> TakeOutdated() ZYN_REQUIRES(mutex_);
  void Requeue(std::size_t slot) ZYN_EXCLUDES(mutex_);
  void ReportDrops() ZYN_EXCLUDES(mutex_);

  int EndReason() const ZYN_REQUIRES(mutex_);
  int TimeoutReason() const ZYN_REQUIRES(mutex_);
  void CountDelivery() ZYN_REQUIRES(mutex_);
  int AwaitReady(Clock::time_point deadline, Delivery& delivery) ZYN_EXCLUDES(mutex_);
  int AwaitUpcoming(Clock::time_point deadline, Delivery& delivery) ZYN_EXCLUDES(mutex_);
  int HandOut(const Delivery& delivery, KELGENICAM::IImage** image) ZYN_EXCLUDES(mutex_);
  std::optional<std::uint64_t> Underruns() const;

  const GrabSetup setup_;
  const ProducerLibrary& producer_;
  const bool isUpcoming_;
  GenTL::EVENT_HANDLE event_ = nullptr;  // constant after Start
  std::optional<Background> thread_;     // constant after Start
  std::size_t ringFrames_ = 0;           // constant after Start: frames kept ready; 0 for no limit
  std::uint64_t firstUnderruns_ = 0;     // constant after Start
  BufferReader reader_;                  // used by the engine's thread only
  std::uint64_t reportedDrops_ = 0;      // used by the engine's thread only

  Mutex mutex_;                     // after Start never held during a producer's call
  std::condition_variable ready_;   // for Grab calls
  std::condition_variable demand_;  // for the engine's thread
  std::condition_variable calm_;    // for Stop: a call of the producer returned, a copy is made
  // The vector is constant from Start to Stop; handle and announced memory of a slot as well.
  std::vector<Slot> slots_ ZYN_GUARDED_BY(mutex_);
  std::deque<Delivery> deliveries_ ZYN_GUARDED_BY(mutex_);
  std::list<Waiter*> waiters_ ZYN_GUARDED_BY(mutex_);
  long long remaining_ ZYN_GUARDED_BY(mutex_) = 0;  // frames still to hand out; below 0 for no limit
  int producerCalls_ ZYN_GUARDED_BY(mutex_) = 0;    // calls under way from the application's threads
  int copies_ ZYN_GUARDED_BY(mutex_) = 0;           // under way from memory that the producer allocated
  bool allocates_ ZYN_GUARDED_BY(mutex_) = false;   // the producer fills only memory of its own
  bool isAborted_ ZYN_GUARDED_BY(mutex_) = false;
  bool isLost_ ZYN_GUARDED_BY(mutex_) = false;
  bool isEnding_ ZYN_GUARDED_BY(mutex_) = false;
  bool isFetching_ ZYN_GUARDED_BY(mutex_) = false;  // the thread waits, or is about to wait, for the producer
};

}  // namespace zyn::transport

#endif
