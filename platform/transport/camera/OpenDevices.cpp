#include "OpenDevices.h"

#include <chrono>
#include <utility>

namespace zyn::transport {

namespace {

constexpr std::chrono::seconds kClosingLimit{10};

}  // namespace

OpenDevices& OpenDevices::Instance() {
  static auto* const devices = new OpenDevices;  // never destroyed: closing may go on in the background
  return *devices;
}

std::shared_ptr<OpenDevices::Claim> OpenDevices::TryClaim(const CameraKey& key, int& result) {
  const auto deadline = std::chrono::steady_clock::now() + kClosingLimit;
  MutexLock lock(mutex_);
  for (auto it = entries_.find(key); it != entries_.end(); it = entries_.find(key)) {
    if (!it->second.isClosing) {
      result = KELGENICAM::RESULT_ALREADY_OPEN;
      return nullptr;
    }
    if (!lock.WaitUntil(closed_, deadline) && entries_.count(key) != 0) {
      result = KELGENICAM::RESULT_BUSY;
      return nullptr;
    }
  }
  entries_[key] = Entry{};
  lock.Unlock();
  result = KELGENICAM::RESULT_OK;
  return std::make_shared<Claim>(*this, key);
}

int OpenDevices::StateOf(const CameraKey& key, int state) {
  MutexLock lock(mutex_);
  const auto it = entries_.find(key);
  if (it == entries_.end() || it->second.isClosing) return state;
  // Producers before version 1.5 of the interface cannot say that a device is open here.
  const bool saysFree = state == KELGENICAM::DEVICE_STATE_UNKNOWN ||
                        state == KELGENICAM::DEVICE_STATE_READWRITE ||
                        state == KELGENICAM::DEVICE_STATE_READONLY;
  if (!saysFree) return state;
  return it->second.isReadOnly ? KELGENICAM::DEVICE_STATE_OPEN_READONLY
                               : KELGENICAM::DEVICE_STATE_OPEN_READWRITE;
}

OpenDevices::Claim::~Claim() {
  MutexLock lock(owner_.mutex_);
  owner_.entries_.erase(key_);
  owner_.closed_.notify_all();
}

void OpenDevices::Claim::BeginClosing() {
  MutexLock lock(owner_.mutex_);
  owner_.entries_[key_].isClosing = true;
}

void OpenDevices::Claim::SetReadOnly() {
  MutexLock lock(owner_.mutex_);
  owner_.entries_[key_].isReadOnly = true;
}

}  // namespace zyn::transport
