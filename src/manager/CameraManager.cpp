#include "CameraManager.h"

#include <utility>

#include "EmptyText.h"
#include "HandleOn.h"
#include "KELGeniCam.h"
#include "LogicCamera.h"
#include "PhysicCamera.h"
#include "ZynCamera/Status.h"

namespace ZYNSDK {

namespace {

constexpr int kAllKinds = 0;
constexpr int kOnly2D = 2;
constexpr int kOnly3D = 3;

bool IsOfKind(LogicCamera& camera, int kind) {
  if (kind == kOnly2D) return !camera.Is3DCamera();
  if (kind == kOnly3D) return camera.Is3DCamera();
  return true;
}

template <class Array, class Handle>
void Fill(Array& out, const std::vector<LogicCamera*>& cameras) {
  for (LogicCamera* camera : cameras) out.push_back(HandleOn<Handle>(camera));
}

ZynStringArray ToStrings(const std::list<std::string>& texts) {
  ZynStringArray strings;
  for (const std::string& text : texts) {
    ZynString string;
    string = text.c_str();
    strings.push_back(string);
  }
  return strings;
}

}  // namespace

CameraManager::CameraManager(ScanThread::Tick tick) : tick_(std::move(tick)) {}

CameraManager::~CameraManager() {
  scanThread_.reset();  // before the cameras and listeners that it uses
}

long CameraManager::ZynSDKInit() {
  KELGENICAM::Init();
  return ZYN_OK;
}

long CameraManager::ZynSDKUnInit() {
  KELGENICAM::UnInit();
  return ZYN_OK;
}

void CameraManager::SearchCameras() {
  std::list<KELGENICAM::ICameraInfo*> present;
  PhysicCamera::SearchCameras(present);
  Reconcile(present);
}

// Design decision: cameras of the other protocols count as absent until the next search without a filter.
// Pinned by ASearchByProtocolTakesOtherCamerasOffline.
void CameraManager::SearchCamerasByProtocolType(unsigned long protocolType) {
  std::list<KELGENICAM::ICameraInfo*> present;
  PhysicCamera::SearchCamerasByProtocolType(protocolType, present);
  Reconcile(present);
}

void CameraManager::Reconcile(const std::list<KELGENICAM::ICameraInfo*>& present) {
  zyn::MutexLock lock(registryMutex_);
  for (auto& [serialNumber, camera] : cameras_) camera->SetUnseen(true);
  for (KELGENICAM::ICameraInfo* info : present) {
    if (info) Meet(*info);
  }
  for (auto& [serialNumber, camera] : cameras_) {
    if (!camera->IsUnseen()) continue;
    camera->SetUnseen(false);
    camera->SetOnline(false);
  }
}

void CameraManager::Meet(KELGENICAM::ICameraInfo& info) {
  const std::string serialNumber = TextOrEmpty(info.SerialNumber());
  const auto known = cameras_.find(serialNumber);
  if (known == cameras_.end()) {
    cameras_.emplace(serialNumber, std::make_unique<LogicCamera>(&info));
    return;
  }
  known->second->replaceAttribute(&info);
  known->second->SetUnseen(false);
  known->second->SetOnline(true);
}

std::vector<LogicCamera*> CameraManager::Collect(int kind) {
  std::vector<LogicCamera*> collected;
  zyn::MutexLock lock(registryMutex_);
  for (auto& [serialNumber, camera] : cameras_) {
    if (camera->IsOnline() && IsOfKind(*camera, kind)) collected.push_back(camera.get());
  }
  return collected;
}

std::vector<LogicCamera*> CameraManager::DiscoveryCameras(int kind) {
  SearchCameras();
  return Collect(kind);
}

std::vector<LogicCamera*> CameraManager::DiscoveryCamerasByProtocolType(unsigned long protocolType) {
  SearchCamerasByProtocolType(protocolType);
  return Collect(kAllKinds);
}

LogicCamera* CameraManager::FindCamera(const char* serialNumber) {
  const std::string key = TextOrEmpty(serialNumber);
  zyn::MutexLock lock(registryMutex_);
  const auto known = cameras_.find(key);
  return known == cameras_.end() ? nullptr : known->second.get();
}

LogicCamera* CameraManager::DiscoveryCamera(const char* serialNumber) {
  if (!serialNumber) return nullptr;
  if (LogicCamera* known = FindCamera(serialNumber)) return known;
  SearchCameras();
  return FindCamera(serialNumber);
}

long CameraManager::DiscoveryCameras(ZynCameraArray* out) {
  if (!out) return ZYN_ERROR_INVALID_ARGUMENT;
  out->clear();
  Fill<ZynCameraArray, ZynCamera>(*out, DiscoveryCameras(kOnly2D));
  return ZYN_OK;
}

long CameraManager::Discovery3DCameras(Zyn3DCameraArray* out) {
  if (!out) return ZYN_ERROR_INVALID_ARGUMENT;
  out->clear();
  Fill<Zyn3DCameraArray, Zyn3DCamera>(*out, DiscoveryCameras(kOnly3D));
  return ZYN_OK;
}

long CameraManager::DiscoveryCamerasByProtocolType(unsigned long protocolType, ZynCameraArray* out) {
  if (!out) return ZYN_ERROR_INVALID_ARGUMENT;
  out->clear();
  Fill<ZynCameraArray, ZynCamera>(*out, DiscoveryCamerasByProtocolType(protocolType));
  return ZYN_OK;
}

long CameraManager::DiscoveryAllCameras(std::vector<ZynCamera>* out2D, std::vector<Zyn3DCamera>* out3D) {
  if (!out2D || !out3D) return ZYN_ERROR_INVALID_ARGUMENT;
  for (LogicCamera* camera : DiscoveryCameras(kAllKinds)) {
    if (camera->Is3DCamera()) {
      out3D->push_back(HandleOn<Zyn3DCamera>(camera));
    } else {
      out2D->push_back(HandleOn<ZynCamera>(camera));
    }
  }
  return ZYN_OK;
}

long CameraManager::DiscoveryCamera(const char* serialNumber, ZynCamera* out) {
  if (!serialNumber || !out) return ZYN_ERROR_INVALID_ARGUMENT;
  LogicCamera* camera = DiscoveryCamera(serialNumber);
  if (!camera || camera->Is3DCamera()) return ZYN_ERROR_NO_SUCH_CAMERA;
  *out = HandleOn<ZynCamera>(camera);
  return ZYN_OK;
}

long CameraManager::Discovery3DCamera(const char* serialNumber, Zyn3DCamera* out) {
  if (!serialNumber || !out) return ZYN_ERROR_INVALID_ARGUMENT;
  LogicCamera* camera = DiscoveryCamera(serialNumber);
  if (!camera || !camera->Is3DCamera()) return ZYN_ERROR_NO_SUCH_CAMERA;
  *out = HandleOn<Zyn3DCamera>(camera);
  return ZYN_OK;
}

ZynStringArray CameraManager::GetCLCameraProtocols() {
  std::list<std::string> protocols;
  KELGENICAM::GetCLProtocols(protocols);
  return ToStrings(protocols);
}

ZynStringArray CameraManager::GetCLCameraSerials() {
  std::list<std::string> serials;
  KELGENICAM::GetCLSerials(serials);
  return ToStrings(serials);
}

// The lock is taken inside: only the names of the listeners are used here, not their content.
long CameraManager::RegisterCameraEventHandler(ICameraEventHandler* handler) ZYN_NO_THREAD_SAFETY_ANALYSIS {
  RegisterScanListener(listener2D_, handler, nullptr);
  return ZYN_OK;
}

long CameraManager::Register3DCameraEventHandler(I3DCameraEventHandler* handler)
    ZYN_NO_THREAD_SAFETY_ANALYSIS {
  RegisterScanListener(listener3D_, nullptr, handler);
  return ZYN_OK;
}

// Design decision: a listener starts afresh at every registration, so a handler that is registered again hears
// of all cameras again. Pinned by CameraEventsTest.RegisteringTheSameHandlerAgainReportsAllCamerasAgain.
void CameraManager::RegisterScanListener(ScanListener& listener, ICameraEventHandler* handler2D,
                                         I3DCameraEventHandler* handler3D) {
  std::unique_ptr<ScanThread> ended;  // goes after the lock: the thread needs it to come to its end
  zyn::MutexLock lock(listenerMutex_);
  listener.Set(handler2D);
  listener.Set(handler3D);
  if (!listener2D_.IsValid() && !listener3D_.IsValid()) {
    ended = std::move(scanThread_);
  } else if (!scanThread_) {
    scanThread_ = std::make_unique<ScanThread>(this, tick_);
  }
}

ScanListener::Cameras CameraManager::Snapshot() {
  ScanListener::Cameras cameras;
  zyn::MutexLock lock(registryMutex_);
  for (const auto& [serialNumber, camera] : cameras_) cameras.emplace(serialNumber, camera.get());
  return cameras;
}

void CameraManager::ScanForListeners() {
  SearchCameras();
  const ScanListener::Cameras registered = Snapshot();
  zyn::MutexLock lock(listenerMutex_);
  listener2D_.OnScan(registered);
  listener3D_.OnScan(registered);
}

}  // namespace ZYNSDK
