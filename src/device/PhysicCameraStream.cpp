#include <array>
#include <cstring>

#include "Borrow.h"
#include "PhysicCamera.h"
#include "ZynCamera/HandleArrays.h"
#include "ZynCamera/ZynString.h"

namespace ZYNSDK {

namespace {

// In the order of the numbers from 1.
constexpr std::array<const char*, 5> kTriggerSources = {"Software", "Line1", "Line2", "Line3", "Line4"};

int NumberOfTriggerSource(const char* text) {
  for (std::size_t i = 0; i < kTriggerSources.size(); ++i) {
    if (std::strcmp(text, kTriggerSources[i]) == 0) return static_cast<int>(i) + 1;
  }
  return 0;
}

}  // namespace

long PhysicCamera::StartGrab(KELGENICAM::GRAB_STRATEGY strategy, int count) {
  Borrow camera(*this);
  if (!camera) return ZYN_ERROR_START_FAILED;
  return StartGrabAction(camera.Get(), strategy, count);
}

long PhysicCamera::StartGrabAction(KELGENICAM::ICamera* camera, KELGENICAM::GRAB_STRATEGY strategy,
                                   int count) {
  constexpr int kUnlimited = -1;
  if (!camera->IsOpen()) return ZYN_ERROR_START_FAILED;
  if (camera->IsGrabbing()) return ZYN_ERROR_ALREADY_GRABBING;
  triggerSource_ = 0;
  triggerSource_ = ReadTriggerSource();
  if (const int result = camera->StartGrabbing(strategy, count == 0 ? kUnlimited : count)) return result;
  return camera->IsGrabbing() ? ZYN_OK : ZYN_ERROR_START_FAILED;
}

// Only looks: how the camera is triggered is the application's business.
int PhysicCamera::ReadTriggerSource() {
  ZynString mode;
  ZynString source;
  ZynStringArray entries;
  if (GetEnum("TriggerMode", ZYN_XML_REMOTE_DEVICE, mode, entries) != ZYN_OK) return 0;
  if (GetEnum("TriggerSource", ZYN_XML_REMOTE_DEVICE, source, entries) != ZYN_OK) return 0;
  if (std::strcmp(mode.getStr(), "On") != 0) return 0;
  return NumberOfTriggerSource(source.getStr());
}

}  // namespace ZYNSDK
