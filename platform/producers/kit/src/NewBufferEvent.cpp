#include "NewBufferEvent.h"

#include <cstring>

#include "producer/Error.h"

namespace zyn::producer {

bool NewBufferEvent::Take(void* buffer, std::size_t* size) {
  if (buffer != nullptr && *size < sizeof(GenTL::EVENT_NEW_BUFFER_DATA)) {
    if (queues_->Count().awaiting == 0) return false;
    throw Error(GenTL::GC_ERR_BUFFER_TOO_SMALL,
                "The event needs " + std::to_string(sizeof(GenTL::EVENT_NEW_BUFFER_DATA)) + " bytes.");
  }
  GenTL::EVENT_NEW_BUFFER_DATA entry = {};
  if (!queues_->Fetch(entry)) return false;
  if (buffer != nullptr) std::memcpy(buffer, &entry, sizeof entry);
  *size = sizeof entry;
  return true;
}

void NewBufferEvent::DataInfo(const void* data, std::size_t size, GenTL::EVENT_DATA_INFO_CMD command,
                              const Answer& answer) const {
  GenTL::EVENT_NEW_BUFFER_DATA entry = {};
  if (size < sizeof entry)
    throw Error(GenTL::GC_ERR_INVALID_PARAMETER, "The data is shorter than a new-buffer event.");
  std::memcpy(&entry, data, sizeof entry);
  if (command == GenTL::EVENT_DATA_ID) return answer.Pointer(entry.BufferHandle);
  if (command == GenTL::EVENT_DATA_VALUE) return answer.Pointer(entry.pUserPointer);
  if (command == GenTL::EVENT_DATA_NUMID)
    throw Error(GenTL::GC_ERR_NOT_AVAILABLE, "A buffer is identified by its handle.");
  throw Error(GenTL::GC_ERR_NOT_IMPLEMENTED, "There is no such information about this event.");
}

}  // namespace zyn::producer
