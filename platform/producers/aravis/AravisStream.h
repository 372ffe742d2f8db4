/// Receives frames through libaravis.
#ifndef ZYN_ARAVIS_ARAVIS_STREAM_H
#define ZYN_ARAVIS_ARAVIS_STREAM_H

#include <arv.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "Disposer.h"
#include "FrameCounter.h"
#include "GlibPtr.h"
#include "ThreadAnnotations.h"
#include "producer/Backend.h"

namespace zyn::aravis {

class AravisStream;

/// What a stream needs of its device. Owned by the device, which outlives its streams.
struct DeviceLink {
  /// Sets isLost, and lets the open stream end by itself. Any thread; does not block.
  void MarkLost() ZYN_EXCLUDES(streamMutex);

  // Constant while streams are open.
  std::string name;  ///< for messages
  GlibPtr<ArvDevice> device;
  producer::ChunkTrailers chunkTrailers = producer::ChunkTrailers::bigEndian;
  bool hasPacketSocket = true;  ///< frames come over the network

  std::atomic<bool> isLost{false};
  /// libaravis' own feature engine bears one thread at a time.
  Mutex engineMutex;
  Mutex streamMutex;  // before that of the stream
  AravisStream* stream ZYN_GUARDED_BY(streamMutex) = nullptr;
};

/// One acquisition after another, each with an ArvStream of its own, so that no packet of an earlier one comes up in a
/// later one. Frames are handed over on libaravis' receiving thread, without a copy and without a further thread.
class AravisStream final : public producer::Stream {
 public:
  AravisStream(DeviceLink& link, Disposer& disposer, producer::StreamSink& sink);
  ~AravisStream() override;
  AravisStream(const AravisStream&) = delete;
  AravisStream& operator=(const AravisStream&) = delete;

  producer::StreamTraits Traits() const override;
  void Start() override;
  void Stop(bool kill) override;
  void OnBuffersQueued() override;
  void OnBufferRevoked(producer::StreamBuffer& buffer) override;

 private:
  // libaravis' view of one announced buffer. Kept from its first use until the buffer is revoked.
  struct Entry {
    GlibPtr<ArvBuffer> buffer;
    producer::StreamBuffer* owner = nullptr;
    bool isInside = false;  // queued in the ArvStream, or being filled
  };

  friend struct DeviceLink;
  void OnDeviceLost() ZYN_EXCLUDES(mutex_);

  static void OnEvent(void* self, ArvStreamCallbackType type, ArvBuffer* buffer);
  void OnFrameBegins();
  void OnFrameDone(ArvBuffer* buffer);
  void OnThreadEnd();
  void WatchStart() ZYN_EXCLUDES(mutex_);
  void WatchDevice() ZYN_EXCLUDES(mutex_);
  void RecoverSwallowed() ZYN_REQUIRES(mutex_);

  GlibPtr<ArvStream> CreateStream();
  std::size_t ReadPayloadSize();
  Entry& EntryOf(producer::StreamBuffer& buffer) ZYN_REQUIRES(mutex_);
  void WaitForFramesInProgress() ZYN_EXCLUDES(mutex_);
  void WaitForThreadEnd() ZYN_EXCLUDES(mutex_);
  void GiveBackRest() ZYN_EXCLUDES(mutex_);
  bool SawOverflow(ArvStream* source);

  // Constant after construction.
  DeviceLink& link_;
  Disposer& disposer_;
  producer::StreamSink& sink_;

  // Written by Start before the receiving thread has a buffer, afterwards used by that thread only.
  std::size_t payloadSize_ = 0;
  FrameCounter counter_;
  std::uint64_t overflows_ = 0;

  Mutex mutex_;  // the sink's and libaravis' queues may be used under it, nothing that waits
  std::condition_variable changed_;
  GlibPtr<ArvStream> stream_ ZYN_GUARDED_BY(mutex_);  // null when stopped
  // The same, borrowed: the receiving thread uses it until its end, which the end of the object waits for.
  ArvStream* source_ ZYN_GUARDED_BY(mutex_) = nullptr;
  std::vector<std::unique_ptr<Entry>> entries_ ZYN_GUARDED_BY(mutex_);
  std::deque<Entry*> waiting_
      ZYN_GUARDED_BY(mutex_);  // inside, not yet begun, in the order libaravis takes them
  std::uint64_t begun_ ZYN_GUARDED_BY(mutex_) = 0;
  std::uint64_t done_ ZYN_GUARDED_BY(mutex_) = 0;
  bool hasThreadEnded_ ZYN_GUARDED_BY(mutex_) = true;
  bool isAccepting_ ZYN_GUARDED_BY(mutex_) = false;
  // Buffers taken back from libaravis, kept until its thread has ended: it may yet name one of them.
  std::vector<GlibPtr<ArvBuffer>> retired_ ZYN_GUARDED_BY(mutex_);
  std::condition_variable stopped_;
  // Runs from Start to the first frame or the loss of the device, or to Stop; used by the caller of these only.
  std::thread watch_;
};

}  // namespace zyn::aravis

#endif
