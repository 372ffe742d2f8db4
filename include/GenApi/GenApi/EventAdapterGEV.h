/// Events of GigE Vision devices.
#ifndef GENAPI_EVENTADAPTERGEV_H
#define GENAPI_EVENTADAPTERGEV_H

#include "EventAdapter.h"

namespace GENAPI_NAMESPACE {

#pragma pack(push, 1)

/// The beginning of every message. All numbers of a message are big-endian.
struct GVCP_REQUEST_HEADER {
  uint8_t Magic;
  uint8_t Flags;
  uint16_t Command;
  uint16_t Length;
  uint16_t ReqId;
};

struct GVCP_EVENT_ITEM_BASIC {
  uint16_t ReservedOrEventSize;
  uint16_t EventId;
};

struct GVCP_EVENT_ITEM {
  uint16_t ReservedOrEventSize;
  uint16_t EventId;
  uint16_t StreamChannelId;
  uint16_t BlockId;
  uint32_t TimestampHigh;
  uint32_t TimestampLow;
};

struct GVCP_EVENT_ITEM_EXTENDED_ID {
  uint16_t ReservedOrEventSize;
  uint16_t EventId;
  uint16_t StreamChannelId;
  uint16_t BlockId;
  uint32_t BlockId64High;
  uint32_t BlockId64Low;
  uint32_t TimestampHigh;
  uint32_t TimestampLow;
};

/// One event or more, without data.
struct GVCP_EVENT_REQUEST {
  GVCP_REQUEST_HEADER Header;
  GVCP_EVENT_ITEM Items[1];
};

struct GVCP_EVENT_REQUEST_EXTENDED_ID {
  GVCP_REQUEST_HEADER Header;
  GVCP_EVENT_ITEM_EXTENDED_ID Items[1];
};

/// An event with data behind it.
struct GVCP_EVENTDATA_REQUEST {
  GVCP_REQUEST_HEADER Header;
  GVCP_EVENT_ITEM Event;
  uint32_t Data[1];
};

struct GVCP_EVENTDATA_REQUEST_EXTENDED_ID {
  GVCP_REQUEST_HEADER Header;
  GVCP_EVENT_ITEM_EXTENDED_ID Event;
  uint32_t Data[1];
};

#pragma pack(pop)

/// An event begins with its item: its identifier lies at 2, the block's at 6, the time stamp at 8 and the data
/// at 16. With extended identifiers, which the flags of the message announce, the block's 64-bit number lies at
/// 8, the time stamp at 16 and the data at 24.
class GENAPI_DECL CEventAdapterGEV : public CEventAdapter {
 public:
  explicit CEventAdapterGEV(INodeMap* pNodeMap = nullptr);
  ~CEventAdapterGEV() override;

  /// A whole message, beginning with its header.
  void DeliverMessage(const uint8_t msg[], uint32_t numBytes) override;
  /// Trusts the length in the header.
  void DeliverEventMessage(const GVCP_EVENT_REQUEST* pEvent);
  void DeliverEventMessage(const GVCP_EVENTDATA_REQUEST* pEventData);
  void DeliverEventMessage(const GVCP_EVENT_REQUEST_EXTENDED_ID* pEvent);
  void DeliverEventMessage(const GVCP_EVENTDATA_REQUEST_EXTENDED_ID* pEventData);
};

}  // namespace GENAPI_NAMESPACE

#endif
