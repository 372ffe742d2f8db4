#include "Stream.h"

#include <bit>
#include <chrono>
#include <utility>

#include "../Result.h"
#include "../module/Features.h"
#include "../producer/Background.h"
#include "../producer/GenTLInfo.h"
#include "PixelFormat.h"

namespace zyn::transport {

namespace {

using Clock = std::chrono::steady_clock;

// A frame that is being filled may have to come to its end.
constexpr std::chrono::seconds kStopLimit{5};

std::optional<std::string> FirstStreamId(const ProducerLibrary& producer, GenTL::DEV_HANDLE device) {
  std::uint32_t count = 0;
  if (producer.DevGetNumDataStreams(device, &count) != GenTL::GC_ERR_SUCCESS || count == 0)
    return std::nullopt;
  return GetString([&](auto*, void* buffer, std::size_t* size) {
    return producer.DevGetDataStreamID(device, 0, static_cast<char*>(buffer), size);
  });
}

void SetLocked(GenApi_3_4::INodeMap* remote, bool isLocked) {
  WriteInteger(remote, "TLParamsLocked", isLocked ? 1 : 0);
}

std::optional<ByteOrder> ChunkOrder(unsigned int protocol) {
  if (protocol == KELGENICAM::PROTOCOL_GIGE_VISION) return ByteOrder::kBig;
  if (protocol == KELGENICAM::PROTOCOL_USB3_VISION) return ByteOrder::kLittle;
  return std::nullopt;
}

std::uint64_t ReadSetting(GenApi_3_4::INodeMap* remote, const char* name) {
  const auto value = ReadInteger(remote, name);
  return value && *value > 0 ? static_cast<std::uint64_t>(*value) : 0;
}

CameraSettings ReadSettings(GenApi_3_4::INodeMap* remote) {
  return {ReadSetting(remote, "Width"), ReadSetting(remote, "Height"), ReadSetting(remote, "PixelFormat")};
}

int StartResult(FeatureResult result) {
  switch (result) {
    case FeatureResult::kOk:
    case FeatureResult::kAbsent:
      return KELGENICAM::RESULT_OK;  // a camera that always sends has no command
    case FeatureResult::kRefused:
      return KELGENICAM::RESULT_NOT_AVAILABLE;
    case FeatureResult::kFailed:
      break;
  }
  return KELGENICAM::RESULT_IO;
}

}  // namespace

std::unique_ptr<Stream> Stream::Open(Context context, int& result) {
  result = KELGENICAM::RESULT_NO_STREAM;
  const ProducerLibrary& producer = *context.producer;
  if (!producer.CanStream()) return nullptr;
  const auto id = FirstStreamId(producer, context.device.get());
  if (!id) return nullptr;
  GenTL::DS_HANDLE raw = nullptr;
  const GenTL::GC_ERROR error = producer.DevOpenDataStream(context.device.get(), id->c_str(), &raw);
  if (error == GenTL::GC_ERR_SUCCESS && !raw) {
    result = KELGENICAM::RESULT_ERROR;
    return nullptr;
  }
  if (error != GenTL::GC_ERR_SUCCESS) {
    result = error == GenTL::GC_ERR_NOT_IMPLEMENTED ? result : ToResult(error);
    return nullptr;
  }
  auto stranded = std::make_shared<std::vector<std::shared_ptr<FrameMemory>>>();
  std::shared_ptr<void> handle(
      raw, [library = context.producer, device = context.device, stranded](void* stream) mutable {
        library->DSClose(stream);
        stranded->clear();
        device = nullptr;
      });
  std::unique_ptr<Stream> stream(new Stream(std::move(context), std::move(handle), std::move(stranded)));
  stream->StartPump(GenTL::EVENT_ERROR, KELGENICAM::NOTIFY_ERROR);
  stream->StartPump(GenTL::EVENT_MODULE, KELGENICAM::NOTIFY_DEVICE_EVENT);
  result = KELGENICAM::RESULT_OK;
  return stream;
}

Stream::Stream(Context context, std::shared_ptr<void> handle,
               std::shared_ptr<std::vector<std::shared_ptr<FrameMemory>>> stranded)
    : context_(std::move(context)),
      handle_(std::move(handle)),
      stranded_(std::move(stranded)),
      nodeMap_(ModuleNodeMap::Load(context_.producer, handle_, handle_.get(), nullptr)) {}

void Stream::StartPump(GenTL::EVENT_TYPE type, KELGENICAM::NOTIFY_TYPE as) {
  auto pump = EventPump::Start(
      context_.producer, handle_, type, [notifier = context_.notifier, as](const GenTLEvent& event) {
        notifier->Send(KELGENICAM::NOTIFY_SRC_DATA_STREAM, as, event.value.data(), event.value.size());
      });
  if (pump) pumps_.push_back(std::move(pump));
}

Stream::~Stream() {
  StopGrabbing();
  nodeMap_->Close();  // whoever still knows the map must not keep the stream open
}

GenApi_3_4::INodeMap* Stream::Remote() const {
  return context_.remote ? context_.remote->Map() : nullptr;
}

std::optional<std::uint64_t> Stream::Info(GenTL::STREAM_INFO_CMD command) const {
  return GetInteger([&](auto* type, void* buffer, std::size_t* size) {
    return context_.producer->DSGetInfo(handle_.get(), command, type, buffer, size);
  });
}

std::size_t Stream::PayloadBytes() const {
  const bool isStreams = Info(GenTL::STREAM_INFO_DEFINES_PAYLOADSIZE).value_or(0) != 0;
  std::uint64_t size = isStreams ? Info(GenTL::STREAM_INFO_PAYLOAD_SIZE).value_or(0) : 0;
  if (size == 0) size = ReadSetting(Remote(), "PayloadSize");
  if (size == 0) size = Info(GenTL::STREAM_INFO_PAYLOAD_SIZE).value_or(0);
  if (size == 0) {
    const CameraSettings settings = ReadSettings(Remote());
    size = RowBytes(settings.pixelFormat, settings.width) * settings.height;
  }
  return static_cast<std::size_t>(size);
}

GrabSetup Stream::MakeSetup(KELGENICAM::GRAB_STRATEGY strategy, int frameCount) const {
  GrabSetup setup;
  setup.producer = context_.producer;
  setup.stream = handle_;
  setup.link = context_.link;
  setup.notifier = context_.notifier;
  setup.pool = context_.pool;
  setup.strategy = strategy;
  setup.frameCount = frameCount;
  setup.payloadBytes = PayloadBytes();
  constexpr std::uint64_t kMostAnnounced = 4096;  // a larger minimum is a broken producer
  const std::uint64_t least = Info(GenTL::STREAM_INFO_BUF_ANNOUNCE_MIN).value_or(0);
  setup.announceMin = least <= kMostAnnounced ? static_cast<std::size_t>(least) : 0;
  const std::uint64_t alignment = Info(GenTL::STREAM_INFO_BUF_ALIGNMENT).value_or(1);
  constexpr std::uint64_t kMostAlignment = 1U << 21U;
  if (alignment > 0 && alignment <= kMostAlignment) {
    setup.alignment = std::bit_ceil(static_cast<std::size_t>(alignment));
  }
  setup.settings = ReadSettings(Remote());
  setup.chunkOrder = ChunkOrder(context_.protocol);
  setup.frameIdChunk = FrameIdChunk::Find(Remote());
  setup.stranded = stranded_;
  return setup;
}

int Stream::StartCamera(KELGENICAM::GRAB_STRATEGY strategy, int frameCount,
                        std::shared_ptr<GrabEngine>& engine) {
  SetLocked(Remote(), true);  // before the sizes are read, so that they stay what they are
  GrabSetup setup = MakeSetup(strategy, frameCount);
  int result = setup.payloadBytes > 0 ? KELGENICAM::RESULT_OK : KELGENICAM::RESULT_NO_DATA;
  if (result == KELGENICAM::RESULT_OK) result = GrabEngine::Start(std::move(setup), engine);
  if (result == KELGENICAM::RESULT_OK) {
    result = StartResult(Execute(Remote(), "AcquisitionStart"));
    if (result != KELGENICAM::RESULT_OK) {
      engine->Abort();
      engine->Stop(true);
      engine = nullptr;
    }
  }
  if (context_.link->IsLost()) result = KELGENICAM::RESULT_DEVICE_LOST;
  if (result != KELGENICAM::RESULT_OK && !context_.link->IsLost()) SetLocked(Remote(), false);
  return result;
}

int Stream::StartGrabbing(KELGENICAM::GRAB_STRATEGY strategy, int frameCount) {
  const auto deadline = Clock::now() + kStopLimit;
  MutexLock lock(state_->mutex);
  while (state_->phase == Phase::kStopping && !context_.link->IsLost()) {
    const bool isInTime = lock.WaitUntil(state_->changed, deadline);
    if (!isInTime && state_->phase == Phase::kStopping) return KELGENICAM::RESULT_BUSY;
  }
  if (context_.link->IsLost()) return KELGENICAM::RESULT_DEVICE_LOST;
  if (state_->phase != Phase::kIdle) return KELGENICAM::RESULT_BUSY;
  state_->phase = Phase::kStarting;
  lock.Unlock();
  std::shared_ptr<GrabEngine> engine;
  const int result = StartCamera(strategy, frameCount, engine);
  lock.Lock();
  // Lost between start and here: the engine is kept, so that Grab can name the reason.
  const bool isRunning = engine != nullptr;
  state_->phase = isRunning ? Phase::kGrabbing : Phase::kIdle;
  state_->engine = engine;
  state_->changed.notify_all();
  lock.Unlock();
  if (isRunning && context_.link->IsLost()) engine->MarkLost();
  return result;
}

int Stream::StopGrabbing() {
  const auto deadline = Clock::now() + kStopLimit;
  const auto stop = std::make_shared<Stop>();
  MutexLock lock(state_->mutex);
  while (state_->phase == Phase::kStarting) {
    const bool isInTime = lock.WaitUntil(state_->changed, deadline);
    if (!isInTime && state_->phase == Phase::kStarting) return KELGENICAM::RESULT_TIMEOUT;
  }
  if (state_->phase == Phase::kIdle) return KELGENICAM::RESULT_NOT_GRABBING;
  const bool isMine = state_->phase == Phase::kGrabbing;
  while (state_->phase == Phase::kStopping && !context_.link->IsLost()) {
    const bool isInTime = lock.WaitUntil(state_->changed, deadline);
    if (!isInTime && state_->phase == Phase::kStopping) return KELGENICAM::RESULT_TIMEOUT;
  }
  if (!isMine) {
    Settle(*state_, state_->stop);  // what is lost is not waited for
    return KELGENICAM::RESULT_OK;
  }
  std::function<void()> task = StopTask(state_->engine, stop);
  state_->phase = Phase::kStopping;
  state_->stop = stop;
  std::shared_ptr<GrabEngine> engine = std::exchange(state_->engine, nullptr);
  lock.Unlock();
  engine->Abort();
  engine = nullptr;  // the task has the last hold
  return EndGrabbing(std::move(task), stop);
}

// The camera stops on the caller's thread, which may hold the lock of its node map; the producer's stream on one of its
// own, because it may not come back. What fails is left behind: the steps after it matter more.
int Stream::EndGrabbing(std::function<void()> task, const std::shared_ptr<Stop>& stop) {
  const auto isLost = [this] { return context_.link->IsLost(); };
  if (!isLost()) Execute(Remote(), "AcquisitionStop");
  try {
    Background::Run(task);
  } catch (...) {
    task();  // there is no other thread to be had
  }
  task = nullptr;
  const auto deadline = Clock::now() + kStopLimit;
  MutexLock lock(state_->mutex);
  while (!stop->isOver && !isLost() && lock.WaitUntil(state_->changed, deadline)) {
  }
  stop->isLeft = !stop->isOver;
  if (!stop->isLeft && !isLost()) {
    lock.Unlock();
    SetLocked(Remote(), false);
    lock.Lock();
  }
  const bool isSettled = !stop->isLeft || isLost();
  if (isSettled) Settle(*state_, stop);
  return isSettled ? KELGENICAM::RESULT_OK : KELGENICAM::RESULT_TIMEOUT;
}

std::function<void()> Stream::StopTask(std::shared_ptr<GrabEngine> engine,
                                       const std::shared_ptr<Stop>& stop) const {
  return [state = state_, link = context_.link, remote = context_.remote, stop,
          engine = std::move(engine)]() mutable {
    try {
      engine->Stop(link->IsLost());
    } catch (...) {  // NOLINT(bugprone-empty-catch): out of memory is all that it can throw
    }
    engine = nullptr;  // with its hold on the stream and the device, before anybody learns that it is over
    MutexLock lock(state->mutex);
    stop->isOver = true;
    state->changed.notify_all();
    if (!stop->isLeft) return;
    lock.Unlock();
    if (remote && !link->IsLost()) SetLocked(remote->Map(), false);
    lock.Lock();
    Settle(*state, stop);
  };
}

// Ends the phase of stopping, unless somebody did so before.
void Stream::Settle(State& state, const std::shared_ptr<Stop>& stop) {
  if (!stop || state.stop != stop) return;
  state.stop = nullptr;
  state.phase = Phase::kIdle;
  state.changed.notify_all();
}

bool Stream::IsGrabbing() {
  MutexLock lock(state_->mutex);
  return state_->phase == Phase::kGrabbing;
}

std::shared_ptr<GrabEngine> Stream::Engine() {
  MutexLock lock(state_->mutex);
  return state_->engine;
}

int Stream::Grab(KELGENICAM::IImage** image, int timeoutMs) {
  const std::shared_ptr<GrabEngine> engine = Engine();
  return engine ? engine->Grab(image, timeoutMs) : KELGENICAM::RESULT_NOT_GRABBING;
}

void Stream::WakeLost() {
  if (const auto engine = Engine()) engine->MarkLost();
  state_->changed.notify_all();  // whoever waits for a stop
}

void Stream::WakeAborted() {
  if (const auto engine = Engine()) engine->Abort();
}

}  // namespace zyn::transport
