#include "InterfaceSearch.h"

#include <algorithm>

#include "../module/Features.h"
#include "../producer/GenTLInfo.h"
#include "DeviceAddress.h"

namespace zyn::transport {

namespace {

constexpr std::uint64_t kUpdateTimeoutMs = 1000;  // 100 ms misses network cameras, one second finds them
constexpr std::uint32_t kMostDevices = 65536;     // a larger count is a broken producer

int ReadState(const ProducerLibrary& producer, GenTL::IF_HANDLE interface, const std::string& deviceId) {
  const auto status = GetInteger([&](auto* type, void* buffer, std::size_t* size) {
    return producer.IFGetDeviceInfo(interface, deviceId.c_str(), GenTL::DEVICE_INFO_ACCESS_STATUS, type,
                                    buffer, size);
  });
  const bool isKnown = status && *status <= KELGENICAM::DEVICE_STATE_OPEN_READONLY;
  return isKnown ? static_cast<int>(*status) : static_cast<int>(KELGENICAM::DEVICE_STATE_UNKNOWN);
}

bool NeedsNodeMap(const CameraDescription& camera) {
  return camera.protocol == KELGENICAM::PROTOCOL_GIGE_VISION ||
         camera.protocol == KELGENICAM::PROTOCOL_USB3_VISION || camera.serial.empty() ||
         camera.userName.empty() || camera.state == KELGENICAM::DEVICE_STATE_UNKNOWN;
}

}  // namespace

InterfaceSearch::InterfaceSearch(const ProducerLibrary& producer, GenTL::IF_HANDLE interface,
                                 const std::string& interfaceId, const std::string& tlType,
                                 const std::string& displayName)
    : producer_(producer),
      interface_(interface),
      interfaceId_(interfaceId),
      tlType_(tlType),
      displayName_(displayName) {}

GenTL::GC_ERROR InterfaceSearch::Update() {
  return producer_.IFUpdateDeviceList(interface_, nullptr, kUpdateTimeoutMs);
}

std::string InterfaceSearch::Text(const std::string& deviceId, GenTL::DEVICE_INFO_CMD command) const {
  return GetString([&](auto* type, void* buffer, std::size_t* size) {
           return producer_.IFGetDeviceInfo(interface_, deviceId.c_str(), command, type, buffer, size);
         })
      .value_or("");
}

CameraDescription InterfaceSearch::Describe(const std::string& deviceId) const {
  CameraDescription camera;
  camera.key = CameraKey{producer_.Path(), interfaceId_, deviceId};
  const std::string tlType = Text(deviceId, GenTL::DEVICE_INFO_TLTYPE);
  camera.protocol = ProtocolOf(tlType.empty() ? tlType_ : tlType);
  camera.state = ReadState(producer_, interface_, deviceId);
  camera.serial = Text(deviceId, GenTL::DEVICE_INFO_SERIAL_NUMBER);
  camera.vendor = Text(deviceId, GenTL::DEVICE_INFO_VENDOR);
  camera.model = Text(deviceId, GenTL::DEVICE_INFO_MODEL);
  camera.name = Text(deviceId, GenTL::DEVICE_INFO_DISPLAYNAME);
  camera.userName = Text(deviceId, GenTL::DEVICE_INFO_USER_DEFINED_NAME);
  camera.version = Text(deviceId, GenTL::DEVICE_INFO_VERSION);
  if (camera.name.empty()) camera.name = camera.vendor + " " + camera.model + " (" + deviceId + ")";
  return camera;
}

void InterfaceSearch::Complete(CameraDescription& camera, std::uint32_t index,
                               GenApi_3_4::INodeMap* map) const {
  const DeviceSelection selection(map, index, camera.key.deviceId);
  if (selection) {
    if (camera.serial.empty()) camera.serial = ReadText(map, "DeviceSerialNumber").value_or("");
    if (camera.userName.empty()) camera.userName = ReadText(map, "DeviceUserID").value_or("");
    if (camera.state == KELGENICAM::DEVICE_STATE_UNKNOWN) {
      const auto state = ReadInteger(map, "DeviceAccessStatus");
      if (state && *state >= 0 && *state <= KELGENICAM::DEVICE_STATE_OPEN_READONLY) {
        camera.state = static_cast<int>(*state);
      }
    }
  }
  // Such a camera answers every search, and all that it lacks is another address. As "not reachable" nobody could
  // tell it from a dead one, so its state is that of a free camera and its address fields tell the rest.
  if (camera.protocol == KELGENICAM::PROTOCOL_GIGE_VISION &&
      camera.state == KELGENICAM::DEVICE_STATE_NOACCESS && LiesOutsideSubnet(map, selection)) {
    camera.state = KELGENICAM::DEVICE_STATE_READWRITE;
  }
  ReadAddressFields(map, selection, camera);
  if (camera.serial.empty()) camera.serial = camera.key.deviceId;
  if (camera.texts[KELGENICAM::TEXT_ADAPTER_NAME].empty()) {
    camera.texts[KELGENICAM::TEXT_ADAPTER_NAME] = displayName_;
  }
}

std::vector<CameraDescription> InterfaceSearch::Read(const std::function<GenApi_3_4::INodeMap*()>& nodeMap) {
  std::uint32_t count = 0;
  if (producer_.IFGetNumDevices(interface_, &count) != GenTL::GC_ERR_SUCCESS) return {};
  GenApi_3_4::INodeMap* map = nullptr;
  std::vector<CameraDescription> found;
  for (std::uint32_t i = 0; i < std::min(count, kMostDevices); ++i) {
    const auto id = GetString([&](auto*, void* buffer, std::size_t* size) {
      return producer_.IFGetDeviceID(interface_, i, static_cast<char*>(buffer), size);
    });
    if (!id || id->empty()) continue;
    CameraDescription camera = Describe(*id);
    if (!map && NeedsNodeMap(camera)) {
      map = nodeMap();
      InvalidateAll(map);  // the update changed what lies behind the nodes
    }
    Complete(camera, i, NeedsNodeMap(camera) ? map : nullptr);
    found.push_back(std::move(camera));
  }
  std::sort(found.begin(), found.end(),
            [](const CameraDescription& a, const CameraDescription& b) { return a.key < b.key; });
  return found;
}

}  // namespace zyn::transport
