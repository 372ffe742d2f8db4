#include "Camera.h"

#include <KELGeniCam.h>

#include <algorithm>
#include <list>
#include <utility>

#include "Console.h"
#include "Failure.h"

namespace zyncam {
namespace {

std::string TextOf(const char* text) {
  return text != nullptr ? text : "";
}

std::string ProtocolText(unsigned int protocol) {
  if (protocol == 1) return "GigE Vision";
  if (protocol == 2) return "USB3 Vision";
  if (protocol == 4) return "Camera Link";
  if (protocol == 8) return "CoaXPress";
  return "other";
}

std::string StatusText(int status) {
  constexpr const char* kTexts[] = {"ready", "busy", "wrong subnet", "unreachable"};
  return status >= 0 && status < 3 ? kTexts[status] : kTexts[3];
}

bool Matches(const CameraDescription& camera, const std::string& wanted) {
  return wanted == camera.serialNumber || wanted == camera.userDefinedName || wanted == camera.address ||
         wanted == camera.mac || wanted == camera.model;
}

std::string SerialsOf(const std::vector<CameraDescription>& cameras) {
  std::string text;
  for (const CameraDescription& camera : cameras) text += (text.empty() ? "" : ", ") + camera.serialNumber;
  return text;
}

}  // namespace

Camera::Camera(Camera&& other) noexcept
    : is3D_(other.is3D_),
      opened_(std::exchange(other.opened_, false)),
      camera2D_(other.camera2D_),
      camera3D_(other.camera3D_) {}

CameraDescription Camera::Describe() {
  CameraDescription result;
  const std::unique_ptr<ZYNSDK::ZynCameraAttribute> attribute(is3D_ ? camera3D_.Attribute()
                                                                    : camera2D_.Attribute());
  if (!attribute) return result;
  result.serialNumber = TextOf(attribute->CameraSerialNumber());
  result.model = TextOf(attribute->CameraModel());
  result.manufacturer = TextOf(attribute->CameraManufactureName());
  result.name = TextOf(attribute->CameraName());
  result.userDefinedName = TextOf(attribute->UserdefName());
  result.version = TextOf(attribute->CameraVersion());
  result.identifier = TextOf(attribute->CameraID());
  result.protocol = ProtocolText(attribute->ProtocolType());
  result.statusCode = static_cast<int>(attribute->CameraStatus());
  result.status = StatusText(result.statusCode);
  result.address = TextOf(attribute->CameraIp());
  result.mac = TextOf(attribute->CameraMac());
  result.mask = TextOf(attribute->CameraMask());
  result.gateway = TextOf(attribute->CameraGateway());
  result.adapter = TextOf(attribute->AdapterName());
  result.adapterAddress = TextOf(attribute->AdapterIP());
  result.adapterMask = TextOf(attribute->AdapterMask());
  result.guid = TextOf(attribute->CameraGUID());
  result.is3D = is3D_;
  return result;
}

std::string Camera::Label() {
  const CameraDescription description = Describe();
  return description.model + " (" + description.serialNumber + ")";
}

void Camera::Open(const std::string& cardFile) {
  if (is3D_ && !cardFile.empty()) {
    throw Failure(kExitFailed, Label() + " is a 3D camera, which is opened without the file of a card",
                  "leave out --card, or choose a 2D camera with -c");
  }
  const long status = is3D_ ? camera3D_.Open() : camera2D_.Open(cardFile.c_str());
  opened_ = status == 0;
  if (opened_) return;
  // A camera whose file cannot be read is open all the same.
  if (!is3D_ && camera2D_.IsOpen()) {
    camera2D_.Close();
    throw Failure::OfStatus("cannot configure the card of " + Label() + " with " + cardFile, status);
  }
  throw Failure::OfStatus("cannot open " + Label(), status);
}

void Camera::Close() {
  if (!opened_) return;
  opened_ = false;
  is3D_ ? camera3D_.Close() : camera2D_.Close();
}

ZYNSDK::ZynCamera& Camera::For2DGrab() {
  if (is3D_) {
    throw Failure(kExitFailed,
                  Label() + " is a 3D laser-profile camera, which delivers profiles instead of images",
                  "choose a 2D camera with -c");
  }
  return camera2D_;
}

ZYNSDK::Zyn3DCamera& Camera::For3DGrab() {
  if (!is3D_) {
    throw Failure(kExitFailed, Label() + " is a 2D camera, which delivers images instead of profiles",
                  "choose a 3D laser-profile camera with -c");
  }
  return camera3D_;
}

GenApi_3_4::INodeMap& Camera::NodeMap(int source) {
  const auto xmlSource = static_cast<ZYNSDK::ZynXmlSource>(source);
  GenApi_3_4::INodeMap* map = is3D_ ? ZYNSDK::Get3DCameraNodeMap(&camera3D_, xmlSource)
                                    : ZYNSDK::Get2DCameraNodeMap(&camera2D_, xmlSource);
  if (map == nullptr) throw Failure::OfStatus("cannot get the node map", ZYNSDK::ZYN_ERROR_NO_NODE_MAP);
  return *map;
}

Session::Session() {
  ZYNSDK::ZynSDKInit();
}

Session::~Session() {
  ZYNSDK::ZynSDKUnInit();
}

std::vector<Camera> Session::Search() {
  std::vector<ZYNSDK::ZynCamera> found2D;
  std::vector<ZYNSDK::Zyn3DCamera> found3D;
  const long status = ZYNSDK::DiscoveryAllCameras(&found2D, &found3D);
  if (status != 0) throw Failure::OfStatus("the search failed", status);

  std::vector<std::pair<std::string, Camera>> keyed;
  const auto add = [&keyed](const auto& handle) {
    Camera camera(handle);
    std::string serial = camera.Describe().serialNumber;
    keyed.emplace_back(std::move(serial), std::move(camera));
  };
  for (const ZYNSDK::ZynCamera& handle : found2D) add(handle);
  for (const ZYNSDK::Zyn3DCamera& handle : found3D) add(handle);

  // Camera cannot be assigned, so the order is made on the keys.
  std::vector<std::size_t> order(keyed.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::sort(order.begin(), order.end(),
            [&](std::size_t a, std::size_t b) { return keyed[a].first < keyed[b].first; });
  std::vector<Camera> cameras;
  cameras.reserve(keyed.size());
  for (const std::size_t i : order) cameras.push_back(std::move(keyed[i].second));
  return cameras;
}

Camera Session::Select(const std::string& wanted) {
  std::vector<Camera> cameras = Search();
  if (cameras.empty()) {
    ReportUnloadedProducers();
    throw Failure(kExitNoCamera, "no camera found", "check cable, power and the adapter's address");
  }
  std::vector<CameraDescription> descriptions;
  descriptions.reserve(cameras.size());
  for (Camera& camera : cameras) descriptions.push_back(camera.Describe());

  std::vector<std::size_t> hits;
  for (std::size_t i = 0; i < cameras.size(); ++i) {
    if (wanted.empty() || Matches(descriptions[i], wanted)) hits.push_back(i);
  }
  if (hits.size() == 1) return std::move(cameras[hits.front()]);
  if (hits.empty()) {
    throw Failure(kExitNoCamera, "no camera matches \"" + wanted + "\"",
                  "cameras found: " + SerialsOf(descriptions));
  }
  throw Failure(kExitNoCamera, std::to_string(hits.size()) + " cameras match",
                "choose one with -c SERIAL: " + SerialsOf(descriptions));
}

void ReportUnloadedProducers() {
  std::list<KELGENICAM::LoadReportEntry> entries;
  KELGENICAM::LoadReport(entries);
  for (const KELGENICAM::LoadReportEntry& entry : entries) {
    if (!entry.loaded) Console::Note("zyncam: not used: " + entry.path + ": " + entry.message);
  }
}

}  // namespace zyncam
