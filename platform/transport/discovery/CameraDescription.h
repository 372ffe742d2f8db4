/// What one search found out about one camera.
#ifndef ZYN_TRANSPORT_CAMERA_DESCRIPTION_H
#define ZYN_TRANSPORT_CAMERA_DESCRIPTION_H

#include <array>
#include <string>
#include <tuple>

#include <KELGeniCam.h>

namespace zyn::transport {

/// Names one device for good: IDs are unique only within their interface, interfaces only within a producer.
struct CameraKey {
  std::string producer;  ///< canonical path of the producer file
  std::string interfaceId;
  std::string deviceId;

  auto Tie() const { return std::tie(producer, interfaceId, deviceId); }
  bool operator==(const CameraKey& other) const { return Tie() == other.Tie(); }
  bool operator<(const CameraKey& other) const { return Tie() < other.Tie(); }
};

struct CameraDescription {
  static constexpr int kTexts = KELGENICAM::TEXT_USB_SPEED_SUPPORT + 1;

  CameraKey key;
  unsigned int protocol = KELGENICAM::PROTOCOL_OTHER;
  int state = KELGENICAM::DEVICE_STATE_UNKNOWN;
  std::string serial;
  std::string vendor;
  std::string model;
  std::string name;
  std::string userName;
  std::string version;
  std::array<std::string, kTexts> texts;  ///< by CAMERA_TEXT

  auto Tie() const {
    return std::tie(key, protocol, state, serial, vendor, model, name, userName, version, texts);
  }
  bool operator==(const CameraDescription& other) const { return Tie() == other.Tie(); }
};

/// The protocol that a GenTL technology name stands for, in the short or the long spelling.
unsigned int ProtocolOf(const std::string& tlType);

}  // namespace zyn::transport

#endif
