// Simulated cameras behind the transport: discovery, frames as an application gets them, loss and return.
#include <GenICam.h>
#include <KELGeniCam.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <future>
#include <list>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "cameras/laser/Scene.h"

namespace {

using namespace KELGENICAM;
namespace scene = zyn::cameras::scene;

constexpr std::size_t kPoints = 2000;
constexpr int kWaitMs = 20000;

struct ReleaseCamera {
  void operator()(ICamera* camera) const { camera->Release(); }
};
using CameraPtr = std::unique_ptr<ICamera, ReleaseCamera>;

struct ReleaseImage {
  void operator()(IImage* image) const { image->Release(); }
};
using ImagePtr = std::unique_ptr<IImage, ReleaseImage>;

template <class Interface>
Interface& Feature(INodeMapHolder* holder, const char* name) {
  GenApi_3_4::INodeMap* const map = holder->NodeMap();
  auto* const node = map == nullptr ? nullptr : dynamic_cast<Interface*>(map->GetNode(name));
  if (node == nullptr) throw std::runtime_error(std::string("there is no feature ") + name);
  return *node;
}

void Set(INodeMapHolder* holder, const char* name, const char* value) {
  Feature<GenApi_3_4::IValue>(holder, name).FromString(value);
}

class SimulatorTransport : public testing::Test {
 protected:
  void SetUp() override { setenv("GENICAM_GENTL64_PATH", ZYN_SIMULATOR_FOLDER, 1); }

  void TearDown() override {
    while (UnInit() == RESULT_OK) {
    }
    std::remove(path_.c_str());
    unsetenv("ZYN_SIMULATOR_CONFIG");
  }

  void Configure(const std::string& json) {
    path_ = (std::filesystem::temp_directory_path() / ("simulator-" + std::to_string(getpid()))).string();
    std::ofstream(path_) << json;
    setenv("ZYN_SIMULATOR_CONFIG", path_.c_str(), 1);
    ASSERT_EQ(Init(), RESULT_OK);
  }

  static std::vector<ICameraInfo*> Search() {
    std::list<ICameraInfo*> found;
    EXPECT_EQ(Discovery(nullptr, found), RESULT_OK);
    return {found.begin(), found.end()};
  }

  static CameraPtr Open(const char* serial) {
    CameraPtr camera(CreateCameraBySN(serial));
    if (!camera) throw std::runtime_error(std::string("there is no camera ") + serial);
    EXPECT_EQ(camera->Open(ACCESS_CONTROL), RESULT_OK);
    return camera;
  }

  static void SetMode(ICamera& camera, const char* image, const char* calibration, const char* batch) {
    INodeMapHolder* const features = camera.RemoteDeviceNodeMap();
    Set(features, "EnableExtraction", "1");
    Set(features, "EnableImage", image);
    Set(features, "EnableCalibration", calibration);
    Set(features, "BatchEnable", batch);
  }

  static ImagePtr Grab(ICamera& camera) {
    IImage* image = nullptr;
    EXPECT_EQ(camera.Grab(&image, kWaitMs), RESULT_OK);
    return ImagePtr(image);
  }

  std::string path_;
};

constexpr const char* kOne =
    R"({"cameras": [{"model": "KEL-LP2000", "serialNumber": "L1", "userDefinedName": "left", "pacing": "reader"}]})";

// Compares calibrated records with the scene; returns how many differ.
std::size_t WrongRecords(IChunk& chunk, std::int64_t firstProfile) {
  const unsigned char* record = chunk.Data();
  std::size_t wrong = 0;
  for (std::size_t i = 0; i < chunk.Length() / 4; ++i, record += 4) {
    const std::int64_t profile = firstProfile + static_cast<std::int64_t>(i / kPoints);
    const auto point = static_cast<std::int64_t>(i % kPoints);
    if (record[2] * 256 + record[3] != scene::SceneHeight(profile, point) ||
        record[1] != scene::SceneIntensity(profile, point))
      ++wrong;
  }
  return wrong;
}

TEST_F(SimulatorTransport, FindsTheCamerasWithAllTheirTexts) {
  Configure(kOne);
  const std::vector<ICameraInfo*> found = Search();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_STREQ(found[0]->ModelName(), "KEL-LP2000");
  EXPECT_STREQ(found[0]->SerialNumber(), "L1");
  EXPECT_STREQ(found[0]->UserDefinedName(), "left");
  EXPECT_EQ(found[0]->ProtocolType(), unsigned{PROTOCOL_GIGE_VISION});
  EXPECT_EQ(found[0]->DeviceState(), DEVICE_STATE_READWRITE);
  EXPECT_STREQ(found[0]->Text(TEXT_IP_ADDRESS), "198.18.1.1");
  EXPECT_STREQ(found[0]->Text(TEXT_ADAPTER_IP_ADDRESS), "198.18.0.1");
  EXPECT_STREQ(found[0]->Text(TEXT_SUBNET_MASK), found[0]->Text(TEXT_ADAPTER_SUBNET_MASK));
  EXPECT_STREQ(found[0]->Text(TEXT_MAC_ADDRESS), "02:5a:59:4e:00:01");
}

TEST_F(SimulatorTransport, ABadConfigurationIsSkippedWithItsReason) {
  Configure(R"({"cameras": [{"model": "NONE"}]})");
  EXPECT_TRUE(Search().empty());
  std::list<LoadReportEntry> report;
  LoadReport(report);
  bool isTold = false;
  for (const LoadReportEntry& entry : report) {
    if (entry.message.find("there is no model \"NONE\"") != std::string::npos) isTold = !entry.loaded;
  }
  EXPECT_TRUE(isTold);
}

TEST_F(SimulatorTransport, ContourFramesBeginWithTheirRecords) {
  Configure(kOne);
  const CameraPtr camera = Open("L1");
  SetMode(*camera, "0", "1", "0");
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  for (std::int64_t frame = 0; frame < 100; ++frame) {
    const ImagePtr image = Grab(*camera);
    ASSERT_TRUE(image);
    EXPECT_TRUE(image->IsValid());
    EXPECT_EQ(image->Data(), nullptr);
    EXPECT_EQ(image->FrameID(), frame + 1);
    std::list<IChunk*> chunks;
    image->Chunks(chunks);
    ASSERT_FALSE(chunks.empty());
    EXPECT_EQ(chunks.front()->Length(), kPoints * 4);
    EXPECT_EQ(WrongRecords(*chunks.front(), frame), 0U) << frame;
  }
  EXPECT_EQ(camera->StopGrabbing(), RESULT_OK);
}

TEST_F(SimulatorTransport, ProfileFramesHaveAnImageAndTheirRecordsFirstAmongTheChunks) {
  Configure(kOne);
  const CameraPtr camera = Open("L1");
  SetMode(*camera, "1", "0", "0");
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  const ImagePtr image = Grab(*camera);
  ASSERT_TRUE(image);
  EXPECT_EQ(image->Width(), 2000);
  EXPECT_EQ(image->Height(), 1024);
  EXPECT_EQ(image->Step(), 2000);
  EXPECT_EQ(image->Channels(), 1);
  std::size_t wrongPixels = 0;
  for (int row = 0; row < image->Height(); ++row) {
    for (int column = 0; column < image->Width(); ++column) {
      if (image->Data()[row * image->Step() + column] != scene::SceneSensorPixel(0, column, row))
        ++wrongPixels;
    }
  }
  EXPECT_EQ(wrongPixels, 0U);
  std::list<IChunk*> chunks;
  image->Chunks(chunks);
  ASSERT_FALSE(chunks.empty());
  ASSERT_EQ(chunks.front()->Length(), kPoints * 4) << "the image itself is left out";
  const unsigned char* record = chunks.front()->Data();
  std::size_t wrongRecords = 0;
  for (std::int64_t point = 0; point < static_cast<std::int64_t>(kPoints); ++point, record += 4) {
    if ((record[1] & 3) * 256 + record[2] != scene::SceneSensorRow(0, point)) ++wrongRecords;
  }
  EXPECT_EQ(wrongRecords, 0U);
}

TEST_F(SimulatorTransport, AllBatchesOfOneScanCarryOneIdentifier) {
  Configure(kOne);
  const CameraPtr camera = Open("L1");
  SetMode(*camera, "0", "1", "1");
  Set(camera->RemoteDeviceNodeMap(), "AcquisitionLineCount", "400");
  Set(camera->RemoteDeviceNodeMap(), "BatchNumber", "100");
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  for (std::int64_t batch = 0; batch < 12; ++batch) {
    const ImagePtr image = Grab(*camera);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->FrameID(), batch / 4 + 1);
    std::list<IChunk*> chunks;
    image->Chunks(chunks);
    ASSERT_FALSE(chunks.empty());
    EXPECT_EQ(chunks.front()->Length(), 100 * kPoints * 4);
    EXPECT_EQ(WrongRecords(*chunks.front(), batch * 100), 0U) << batch;
  }
}

TEST_F(SimulatorTransport, EventsOfTheCameraReachWhoRegisteredForThem) {
  class Receiver final : public INotify {
   public:
    void OnNotify(NOTIFY_SRC, NOTIFY_TYPE, const void* data, unsigned long long length) override {
      const auto* bytes = static_cast<const std::uint8_t*>(data);
      event.set_value({bytes, bytes + length});
    }
    std::promise<std::vector<std::uint8_t>> event;
  };
  Configure(R"({"cameras": [{"model": "KEL-LP2000", "serialNumber": "L1", "pacing": "reader"}]})");
  Receiver receiver;
  const CameraPtr camera = Open("L1");
  ASSERT_EQ(camera->RegisterNotify(NOTIFY_SRC_REMOTE_DEVICE, NOTIFY_DEVICE_EVENT, &receiver), RESULT_OK);
  Set(camera->RemoteDeviceNodeMap(), "EventSelector", "AcquisitionStart");
  Set(camera->RemoteDeviceNodeMap(), "EventNotification", "On");
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  std::future<std::vector<std::uint8_t>> event = receiver.event.get_future();
  ASSERT_EQ(event.wait_for(std::chrono::milliseconds(kWaitMs)), std::future_status::ready);
  const std::vector<std::uint8_t> item = event.get();
  ASSERT_EQ(item.size(), 16U);
  EXPECT_EQ(item[2] * 256 + item[3],
            Feature<GenApi_3_4::IInteger>(camera->RemoteDeviceNodeMap(), "EventAcquisitionStart").GetValue());
  EXPECT_EQ(camera->StopGrabbing(), RESULT_OK);
}

TEST_F(SimulatorTransport, DamagedFramesAreInvalid) {
  Configure(kOne);
  const CameraPtr camera = Open("L1");
  Set(camera->InterfaceNodeMap(), "SimDamageFrames", "1");
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  ImagePtr image = Grab(*camera);
  ASSERT_TRUE(image);
  EXPECT_FALSE(image->IsValid());
  image = Grab(*camera);
  ASSERT_TRUE(image);
  EXPECT_TRUE(image->IsValid());
}

TEST_F(SimulatorTransport, UnpluggingEndsAWaitingGrabAndPluggingBringsTheCameraBack) {
  Configure(kOne);
  CameraPtr camera = Open("L1");
  Set(camera->RemoteDeviceNodeMap(), "TriggerMode", "On");  // no frame will come
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  std::promise<void> isWaiting;
  std::future<int> waiting = std::async(std::launch::async, [&] {
    isWaiting.set_value();
    IImage* image = nullptr;
    return camera->Grab(&image, 600000);
  });
  isWaiting.get_future().wait();
  INodeMapHolder* const simulator = camera->InterfaceNodeMap();
  Set(simulator, "SimCameraPlugged", "0");
  EXPECT_EQ(waiting.get(), RESULT_DEVICE_LOST);
  EXPECT_FALSE(camera->IsOnline());
  EXPECT_TRUE(Search().empty());
  Set(simulator, "SimCameraPlugged", "1");
  EXPECT_EQ(Search().size(), 1U);
  camera.reset();
  // The lost device is closed in the background, and until then the producer has it open.
  camera.reset(CreateCameraBySN("L1"));
  ASSERT_TRUE(camera);
  int result = camera->Open(ACCESS_CONTROL);
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (result != RESULT_OK && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::yield();
    result = camera->Open(ACCESS_CONTROL);
  }
  ASSERT_EQ(result, RESULT_OK);
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  EXPECT_TRUE(Grab(*camera));
}

TEST_F(SimulatorTransport, ABusyCameraIsRefusedWithAccessDenied) {
  Configure(R"({"cameras": [{"model": "KEL-LP2000", "serialNumber": "L1", "busy": true}]})");
  const std::vector<ICameraInfo*> found = Search();
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0]->DeviceState(), DEVICE_STATE_BUSY);
  const CameraPtr camera(CreateCameraBySN("L1"));
  EXPECT_EQ(camera->Open(ACCESS_CONTROL), RESULT_ACCESS_DENIED);
}

TEST_F(SimulatorTransport, CardSettingsAreCameraLinkParametersAndShapeTheFrames) {
  Configure(
      R"({"cameras": [{"model": "ZS-CL1280", "serialNumber": "C", "pacing": "reader"}, {"model": "ZS-A640"}]})");
  std::list<ICameraInfo*> found;
  ASSERT_EQ(DiscoveryByTLType(PROTOCOL_CAMERA_LINK, found), RESULT_OK);
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found.front()->ProtocolType(), unsigned{PROTOCOL_CAMERA_LINK});
  EXPECT_STREQ(found.front()->SerialNumber(), "C");
  EXPECT_STREQ(found.front()->Text(TEXT_IP_ADDRESS), "");
  const CameraPtr camera(CreateCamera(found.front()));
  ASSERT_EQ(camera->Open(ACCESS_CONTROL), RESULT_OK);
  for (const auto& [name, value] :
       {std::pair("Width", "640"), std::pair("Height", "480"), std::pair("PixelFormat", "Mono12"),
        std::pair("ReverseX", "1"), std::pair("DigitalGain", "1.5"), std::pair("CardName", "left")})
    EXPECT_EQ(camera->SetCLCameraParam(name, value), RESULT_OK) << name;
  EXPECT_LT(camera->SetCLCameraParam("Width", "0"), RESULT_OK);
  EXPECT_LT(camera->SetCLCameraParam("ExposureTime", "100"), RESULT_OK) << "a feature of the camera";
  EXPECT_EQ(Feature<GenApi_3_4::IInteger>(camera->LocalDeviceNodeMap(), "Width").GetValue(), 640);
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  const ImagePtr image = Grab(*camera);
  ASSERT_TRUE(image);
  EXPECT_TRUE(image->IsValid());
  EXPECT_EQ(image->Width(), 640);
  EXPECT_EQ(image->Height(), 480);
  EXPECT_EQ(image->Step(), 1280) << "two bytes for each pixel";
  EXPECT_EQ(camera->SetCLCameraParam("TapCount", "3"), RESULT_INVALID_ARGUMENT) << "locked";
  EXPECT_EQ(camera->StopGrabbing(), RESULT_OK);
  EXPECT_EQ(camera->SetCLCameraParam("TapCount", "3"), RESULT_OK);
  EXPECT_LT(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK) << "36 bits do not fit into 24";
  EXPECT_EQ(camera->SetCLCameraParam("ClConfiguration", "Medium"), RESULT_OK);
  EXPECT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
}

TEST_F(SimulatorTransport, ManyCamerasStreamAtOnce) {
  Configure(R"({"cameras": [{"model": "KEL-LP2000", "count": 12, "pacing": "reader"}]})");
  std::vector<std::future<void>> readers;
  for (ICameraInfo* const info : Search()) {
    readers.push_back(std::async(std::launch::async, [info] {
      const CameraPtr camera(CreateCamera(info));
      ASSERT_EQ(camera->Open(ACCESS_CONTROL), RESULT_OK);
      SetMode(*camera, "0", "1", "0");
      ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
      for (std::int64_t frame = 0; frame < 50; ++frame) {
        const ImagePtr image = Grab(*camera);
        ASSERT_TRUE(image);
        std::list<IChunk*> chunks;
        image->Chunks(chunks);
        ASSERT_FALSE(chunks.empty());
        EXPECT_EQ(WrongRecords(*chunks.front(), frame), 0U);
      }
    }));
  }
  EXPECT_EQ(readers.size(), 12U);
  for (auto& reader : readers) reader.get();
}

}  // namespace
