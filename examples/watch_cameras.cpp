// Tells which cameras are plugged in and unplugged.
//
//   watch_cameras COUNT        ends after so many events

#include <ZynCamera.h>

#include <condition_variable>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <mutex>

using namespace ZYNSDK;

class Watcher : public ICameraEventHandler {
 public:
  // Called on a thread of the library, first for every camera that is present already.
  void OnCameraEvent(ZynCamera camera, ZynCameraEventType type) override {
    const std::unique_ptr<ZynCameraAttribute> about(camera.Attribute());
    std::cout << about->CameraSerialNumber() << (type == ZYN_CAMERA_APPEARED ? " appeared" : " is gone")
              << std::endl;
    const std::lock_guard<std::mutex> lock(mutex_);
    ++events_;
    happened_.notify_one();
  }

  void WaitFor(int events) {
    std::unique_lock<std::mutex> lock(mutex_);
    happened_.wait(lock, [this, events] { return events_ >= events; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable happened_;
  int events_ = 0;
};

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: watch_cameras COUNT\n";
    return 2;
  }
  ZynSDKInit();

  Watcher watcher;
  RegisterCameraEventHandler(&watcher);
  watcher.WaitFor(std::atoi(argv[1]));
  RegisterCameraEventHandler(nullptr);  // after this the watcher is not called any more

  ZynSDKUnInit();
  return 0;
}
