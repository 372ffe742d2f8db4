/// The camera object that applications hold.
#ifndef ZYN_TRANSPORT_CAMERA_H
#define ZYN_TRANSPORT_CAMERA_H

#include <array>
#include <atomic>
#include <condition_variable>
#include <memory>

#include <KELGeniCam.h>

#include "../discovery/CameraInfo.h"
#include "../module/ModuleNodeMap.h"
#include "../stream/FramePool.h"
#include "Device.h"
#include "Notifier.h"
#include "ThreadAnnotations.h"

namespace zyn::transport {

/// Counts the calls under way, and lives until Release and the last of them are over. Each session is a Device
/// of its own; a call keeps the one it began with.
class Camera final : public KELGENICAM::ICamera {
 public:
  explicit Camera(const CameraInfo& info);

  int Open(int accessMode) override;
  int Close() override;
  bool IsOpen() override;
  bool IsOnline() override;
  int StartGrabbing(KELGENICAM::GRAB_STRATEGY strategy, int frameCount) override;
  int StopGrabbing() override;
  bool IsGrabbing() override;
  int Grab(KELGENICAM::IImage** image, int timeoutMs) override;
  KELGENICAM::INodeMapHolder* TLNodeMap() override { return &holders_[kSystem]; }
  KELGENICAM::INodeMapHolder* InterfaceNodeMap() override { return &holders_[kInterface]; }
  KELGENICAM::INodeMapHolder* LocalDeviceNodeMap() override { return &holders_[kLocal]; }
  KELGENICAM::INodeMapHolder* RemoteDeviceNodeMap() override { return &holders_[kRemote]; }
  KELGENICAM::INodeMapHolder* DataStreamNodeMap() override { return &holders_[kStream]; }
  int SetCLCameraParam(const char* name, const char* value) override;
  int RegisterNotify(KELGENICAM::NOTIFY_SRC source, KELGENICAM::NOTIFY_TYPE type,
                     KELGENICAM::INotify* receiver) override;
  void Release() override;

 private:
  enum Module { kSystem, kInterface, kLocal, kRemote, kStream, kModules };
  enum class Phase { kClosed, kOpening, kOpen };

  class Holder final : public KELGENICAM::INodeMapHolder {
   public:
    GenApi_3_4::INodeMap* NodeMap() override { return map_.load(std::memory_order_acquire); }
    void Set(GenApi_3_4::INodeMap* map) { map_.store(map, std::memory_order_release); }

   private:
    std::atomic<GenApi_3_4::INodeMap*> map_{nullptr};
  };

  // Keeps the camera alive for one call.
  class Call {
   public:
    explicit Call(Camera& camera) : camera_(camera) {
      camera_.users_.fetch_add(1, std::memory_order_relaxed);
    }
    ~Call() { camera_.LeaveCall(); }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

   private:
    Camera& camera_;
  };

  ~Camera() override = default;
  void LeaveCall();
  std::shared_ptr<Device> CurrentDevice() ZYN_EXCLUDES(mutex_);
  void Publish(const std::shared_ptr<Device>& device) ZYN_REQUIRES(mutex_);
  int End();
  void LetGoOfMaps() ZYN_EXCLUDES(mutex_);

  const CameraInfo& info_;
  const std::shared_ptr<Notifier> notifier_ = std::make_shared<Notifier>();
  const std::shared_ptr<FramePool> pool_ = std::make_shared<FramePool>();
  std::atomic<int> users_{1};
  std::array<Holder, kModules> holders_;

  Mutex mutex_;  // never held during a producer's call
  std::condition_variable opened_;
  Phase phase_ ZYN_GUARDED_BY(mutex_) = Phase::kClosed;
  bool isAbandoned_ ZYN_GUARDED_BY(mutex_) = false;  // whoever opens has to close again: nobody waits for it
  std::shared_ptr<Device> device_ ZYN_GUARDED_BY(mutex_);
  // The maps of the current or latest session. Kept after it, so that a thread that still works with a node
  // meets an exception instead of freed memory.
  std::array<NodeMapPtr, kModules> maps_ ZYN_GUARDED_BY(mutex_);
};

}  // namespace zyn::transport

#endif
