#include "StressTransport.h"

#include <array>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "GevIpLib.h"
#include "KELGeniCam.h"
#include "TestNodeMap.h"

namespace stress {

namespace {

using namespace KELGENICAM;

std::atomic<int> liveCameras{0};
std::atomic<int> liveFrames{0};
std::atomic<unsigned int> searches{0};

class Info : public ICameraInfo {
 public:
  Info(int number, int state)
      : serial_("S" + std::to_string(number)), model_(number == 3 ? "KEL-LP1" : "Area-1"), state_(state) {}
  unsigned int ProtocolType() override { return PROTOCOL_USB3_VISION; }
  int DeviceState() override { return state_; }
  const char* CameraID() override { return serial_.c_str(); }
  const char* SerialNumber() override { return serial_.c_str(); }
  const char* ManufacturerName() override { return "Maker"; }
  const char* ModelName() override { return model_.c_str(); }
  const char* CameraName() override { return "Name"; }
  const char* UserDefinedName() override { return "Mine"; }
  const char* DeviceVersion() override { return "1"; }
  const char* InterfaceID() override { return "if0"; }
  const char* Text(int) override { return ""; }
  void CopyFrom(const ICameraInfo&) override {}

 private:
  const std::string serial_;
  const std::string model_;
  const int state_;
};

// Never destroyed: the registry points at them until the process ends.
ICameraInfo* Description(int number, unsigned int variant) {
  using Pair = std::array<Info, 2>;
  static auto* const all =
      new std::array<Pair, kCameras>{Pair{Info(0, DEVICE_STATE_READWRITE), Info(0, DEVICE_STATE_BUSY)},
                                     Pair{Info(1, DEVICE_STATE_READWRITE), Info(1, DEVICE_STATE_BUSY)},
                                     Pair{Info(2, DEVICE_STATE_READWRITE), Info(2, DEVICE_STATE_BUSY)},
                                     Pair{Info(3, DEVICE_STATE_READWRITE), Info(3, DEVICE_STATE_BUSY)}};
  return &(*all)[static_cast<std::size_t>(number)][variant % 2];
}

class Chunk : public IChunk {
 public:
  explicit Chunk(unsigned char value) : bytes_(64, value) {}
  unsigned char* Data() override { return bytes_.data(); }
  unsigned long long Length() override { return bytes_.size(); }

 private:
  std::vector<unsigned char> bytes_;
};

class Frame : public IImage {
 public:
  explicit Frame(unsigned char value) : bytes_(kWidth * kHeight, value), chunk_(value) { ++liveFrames; }
  bool IsValid() override { return true; }
  long long FrameID() override { return 1; }
  int Width() override { return kWidth; }
  int Height() override { return kHeight; }
  void Chunks(std::list<IChunk*>& chunks) override { chunks = {&chunk_}; }
  int Channels() override { return 1; }
  int Step() override { return kWidth; }
  unsigned char* Data() override { return bytes_.data(); }
  void Release() override {
    --liveFrames;
    delete this;
  }

 private:
  static constexpr int kWidth = 64;
  static constexpr int kHeight = 8;
  std::vector<unsigned char> bytes_;
  Chunk chunk_;
};

class Holder : public INodeMapHolder {
 public:
  GenApi_3_4::INodeMap* NodeMap() override { return map_.Map(); }

 private:
  fakes::TestNodeMap map_;
};

class Camera : public ICamera {
 public:
  Camera() { ++liveCameras; }
  int Open(int) override {
    static std::atomic<unsigned int> opens{0};
    if (opens++ % 16 == 15) return RESULT_ACCESS_DENIED;
    isOpen_ = true;
    return RESULT_OK;
  }
  int Close() override {
    isGrabbing_ = false;
    isOpen_ = false;
    return RESULT_OK;
  }
  bool IsOpen() override { return isOpen_; }
  bool IsOnline() override { return isOpen_; }
  int StartGrabbing(GRAB_STRATEGY, int) override {
    isGrabbing_ = isOpen_.load();
    return RESULT_OK;
  }
  int StopGrabbing() override {
    isGrabbing_ = false;
    return RESULT_OK;
  }
  bool IsGrabbing() override { return isGrabbing_; }
  int Grab(IImage** image, int) override {
    std::this_thread::yield();
    if (!isGrabbing_) return RESULT_NOT_GRABBING;
    const unsigned int number = frames_++;
    if (number % 8 == 7) return RESULT_TIMEOUT;
    *image = new Frame(static_cast<unsigned char>(number));
    return RESULT_OK;
  }
  INodeMapHolder* TLNodeMap() override { return nullptr; }
  INodeMapHolder* InterfaceNodeMap() override { return nullptr; }
  INodeMapHolder* LocalDeviceNodeMap() override { return nullptr; }
  INodeMapHolder* RemoteDeviceNodeMap() override { return &remote_; }
  INodeMapHolder* DataStreamNodeMap() override { return nullptr; }
  int SetCLCameraParam(const char*, const char*) override { return RESULT_OK; }
  int RegisterNotify(NOTIFY_SRC, NOTIFY_TYPE, INotify*) override { return RESULT_OK; }
  void Release() override {
    --liveCameras;
    delete this;
  }

 private:
  std::atomic<bool> isOpen_{false};
  std::atomic<bool> isGrabbing_{false};
  std::atomic<unsigned int> frames_{0};
  Holder remote_;
};

int Search(std::list<ICameraInfo*>& found) {
  const unsigned int search = searches++;
  for (int number = 0; number < kCameras; ++number) {
    const bool isAbsent = number == 2 && search % 3 == 2;
    if (!isAbsent) found.push_back(Description(number, search));
  }
  return RESULT_OK;
}

}  // namespace

int LiveCameras() {
  return liveCameras;
}

int LiveFrames() {
  return liveFrames;
}

}  // namespace stress

namespace KELGENICAM {

int Init() {
  return RESULT_OK;
}
int UnInit() {
  return RESULT_OK;
}
int Discovery(const char*, std::list<ICameraInfo*>& found) {
  return stress::Search(found);
}
int DiscoveryByTLType(unsigned long, std::list<ICameraInfo*>& found) {
  return stress::Search(found);
}
ICamera* CreateCamera(ICameraInfo*) {
  return new stress::Camera;
}
ICamera* CreateCameraBySN(const std::string&) {
  return new stress::Camera;
}
int GetCLProtocols(std::list<std::string>&) {
  return RESULT_OK;
}
int GetCLSerials(std::list<std::string>&) {
  return RESULT_OK;
}

}  // namespace KELGENICAM

int SetCameraIP(const std::string&, const std::string&, const std::string&, const std::string&, bool) {
  return 0;
}
