#include "GrabEngine.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "../Result.h"
#include "../producer/GenTLInfo.h"
#include "BufferContent.h"

namespace zyn::transport {

namespace {

constexpr std::uint64_t kFetchMs = 200;         // finite: not every producer wakes waiters reliably
constexpr std::uint64_t kUpcomingFetchMs = 50;  // shorter, because a new call must be noticed in time
constexpr std::chrono::milliseconds kFailurePause{100};
constexpr std::chrono::seconds kThreadLimit{2};
constexpr std::chrono::milliseconds kKillInterval{100};

constexpr std::size_t kFewestBuffers = 5;
constexpr std::size_t kMostBuffers = 16;
constexpr std::size_t kBufferBudget = 256U << 20U;  // bytes; more buffers than the fewest only within it
// Small frames come often: profiles at 20,000 per second fill 16 buffers in 0.8 ms, which a busy computer may well keep
// the fetching thread from running. Where none may be dropped there are more of them, within these bytes.
constexpr std::size_t kSmallBudget = 1U << 20U;
constexpr std::size_t kMostSmallBuffers = 128;
constexpr std::size_t kRingFrames = 4;
constexpr std::size_t kRingReserve = 3;  // buffers kept out of the ring: filling, next, in the application

std::size_t BufferCount(const GrabSetup& setup) {
  const std::size_t bytes = std::max<std::size_t>(setup.payloadBytes, 1);
  const std::size_t taken = std::max({bytes, setup.alignment, FramePool::kLeastBytes});
  const bool wantsAll = setup.strategy == KELGENICAM::GRAB_ONE_BY_ONE;
  const std::size_t small = wantsAll ? std::min(kSmallBudget / taken, kMostSmallBuffers) : 0;
  const std::size_t wanted = std::clamp(kBufferBudget / bytes, kFewestBuffers, kMostBuffers);
  return std::max({wanted, small, setup.announceMin});
}

std::size_t RingFrames(KELGENICAM::GRAB_STRATEGY strategy, std::size_t buffers) {
  if (strategy == KELGENICAM::GRAB_LATEST_ONLY) return 1;
  if (strategy != KELGENICAM::GRAB_LATEST) return 0;
  return std::min(kRingFrames, std::max(buffers, kRingReserve + 1) - kRingReserve);
}

void* UserPointer(std::size_t slot) {
  return reinterpret_cast<void*>(static_cast<std::uintptr_t>(slot + 1));  // NOLINT(performance-no-int-to-ptr)
}

}  // namespace

GrabEngine::GrabEngine(GrabSetup setup)
    : setup_(std::move(setup)),
      producer_(*setup_.producer),
      isUpcoming_(setup_.strategy == KELGENICAM::GRAB_UPCOMING_IMAGE),
      reader_(producer_, setup_.stream.get()) {}

int GrabEngine::Start(GrabSetup setup, std::shared_ptr<GrabEngine>& engine) {
  std::shared_ptr<GrabEngine> started(new GrabEngine(std::move(setup)));
  if (const int result = started->Prepare(); result != KELGENICAM::RESULT_OK) {
    started->TakeBuffersBack();
    return result;
  }
  const GenTL::GC_ERROR registered = started->producer_.GCRegisterEvent(
      started->setup_.stream.get(), GenTL::EVENT_NEW_BUFFER, &started->event_);
  if (registered != GenTL::GC_ERR_SUCCESS || !started->event_) {
    started->TakeBuffersBack();
    return registered != GenTL::GC_ERR_SUCCESS ? ToResult(registered) : KELGENICAM::RESULT_ERROR;
  }
  started->StartThread();
  const GenTL::GC_ERROR error = started->StartAcquisition();
  if (error != GenTL::GC_ERR_SUCCESS) {
    started->setup_.link->ReportFailure(error);
    started->Abort();
    started->Stop(true);
    return ToResult(error);
  }
  engine = std::move(started);
  return KELGENICAM::RESULT_OK;
}

int GrabEngine::Prepare() {
  // Nobody else knows the engine yet; the lock is held for the annotations' sake.
  MutexLock lock(mutex_);
  remaining_ = setup_.frameCount;
  firstUnderruns_ = Underruns().value_or(0);
  if (const int result = Announce(); result != KELGENICAM::RESULT_OK) return result;
  ringFrames_ = RingFrames(setup_.strategy, slots_.size());
  return QueueAll();
}

int GrabEngine::Announce() {
  const std::size_t count = BufferCount(setup_);
  const std::size_t fewest = std::max<std::size_t>(setup_.announceMin, 3);
  const std::size_t usual = std::max(setup_.announceMin, kMostBuffers);
  slots_.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const int result = AnnounceOne();
    if (result == KELGENICAM::RESULT_OUT_OF_MEMORY && i >= fewest) break;  // fewer will do
    const bool isRefused = result != KELGENICAM::RESULT_OK && slots_.size() == i;
    if (isRefused && i >= usual) break;  // the producer may have a limit
    if (result != KELGENICAM::RESULT_OK) return result;
  }
  return KELGENICAM::RESULT_OK;
}

int GrabEngine::AnnounceOne() {
  if (!allocates_) {
    const int result = AnnounceOurs();
    if (result != KELGENICAM::RESULT_NOT_IMPLEMENTED || !slots_.empty()) return result;
    allocates_ = true;
  }
  return AnnounceTheirs();
}

int GrabEngine::AnnounceOurs() {
  if (!producer_.DSAnnounceBuffer) return KELGENICAM::RESULT_NOT_IMPLEMENTED;
  Slot slot;
  slot.memory = setup_.pool->Take(setup_.payloadBytes, setup_.alignment);
  if (!slot.memory) return KELGENICAM::RESULT_OUT_OF_MEMORY;
  const GenTL::GC_ERROR error =
      producer_.DSAnnounceBuffer(setup_.stream.get(), slot.memory->Data(), slot.memory->Size(),
                                 UserPointer(slots_.size()), &slot.handle);
  if (error != GenTL::GC_ERR_SUCCESS) return ToResult(error);
  if (!slot.handle) return KELGENICAM::RESULT_ERROR;
  slots_.push_back(std::move(slot));
  return KELGENICAM::RESULT_OK;
}

int GrabEngine::AnnounceTheirs() {
  if (!producer_.DSAllocAndAnnounceBuffer) return KELGENICAM::RESULT_NOT_IMPLEMENTED;
  Slot slot;
  const GenTL::GC_ERROR error = producer_.DSAllocAndAnnounceBuffer(setup_.stream.get(), setup_.payloadBytes,
                                                                   UserPointer(slots_.size()), &slot.handle);
  if (error != GenTL::GC_ERR_SUCCESS) return ToResult(error);
  if (!slot.handle) return KELGENICAM::RESULT_ERROR;
  const std::uint64_t base = reader_.Ask(slot.handle, GenTL::BUFFER_INFO_BASE).value_or(0);
  const std::uint64_t size = reader_.Ask(slot.handle, GenTL::BUFFER_INFO_SIZE).value_or(setup_.payloadBytes);
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the producer told it as a number
  slot.theirs.data = reinterpret_cast<const unsigned char*>(static_cast<std::uintptr_t>(base));
  slot.theirs.size = static_cast<std::size_t>(std::min<std::uint64_t>(size, setup_.payloadBytes));
  const bool isReadable = base != 0 && base != ~std::uint64_t{0} && slot.theirs.size > 0;
  slots_.push_back(std::move(slot));  // also what cannot be read has to be revoked
  return isReadable ? KELGENICAM::RESULT_OK : KELGENICAM::RESULT_INVALID_BUFFER;
}

int GrabEngine::QueueAll() {
  for (Slot& slot : slots_) {
    slot.place = Place::kProducer;
    const GenTL::GC_ERROR error = producer_.DSQueueBuffer(setup_.stream.get(), slot.handle);
    if (error != GenTL::GC_ERR_SUCCESS) return ToResult(error);
  }
  return KELGENICAM::RESULT_OK;
}

GenTL::GC_ERROR GrabEngine::StartAcquisition() {
  const bool isCounted = setup_.frameCount > 0 && setup_.strategy == KELGENICAM::GRAB_ONE_BY_ONE;
  if (isCounted) {
    const GenTL::GC_ERROR error = producer_.DSStartAcquisition(
        setup_.stream.get(), GenTL::ACQ_START_FLAGS_DEFAULT, static_cast<std::uint64_t>(setup_.frameCount));
    if (error != GenTL::GC_ERR_INVALID_PARAMETER) return error;
  }
  return producer_.DSStartAcquisition(setup_.stream.get(), GenTL::ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE);
}

void GrabEngine::StartThread() {
  thread_ = Background::Run([self = shared_from_this()] { self->Run(); });
}

void GrabEngine::JoinThread() {
  const auto deadline = Clock::now() + kThreadLimit;
  MutexLock lock(mutex_);
  demand_.notify_all();
  lock.Unlock();
  // The kill is repeated: one that comes while the thread is busy elsewhere may be consumed there.
  do {
    if (producer_.EventKill) producer_.EventKill(event_);
  } while (!thread_->WaitUntil(Clock::now() + kKillInterval) && Clock::now() < deadline);
  lock.Lock();
  while (producerCalls_ > 0 && lock.WaitUntil(calm_, deadline)) {
  }
}

void GrabEngine::Stop(bool kill) {
  MutexLock lock(mutex_);
  isEnding_ = true;
  ready_.notify_all();
  lock.Unlock();
  // "In use" means that it has stopped already, which is as good.
  producer_.DSStopAcquisition(setup_.stream.get(),
                              kill ? GenTL::ACQ_STOP_FLAGS_KILL : GenTL::ACQ_STOP_FLAGS_DEFAULT);
  JoinThread();
  producer_.GCUnregisterEvent(setup_.stream.get(), GenTL::EVENT_NEW_BUFFER);
  TakeBuffersBack();
}

void GrabEngine::TakeBuffersBack() {
  MutexLock lock(mutex_);
  // A copy ends by itself, unlike a call of the producer, and it reads what is about to be revoked.
  while (copies_ > 0) lock.Wait(calm_);
  std::vector<Slot> slots;
  slots.swap(slots_);
  deliveries_.clear();
  lock.Unlock();
  producer_.DSFlushQueue(setup_.stream.get(), GenTL::ACQ_QUEUE_ALL_DISCARD);
  for (Slot& slot : slots) {
    const GenTL::GC_ERROR error =
        producer_.DSRevokeBuffer(setup_.stream.get(), slot.handle, nullptr, nullptr);
    // Some producers revoke while they flush; the handle is unknown then and the memory free.
    const bool isFree = error == GenTL::GC_ERR_SUCCESS || error == GenTL::GC_ERR_INVALID_HANDLE;
    if (!isFree && !slot.theirs.data) setup_.stranded->push_back(std::move(slot.memory));
  }
}

void GrabEngine::Abort() {
  MutexLock lock(mutex_);
  isAborted_ = true;
  ready_.notify_all();
}

void GrabEngine::MarkLost() {
  MutexLock lock(mutex_);
  isLost_ = true;
  ready_.notify_all();
  demand_.notify_all();
}

// ---- the engine's thread --------------------------------------------------------------------------------

void GrabEngine::Run() {
  while (AwaitDemand()) {
    if (isUpcoming_) PrepareWaiters();
    GenTL::GC_ERROR error = GenTL::GC_ERR_SUCCESS;
    const auto slot = Fetch(isUpcoming_ ? kUpcomingFetchMs : kFetchMs, error);
    if (slot) {
      Deliver(*slot);
    } else if (error == GenTL::GC_ERR_TIMEOUT) {
      setup_.link->Poll();
    } else if (error != GenTL::GC_ERR_SUCCESS && error != GenTL::GC_ERR_ABORT) {
      HandleFailure(error);
    }
    ReportDrops();
  }
}

// Waits for a reason to fetch: always there, but for the upcoming image. False at the end.
bool GrabEngine::AwaitDemand() {
  MutexLock lock(mutex_);
  isFetching_ = false;
  while (!isEnding_ && !isLost_ && isUpcoming_ && waiters_.empty()) lock.Wait(demand_);
  isFetching_ = true;
  return !isEnding_ && !isLost_;
}

std::vector<bool> GrabEngine::SlotsBeingFilled() {
  MutexLock lock(mutex_);
  std::vector<GenTL::BUFFER_HANDLE> handles;
  for (const Slot& slot : slots_) {
    handles.push_back(slot.place == Place::kProducer ? slot.handle : nullptr);
  }
  lock.Unlock();
  std::vector<bool> filled(handles.size());
  for (std::size_t i = 0; i < handles.size(); ++i) {
    filled[i] = handles[i] && reader_.Ask(handles[i], GenTL::BUFFER_INFO_IS_ACQUIRING).value_or(0) != 0;
  }
  return filled;
}

void GrabEngine::PrepareWaiters() {
  MutexLock lock(mutex_);
  std::vector<Waiter*> fresh;
  for (Waiter* waiter : waiters_) {
    if (!waiter->isPrepared) fresh.push_back(waiter);
  }
  lock.Unlock();
  if (fresh.empty()) return;
  std::vector<bool> filled = SlotsBeingFilled();
  // What is filled already, and what was just noted and is filled by now, is older than the fresh calls.
  GenTL::GC_ERROR error = GenTL::GC_ERR_SUCCESS;
  for (std::size_t i = 0; i < 2 * filled.size() && error != GenTL::GC_ERR_TIMEOUT; ++i) {
    const auto slot = Fetch(0, error);
    if (!slot) continue;
    filled[*slot] = false;
    Deliver(*slot);
  }
  lock.Lock();
  for (Waiter* waiter : waiters_) {
    const bool isFresh = std::find(fresh.begin(), fresh.end(), waiter) != fresh.end();
    if (!isFresh || waiter->isPrepared) continue;
    waiter->isPrepared = true;
    waiter->excluded = filled;
  }
}

std::optional<std::size_t> GrabEngine::SlotOf(const GenTL::EVENT_NEW_BUFFER_DATA& data) const {
  const GenTL::BUFFER_HANDLE handle = data.BufferHandle;
  const auto guess = reinterpret_cast<std::uintptr_t>(data.pUserPointer) - 1;
  if (guess < slots_.size() && slots_[guess].handle == handle) return guess;
  for (std::size_t i = 0; i < slots_.size(); ++i) {  // producers that lose the user pointer
    if (slots_[i].handle == handle) return i;
  }
  return std::nullopt;
}

std::optional<std::size_t> GrabEngine::Fetch(std::uint64_t timeoutMs, GenTL::GC_ERROR& error) {
  GenTL::EVENT_NEW_BUFFER_DATA data{};
  std::size_t size = sizeof(data);
  error = producer_.EventGetData(event_, &data, &size, timeoutMs);
  if (error != GenTL::GC_ERR_SUCCESS) return std::nullopt;
  return Arrived(data);
}

std::optional<std::size_t> GrabEngine::Arrived(const GenTL::EVENT_NEW_BUFFER_DATA& data) {
  MutexLock lock(mutex_);
  const auto slot = SlotOf(data);
  if (!slot) return std::nullopt;
  Place& place = slots_[*slot].place;
  // A buffer that the producer does not have cannot arrive: delivered twice, it would be two frames in one memory.
  if (place != Place::kProducer && place != Place::kDead) return std::nullopt;
  place = Place::kEngine;
  return slot;
}

void GrabEngine::HandleFailure(GenTL::GC_ERROR error) {
  setup_.link->ReportFailure(error);
  if (setup_.link->IsLost()) return;
  DeliverFailure(ToResult(error));
  MutexLock lock(mutex_);
  const auto deadline = Clock::now() + kFailurePause;
  while (!isEnding_ && !isLost_ && lock.WaitUntil(demand_, deadline)) {
  }
}

// Copies a frame out of memory that the producer allocated. Null when there is no memory for it, and at the end.
std::shared_ptr<FrameMemory> GrabEngine::Copy(std::size_t slot) {
  MutexLock lock(mutex_);
  if (isEnding_ || slot >= slots_.size()) return nullptr;
  const Theirs theirs = slots_[slot].theirs;
  std::shared_ptr<FrameMemory> memory = slots_[slot].memory;
  lock.Unlock();
  if (!memory) memory = setup_.pool->Take(theirs.size, 1);
  if (!memory) return nullptr;
  lock.Lock();
  if (isEnding_) return nullptr;
  ++copies_;
  lock.Unlock();
  std::memcpy(memory->Data(), theirs.data, theirs.size);
  lock.Lock();
  slots_[slot].memory = memory;
  --copies_;
  calm_.notify_all();
  return memory;
}

FrameLayout GrabEngine::Inspect(GenTL::BUFFER_HANDLE buffer, const unsigned char* announced,
                                const FrameMemory& memory) {
  const BufferFacts facts = reader_.Read(buffer);
  FrameLayout layout = LayOutFrame(facts, setup_.settings, memory.Size());
  if (layout.result != KELGENICAM::RESULT_OK) return layout;
  const std::uint64_t payload = facts.GetOr(GenTL::BUFFER_INFO_PAYLOADTYPE, GenTL::PAYLOAD_TYPE_IMAGE);
  if (payload == GenTL::PAYLOAD_TYPE_MULTI_PART) {
    const PartTable table = ReadPartTable(producer_, setup_.stream.get(), buffer, announced, memory.Size());
    if (table.isDamaged) layout.isValid = false;
    if (table.image) PlacePart(layout, *table.image);
  }
  if (!layout.isValid) return layout;  // the chunks of an incomplete frame may be garbage
  layout.chunks = FindChunks(producer_, setup_.stream.get(), buffer, facts, memory.Data(), memory.Size(),
                             setup_.chunkOrder);
  if (setup_.frameIdChunk) {
    layout.frameId = setup_.frameIdChunk->Read(memory.Data(), layout.chunks).value_or(layout.frameId);
  }
  if (layout.hasImage) RemoveImageChunk(layout.chunks, layout.imageOffset);
  return layout;
}

void GrabEngine::Deliver(std::size_t slot) {
  MutexLock lock(mutex_);
  if (isEnding_ || slot >= slots_.size()) return;
  const GenTL::BUFFER_HANDLE handle = slots_[slot].handle;
  const unsigned char* const theirs = slots_[slot].theirs.data;
  std::shared_ptr<FrameMemory> memory = slots_[slot].memory;
  lock.Unlock();
  if (theirs) memory = Copy(slot);
  FrameLayout layout;
  layout.result = KELGENICAM::RESULT_OUT_OF_MEMORY;
  if (memory) layout = Inspect(handle, theirs ? theirs : memory->Data(), *memory);
  lock.Lock();
  if (isEnding_ || slot >= slots_.size()) return;
  const Delivery delivery{slot, layout.result};
  slots_[slot].layout = std::move(layout);
  slots_[slot].place = Place::kReady;
  std::vector<std::size_t> outdated;
  if (!isUpcoming_) {
    deliveries_.push_back(delivery);
    outdated = TakeOutdated();
    ready_.notify_one();
  } else if (!GiveToWaiter(delivery)) {
    outdated.push_back(slot);
  }
  lock.Unlock();
  for (const std::size_t old : outdated) Requeue(old);
}

bool GrabEngine::GiveToWaiter(const Delivery& delivery) {
  bool isGiven = false;
  for (Waiter* waiter : waiters_) {
    if (!waiter->isPrepared || waiter->delivery) continue;
    const bool isOlder = delivery.slot && waiter->excluded[*delivery.slot];
    if (isOlder) {
      waiter->excluded[*delivery.slot] = false;  // the next frame in that buffer begins after the call
    } else if (!isGiven) {
      waiter->delivery = delivery;
      isGiven = true;
    }
  }
  ready_.notify_all();
  return isGiven;
}

void GrabEngine::DeliverFailure(int result) {
  MutexLock lock(mutex_);
  const Delivery failure{std::nullopt, result};
  if (isUpcoming_) {
    GiveToWaiter(failure);
    return;
  }
  // One failure says as much as many.
  const bool isKnown = !deliveries_.empty() && !deliveries_.back().slot;
  if (!isKnown) deliveries_.push_back(failure);
  ready_.notify_one();
}

bool GrabEngine::IsTooMuchReady(bool isStarved) const {
  if (ringFrames_ == 0) return remaining_ >= 0 && static_cast<long long>(deliveries_.size()) > remaining_;
  return deliveries_.size() > 1 && (deliveries_.size() > ringFrames_ || isStarved);
}

std::vector<std::size_t> GrabEngine::TakeOutdated() {
  const auto hasBuffer = [](const Slot& slot) { return slot.place == Place::kProducer; };
  bool isStarved = std::none_of(slots_.begin(), slots_.end(), hasBuffer);
  std::vector<std::size_t> outdated;
  while (IsTooMuchReady(isStarved)) {
    // The ring wants its newest frames, a counted grab its first.
    const bool dropsOldest = ringFrames_ > 0;
    const Delivery dropped = dropsOldest ? deliveries_.front() : deliveries_.back();
    if (dropsOldest) {
      deliveries_.pop_front();
    } else {
      deliveries_.pop_back();
    }
    if (dropped.slot) outdated.push_back(*dropped.slot);
    isStarved = isStarved && outdated.empty();
  }
  return outdated;
}

std::optional<std::uint64_t> GrabEngine::Underruns() const {
  return GetInteger([&](auto* type, void* buffer, std::size_t* size) {
    return producer_.DSGetInfo(setup_.stream.get(), GenTL::STREAM_INFO_NUM_UNDERRUN, type, buffer, size);
  });
}

void GrabEngine::ReportDrops() {
  // For the upcoming image frames are left out on purpose all the time.
  if (isUpcoming_ ||
      !setup_.notifier->IsWanted(KELGENICAM::NOTIFY_SRC_DATA_STREAM, KELGENICAM::NOTIFY_FRAME_DROPPED)) {
    return;
  }
  const std::uint64_t drops = Underruns().value_or(firstUnderruns_) - firstUnderruns_;
  if (drops <= reportedDrops_) return;
  reportedDrops_ = drops;
  setup_.notifier->Send(KELGENICAM::NOTIFY_SRC_DATA_STREAM, KELGENICAM::NOTIFY_FRAME_DROPPED, &drops,
                        sizeof(drops));
}

// ---- the application's threads --------------------------------------------------------------------------

void GrabEngine::Requeue(std::size_t slot) {
  MutexLock lock(mutex_);
  if (isEnding_ || slot >= slots_.size()) return;
  slots_[slot].place = Place::kProducer;
  const GenTL::BUFFER_HANDLE handle = slots_[slot].handle;
  ++producerCalls_;
  lock.Unlock();
  const GenTL::GC_ERROR error = producer_.DSQueueBuffer(setup_.stream.get(), handle);
  lock.Lock();
  --producerCalls_;
  if (error != GenTL::GC_ERR_SUCCESS && slot < slots_.size()) slots_[slot].place = Place::kDead;
  calm_.notify_all();
}

void GrabEngine::TakeBack(std::size_t slot) {
  Requeue(slot);
}

int GrabEngine::EndReason() const {
  if (isLost_) return KELGENICAM::RESULT_DEVICE_LOST;
  if (isAborted_) return KELGENICAM::RESULT_ABORTED;
  if (remaining_ == 0) return KELGENICAM::RESULT_FINISHED;
  return KELGENICAM::RESULT_OK;
}

int GrabEngine::TimeoutReason() const {
  const auto isKept = [](const Slot& slot) {
    return slot.place == Place::kApplication || slot.place == Place::kDead;
  };
  const bool allKept = std::all_of(slots_.begin(), slots_.end(), isKept);
  return allKept ? KELGENICAM::RESULT_NO_FREE_BUFFER : KELGENICAM::RESULT_TIMEOUT;
}

void GrabEngine::CountDelivery() {
  if (remaining_ > 0 && --remaining_ == 0) ready_.notify_all();
}

int GrabEngine::AwaitReady(Clock::time_point deadline, Delivery& delivery) {
  MutexLock lock(mutex_);
  bool isOver = false;
  for (;;) {
    if (const int reason = EndReason(); reason != KELGENICAM::RESULT_OK) return reason;
    if (!deliveries_.empty()) break;
    if (isOver) return TimeoutReason();
    isOver = !lock.WaitUntil(ready_, deadline);
  }
  delivery = deliveries_.front();
  deliveries_.pop_front();
  if (delivery.slot) slots_[*delivery.slot].place = Place::kApplication;
  CountDelivery();
  return KELGENICAM::RESULT_OK;
}

int GrabEngine::AwaitUpcoming(Clock::time_point deadline, Delivery& delivery) {
  Waiter waiter;
  MutexLock lock(mutex_);
  if (const int reason = EndReason(); reason != KELGENICAM::RESULT_OK) return reason;
  waiters_.push_back(&waiter);
  demand_.notify_all();
  // Counted like every call of the application's threads: Stop waits for it before the event goes.
  if (isFetching_ && !isEnding_ && producer_.EventKill) {
    ++producerCalls_;
    lock.Unlock();
    producer_.EventKill(event_);
    lock.Lock();
    --producerCalls_;
    calm_.notify_all();
  }
  int reason = EndReason();
  for (bool isOver = false; !waiter.delivery && reason == KELGENICAM::RESULT_OK && !isOver;) {
    isOver = !lock.WaitUntil(ready_, deadline);
    reason = EndReason();
  }
  waiters_.remove(&waiter);
  if (!waiter.delivery) return reason != KELGENICAM::RESULT_OK ? reason : TimeoutReason();
  delivery = *waiter.delivery;
  if (delivery.slot && *delivery.slot < slots_.size()) slots_[*delivery.slot].place = Place::kApplication;
  if (reason == KELGENICAM::RESULT_OK) {
    CountDelivery();
    return reason;
  }
  lock.Unlock();
  if (delivery.slot) Requeue(*delivery.slot);
  return reason;
}

int GrabEngine::HandOut(const Delivery& delivery, KELGENICAM::IImage** image) {
  if (!delivery.slot) return delivery.result;
  if (delivery.result != KELGENICAM::RESULT_OK) {
    Requeue(*delivery.slot);
    return delivery.result;
  }
  MutexLock lock(mutex_);
  // Stop may have come in between; the frame went with it.
  if (*delivery.slot >= slots_.size())
    return isLost_ ? KELGENICAM::RESULT_DEVICE_LOST : KELGENICAM::RESULT_ABORTED;
  Slot& slot = slots_[*delivery.slot];
  *image = new Image(slot.memory, std::move(slot.layout), weak_from_this(), *delivery.slot);
  return KELGENICAM::RESULT_OK;
}

int GrabEngine::Grab(KELGENICAM::IImage** image, int timeoutMs) {
  const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
  Delivery delivery;
  const int result = isUpcoming_ ? AwaitUpcoming(deadline, delivery) : AwaitReady(deadline, delivery);
  return result == KELGENICAM::RESULT_OK ? HandOut(delivery, image) : result;
}

}  // namespace zyn::transport
