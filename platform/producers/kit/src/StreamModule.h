/// A data stream module: the buffers of one stream and the backend that fills them.
#ifndef ZYN_PRODUCER_STREAM_MODULE_H
#define ZYN_PRODUCER_STREAM_MODULE_H

#include <cstdint>
#include <memory>
#include <string>

#include "BufferQueues.h"
#include "DeviceModule.h"
#include "Module.h"
#include "Turn.h"

namespace zyn::producer {

/// Any thread. The turn is held while the backend starts or stops. Created unattached, because the backend
/// needs the sink to open the stream.
class StreamModule final : public Module, public std::enable_shared_from_this<StreamModule> {
 public:
  StreamModule(DeviceModule& device, std::string id);
  ~StreamModule() override;

  StreamSink& Sink() { return *queues_; }
  /// Ends the construction. Called once, before the module is used.
  void Attach(std::unique_ptr<Stream> stream);

  DeviceModule& Parent() { return device_; }
  BufferQueues& Queues() { return *queues_; }

  /// The buffer behind a handle. Throws Error with GC_ERR_INVALID_HANDLE when it belongs to another stream.
  std::shared_ptr<Buffer> BufferOf(void* handle) const;

  void Start(std::uint64_t frames);
  void Stop(bool kill);
  void Queue(void* buffer);
  void Flush(GenTL::ACQ_QUEUE_TYPE operation);
  /// Returns the revoked buffer.
  std::shared_ptr<Buffer> Revoke(void* buffer);
  void Info(GenTL::STREAM_INFO_CMD command, const Answer& answer);

  PortFacts Facts() const override;

 protected:
  bool Supports(GenTL::EVENT_TYPE type) const override;
  std::shared_ptr<Event> MakeEvent(GenTL::EVENT_TYPE type) override;
  void OnUnregistered(GenTL::EVENT_TYPE type) override;
  void Shutdown() override;

 private:
  void AddInformation();
  void AddBufferHandling();
  void OnFrameError(GenTL::GC_ERROR code, const std::string& text);
  void LetGo(Buffer& buffer);

  DeviceModule& device_;
  const std::string id_;
  const std::shared_ptr<BufferQueues> queues_;
  std::unique_ptr<Stream> stream_;  // set by Attach
  StreamTraits traits_;             // set by Attach
  Turn turn_;
};

}  // namespace zyn::producer

#endif
