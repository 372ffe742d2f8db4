#include "Camera.h"

#include <chrono>
#include <new>
#include <utility>

#include "../module/Features.h"
#include "../producer/Background.h"

namespace zyn::transport {

namespace {

constexpr std::chrono::seconds kEndLimit{3};
constexpr std::chrono::seconds kOpeningLimit{3};  // an Open under way keeps a Close no longer

// No exception leaves the library: what goes wrong inside becomes a result.
template <class Work>
int Guarded(Work&& work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    return KELGENICAM::RESULT_OUT_OF_MEMORY;
  } catch (...) {
    return KELGENICAM::RESULT_ERROR;
  }
}

bool IsAccessMode(int mode) {
  return mode >= KELGENICAM::ACCESS_READ_ONLY && mode <= KELGENICAM::ACCESS_EXCLUSIVE;
}

int ToResult(FeatureResult result) {
  switch (result) {
    case FeatureResult::kOk:
      return KELGENICAM::RESULT_OK;
    case FeatureResult::kAbsent:
      return KELGENICAM::RESULT_NOT_AVAILABLE;
    case FeatureResult::kRefused:
      return KELGENICAM::RESULT_INVALID_ARGUMENT;
    case FeatureResult::kFailed:
      break;
  }
  return KELGENICAM::RESULT_ERROR;
}

}  // namespace

Camera::Camera(const CameraInfo& info) : info_(info) {}

void Camera::LeaveCall() {
  if (users_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

std::shared_ptr<Device> Camera::CurrentDevice() {
  MutexLock lock(mutex_);
  return device_;
}

void Camera::Publish(const std::shared_ptr<Device>& device) {
  device_ = device;
  maps_ = {device->SystemMap(), device->InterfaceMap(), device->LocalMap(), device->RemoteMap(),
           device->StreamMap()};
  for (std::size_t i = 0; i < kModules; ++i) holders_[i].Set(maps_[i] ? maps_[i]->Map() : nullptr);
}

int Camera::Open(int accessMode) {
  const Call call(*this);
  if (!IsAccessMode(accessMode)) return KELGENICAM::RESULT_INVALID_ARGUMENT;
  MutexLock lock(mutex_);
  if (phase_ == Phase::kOpening) return KELGENICAM::RESULT_BUSY;
  if (phase_ == Phase::kOpen) return KELGENICAM::RESULT_ALREADY_OPEN;
  phase_ = Phase::kOpening;
  lock.Unlock();
  std::shared_ptr<Device> device;
  const int result = Guarded([&] {
    int opened = KELGENICAM::RESULT_OK;
    device = Device::Open(info_.Description(), accessMode, {notifier_, pool_}, opened);
    return opened;
  });
  lock.Lock();
  const bool isAbandoned = std::exchange(isAbandoned_, false);
  if (isAbandoned && device) {
    lock.Unlock();
    Guarded([&] {
      Device::Close(std::move(device));
      return KELGENICAM::RESULT_OK;
    });
    device = nullptr;
    lock.Lock();
  }
  phase_ = device ? Phase::kOpen : Phase::kClosed;
  if (device) Publish(device);
  opened_.notify_all();
  return isAbandoned ? static_cast<int>(KELGENICAM::RESULT_ABORTED) : result;
}

int Camera::Close() {
  const Call call(*this);
  return End();
}

int Camera::End() {
  MutexLock lock(mutex_);
  const auto deadline = std::chrono::steady_clock::now() + kOpeningLimit;
  while (phase_ == Phase::kOpening) {
    if (!isAbandoned_ && lock.WaitUntil(opened_, deadline)) continue;
    if (phase_ != Phase::kOpening) break;
    isAbandoned_ = true;
    return KELGENICAM::RESULT_OK;
  }
  phase_ = Phase::kClosed;
  std::shared_ptr<Device> device = std::exchange(device_, nullptr);
  for (Holder& holder : holders_) holder.Set(nullptr);
  lock.Unlock();
  if (!device) return KELGENICAM::RESULT_OK;
  return Guarded([&] {
    Device::Close(std::move(device));
    return KELGENICAM::RESULT_OK;
  });
}

bool Camera::IsOpen() {
  const Call call(*this);
  return CurrentDevice() != nullptr;
}

bool Camera::IsOnline() {
  const Call call(*this);
  const std::shared_ptr<Device> device = CurrentDevice();
  return device && device->IsOnline();
}

int Camera::StartGrabbing(KELGENICAM::GRAB_STRATEGY strategy, int frameCount) {
  const Call call(*this);
  const auto kind = static_cast<int>(strategy);
  const bool isStrategy = kind >= KELGENICAM::GRAB_ONE_BY_ONE && kind <= KELGENICAM::GRAB_UPCOMING_IMAGE;
  if (!isStrategy || frameCount < -1 || frameCount == 0) return KELGENICAM::RESULT_INVALID_ARGUMENT;
  const std::shared_ptr<Device> device = CurrentDevice();
  if (!device) return KELGENICAM::RESULT_NOT_OPEN;
  if (device->IsLost()) return KELGENICAM::RESULT_DEVICE_LOST;
  if (!device->DataStream()) return device->StreamResult();
  return Guarded([&] { return device->DataStream()->StartGrabbing(strategy, frameCount); });
}

int Camera::StopGrabbing() {
  const Call call(*this);
  const std::shared_ptr<Device> device = CurrentDevice();
  if (!device) return KELGENICAM::RESULT_NOT_OPEN;
  if (!device->DataStream()) return KELGENICAM::RESULT_NOT_GRABBING;
  return Guarded([&] { return device->DataStream()->StopGrabbing(); });
}

bool Camera::IsGrabbing() {
  const Call call(*this);
  const std::shared_ptr<Device> device = CurrentDevice();
  return device && device->DataStream() && device->DataStream()->IsGrabbing();
}

int Camera::Grab(KELGENICAM::IImage** image, int timeoutMs) {
  const Call call(*this);
  if (image) *image = nullptr;
  if (!image || timeoutMs < 0) return KELGENICAM::RESULT_INVALID_ARGUMENT;
  const std::shared_ptr<Device> device = CurrentDevice();
  if (!device) return KELGENICAM::RESULT_NOT_OPEN;
  if (!device->DataStream()) return KELGENICAM::RESULT_NOT_GRABBING;
  return Guarded([&] { return device->DataStream()->Grab(image, timeoutMs); });
}

int Camera::SetCLCameraParam(const char* name, const char* value) {
  const Call call(*this);
  if (!name || !value) return KELGENICAM::RESULT_INVALID_ARGUMENT;
  const std::shared_ptr<Device> device = CurrentDevice();
  if (!device) return KELGENICAM::RESULT_NOT_OPEN;
  if (!device->LocalMap()->Map()) return KELGENICAM::RESULT_NOT_IMPLEMENTED;
  return Guarded([&] { return ToResult(WriteText(device->LocalMap()->Map(), name, value)); });
}

int Camera::RegisterNotify(KELGENICAM::NOTIFY_SRC source, KELGENICAM::NOTIFY_TYPE type,
                           KELGENICAM::INotify* receiver) {
  const Call call(*this);
  const bool isKnown = notifier_->Register(static_cast<int>(source), static_cast<int>(type), receiver);
  return isKnown ? KELGENICAM::RESULT_OK : KELGENICAM::RESULT_INVALID_ARGUMENT;
}

// The maps of system and interface may be the last that keeps their producer in use after UnInit.
void Camera::LetGoOfMaps() {
  MutexLock lock(mutex_);
  auto maps = std::exchange(maps_, {});
  lock.Unlock();
  Guarded([&] {
    const Background ending = Background::Run([last = std::move(maps)]() mutable { last = {}; });
    ending.WaitUntil(std::chrono::steady_clock::now() + kEndLimit);
    return KELGENICAM::RESULT_OK;
  });
}

void Camera::Release() {
  End();
  notifier_->End();
  LetGoOfMaps();
  LeaveCall();
}

}  // namespace zyn::transport
