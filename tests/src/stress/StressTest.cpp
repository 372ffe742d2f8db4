#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "StressTransport.h"
#include "ZynCamera.h"

using namespace ZYNSDK;

namespace {

constexpr int kThreads = 8;
constexpr std::chrono::seconds kDuration{20};

/// How often each kind of work came to a good end, over all threads.
struct Successes {
  std::atomic<int> searches{0}, opens{0}, closes{0}, reads{0}, writes{0}, starts{0}, images{0}, delivered{0},
      events{0}, events3D{0};
};

/// An answer is success or a code; 101040 would be an exception, which this transport has none of.
bool Succeeded(long status) {
  EXPECT_NE(status, ZYN_ERROR_EXCEPTION);
  return status == ZYN_OK;
}

/// Looks at the camera of each event, and now and then searches from inside the call.
class Handler : public ICameraEventHandler, public I3DCameraEventHandler {
 public:
  explicit Handler(Successes& successes) : successes_(successes) {}
  void OnCameraEvent(ZynCamera camera, ZynCameraEventType type) override {
    Look(camera, type);
    if (++successes_.events % 5 == 0) {
      ZynCameraArray cameras;
      DiscoveryCameras(&cameras);
    }
  }
  void On3DCameraEvent(Zyn3DCamera camera, ZynCameraEventType type) override {
    Look(camera, type);
    ++successes_.events3D;
  }

 private:
  template <class Camera>
  static void Look(Camera& camera, ZynCameraEventType type) {
    EXPECT_TRUE(type == ZYN_CAMERA_APPEARED || type == ZYN_CAMERA_GONE);
    const std::unique_ptr<ZynCameraAttribute> attribute(camera.Attribute());
    EXPECT_EQ(attribute->CameraSerialNumber()[0], 'S');
    camera.IsOpen();
  }

  Successes& successes_;
};

/// All pixels of a frame are equal.
void ExpectOneFrame(const ZynImage& image) {
  const unsigned char* pixels = image.ImageData();
  const auto bytes = static_cast<std::ptrdiff_t>(image.Step()) * image.Height();
  const auto isTheFirst = [first = pixels[0]](unsigned char pixel) { return pixel == first; };
  EXPECT_TRUE(std::all_of(pixels, pixels + bytes, isTheFirst)) << "bytes of another frame";
}

/// Looks at each image that is delivered.
class ImageHandler : public IImageHandler {
 public:
  explicit ImageHandler(Successes& successes) : successes_(successes) {}
  void OnImage(ZynCamera camera, ZynImage& image) override {
    ExpectOneFrame(image);
    camera.IsGrabbing();
    ++successes_.delivered;
  }

 private:
  Successes& successes_;
};

/// One application thread: picks work at random until the time is over.
class Worker {
 public:
  Worker(unsigned int seed, Successes& successes)
      : random_(seed), successes_(successes), handler_(successes), imageHandler_(successes) {}

  void Run(std::chrono::steady_clock::time_point end) {
    while (std::chrono::steady_clock::now() < end) Work();
  }

 private:
  unsigned int Choose(unsigned int count) {
    return std::uniform_int_distribution<unsigned int>(0, count - 1)(random_);
  }

  // Most of the work is on open cameras, so it comes up most often.
  void Work() {
    switch (Choose(32)) {
      case 0:
        return Search();
      case 1:
        return SearchAll();
      case 2:
      case 3:
      case 4:
        return Open();
      case 5:
        return Close();
      case 6:
        return Register();
      case 7:
        return Unregister();
      case 8:
      case 9:
      case 10:
        return Start();
      case 11:
        return Stop();
      case 12:
      case 13:
      case 14:
        return Use3D();
      case 15:
        return RegisterForImages();
      default:
        return Choose(2) == 0 ? Grab() : ReadOrWrite();
    }
  }

  ZynCamera Pick() {
    ZynCamera camera;
    EXPECT_EQ(DiscoveryCamera(("S" + std::to_string(Choose(3))).c_str(), &camera), 0);
    return camera;
  }
  Zyn3DCamera Pick3D() {
    Zyn3DCamera camera;
    EXPECT_EQ(Discovery3DCamera("S3", &camera), 0);
    return camera;
  }

  void Search() {
    ZynCameraArray cameras;
    if (Choose(4) == 0) {
      if (Succeeded(DiscoveryCamerasByProtocolType(2, &cameras))) ++successes_.searches;
    } else if (Succeeded(DiscoveryCameras(&cameras))) {
      ++successes_.searches;
    }
    for (int i = 0; i < static_cast<int>(cameras.length()); ++i) {
      const std::unique_ptr<ZynCameraAttribute> attribute(cameras[i].Attribute());
      EXPECT_EQ(attribute->CameraSerialNumber()[0], 'S');
      kept_.push_back(*attribute);
    }
    ReadKept();
  }

  // Handles from long before must read as well as new ones.
  void ReadKept() {
    constexpr std::size_t kMost = 64;
    if (kept_.size() > kMost) kept_.erase(kept_.begin(), kept_.end() - kMost);
    for (ZynCameraAttribute& attribute : kept_) {
      EXPECT_EQ(attribute.CameraSerialNumber()[0], 'S');
      EXPECT_LE(attribute.CameraStatus(), 1);
    }
  }

  void SearchAll() {
    std::vector<ZynCamera> all2D;
    std::vector<Zyn3DCamera> all3D;
    if (Succeeded(DiscoveryAllCameras(&all2D, &all3D))) ++successes_.searches;
    EXPECT_LE(all2D.size(), 3U);
    EXPECT_LE(all3D.size(), 1U);
  }

  void Open() {
    if (Succeeded(Pick().Open(nullptr))) ++successes_.opens;
  }
  void Close() {
    if (Succeeded(Pick().Close())) ++successes_.closes;
  }
  void Start() {
    if (Succeeded(Pick().StartGrab(ZYN_GRAB_ONE_BY_ONE, 0))) ++successes_.starts;
  }
  void Stop() { Succeeded(Pick().StopGrab()); }

  void Grab() {
    ZynCamera camera = Pick();
    ZynImage image;
    ZynChunkData chunk;
    if (!Succeeded(camera.GrabImage(&image, &chunk))) return;
    ExpectOneFrame(image);
    ++successes_.images;
  }

  void ReadOrWrite() {
    ZynCamera camera = Pick();
    ZynNode node;
    if (!Succeeded(camera.GetRemoteNode("Width", &node))) return;
    if (Choose(2) == 0) {
      if (Succeeded(node.SetInt(static_cast<int>(16 + 8 * Choose(100))))) ++successes_.writes;
      return;
    }
    int value = 0;
    if (!Succeeded(node.GetInt(&value, nullptr, nullptr, nullptr))) return;
    EXPECT_EQ(value % 8, 0);
    ++successes_.reads;
  }

  void Use3D() {
    Zyn3DCamera camera = Pick3D();
    ZynNode node;
    ZynNodeArray nodes;
    switch (Choose(5)) {
      case 0:
      case 1:
        if (Succeeded(camera.Open())) ++successes_.opens;
        return;
      case 2:
        if (Succeeded(camera.Close())) ++successes_.closes;
        return;
      case 3:
        Succeeded(camera.GetNodes(&nodes));
        return;
      default:
        if (Succeeded(camera.GetNode("ExposureTime", &node))) Succeeded(node.SetFloat(100.0F));
    }
  }

  void Register() {
    if (Choose(2) == 0) {
      RegisterCameraEventHandler(&handler_);
    } else {
      Register3DCameraEventHandler(&handler_);
    }
  }
  void RegisterForImages() {
    EXPECT_EQ(Pick().RegisterImageHandler(Choose(3) == 0 ? nullptr : &imageHandler_), 0);
  }
  void Unregister() {
    if (Choose(2) == 0) {
      RegisterCameraEventHandler(nullptr);
    } else {
      Register3DCameraEventHandler(nullptr);
    }
  }

  std::minstd_rand random_;
  Successes& successes_;
  Handler handler_;
  ImageHandler imageHandler_;
  std::vector<ZynCameraAttribute> kept_;
};

void CloseEverything() {
  for (const char* serialNumber : {"S0", "S1", "S2"}) {
    ZynCamera camera;
    ASSERT_EQ(DiscoveryCamera(serialNumber, &camera), 0);
    camera.RegisterImageHandler(nullptr);
    camera.Close();
  }
  Zyn3DCamera camera;
  ASSERT_EQ(Discovery3DCamera("S3", &camera), 0);
  camera.Close();
}

}  // namespace

TEST(Stress, EightThreadsDoEverythingAtOnceAndNothingIsLeftBehind) {
  std::vector<ZynCamera> all2D;
  std::vector<Zyn3DCamera> all3D;
  ASSERT_EQ(DiscoveryAllCameras(&all2D, &all3D), 0);  // so that every serial number is known
  Successes successes;
  const auto end = std::chrono::steady_clock::now() + kDuration;
  std::vector<std::unique_ptr<Worker>> workers;  // they own handlers, so they stay until all are unregistered
  std::vector<std::thread> threads;
  for (unsigned int i = 0; i < kThreads; ++i) {
    workers.push_back(std::make_unique<Worker>(i + 1, successes));
    threads.emplace_back([&worker = *workers.back(), end] { worker.Run(end); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(RegisterCameraEventHandler(nullptr), 0);
  EXPECT_EQ(Register3DCameraEventHandler(nullptr), 0);
  CloseEverything();
  EXPECT_EQ(stress::LiveCameras(), 0);
  EXPECT_EQ(stress::LiveFrames(), 0);
  EXPECT_GT(successes.searches, 0);
  EXPECT_GT(successes.opens, 0);
  EXPECT_GT(successes.closes, 0);
  EXPECT_GT(successes.reads, 0);
  EXPECT_GT(successes.writes, 0);
  EXPECT_GT(successes.starts, 0);
  EXPECT_GT(successes.images, 0);
  EXPECT_GT(successes.delivered, 0);
  EXPECT_GT(successes.events, 0);
  EXPECT_GT(successes.events3D, 0);
  RecordProperty("images", successes.images);
  RecordProperty("delivered", successes.delivered);
  RecordProperty("events", successes.events);
}
