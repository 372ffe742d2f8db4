#include "gigedevice/CameraFeatures.h"

#include <algorithm>
#include <cstdlib>
#include <pugixml.hpp>
#include <vector>

namespace zyn::gigedevice {
namespace {

pugi::xml_node Named(const pugi::xml_document& description, std::string_view name) {
  return description.find_node(
      [&](const pugi::xml_node& node) { return name == node.attribute("Name").value(); });
}

pugi::xml_node RegisterOf(const pugi::xml_document& description, std::string_view feature) {
  const pugi::xml_node node = Named(description, feature);
  const pugi::xml_node value = node.child("pValue");
  return value ? Named(description, value.child_value()) : node;
}

}  // namespace

CameraFeatures::CameraFeatures(cameras::CameraModel& camera) : camera_(camera) {
  const std::string_view text = camera.Description();
  pugi::xml_document description;
  description.load_buffer(text.data(), text.size());
  const auto place = [&](std::string_view feature) {
    const pugi::xml_node node = RegisterOf(description, feature);
    return Place{std::strtoull(node.child_value("Address"), nullptr, 0),
                 std::strtoull(node.child_value("Length"), nullptr, 0)};
  };
  stop_ = place("AcquisitionStop");
  userName_ = place("DeviceUserID");
}

cameras::RegisterStatus CameraFeatures::Write(const Place& place, std::string_view bytes) {
  if (place.length == 0) return cameras::RegisterStatus::unmapped;
  if (bytes.size() > place.length) return cameras::RegisterStatus::outOfRange;
  std::vector<std::uint8_t> value(place.length);
  std::copy(bytes.begin(), bytes.end(), value.begin());
  return camera_.WriteRegisters(place.address, value);
}

void CameraFeatures::StopAcquisition() {
  if (!camera_.IsAcquiring()) return;
  Write(stop_, std::string_view("\0\0\0\1", 4));
}

cameras::RegisterStatus CameraFeatures::SetUserName(std::string_view name) {
  return Write(userName_, name);
}

}  // namespace zyn::gigedevice
