#ifndef ZYN_FAKES_FAKE_CAMERA_H
#define ZYN_FAKES_FAKE_CAMERA_H

#include <array>
#include <atomic>
#include <deque>
#include <functional>
#include <string>

#include "CallLog.h"
#include "FakeImage.h"
#include "KELGeniCam.h"
#include "ThreadAnnotations.h"

namespace fakes {

class FakeNodeMapHolder : public KELGENICAM::INodeMapHolder {
 public:
  GenApi_3_4::INodeMap* NodeMap() override { return map; }
  GenApi_3_4::INodeMap* map = nullptr;
};

/// A transport camera. Fails the test when used after its release, released twice, or made and never released.
class FakeCamera : public KELGENICAM::ICamera {
 public:
  ~FakeCamera() override;

  int Open(int accessMode) override;
  int Close() override;
  bool IsOpen() override;
  bool IsOnline() override;
  int StartGrabbing(KELGENICAM::GRAB_STRATEGY strategy, int count) override;
  int StopGrabbing() override;
  bool IsGrabbing() override;
  int Grab(KELGENICAM::IImage** image, int timeoutMs) override;
  KELGENICAM::INodeMapHolder* TLNodeMap() override;
  KELGENICAM::INodeMapHolder* InterfaceNodeMap() override;
  KELGENICAM::INodeMapHolder* LocalDeviceNodeMap() override;
  KELGENICAM::INodeMapHolder* RemoteDeviceNodeMap() override;
  KELGENICAM::INodeMapHolder* DataStreamNodeMap() override;
  int SetCLCameraParam(const char* name, const char* value) override;
  int RegisterNotify(KELGENICAM::NOTIFY_SRC source, KELGENICAM::NOTIFY_TYPE type,
                     KELGENICAM::INotify* receiver) override;
  void Release() override;

  void Make() { isMade_ = true; }  ///< the transport made it: from now on it must be released
  int Releases() const { return releases_; }
  /// The next waits for a frame answer these, in order; then `grabResult` without a frame.
  void Deliver(int result, FakeImage* image);

  // Script. `hook` runs in every call with its name, and may throw or wait.
  std::function<void(const std::string& call)> hook;
  std::function<void()> afterIsGrabbing;  ///< runs when the answer is known, before it is given
  int openResult = 0;
  int closeResult = 0;
  int startResult = 0;
  bool comesUp = true;  ///< a successful start leaves it grabbing
  int stopResult = 0;
  int grabResult = KELGENICAM::RESULT_TIMEOUT;
  int paramResult = 0;
  int notifyResult = 0;
  std::atomic<bool> isOpen{false};
  std::atomic<bool> isOnline{true};
  std::atomic<bool> isGrabbing{false};
  bool mayStayMade = false;  ///< the test expects that nobody releases it
  FakeNodeMapHolder tlMap, interfaceMap, localMap, remoteMap, streamMap;
  bool hasHolders = true;

  // What was asked.
  CallLog calls;
  int accessMode = -1;
  std::atomic<KELGENICAM::GRAB_STRATEGY> strategy{};
  std::atomic<int> count{0};
  std::atomic<int> timeoutMs{0};
  std::string paramName, paramValue;
  KELGENICAM::NOTIFY_SRC notifySource{};
  KELGENICAM::NOTIFY_TYPE notifyType{};
  KELGENICAM::INotify* receiver = nullptr;

 private:
  struct Frame {
    int result;
    FakeImage* image;
  };
  void Enter(const char* name);
  KELGENICAM::INodeMapHolder* Holder(const char* name, FakeNodeMapHolder& holder);

  zyn::Mutex mutex_;
  std::deque<Frame> frames_ ZYN_GUARDED_BY(mutex_);
  bool isMade_ = false;
  std::atomic<int> releases_{0};
};

}  // namespace fakes

#endif
