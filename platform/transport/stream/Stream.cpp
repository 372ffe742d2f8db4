#include "Stream.h"

#include <bit>
#include <chrono>
#include <system_error>
#include <utility>

#include "../Result.h"
#include "../module/Features.h"
#include "../producer/Background.h"
#include "../producer/GenTLInfo.h"
#include "PixelFormat.h"

namespace zyn::transport {

namespace {

// Longer than libaravis takes to give a silent camera up.
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

// Ends an acquisition. What fails is left behind: the steps after it matter more.
void StopEverything(const Stream::Context& context, GrabEngine& engine) {
  GenApi_3_4::INodeMap* remote = context.remote ? context.remote->Map() : nullptr;
  if (!context.link->IsLost()) Execute(remote, "AcquisitionStop");
  engine.Stop(context.link->IsLost());
  if (!context.link->IsLost()) SetLocked(remote, false);
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
  MutexLock lock(mutex_);
  if (context_.link->IsLost()) return KELGENICAM::RESULT_DEVICE_LOST;
  while (phase_ == Phase::kStopping) {
    lock.Unlock();
    if (!AwaitStop()) return KELGENICAM::RESULT_BUSY;
    lock.Lock();
  }
  if (phase_ != Phase::kIdle) return KELGENICAM::RESULT_BUSY;
  phase_ = Phase::kStarting;
  lock.Unlock();
  std::shared_ptr<GrabEngine> engine;
  const int result = StartCamera(strategy, frameCount, engine);
  lock.Lock();
  // Lost between start and here: the engine is kept, so that Grab can name the reason.
  const bool isRunning = engine != nullptr;
  phase_ = isRunning ? Phase::kGrabbing : Phase::kIdle;
  engine_ = engine;
  phaseChanged_.notify_all();
  lock.Unlock();
  if (isRunning && context_.link->IsLost()) engine->MarkLost();
  return result;
}

// On a thread of its own, because the producer may not come back; nothing when there is none to be had, and then it is
// done.
std::optional<Background> Stream::BeginStop(const std::shared_ptr<GrabEngine>& engine) const {
  const auto work = [context = context_, engine] { StopEverything(context, *engine); };
  try {
    return Background::Run(work);
  } catch (const std::system_error&) {
    work();
    return std::nullopt;
  }
}

// Waits for the end of a stop. False when the producer did not come back in time.
bool Stream::AwaitStop() {
  MutexLock lock(mutex_);
  while (phase_ == Phase::kStopping && !stopping_) lock.Wait(phaseChanged_);
  if (phase_ != Phase::kStopping) return true;
  const Background stopping = *stopping_;
  lock.Unlock();
  const bool isStopped = stopping.WaitUntil(std::chrono::steady_clock::now() + kStopLimit);
  lock.Lock();
  // Others wait too, and may have started anew and be stopping again by now.
  if (phase_ == Phase::kStopping && stopping_ && stopping_->WaitUntil({})) {
    phase_ = Phase::kIdle;
    phaseChanged_.notify_all();
  }
  return isStopped;
}

int Stream::StopGrabbing() {
  MutexLock lock(mutex_);
  while (phase_ == Phase::kStarting) lock.Wait(phaseChanged_);
  if (phase_ == Phase::kIdle) return KELGENICAM::RESULT_NOT_GRABBING;
  if (phase_ == Phase::kGrabbing) {
    phase_ = Phase::kStopping;
    stopping_ = std::nullopt;
    const std::shared_ptr<GrabEngine> engine = std::exchange(engine_, nullptr);
    lock.Unlock();
    engine->Abort();
    const bool isLost = context_.link->IsLost();
    const std::optional<Background> stopping = BeginStop(engine);
    lock.Lock();
    stopping_ = stopping;
    if (isLost || !stopping) phase_ = Phase::kIdle;
    phaseChanged_.notify_all();
  }
  lock.Unlock();
  return AwaitStop() ? KELGENICAM::RESULT_OK : KELGENICAM::RESULT_TIMEOUT;
}

bool Stream::IsGrabbing() {
  MutexLock lock(mutex_);
  return phase_ == Phase::kGrabbing;
}

std::shared_ptr<GrabEngine> Stream::Engine() {
  MutexLock lock(mutex_);
  return engine_;
}

int Stream::Grab(KELGENICAM::IImage** image, int timeoutMs) {
  const std::shared_ptr<GrabEngine> engine = Engine();
  return engine ? engine->Grab(image, timeoutMs) : KELGENICAM::RESULT_NOT_GRABBING;
}

void Stream::WakeLost() {
  if (const auto engine = Engine()) engine->MarkLost();
}

void Stream::WakeAborted() {
  if (const auto engine = Engine()) engine->Abort();
}

}  // namespace zyn::transport
