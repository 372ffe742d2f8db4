#include "CameraDescription.h"

#include <strings.h>

namespace zyn::transport {

namespace {

struct ProtocolRow {
  const char* tlType;
  unsigned int protocol;
};

constexpr ProtocolRow kProtocols[] = {
    {"GEV", KELGENICAM::PROTOCOL_GIGE_VISION}, {"GigEVision", KELGENICAM::PROTOCOL_GIGE_VISION},
    {"U3V", KELGENICAM::PROTOCOL_USB3_VISION}, {"USB3Vision", KELGENICAM::PROTOCOL_USB3_VISION},
    {"CL", KELGENICAM::PROTOCOL_CAMERA_LINK},  {"CameraLink", KELGENICAM::PROTOCOL_CAMERA_LINK},
    {"CXP", KELGENICAM::PROTOCOL_COAXPRESS},   {"CoaXPress", KELGENICAM::PROTOCOL_COAXPRESS},
};

}  // namespace

unsigned int ProtocolOf(const std::string& tlType) {
  for (const ProtocolRow& row : kProtocols) {
    if (strcasecmp(row.tlType, tlType.c_str()) == 0) return row.protocol;
  }
  return KELGENICAM::PROTOCOL_OTHER;
}

}  // namespace zyn::transport
