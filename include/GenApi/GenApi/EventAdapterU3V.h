/// Events of USB3 Vision devices.
#ifndef GENAPI_EVENTADAPTERU3V_H
#define GENAPI_EVENTADAPTERU3V_H

#include "EventAdapter.h"

namespace GENAPI_NAMESPACE {

#pragma pack(push, 1)

/// The beginning of every message. All numbers of a message are little-endian.
struct U3V_COMMAND_HEADER {
  uint32_t Prefix;
  uint16_t Flags;
  uint16_t CommandId;
  uint16_t Length;
  uint16_t ReqId;
};

struct U3V_EVENT_DATA {
  uint16_t Reserved;
  uint16_t EventId;
  uint64_t Timestamp;
};

struct U3V_EVENT_MESSAGE {
  U3V_COMMAND_HEADER CommandHeader;
  U3V_EVENT_DATA EventData;
};

#pragma pack(pop)

/// An event begins behind the header of its message: its identifier lies at 2, the time stamp at 4 and the data
/// at 12.
class GENAPI_DECL CEventAdapterU3V : public CEventAdapter {
 public:
  explicit CEventAdapterU3V(INodeMap* pNodeMap = nullptr);
  ~CEventAdapterU3V() override;

  /// A whole message, beginning with its header.
  void DeliverMessage(const uint8_t msg[], uint32_t numBytes) override;
  /// Trusts the length in the header.
  void DeliverEventMessage(const U3V_EVENT_MESSAGE* pEventMessage);
};

}  // namespace GENAPI_NAMESPACE

#endif
