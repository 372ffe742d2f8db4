#include "AravisStream.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "FrameTranslation.h"
#include "GlibError.h"

namespace zyn::aravis {
namespace {

using std::chrono::milliseconds;

// The frame in progress gets this long to complete when an acquisition is stopped gently.
constexpr milliseconds kLastFramePatience{1000};
// Telling the camera that its stream is over takes a millisecond; a camera that vanished just now is not waited for.
constexpr milliseconds kGoodbyePatience{500};
// What libaravis knows of a frame comes with its leader. Without one a buffer still describes the frame it held before;
// this number, which no camera sends, tells that there was none.
constexpr std::uint64_t kNoFrameId = ~std::uint64_t{0};
// How often a stream that has just started is looked after, and one that waits for its first trigger.
constexpr milliseconds kStartWatchPeriod{10};
constexpr milliseconds kIdleWatchPeriod{100};
constexpr int kStartWatchRounds = 200;

}  // namespace

void DeviceLink::MarkLost() {
  isLost = true;
  const MutexLock lock(streamMutex);
  if (stream != nullptr) stream->OnDeviceLost();
}

AravisStream::AravisStream(DeviceLink& link, Disposer& disposer, producer::StreamSink& sink)
    : link_(link), disposer_(disposer), sink_(sink) {
  const MutexLock lock(link_.streamMutex);
  link_.stream = this;
}

AravisStream::~AravisStream() {
  {
    const MutexLock lock(link_.streamMutex);
    link_.stream = nullptr;
  }
  Stop(true);
}

producer::StreamTraits AravisStream::Traits() const {
  producer::StreamTraits traits;
  traits.takesAhead = true;
  return traits;
}

void AravisStream::Start() {
  if (link_.isLost) throw producer::Error(GenTL::GC_ERR_IO, link_.name + " is lost.");
  payloadSize_ = ReadPayloadSize();
  counter_ = {};
  overflows_ = 0;
  {
    const MutexLock lock(mutex_);
    begun_ = 0;
    done_ = 0;
    hasThreadEnded_ = false;
  }
  GlibPtr<ArvStream> stream = CreateStream();
  {
    const MutexLock lock(mutex_);
    source_ = stream.get();
    stream_ = std::move(stream);
    isAccepting_ = true;
  }
  try {
    watch_ = std::thread([this] { link_.hasPacketSocket ? WatchStart() : WatchDevice(); });
  } catch (const std::system_error&) {
    Stop(true);
    throw producer::Error(GenTL::GC_ERR_RESOURCE_EXHAUSTED, "The system has no thread left.");
  }
  OnBuffersQueued();
}

GlibPtr<ArvStream> AravisStream::CreateStream() {
  const MutexLock engine(link_.engineMutex);
  GlibError error;
  GlibPtr<ArvStream> stream(
      arv_device_create_stream(link_.device.get(), &AravisStream::OnEvent, this, error.Out()));
  if (!stream) error.Throw("The stream of " + link_.name + " cannot be opened");
  if (!link_.hasPacketSocket) return stream;
  // Without these the system's small default buffer loses most of a fast stream, and lost packets stay lost.
  g_object_set(stream.get(), "socket-buffer", ARV_GV_STREAM_SOCKET_BUFFER_AUTO, "packet-resend",
               ARV_GV_STREAM_PACKET_RESEND_ALWAYS, nullptr);
  return stream;
}

// What libaravis does not tell about a frame, its whole size, can be compared with this.
std::size_t AravisStream::ReadPayloadSize() {
  const MutexLock engine(link_.engineMutex);
  GlibError error;
  const gint64 size = arv_device_get_integer_feature_value(link_.device.get(), "PayloadSize", error.Out());
  return error || size < 0 ? 0 : static_cast<std::size_t>(size);
}

void AravisStream::OnBuffersQueued() {
  const MutexLock lock(mutex_);
  while (isAccepting_) {
    producer::StreamBuffer* buffer = sink_.TakeQueued();
    if (buffer == nullptr) return;
    Entry& entry = EntryOf(*buffer);
    entry.isInside = true;
    waiting_.push_back(&entry);
    arv_buffer_set_frame_id(entry.buffer.get(), kNoFrameId);
    arv_stream_push_buffer(stream_.get(), Share(entry.buffer.get()).release());
  }
}

AravisStream::Entry& AravisStream::EntryOf(producer::StreamBuffer& buffer) {
  if (buffer.backendData != nullptr) return *static_cast<Entry*>(buffer.backendData);
  auto entry = std::make_unique<Entry>();
  entry->owner = &buffer;
  entry->buffer.reset(arv_buffer_new_full(buffer.Size(), buffer.Memory(), entry.get(), nullptr));
  entries_.push_back(std::move(entry));
  buffer.backendData = entries_.back().get();
  return *entries_.back();
}

void AravisStream::OnBufferRevoked(producer::StreamBuffer& buffer) {
  const MutexLock lock(mutex_);
  std::erase_if(entries_, [&](const auto& entry) { return entry->owner == &buffer; });
  buffer.backendData = nullptr;
}

void AravisStream::OnEvent(void* self, ArvStreamCallbackType type, ArvBuffer* buffer) {
  auto& stream = *static_cast<AravisStream*>(self);
  switch (type) {
    case ARV_STREAM_CALLBACK_TYPE_INIT:
      break;
    case ARV_STREAM_CALLBACK_TYPE_START_BUFFER:
      stream.OnFrameBegins();
      break;
    case ARV_STREAM_CALLBACK_TYPE_BUFFER_DONE:
      stream.OnFrameDone(buffer);
      break;
    case ARV_STREAM_CALLBACK_TYPE_EXIT:
      stream.OnThreadEnd();
      break;
  }
}

// GigE streams do not say here which buffer they begin to fill; it is the one that waits longest.
void AravisStream::OnFrameBegins() {
  producer::StreamBuffer* begun = nullptr;
  {
    const MutexLock lock(mutex_);
    if (++begun_ == 1) stopped_.notify_all();
    RecoverSwallowed();
    if (waiting_.empty()) return;
    begun = waiting_.front()->owner;
    waiting_.pop_front();
  }
  sink_.MarkStarted(*begun);
}

// Buffers reach libaravis with their entry as user data, so what comes back is one of ours.
void AravisStream::OnFrameDone(ArvBuffer* buffer) {
  if (buffer == nullptr) return;
  auto* entry = const_cast<Entry*>(static_cast<const Entry*>(arv_buffer_get_user_data(buffer)));
  ArvStream* source = nullptr;
  {
    const MutexLock lock(mutex_);
    if (std::any_of(retired_.begin(), retired_.end(), [&](const auto& old) { return old.get() == buffer; })) {
      return;
    }
    source = source_;
    ++done_;
    entry->isInside = false;
    changed_.notify_all();
  }
  // The queue of finished buffers holds a reference; the entry's keeps the object alive.
  const GlibPtr<ArvBuffer> finished(arv_stream_try_pop_buffer(source));
  producer::StreamBuffer& owner = *entry->owner;
  try {
    const std::uint64_t wireId = arv_buffer_get_frame_id(buffer);
    const bool hasLeader = wireId != kNoFrameId;
    const bool sawOverflow = SawOverflow(source);
    producer::FrameInfo info =
        hasLeader ? TranslateFrame(buffer, {owner.Size(), payloadSize_, sawOverflow, link_.chunkTrailers})
                  : DescribeUnknownFrame(payloadSize_);
    const FrameCounter::Step step = hasLeader ? counter_.Next(wireId) : counter_.NextUnnumbered();
    info.frameId = step.id;
    if (step.lost > 0) sink_.CountUnderruns(step.lost);
    sink_.Deliver(owner, std::move(info));
  } catch (...) {  // no memory to describe the frame
    sink_.GiveBack(owner);
  }
}

// Of network packets that did not fit libaravis only counts how many; USB frames that did not fit it marks itself.
bool AravisStream::SawOverflow(ArvStream* source) {
  if (!link_.hasPacketSocket) return false;
  const std::uint64_t overflows = arv_stream_get_info_uint64_by_name(source, "n_size_mismatch_errors");
  const bool isMore = overflows != overflows_;
  overflows_ = overflows;
  return isMore;
}

void AravisStream::OnThreadEnd() {
  const MutexLock lock(mutex_);
  hasThreadEnded_ = true;
  changed_.notify_all();
}

// libaravis opens its packet socket first and tells the system a little later which packets are meant for it. What any
// camera or application sends over the adapter in between is taken for the start of a frame: it costs a buffer each,
// which goes to the queue of finished buffers without a word. So that queue is looked through until the first frame, and
// once more whenever a frame begins.
void AravisStream::WatchStart() {
  MutexLock lock(mutex_);
  for (int round = 0; isAccepting_ && begun_ == 0; ++round) {
    const milliseconds period = round < kStartWatchRounds ? kStartWatchPeriod : kIdleWatchPeriod;
    lock.WaitUntil(stopped_, std::chrono::steady_clock::now() + period);
    if (isAccepting_) RecoverSwallowed();
  }
}

// The receiving thread of a USB camera that is gone asks for data again and again, as fast as the system can refuse.
void AravisStream::WatchDevice() {
  GlibPtr<ArvStream> stream;
  {
    MutexLock lock(mutex_);
    while (isAccepting_ && !link_.isLost) lock.Wait(stopped_);
    if (!isAccepting_) return;
    isAccepting_ = false;
    stream = std::move(stream_);
  }
  stream.reset();
}

void AravisStream::OnDeviceLost() {
  const MutexLock lock(mutex_);
  stopped_.notify_all();
}

// A buffer without a frame may also be one that was given up just now and is about to be handed over. Its memory goes
// on in a new object, so that the hand-over of the old one can be told from it and is ignored.
void AravisStream::RecoverSwallowed() {
  if (!stream_) return;
  while (GlibPtr<ArvBuffer> buffer{arv_stream_try_pop_buffer(stream_.get())}) {
    const auto isIt = [&](const auto& entry) { return entry->buffer.get() == buffer.get(); };
    const auto found = std::find_if(entries_.begin(), entries_.end(), isIt);
    if (found == entries_.end() || arv_buffer_get_frame_id(buffer.get()) != kNoFrameId) continue;
    Entry& entry = **found;
    if (!entry.isInside) continue;
    retired_.push_back(std::move(entry.buffer));
    producer::StreamBuffer& owner = *entry.owner;
    entry.buffer.reset(arv_buffer_new_full(owner.Size(), owner.Memory(), &entry, nullptr));
    arv_buffer_set_frame_id(entry.buffer.get(), kNoFrameId);
    std::erase(waiting_, &entry);
    waiting_.push_back(&entry);
    arv_stream_push_buffer(stream_.get(), Share(entry.buffer.get()).release());
  }
}

void AravisStream::Stop(bool kill) {
  bool isStarted = false;
  {
    const MutexLock lock(mutex_);
    isAccepting_ = false;
    stopped_.notify_all();
  }
  if (watch_.joinable()) watch_.join();
  {
    const MutexLock lock(mutex_);
    isStarted = stream_ != nullptr;
  }
  if (!isStarted) return GiveBackRest();  // there is a rest when the receiving ended with its device
  if (!kill && !link_.isLost) WaitForFramesInProgress();
  GlibPtr<ArvStream> stream;
  {
    const MutexLock lock(mutex_);
    stream = std::move(stream_);
  }
  // Giving up the stream ends its thread first, which hands over what it has begun, and tells the camera afterwards.
  // Only the former is waited for in any case.
  const Disposer::Ticket goodbye = disposer_.Dispose(std::move(stream));
  WaitForThreadEnd();
  GiveBackRest();
  if (!link_.isLost) goodbye.Wait(kGoodbyePatience);
}

void AravisStream::WaitForFramesInProgress() {
  const auto deadline = std::chrono::steady_clock::now() + kLastFramePatience;
  MutexLock lock(mutex_);
  const std::uint64_t begun = begun_;
  while (done_ < begun && lock.WaitUntil(changed_, deadline)) {
  }
}

void AravisStream::WaitForThreadEnd() {
  MutexLock lock(mutex_);
  while (!hasThreadEnded_) lock.Wait(changed_);
}

void AravisStream::GiveBackRest() {
  const MutexLock lock(mutex_);
  waiting_.clear();
  retired_.clear();
  for (const auto& entry : entries_) {
    if (std::exchange(entry->isInside, false)) sink_.GiveBack(*entry->owner);
  }
}

}  // namespace zyn::aravis
