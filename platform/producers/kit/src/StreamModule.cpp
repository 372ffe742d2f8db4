#include "StreamModule.h"

#include "NewBufferEvent.h"
#include "producer/Error.h"

namespace zyn::producer {
namespace {

// Numbers of the module events.
constexpr std::uint64_t kBufferTooSmall = 1;

}  // namespace

StreamModule::StreamModule(DeviceModule& device, std::string id)
    : device_(device),
      id_(std::move(id)),
      queues_(std::make_shared<BufferQueues>(BufferQueues::Settings{
          device.Info().tlType, device.Info().timestampFrequency,
          [this] {
            if (const auto event = Registered(GenTL::EVENT_NEW_BUFFER)) event->Fire();
          },
          [this](GenTL::GC_ERROR code, const std::string& text) { OnFrameError(code, text); }})) {}

// The backend's threads report to members of this object.
StreamModule::~StreamModule() {
  stream_.reset();
}

void StreamModule::Attach(std::unique_ptr<Stream> stream) {
  stream_ = std::move(stream);
  traits_ = stream_->Traits();
  queues_->SetTraits(traits_);
  features_ = std::make_unique<FeatureTable>("StreamPort", stream_->Extension());
  AddInformation();
  AddBufferHandling();
  AddModuleEvents({"BufferTooSmall"});
  const ProducerInfo& producer = device_.Parent().Parent().Producer().info;
  features_->Finish(producer.vendor, producer.model, GENTL_MODULE_STREAM);
}

void StreamModule::OnFrameError(GenTL::GC_ERROR code, const std::string& text) {
  RaiseError(code, text);
  if (code == GenTL::GC_ERR_BUFFER_TOO_SMALL) RaiseModuleEvent(kBufferTooSmall);
}

PortFacts StreamModule::Facts() const {
  const ProducerInfo& producer = device_.Parent().Parent().Producer().info;
  PortFacts facts;
  facts.id = id_;
  facts.vendor = producer.vendor;
  facts.model = producer.model;
  facts.tlType = device_.Info().tlType;
  facts.module = GENTL_MODULE_STREAM;
  facts.portName = features_->PortName();
  return facts;
}

bool StreamModule::Supports(GenTL::EVENT_TYPE type) const {
  return Module::Supports(type) || type == GenTL::EVENT_NEW_BUFFER;
}

std::shared_ptr<Event> StreamModule::MakeEvent(GenTL::EVENT_TYPE type) {
  if (type == GenTL::EVENT_NEW_BUFFER) return std::make_shared<NewBufferEvent>(queues_);
  return Module::MakeEvent(type);
}

void StreamModule::OnUnregistered(GenTL::EVENT_TYPE type) {
  if (type == GenTL::EVENT_NEW_BUFFER) queues_->DiscardOutput();
}

std::shared_ptr<Buffer> StreamModule::BufferOf(void* handle) const {
  std::shared_ptr<Buffer> buffer = Lookup<Buffer>(handle);
  if (buffer->owner != queues_.get()) ThrowInvalidHandle();
  return buffer;
}

void StreamModule::Start(std::uint64_t frames) {
  TurnHolder turn(turn_);
  if (device_.IsLost()) throw Error(GenTL::GC_ERR_IO, "The device was lost: close it and open it again.");
  queues_->BeginAcquisition(frames);
  try {
    stream_->Start();
  } catch (...) {
    queues_->EndAcquisition();
    throw;
  }
}

void StreamModule::Stop(bool kill) {
  TurnHolder turn(turn_);
  queues_->EndAcquisition();
  stream_->Stop(kill);
}

void StreamModule::Queue(void* buffer) {
  if (queues_->Queue(*BufferOf(buffer))) stream_->OnBuffersQueued();
}

void StreamModule::Flush(GenTL::ACQ_QUEUE_TYPE operation) {
  if (queues_->Flush(operation)) stream_->OnBuffersQueued();
}

void StreamModule::LetGo(Buffer& buffer) {
  Handles().Remove(buffer.Handle());
  if (buffer.backendData != nullptr) stream_->OnBufferRevoked(buffer);
}

std::shared_ptr<Buffer> StreamModule::Revoke(void* handle) {
  std::shared_ptr<Buffer> buffer = BufferOf(handle);
  queues_->Revoke(*buffer);
  LetGo(*buffer);
  return buffer;
}

void StreamModule::Shutdown() {
  if (queues_->Started()) {
    queues_->EndAcquisition();
    try {
      stream_->Stop(true);
    } catch (const std::exception&) {
      // Closing goes on whatever the link says; the backend's destructor ends what is left.
    }
  }
  for (const auto& buffer : queues_->RevokeAll()) LetGo(*buffer);
  stream_.reset();
  device_.OnStreamClosed(id_);
}

void StreamModule::Info(GenTL::STREAM_INFO_CMD command, const Answer& answer) {
  const BufferQueues::Counts counts = queues_->Count();
  switch (command) {
    case GenTL::STREAM_INFO_ID:
      return answer.Text(id_);
    case GenTL::STREAM_INFO_NUM_DELIVERED:
      return answer.UInt64(counts.delivered);
    case GenTL::STREAM_INFO_NUM_UNDERRUN:
      return answer.UInt64(counts.underruns);
    case GenTL::STREAM_INFO_NUM_ANNOUNCED:
      return answer.Size(counts.announced);
    case GenTL::STREAM_INFO_NUM_QUEUED:
      return answer.Size(counts.queued);
    case GenTL::STREAM_INFO_NUM_AWAIT_DELIVERY:
      return answer.Size(counts.awaiting);
    case GenTL::STREAM_INFO_NUM_STARTED:
      return answer.UInt64(counts.started);
    case GenTL::STREAM_INFO_PAYLOAD_SIZE: {
      const std::size_t size = stream_->PayloadSize();
      if (size == 0) throw Error(GenTL::GC_ERR_NOT_AVAILABLE, "The camera's feature PayloadSize tells.");
      return answer.Size(size);
    }
    case GenTL::STREAM_INFO_IS_GRABBING:
      return answer.Bool(counts.acquiring);
    case GenTL::STREAM_INFO_DEFINES_PAYLOADSIZE:
      return answer.Bool(stream_->PayloadSize() != 0);
    case GenTL::STREAM_INFO_TLTYPE:
      return answer.Text(device_.Info().tlType);
    case GenTL::STREAM_INFO_NUM_CHUNKS_MAX:
      if (traits_.maximumChunks == 0) throw Error(GenTL::GC_ERR_NOT_AVAILABLE, "The number is not known.");
      return answer.Size(traits_.maximumChunks);
    case GenTL::STREAM_INFO_BUF_ANNOUNCE_MIN:
      return answer.Size(traits_.minimumBuffers);
    case GenTL::STREAM_INFO_BUF_ALIGNMENT:
      return answer.Size(traits_.alignment);
    case GenTL::STREAM_INFO_FLOW_TABLE:
    case GenTL::STREAM_INFO_GENDC_PREFETCH_DESCRIPTOR:
      throw Error(GenTL::GC_ERR_NO_DATA, "The stream does not use flows.");
    default:
      throw Error(GenTL::GC_ERR_NOT_IMPLEMENTED,
                  "There is no stream information " + std::to_string(command) + ".");
  }
}

// ---- features ----

void StreamModule::AddInformation() {
  FeatureTable& table = *features_;
  table.Category("StreamInformation");
  table.Text("StreamID", [this] { return id_; });
  table.Enumeration("StreamType", TechnologyEntries(),
                    [this] { return TechnologyEntry(device_.Info().tlType); });
}

void StreamModule::AddBufferHandling() {
  FeatureTable& table = *features_;
  const auto count = [this](const char* name, auto member) {
    features_->Integer(name, [this, member] { return static_cast<std::int64_t>(queues_->Count().*member); });
  };
  using Counts = BufferQueues::Counts;
  table.Category("BufferHandlingControl");
  count("StreamAnnouncedBufferCount", &Counts::announced);
  table.Enumeration(
      "StreamBufferHandlingMode",
      {{"OldestFirst", static_cast<std::int64_t>(HandlingMode::oldestFirst)},
       {"OldestFirstOverwrite", static_cast<std::int64_t>(HandlingMode::oldestFirstOverwrite)},
       {"NewestOnly", static_cast<std::int64_t>(HandlingMode::newestOnly)}},
      [this] { return static_cast<std::int64_t>(queues_->Mode()); },
      [this](std::int64_t mode) { queues_->SetMode(static_cast<HandlingMode>(mode)); });
  table.Integer("StreamAnnounceBufferMinimum",
                [this] { return static_cast<std::int64_t>(traits_.minimumBuffers); });
  count("StreamDeliveredFrameCount", &Counts::delivered);
  count("StreamLostFrameCount", &Counts::underruns);
  count("StreamInputBufferCount", &Counts::queued);
  count("StreamOutputBufferCount", &Counts::awaiting);
  count("StreamStartedFrameCount", &Counts::started);
  table.Condition("StreamDefinesPayloadSize", [this] { return stream_->PayloadSize() != 0; });
  FeatureOptions payload;
  payload.availableIf = "StreamDefinesPayloadSize";
  table.Integer(
      "PayloadSize", [this] { return static_cast<std::int64_t>(stream_->PayloadSize()); }, nullptr, payload);
  table.Boolean("StreamIsGrabbing", [this] { return queues_->Count().acquiring; });
  table.Integer("StreamChunkCountMaximum",
                [this] { return static_cast<std::int64_t>(traits_.maximumChunks); });
  table.Integer("StreamBufferAlignment", [this] { return static_cast<std::int64_t>(traits_.alignment); });
}

}  // namespace zyn::producer
