/// Messages of the control protocol that a device sends by itself, as bytes. Pure functions.
#ifndef ZYN_GIGEDEVICE_EVENT_WIRE_H
#define ZYN_GIGEDEVICE_EVENT_WIRE_H

#include <cstdint>

#include "cameras/CameraEvents.h"
#include "gige/GvcpWire.h"

namespace zyn::gigedevice {

constexpr std::uint16_t kEventCommand = 0x00C0;
constexpr std::uint16_t kEventDataCommand = 0x00C2;

/// EVENTDATA for an event with data, EVENT for one without. No event names a block of the stream, so all have the
/// short form, and what they hold lies where the description says.
gige::Bytes EncodeEvent(const cameras::CameraEvent& event, std::uint64_t ticks, std::uint16_t requestId,
                        bool asksAcknowledge);

}  // namespace zyn::gigedevice

#endif
