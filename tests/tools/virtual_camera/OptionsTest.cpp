// What zyn-virtual-camera can be told, seen through libaravis and the SDK.
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>

#include "SdkFixture.h"
#include "cameras/laser/Scene.h"

namespace {

using namespace ZYNSDK;
using zyntest::RunToEnd;
using zyntest::VirtualCameraProcess;
namespace scene = zyn::cameras::scene;

class VirtualCameraOptions : public zyntest::SdkFixture {
 protected:
  void TearDown() override {
    std::filesystem::remove(file_);
    SdkFixture::TearDown();
  }
  std::string Write(const std::string& json) {
    std::ofstream(file_) << json;
    return file_.string();
  }
  // Serial numbers and models of the area cameras that a search finds.
  static std::map<std::string, std::string> Found() {
    ZynCameraArray cameras;
    EXPECT_EQ(DiscoveryCameras(&cameras), 0);
    std::map<std::string, std::string> found;
    for (unsigned int i = 0; i < cameras.length(); ++i) {
      const std::unique_ptr<ZynCameraAttribute> attribute(cameras[static_cast<int>(i)].Attribute());
      if (attribute->CameraStatus() == ZYN_CAMERA_FREE)
        found[attribute->CameraSerialNumber()] = attribute->CameraModel();
    }
    return found;
  }
  static void ExpectRamp(ZynCamera& camera) {
    ZynImage image;
    ASSERT_EQ(camera.GrabImage(&image, nullptr), 0);
    ASSERT_EQ(image.Height(), 48);
    EXPECT_EQ(WrongPixels(image), 0);
  }
  // libaravis hears packets of other cameras until its filter stands: they may damage the very first image.
  static void ExpectRampSoon(ZynCamera& camera) {
    ZynImage image;
    const long status = camera.GrabImage(&image, nullptr);
    if (status == ZYN_ERROR_INVALID_FRAME) return ExpectRamp(camera);
    ASSERT_EQ(status, 0);
    EXPECT_EQ(WrongPixels(image), 0);
  }
  static void GrabAFewRamps(ZynCamera& camera) {
    ASSERT_EQ(camera.StartGrab(ZYN_GRAB_ONE_BY_ONE, 0), 0);
    for (int i = 0; i < 5; ++i) ASSERT_NO_FATAL_FAILURE(ExpectRamp(camera)) << "image " << i;
    EXPECT_EQ(camera.StopGrab(), 0);
  }

  const std::filesystem::path file_ = std::filesystem::temp_directory_path() /
                                      ("virtual-camera-options-" + std::to_string(getpid()) + ".json");
};

TEST_F(VirtualCameraOptions, ADelayedFrameLeavesLater) {
  constexpr int kDelayMs = 400;
  const VirtualCameraProcess process({"-m", "ZS-A640", "-s", "DELAY", "--delay", std::to_string(kDelayMs)});
  ZynCamera camera;
  ASSERT_NO_FATAL_FAILURE(Open(camera, "DELAY"));
  ASSERT_NO_FATAL_FAILURE(ShowMovingRamp(camera));
  const auto start = std::chrono::steady_clock::now();
  ASSERT_NO_FATAL_FAILURE(GrabAFewRamps(camera));
  // Each frame waits for itself, and the next one is taken after it.
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(5 * kDelayMs));
  EXPECT_EQ(camera.Close(), 0);
}

TEST_F(VirtualCameraOptions, AFileSaysWhichCamerasThereAre) {
  const std::string file = Write(R"({"cameras": [  // comments are welcome
    {"address": "127.0.0.1", "model": "ZS-A640", "serialNumber": "FILE-1", "userDefinedName": "left"},
    {"address": "127.0.0.2", "model": "KEL-LP2000", "serialNumber": "FILE-2", "loss": 10, "seed": 3, "delay": 1},
    {"address": "127.0.0.3", "model": "ZS-A640", "loss": 1000, "resend": false}
  ]})");
  VirtualCameraProcess process({"-c", file}, 3);
  EXPECT_EQ(Found(), (std::map<std::string, std::string>{{"FILE-1", "ZS-A640"}, {"VC3", "ZS-A640"}}));

  ZynCamera left;
  ASSERT_NO_FATAL_FAILURE(Open(left, "FILE-1"));
  const std::unique_ptr<ZynCameraAttribute> attribute(left.Attribute());
  EXPECT_STREQ(attribute->UserdefName(), "left");
  ASSERT_NO_FATAL_FAILURE(ShowMovingRamp(left));
  ASSERT_NO_FATAL_FAILURE(GrabAFewRamps(left));
  EXPECT_EQ(left.Close(), 0);

  Zyn3DCamera laser;
  ASSERT_NO_FATAL_FAILURE(Open(laser, "FILE-2"));
  ASSERT_EQ(laser.StartGrab(ZYN_3D_GRAB_CONTOUR), 0);
  Zyn3DIntArray heights;
  ZynImage intensity;
  ASSERT_EQ(laser.GrabContour(&heights, &intensity), 0);
  EXPECT_EQ(heights[1000], scene::SceneHeight(0, 1000));
  EXPECT_EQ(laser.StopGrab(), 0);
  EXPECT_EQ(laser.Close(), 0);

  ZynCamera silent;  // it loses everything
  ASSERT_NO_FATAL_FAILURE(Open(silent, "VC3"));
  ASSERT_EQ(silent.SetGrabTimeout(300), 0);
  ASSERT_EQ(silent.StartGrab(ZYN_GRAB_ONE_BY_ONE, 0), 0);
  ZynImage image;
  EXPECT_NE(silent.GrabImage(&image, nullptr), 0);
  EXPECT_EQ(silent.StopGrab(), 0);
  EXPECT_EQ(silent.Close(), 0);
  EXPECT_EQ(process.End(), 0);
}

TEST_F(VirtualCameraOptions, AFileWithAMistakeIsRefusedWithItsPlace) {
  struct Case {
    const char* json;
    const char* message;
  };
  const Case cases[] = {
      {"", "no JSON text: parse error at line 1, column 1"},
      {"{\n  \"cameras\": [}", "no JSON text: parse error at line 2, column 15"},
      {"[]", "a list \"cameras\" is expected"},
      {"{}", "a list \"cameras\" is expected"},
      {R"({"cameras": []})", "the list \"cameras\" is empty"},
      {R"({"cameras": [{"address": "127.0.0.1"}], "loss": 1})", "nothing to be set beside \"cameras\""},
      {R"({"cameras": {}})", "a list \"cameras\" is expected"},
      {R"({"cameras": [7]})", "cameras[0]: an object is expected"},
      {R"({"cameras": [{"model": "ZS-A640"}]})", "cameras[0]: \"address\" is missing"},
      {R"({"cameras": [{"address": "127.0.0.1"}, {"address": "224.0.0.1"}]})", "cameras[1]: \"224.0.0.1\""},
      {R"({"cameras": [{"address": 1}]})", "address: a text is expected"},
      {R"({"cameras": [{"address": "127.0.0.1", "loss": 1001}]})", "loss: a number from 0 to 1000"},
      {R"({"cameras": [{"address": "127.0.0.1", "loss": 0.5}]})", "loss: a number from 0 to 1000"},
      {R"({"cameras": [{"address": "127.0.0.1", "seed": -1}]})", "seed: a number from 0"},
      {R"({"cameras": [{"address": "127.0.0.1", "delay": "1"}]})", "delay: a number"},
      {R"({"cameras": [{"address": "127.0.0.1", "resend": 1}]})", "resend: true or false"},
      {R"({"cameras": [{"address": "127.0.0.1", "colour": 1}]})", "there is no setting \"colour\""},
      {R"({"cameras": [{"address": "127.0.0.1", "model": "X"}]})", "there is no model \"X\""},
      {R"({"cameras": [{"address": "127.0.0.1", "model": "ZS-CL1280"}]})", "a Camera Link connector only"},
      {R"({"cameras": [{"address": "127.0.0.1", "serialNumber": "A"},
                       {"address": "127.0.0.2", "serialNumber": "A"}]})",
       "\"A\" is there twice"},
      {R"({"cameras": [{"address": "127.0.0.1", "userDefinedName": "1234567890123456"}]})",
       "15 bytes at most"},
      {R"({"cameras": [{"address": "127.0.0.1"}, {"address": "127.0.0.1"}]})", "127.0.0.1 is there twice"},
      {R"({"cameras": [{"address": "127.0.0.1", "serialNumber": "1234567890123456"}]})", "15 bytes at most"},
  };
  for (const Case& one : cases) {
    const zyntest::Finished finished = RunToEnd({ZYN_VIRTUAL_CAMERA, "-c", Write(one.json)});
    EXPECT_EQ(finished.exitCode, 1) << one.json;
    EXPECT_NE(finished.err.find(one.message), std::string::npos) << one.json << '\n' << finished.err;
    EXPECT_EQ(finished.out, "") << one.json;
  }
}

TEST_F(VirtualCameraOptions, AFileThatIsNotThereIsNamed) {
  const zyntest::Finished finished = RunToEnd({ZYN_VIRTUAL_CAMERA, "-c", "/no/such/file.json"});
  EXPECT_EQ(finished.exitCode, 1);
  EXPECT_NE(finished.err.find("/no/such/file.json: the file cannot be opened"), std::string::npos)
      << finished.err;
}

// What the file leaves out is as on the command line.
TEST_F(VirtualCameraOptions, OptionsAreForTheCamerasOfTheFileToo) {
  const std::string file = Write(R"({"cameras": [
    {"address": "127.0.0.1"}, {"address": "127.0.0.2", "model": "ZS-A640", "loss": 0}]})");
  const VirtualCameraProcess process({"-c", file, "-m", "ZS-A1600", "--loss", "1000", "--no-resend"}, 2);
  EXPECT_EQ(Found(), (std::map<std::string, std::string>{{"VC1", "ZS-A1600"}, {"VC2", "ZS-A640"}}));
  ZynCamera silent;
  ASSERT_NO_FATAL_FAILURE(Open(silent, "VC1"));
  ASSERT_EQ(silent.SetGrabTimeout(300), 0);
  ASSERT_EQ(silent.StartGrab(ZYN_GRAB_ONE_BY_ONE, 0), 0);
  ZynImage image;
  EXPECT_NE(silent.GrabImage(&image, nullptr), 0);
  EXPECT_EQ(silent.Close(), 0);
  ZynCamera whole;
  ASSERT_NO_FATAL_FAILURE(Open(whole, "VC2"));
  ASSERT_NO_FATAL_FAILURE(ShowMovingRamp(whole));
  ASSERT_NO_FATAL_FAILURE(GrabAFewRamps(whole));
  EXPECT_EQ(whole.Close(), 0);
}

TEST_F(VirtualCameraOptions, OneProgramIsManyCamerasThatStreamSideBySide) {
  const VirtualCameraProcess process(
      {"-m", "ZS-A640", "-a", "127.0.0.11", "127.0.0.12", "127.0.0.13", "127.0.0.14"}, 4);
  EXPECT_EQ(Found(),
            (std::map<std::string, std::string>{
                {"VC11", "ZS-A640"}, {"VC12", "ZS-A640"}, {"VC13", "ZS-A640"}, {"VC14", "ZS-A640"}}));
  const char* const serials[] = {"VC11", "VC12", "VC13", "VC14"};
  ZynCamera cameras[4];
  for (int i = 0; i < 4; ++i) {
    ASSERT_NO_FATAL_FAILURE(Open(cameras[i], serials[i]));
    ASSERT_NO_FATAL_FAILURE(ShowMovingRamp(cameras[i]));
    ASSERT_EQ(cameras[i].StartGrab(ZYN_GRAB_ONE_BY_ONE, 0), 0);
    ASSERT_NO_FATAL_FAILURE(ExpectRampSoon(cameras[i]));
  }
  for (int round = 0; round < 10; ++round) {
    for (ZynCamera& camera : cameras) ASSERT_NO_FATAL_FAILURE(ExpectRamp(camera)) << "round " << round;
  }
  for (ZynCamera& camera : cameras) {
    EXPECT_EQ(camera.StopGrab(), 0);
    EXPECT_EQ(camera.Close(), 0);
  }
}

TEST_F(VirtualCameraOptions, TheClientAsksForLongNumbersAndGetsTheSameImages) {
  const VirtualCameraProcess process({"-m", "ZS-A640", "-s", "LONG", "--loss", "10"});
  ZynCamera camera;
  ASSERT_NO_FATAL_FAILURE(Open(camera, "LONG"));
  ASSERT_NO_FATAL_FAILURE(ShowMovingRamp(camera));
  SetEnum(camera, "GevGVSPExtendedIDMode", "On");
  ASSERT_EQ(camera.StartGrab(ZYN_GRAB_ONE_BY_ONE, 0), 0);
  // What is lost is asked for with long numbers, too. Without that a fifth of the images would be damaged; on a busy
  // machine a packet may come again too late.
  constexpr int kImages = 100;
  int whole = 0;
  ZynImage image;
  for (int i = 0; i < kImages; ++i) {
    if (camera.GrabImage(&image, nullptr) != 0) continue;
    ++whole;
    ASSERT_EQ(WrongPixels(image), 0) << "image " << i;
  }
  EXPECT_GE(whole, kImages * 95 / 100);
  EXPECT_EQ(camera.StopGrab(), 0);
  SetEnum(camera, "GevGVSPExtendedIDMode", "Off");
  ASSERT_NO_FATAL_FAILURE(GrabAFewRamps(camera));
  EXPECT_EQ(camera.Close(), 0);
}

TEST_F(VirtualCameraOptions, TestPacketsFindTheLargestPacketThatGetsThrough) {
  constexpr int kMtu = 1200;
  ASSERT_EQ(RunToEnd({"ip", "link", "set", "lo", "mtu", std::to_string(kMtu)}).exitCode, 0);
  const VirtualCameraProcess process({"-m", "ZS-A640", "-s", "MTU"});
  ZynCamera camera;
  ASSERT_NO_FATAL_FAILURE(Open(camera, "MTU"));
  ASSERT_NO_FATAL_FAILURE(ShowMovingRamp(camera));
  EXPECT_EQ(GetInt(camera, "GevSCPSPacketSize"), 1500);
  ASSERT_NO_FATAL_FAILURE(GrabAFewRamps(camera));
  EXPECT_LE(GetInt(camera, "GevSCPSPacketSize"), kMtu);
  EXPECT_GT(GetInt(camera, "GevSCPSPacketSize"), kMtu - 100);
  EXPECT_EQ(camera.Close(), 0);
  ASSERT_EQ(RunToEnd({"ip", "link", "set", "lo", "mtu", "65536"}).exitCode, 0);
}

}  // namespace
