#include <algorithm>
#include <span>

#include "Base/GCException.h"
#include "GenApi/EventAdapterGEV.h"
#include "GenApi/EventAdapterGeneric.h"
#include "GenApi/EventAdapterU3V.h"
#include "events/AdapterCore.h"
#include "nodes/ByteOrder.h"

namespace GENAPI_NAMESPACE {
namespace {

using Bytes = std::span<const uint8_t>;

Bytes Message(const uint8_t* message, uint32_t length) {
  if (!message) throw INVALID_ARGUMENT_EXCEPTION("A null message cannot be delivered.");
  return {message, length};
}

uint16_t Load16(Bytes bytes, size_t at, bool bigEndian) {
  return static_cast<uint16_t>(zyn::genapi::LoadBytes(bytes.subspan(at, 2), bigEndian));
}

// GigE Vision
constexpr size_t kGevHeaderBytes = sizeof(GVCP_REQUEST_HEADER);
constexpr uint8_t kGevMagic = 0x42;
constexpr uint8_t kGevExtendedIdFlag = 0x10;
constexpr uint16_t kGevEvent = 0xC0;
constexpr uint16_t kGevEventData = 0xC2;

// USB3 Vision
constexpr size_t kU3vHeaderBytes = sizeof(U3V_COMMAND_HEADER);
constexpr uint32_t kU3vPrefix = 0x45563355;
constexpr uint16_t kU3vEvent = 0x0C00;

// The length in the header is that of what follows it.
template <class Request>
uint32_t LengthOf(const Request* request) {
  if (!request) throw INVALID_ARGUMENT_EXCEPTION("A null message cannot be delivered.");
  const Bytes header(reinterpret_cast<const uint8_t*>(request), kGevHeaderBytes);
  return static_cast<uint32_t>(kGevHeaderBytes) + Load16(header, 4, true);
}

}  // namespace

CEventAdapterGeneric::CEventAdapterGeneric(INodeMap* pNodeMap) : CEventAdapter(pNodeMap) {}
CEventAdapterGeneric::~CEventAdapterGeneric() = default;

void CEventAdapterGeneric::DeliverMessage(const uint8_t[], uint32_t) {
  throw RUNTIME_EXCEPTION("This adapter needs the identifier of the event.");
}

void CEventAdapterGeneric::DeliverMessage(const uint8_t msg[], uint32_t numBytes,
                                          const GENICAM_NAMESPACE::gcstring& EventID) {
  m_pImpl->Deliver(EventID, Message(msg, numBytes));
}

void CEventAdapterGeneric::DeliverMessage(const uint8_t msg[], uint32_t numBytes, uint64_t EventID) {
  m_pImpl->Deliver(EventID, Message(msg, numBytes));
}

CEventAdapterGEV::CEventAdapterGEV(INodeMap* pNodeMap) : CEventAdapter(pNodeMap) {}
CEventAdapterGEV::~CEventAdapterGEV() = default;

// Newer devices say the size of each event. Others send items of fixed size, or one item with data.
void CEventAdapterGEV::DeliverMessage(const uint8_t msg[], uint32_t numBytes) {
  const Bytes message = Message(msg, numBytes);
  if (message.size() < kGevHeaderBytes || message[0] != kGevMagic)
    throw RUNTIME_EXCEPTION("The message is no GVCP request.");
  const uint16_t command = Load16(message, 2, true);
  if (command != kGevEvent && command != kGevEventData)
    throw RUNTIME_EXCEPTION("The message with command 0x%04x is no event.", command);
  const size_t length = Load16(message, 4, true);
  if (length > message.size() - kGevHeaderBytes)
    throw RUNTIME_EXCEPTION("The event message is cut short: %zu of %zu bytes.",
                            message.size() - kGevHeaderBytes, length);
  const bool isExtended = (message[1] & kGevExtendedIdFlag) != 0;
  const size_t itemBytes = isExtended ? sizeof(GVCP_EVENT_ITEM_EXTENDED_ID) : sizeof(GVCP_EVENT_ITEM);
  Bytes rest = message.subspan(kGevHeaderBytes, length);
  while (!rest.empty()) {
    if (rest.size() < itemBytes) throw RUNTIME_EXCEPTION("The last event of the message is cut short.");
    const size_t stated = Load16(rest, 0, true);
    const size_t size = stated != 0 ? stated : (command == kGevEvent ? itemBytes : rest.size());
    if (size < itemBytes || size > rest.size())
      throw RUNTIME_EXCEPTION("An event states an impossible size of %zu bytes.", size);
    m_pImpl->Deliver(uint64_t{Load16(rest, 2, true)}, rest.first(size));
    rest = rest.subspan(size);
  }
}

void CEventAdapterGEV::DeliverEventMessage(const GVCP_EVENT_REQUEST* pEvent) {
  DeliverMessage(reinterpret_cast<const uint8_t*>(pEvent), LengthOf(pEvent));
}
void CEventAdapterGEV::DeliverEventMessage(const GVCP_EVENTDATA_REQUEST* pEventData) {
  DeliverMessage(reinterpret_cast<const uint8_t*>(pEventData), LengthOf(pEventData));
}
void CEventAdapterGEV::DeliverEventMessage(const GVCP_EVENT_REQUEST_EXTENDED_ID* pEvent) {
  DeliverMessage(reinterpret_cast<const uint8_t*>(pEvent), LengthOf(pEvent));
}
void CEventAdapterGEV::DeliverEventMessage(const GVCP_EVENTDATA_REQUEST_EXTENDED_ID* pEventData) {
  DeliverMessage(reinterpret_cast<const uint8_t*>(pEventData), LengthOf(pEventData));
}

CEventAdapterU3V::CEventAdapterU3V(INodeMap* pNodeMap) : CEventAdapter(pNodeMap) {}
CEventAdapterU3V::~CEventAdapterU3V() = default;

void CEventAdapterU3V::DeliverMessage(const uint8_t msg[], uint32_t numBytes) {
  const Bytes message = Message(msg, numBytes);
  if (message.size() < kU3vHeaderBytes || zyn::genapi::LoadBytes(message.subspan(0, 4), false) != kU3vPrefix)
    throw RUNTIME_EXCEPTION("The message is no USB3 Vision event.");
  if (Load16(message, 6, false) != kU3vEvent)
    throw RUNTIME_EXCEPTION("The message with command 0x%04x is no event.", Load16(message, 6, false));
  const size_t length = Load16(message, 8, false);
  if (length > message.size() - kU3vHeaderBytes || length < sizeof(U3V_EVENT_DATA))
    throw RUNTIME_EXCEPTION("The event message is cut short: %zu bytes.", message.size());
  const Bytes event = message.subspan(kU3vHeaderBytes, length);
  m_pImpl->Deliver(uint64_t{Load16(event, 2, false)}, event);
}

void CEventAdapterU3V::DeliverEventMessage(const U3V_EVENT_MESSAGE* pEventMessage) {
  if (!pEventMessage) throw INVALID_ARGUMENT_EXCEPTION("A null message cannot be delivered.");
  const auto* const bytes = reinterpret_cast<const uint8_t*>(pEventMessage);
  const uint32_t length = static_cast<uint32_t>(kU3vHeaderBytes) + Load16({bytes, kU3vHeaderBytes}, 8, false);
  DeliverMessage(bytes, length);
}

}  // namespace GENAPI_NAMESPACE
