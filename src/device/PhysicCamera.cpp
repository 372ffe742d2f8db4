#include "PhysicCamera.h"

#include <memory>
#include <utility>

#include "Borrow.h"
#include "EmptyText.h"
#include "GevIpLib.h"
#include "TraceLine.h"

namespace ZYNSDK {

namespace {

KELGENICAM::ICamera* Create(KELGENICAM::ICameraInfo* info, const std::string& serialNumber) {
  if (info) return KELGENICAM::CreateCamera(info);
  if (serialNumber.empty()) return nullptr;
  return KELGENICAM::CreateCameraBySN(serialNumber);
}

// Releases the device and frees the record, also when releasing throws.
void Destroy(RefCamera* record) {
  const std::unique_ptr<RefCamera> owned(record);
  owned->camera->Release();
}

}  // namespace

long PhysicCamera::Open(KELGENICAM::ICameraInfo* info) {
  return NewRefCam(info, std::string());
}

long PhysicCamera::Open(const std::string& serialNumber) {
  return NewRefCam(nullptr, serialNumber);
}

KELGENICAM::ICamera* PhysicCamera::OpenCamera(KELGENICAM::ICameraInfo* info, const std::string& serialNumber,
                                              long& result) {
  TransportCamera camera(Create(info, serialNumber));
  if (!camera) {
    result = ZYN_ERROR_NOT_CREATED;
    return nullptr;
  }
  if (camera->Open(KELGENICAM::ACCESS_CONTROL) != KELGENICAM::RESULT_OK) {
    result = ZYN_ERROR_OPEN_FAILED;
    return nullptr;
  }
  result = ZYN_OK;
  return camera.Detach();
}

long PhysicCamera::NewRefCam(KELGENICAM::ICameraInfo* info, const std::string& serialNumber) {
  zyn::MutexLock lock(mutex_);
  if (current_) return ZYN_ERROR_ALREADY_OPEN;
  long result = ZYN_OK;
  TransportCamera camera(OpenCamera(info, serialNumber, result));
  if (!camera) return result;
  if (!info) return ZYN_ERROR_NOT_CREATED;  // the record takes the serial number from the description
  auto record = std::make_unique<RefCamera>();
  record->serialNumber = TextOrEmpty(info->SerialNumber());
  record->camera = camera.Detach();
  current_ = record.release();
  return ZYN_OK;
}

long PhysicCamera::Close() {
  return DeleteRefCam() ? ZYN_OK : ZYN_ERROR_NOT_OPEN;
}

// Design decision: the transport's close is called only when nobody borrows the device. A borrower that gives
// it back later only releases it, which ends whatever still runs. Pinned by
// CloseDuringGrabReturnsAtOnceAndTheGrabReleasesWithoutClosing.
bool PhysicCamera::DeleteRefCam() {
  zyn::MutexLock lock(mutex_);
  if (!current_) return false;
  RefCamera* record = std::exchange(current_, nullptr);
  if (--record->count > 0) return true;
  const std::unique_ptr<RefCamera> owned(record);
  const TransportCamera camera(record->camera);
  camera->Close();
  return true;
}

RefCamera* PhysicCamera::Ref() {
  zyn::MutexLock lock(mutex_);
  if (current_) ++current_->count;
  return current_;
}

void PhysicCamera::UnRef(RefCamera* record) {
  if (!record) return;
  zyn::MutexLock lock(mutex_);
  if (--record->count == 0) Destroy(record);
}

bool PhysicCamera::IsOpen(KELGENICAM::ICameraInfo* info) {
  Borrow camera(*this);
  if (!camera) return false;
  const bool countsOnline = !info || info->ProtocolType() == KELGENICAM::PROTOCOL_GIGE_VISION;
  return camera->IsOpen() && (!countsOnline || camera->IsOnline());
}

bool PhysicCamera::IsGrabbing() {
  Borrow camera(*this);
  return camera && camera->IsOpen() && camera->IsGrabbing();
}

long PhysicCamera::Grab(KELGENICAM::IImage** image, int timeoutMs) {
  Borrow camera(*this);
  if (!camera) return ZYN_ERROR_NOT_OPEN;
  if (!camera->IsGrabbing()) return ZYN_ERROR_NOT_GRABBING;
  return camera->Grab(image, timeoutMs);
}

// Design decision: a closed device answers "not grabbing" here, while Grab answers "not open". Pinned by
// EveryOperationHasItsCodeForAClosedDevice.
long PhysicCamera::StopGrab() {
  Borrow camera(*this);
  if (!camera) return ZYN_ERROR_NOT_GRABBING;
  camera->StopGrabbing();
  return ZYN_OK;
}

long PhysicCamera::RegisterNotify(KELGENICAM::NOTIFY_SRC source, KELGENICAM::NOTIFY_TYPE type,
                                  KELGENICAM::INotify* receiver) {
  Borrow camera(*this);
  if (!camera) return ZYN_ERROR_NOT_OPEN;
  return camera->RegisterNotify(source, type, receiver);
}

long PhysicCamera::SetCLCameraParam(const char* name, const char* value) {
  Borrow camera(*this);
  if (!camera) return ZYN_ERROR_NO_OBJECT;
  camera->SetCLCameraParam(name, value);
  return ZYN_OK;
}

long PhysicCamera::SetGevIpAddress(KELGENICAM::ICameraInfo& info, const char* ip, const char* mask,
                                   const char* gateway, bool flag) {
  const std::string serialNumber = TextOrEmpty(info.SerialNumber());
  TraceLine(std::string("set ip: ") + ip);
  TraceLine(std::string("set mask: ") + mask);
  TraceLine(std::string("set gateway: ") + gateway);
  const int result = ::SetCameraIP(serialNumber, ip, mask, gateway, flag);
  TraceLine("SetCameraIP return: " + std::to_string(result));
  return result == 0 ? ZYN_OK : ZYN_ERROR_INVALID_ARGUMENT;
}

}  // namespace ZYNSDK
