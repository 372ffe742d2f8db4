#include "FakeCamera.h"

#include <gtest/gtest.h>

namespace fakes {

FakeCamera::~FakeCamera() {
  if (isMade_ && releases_ == 0 && !mayStayMade) ADD_FAILURE() << "camera not released";
}

void FakeCamera::Enter(const char* name) {
  if (releases_ > 0) ADD_FAILURE() << name << " on a released camera";
  calls.Add(name);
  if (hook) hook(name);
}

int FakeCamera::Open(int mode) {
  Enter("Open");
  accessMode = mode;
  isOpen = openResult == 0;
  return openResult;
}

int FakeCamera::Close() {
  Enter("Close");
  isOpen = false;
  isGrabbing = false;
  return closeResult;
}

bool FakeCamera::IsOpen() {
  Enter("IsOpen");
  return isOpen;
}

bool FakeCamera::IsOnline() {
  Enter("IsOnline");
  return isOnline;
}

int FakeCamera::StartGrabbing(KELGENICAM::GRAB_STRATEGY newStrategy, int frameCount) {
  Enter("StartGrabbing");
  strategy = newStrategy;
  count = frameCount;
  isGrabbing = startResult == 0 && comesUp;
  return startResult;
}

int FakeCamera::StopGrabbing() {
  Enter("StopGrabbing");
  isGrabbing = false;
  return stopResult;
}

bool FakeCamera::IsGrabbing() {
  Enter("IsGrabbing");
  const bool answer = isGrabbing;
  if (afterIsGrabbing) afterIsGrabbing();
  return answer;
}

void FakeCamera::Deliver(int result, FakeImage* image) {
  zyn::MutexLock lock(mutex_);
  frames_.push_back({result, image});
}

int FakeCamera::Grab(KELGENICAM::IImage** image, int milliseconds) {
  Enter("Grab");
  timeoutMs = milliseconds;
  zyn::MutexLock lock(mutex_);
  if (frames_.empty()) return grabResult;
  const Frame frame = frames_.front();
  frames_.pop_front();
  if (frame.image) frame.image->HandOut();
  *image = frame.image;
  return frame.result;
}

KELGENICAM::INodeMapHolder* FakeCamera::Holder(const char* name, FakeNodeMapHolder& holder) {
  Enter(name);
  return hasHolders ? &holder : nullptr;
}

KELGENICAM::INodeMapHolder* FakeCamera::TLNodeMap() {
  return Holder("TLNodeMap", tlMap);
}
KELGENICAM::INodeMapHolder* FakeCamera::InterfaceNodeMap() {
  return Holder("InterfaceNodeMap", interfaceMap);
}
KELGENICAM::INodeMapHolder* FakeCamera::LocalDeviceNodeMap() {
  return Holder("LocalDeviceNodeMap", localMap);
}
KELGENICAM::INodeMapHolder* FakeCamera::RemoteDeviceNodeMap() {
  return Holder("RemoteDeviceNodeMap", remoteMap);
}
KELGENICAM::INodeMapHolder* FakeCamera::DataStreamNodeMap() {
  return Holder("DataStreamNodeMap", streamMap);
}

int FakeCamera::SetCLCameraParam(const char* name, const char* value) {
  Enter("SetCLCameraParam");
  paramName = name;
  paramValue = value;
  return paramResult;
}

int FakeCamera::RegisterNotify(KELGENICAM::NOTIFY_SRC source, KELGENICAM::NOTIFY_TYPE type,
                               KELGENICAM::INotify* newReceiver) {
  Enter("RegisterNotify");
  notifySource = source;
  notifyType = type;
  receiver = newReceiver;
  return notifyResult;
}

void FakeCamera::Release() {
  calls.Add("Release");
  if (++releases_ > 1) ADD_FAILURE() << "camera released twice";
  if (hook) hook("Release");
}

}  // namespace fakes
