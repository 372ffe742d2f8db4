// Lets the library call for every image.
//
//   receive_images SERIAL COUNT

#include <ZynCamera.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <vector>

using namespace ZYNSDK;

// Keeps the first images, and lets another thread wait for them.
class Collector : public IImageHandler {
 public:
  explicit Collector(std::size_t count) : count_(count) {}

  // Called on a thread of the library. Return soon: the next image waits. Copies share their pixels.
  void OnImage(ZynCamera, ZynImage& image) override {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (images_.size() < count_) images_.push_back(image);
    isComplete_.notify_one();
  }

  // The images; fewer than wanted when they do not come within 10 seconds.
  std::vector<ZynImage> WaitForAll() {
    std::unique_lock<std::mutex> lock(mutex_);
    isComplete_.wait_for(lock, std::chrono::seconds(10), [this] { return images_.size() == count_; });
    return images_;
  }

 private:
  const std::size_t count_;
  std::mutex mutex_;
  std::condition_variable isComplete_;
  std::vector<ZynImage> images_;
};

static long ReceiveImages(ZynCamera& camera, std::size_t count) {
  Collector collector(count);
  camera.SetGrabTimeout(500);               // also how long stopping may take
  camera.RegisterImageHandler(&collector);  // before StartGrab, which starts the delivery

  std::vector<ZynImage> images;
  long status = camera.StartGrab(ZYN_GRAB_ONE_BY_ONE, 0);
  if (status == ZYN_OK) {
    images = collector.WaitForAll();
    if (images.size() < count) status = ZYN_ERROR_NO_FRAME;
    camera.StopGrab();  // after this the collector is not called any more
  }
  camera.RegisterImageHandler(nullptr);

  for (std::size_t i = 0; i < images.size(); ++i) {
    std::cout << "image " << i + 1 << ": " << images[i].Width() << " x " << images[i].Height() << "\n";
  }
  return status;
}

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: receive_images SERIAL COUNT\n";
    return 2;
  }
  ZynSDKInit();

  ZynCamera camera;
  long status = DiscoveryCamera(argv[1], &camera);
  if (status == ZYN_OK) status = camera.Open(nullptr);
  if (status == ZYN_OK) {
    status = ReceiveImages(camera, static_cast<std::size_t>(std::atoi(argv[2])));
    camera.Close();
  }

  ZynSDKUnInit();
  if (status != ZYN_OK) std::cerr << "failed with status " << status << ", see ZynCamera/Status.h\n";
  return status == ZYN_OK ? 0 : 1;
}
