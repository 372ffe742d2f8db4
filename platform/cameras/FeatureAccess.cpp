#include "cameras/FeatureAccess.h"

#include <algorithm>
#include <vector>

namespace zyn::cameras {

RegisterStatus WriteTextFeature(CameraModel& camera, std::string_view feature, std::string_view text) {
  const auto place = camera.Find(feature);
  if (!place) return RegisterStatus::unmapped;
  if (text.size() > place->length) return RegisterStatus::outOfRange;
  std::vector<std::uint8_t> bytes(place->length);
  std::copy(text.begin(), text.end(), bytes.begin());
  return camera.WriteRegisters(place->address, bytes);
}

RegisterStatus ExecuteCommand(CameraModel& camera, std::string_view command) {
  const auto place = camera.Find(command);
  if (!place) return RegisterStatus::unmapped;
  std::vector<std::uint8_t> bytes(place->length);
  bytes.back() = 1;
  return camera.WriteRegisters(place->address, bytes);
}

RegisterStatus StopAcquisition(CameraModel& camera) {
  return camera.IsAcquiring() ? ExecuteCommand(camera, "AcquisitionStop") : RegisterStatus::ok;
}

}  // namespace zyn::cameras
