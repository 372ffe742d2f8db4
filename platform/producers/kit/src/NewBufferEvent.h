/// EVENT_NEW_BUFFER: the output queue of a data stream, seen as an event.
#ifndef ZYN_PRODUCER_NEW_BUFFER_EVENT_H
#define ZYN_PRODUCER_NEW_BUFFER_EVENT_H

#include <memory>
#include <utility>

#include "BufferQueues.h"
#include "Event.h"

namespace zyn::producer {

class NewBufferEvent final : public Event {
 public:
  explicit NewBufferEvent(std::shared_ptr<BufferQueues> queues)
      : Event(GenTL::EVENT_NEW_BUFFER), queues_(std::move(queues)) {}

  void Flush() override { queues_->DiscardOutput(); }
  void DataInfo(const void* data, std::size_t size, GenTL::EVENT_DATA_INFO_CMD command,
                const Answer& answer) const override;

 protected:
  bool Take(void* buffer, std::size_t* size) override;
  std::size_t Queued() const override { return queues_->Count().awaiting; }
  std::size_t MaximumSize() const override { return sizeof(GenTL::EVENT_NEW_BUFFER_DATA); }
  std::size_t MaximumDataSize() const override { return sizeof(void*); }

 private:
  const std::shared_ptr<BufferQueues> queues_;
};

}  // namespace zyn::producer

#endif
