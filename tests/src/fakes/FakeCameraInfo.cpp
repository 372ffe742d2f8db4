#include "FakeCameraInfo.h"

#include <stdexcept>

namespace fakes {

const char* FakeCameraInfo::SerialNumber() {
  if (throwsOnSerialNumber) throw std::runtime_error("no serial number");
  return serial;
}

const char* FakeCameraInfo::Text(int index) {
  calls.Add("Text" + std::to_string(index));
  if (throwsOnText) throw std::runtime_error("no texts");
  return texts.at(static_cast<std::size_t>(index));
}

void FakeCameraInfo::CopyFrom(const KELGENICAM::ICameraInfo& newer) {
  calls.Add("CopyFrom");
  const auto& other = dynamic_cast<const FakeCameraInfo&>(newer);
  protocol = other.protocol;
  state = other.state;
  id = other.id;
  serial = other.serial;
  manufacturer = other.manufacturer;
  model = other.model;
  name = other.name;
  userName = other.userName;
  version = other.version;
  texts = other.texts;
}

}  // namespace fakes
