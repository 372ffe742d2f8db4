#include "gigedevice/EventWire.h"

#include "cameras/registers/BigEndian.h"

namespace zyn::gigedevice {

using cameras::StoreBig;

gige::Bytes EncodeEvent(const cameras::CameraEvent& event, std::uint64_t ticks, std::uint16_t requestId,
                        bool asksAcknowledge) {
  const bool hasData = event.frameId != 0;
  const std::size_t payload = cameras::kEventItemBytes + (hasData ? cameras::kEventDataBytes : 0);
  gige::Bytes message(gige::kGvcpHeaderBytes + payload);
  message[0] = gige::kGvcpKey;
  message[1] = asksAcknowledge ? gige::flag::kAckRequired : 0;
  StoreBig(&message[2], hasData ? kEventDataCommand : kEventCommand, 2);
  StoreBig(&message[4], payload, 2);
  StoreBig(&message[6], requestId, 2);
  cameras::WriteEventItem(event, ticks, &message[gige::kGvcpHeaderBytes]);
  return message;
}

}  // namespace zyn::gigedevice
