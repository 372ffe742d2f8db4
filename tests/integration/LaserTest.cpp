/// 3D acquisition over the whole chain: simulated laser cameras, producer, transport, SDK. Every delivered point is
/// compared with the formula of the scene before the camera.
#include <GenApi/GenApi.h>
#include <ZynCamera.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "cameras/laser/Scene.h"

namespace {

using namespace ZYNSDK;
namespace scene = zyn::cameras::scene;

using Profiles = std::vector<std::int64_t>;

constexpr int kDeviceLost = -6;
constexpr std::int64_t kNoProfile = -1;  // a row of zeros

/// The features that make simulated cameras misbehave. Reached through a camera that itself behaves.
class Simulator {
 public:
  Simulator() {
    EXPECT_EQ(Discovery3DCamera("LASER-3", &witness_), 0);
    EXPECT_EQ(witness_.Open(), 0);
    Set("SimCameraSerialNumber", "LASER-1");
  }
  Simulator(const Simulator&) = delete;
  Simulator& operator=(const Simulator&) = delete;
  ~Simulator() {
    Command("SimClearFaults");
    Set("SimStreamPacing", "Reader");
    Set("SimCameraPlugged", "1");
    witness_.Close();
  }

  void Set(const char* name, const char* value) { GenApi::CValuePtr(Node(name))->FromString(value); }
  void Command(const char* name) { GenApi::CCommandPtr(Node(name))->Execute(); }
  /// Of a camera that is not open.
  void ForceAddress(const std::string& serial, std::int64_t address) {
    Command("DeviceUpdateList");
    const GenApi::CIntegerPtr selector(Node("DeviceSelector"));
    for (std::int64_t i = 0; i <= selector->GetMax(); ++i) {
      selector->SetValue(i);
      if (serial == GenApi::CStringPtr(Node("DeviceSerialNumber"))->GetValue(false, true).c_str()) break;
    }
    GenApi::CIntegerPtr(Node("GevDeviceForceIPAddress"))->SetValue(address);
    GenApi::CIntegerPtr(Node("GevDeviceForceSubnetMask"))->SetValue(0xFFFE0000);
    Command("GevDeviceForceIP");
  }

 private:
  GenApi::INode* Node(const char* name) {
    return Get3DCameraNodeMap(&witness_, ZYN_XML_INTERFACE)->GetNode(name);
  }

  Zyn3DCamera witness_;
};

/// An open 3D camera that does not grab yet.
class Laser : public testing::Test {
 protected:
  Laser() { Open("LASER-1"); }
  ~Laser() override {
    camera.StopGrab();
    camera.Close();
  }

  void Open(const char* serial) {
    camera.Close();
    Zyn3DCameraArray cameras;
    ASSERT_EQ(Discovery3DCameras(&cameras), 0);
    ASSERT_EQ(Discovery3DCamera(serial, &camera), 0);
    ASSERT_EQ(camera.Open(), 0);
  }
  std::string Address() {
    const std::unique_ptr<ZynCameraAttribute> attribute(camera.Attribute());
    return attribute->CameraIp();
  }
  void SetInt(const char* name, int value) {
    ZynNode node;
    ASSERT_EQ(camera.GetNode(name, &node), 0) << name;
    ASSERT_EQ(node.SetInt(value), 0) << name;
  }
  int GetInt(const char* name) {
    ZynNode node;
    int value = -1;
    EXPECT_EQ(camera.GetNode(name, &node), 0) << name;
    EXPECT_EQ(node.GetInt(&value), 0) << name;
    return value;
  }
  void StartScans(int lines, int linesPerFrame) {
    ASSERT_EQ(camera.SetBatchCount(lines), 0);
    SetInt("BatchNumber", linesPerFrame);
    ASSERT_EQ(camera.StartGrab(ZYN_3D_GRAB_BATCH), 0);
  }
  long Grab() { return camera.GrabBatchData(&range, &intensity); }

  // Returns when so many frames of the stream have arrived.
  void WaitForFrames(std::int64_t count) {
    GenApi::INodeMap* stream = Get3DCameraNodeMap(&camera, ZYN_XML_DATA_STREAM);
    const GenApi::CIntegerPtr delivered(stream->GetNode("StreamDeliveredFrameCount"));
    while (delivered->GetValue(false, true) < count) std::this_thread::yield();
  }

  // Which profile each row of the scan is, told by its first point; every other point must be that profile's too.
  Profiles ScanProfiles() {
    Profiles profiles;
    const auto* height = static_cast<const std::uint16_t*>(range.Data());
    const unsigned char* light = intensity.ImageData();
    EXPECT_EQ(intensity.Width(), range.Width());
    EXPECT_EQ(intensity.Height(), range.Height());
    for (int row = 0; row < range.Height(); ++row) {
      const std::int64_t profile = *height == 0 ? kNoProfile : NearLatest(*height - scene::kRulerBase);
      profiles.push_back(profile);
      int wrong = 0;
      for (int x = 0; x < range.Width(); ++x, ++height, ++light) {
        const int expected = profile == kNoProfile ? 0 : scene::SceneHeight(profile, x);
        const int expectedLight = profile == kNoProfile ? 0 : scene::SceneIntensity(profile, x);
        wrong += *height == expected && *light == expectedLight ? 0 : 1;
      }
      EXPECT_EQ(wrong, 0) << "row " << row << ", profile " << profile;
    }
    if (profiles.at(0) != kNoProfile) latestProfile = profiles[0];
    return profiles;
  }
  // The ruler starts again after its period: of all profiles it may mean, the one nearest to the latest scan.
  std::int64_t NearLatest(std::int64_t ruler) const {
    constexpr std::int64_t kHalf = scene::kRulerPeriod / 2;
    const std::int64_t lowest = std::max<std::int64_t>(latestProfile - kHalf, 0);
    return lowest + ((ruler - lowest) % scene::kRulerPeriod + scene::kRulerPeriod) % scene::kRulerPeriod;
  }
  static Profiles Consecutive(std::int64_t first, std::int64_t count) {
    Profiles profiles;
    for (std::int64_t i = 0; i < count; ++i) profiles.push_back(first + i);
    return profiles;
  }

  // Grabs scans of 1,000 lines in frames of 300, which are whole, until one is not. Frames may wait between camera
  // and application, so it need not be the next. Both scans stay in these.
  long GrabUntilOneIsNotWhole() {
    constexpr int kMost = 100;
    for (int i = 0; i < kMost; ++i) {
      before = latest;
      if (const long error = Grab()) return error;
      latest = ScanProfiles();
      if (latest != Consecutive(latest.front(), 1000)) return 0;
    }
    ADD_FAILURE() << "all scans are whole";
    return 0;
  }
  // The scan lacks one of its frames, and so it ends in the rows of the one before.
  void ExpectOneFrameMissing() {
    const std::int64_t first = before.empty() ? 0 : before.front() + 1200;
    int missing = 0;
    Profiles expected;
    for (std::int64_t frame = 0; frame < 4; ++frame) {
      const Profiles lines = Consecutive(first + frame * 300, 300);
      const bool isThere = expected.size() < 900 && latest.at(expected.size()) == lines.front();
      if (isThere) expected.insert(expected.end(), lines.begin(), lines.end());
      missing += isThere ? 0 : 1;
    }
    EXPECT_EQ(missing, 1);
    for (std::size_t row = 900; row < 1000; ++row)
      expected.push_back(before.empty() ? kNoProfile : before[row]);
    EXPECT_EQ(latest, expected);
  }

  Zyn3DCamera camera;
  ZynRangeImage range;
  ZynImage intensity;
  ZynImage image;
  Zyn3DIntArray heights;
  Profiles before;
  Profiles latest;
  std::int64_t latestProfile = 0;  ///< the first of the latest scan
};

}  // namespace

TEST_F(Laser, ContoursAreTheScene) {
  ASSERT_EQ(camera.StartGrab(ZYN_3D_GRAB_CONTOUR), 0);
  for (std::int64_t profile = 0; profile < 50; ++profile) {
    ASSERT_EQ(camera.GrabContour(&heights, &intensity), 0);
    ASSERT_EQ(heights.Length(), 2000);
    ASSERT_EQ(intensity.Width(), 2000);
    for (int x = 0; x < 2000; ++x) {
      ASSERT_EQ(heights[x], scene::SceneHeight(profile, x)) << profile << ", " << x;
      ASSERT_EQ(intensity.ImageData()[x], scene::SceneIntensity(profile, x)) << profile << ", " << x;
    }
  }
}

TEST_F(Laser, ProfilesAndTheirSensorImagesAreTheScene) {
  ASSERT_EQ(camera.StartGrab(ZYN_3D_GRAB_PROFILE), 0);
  for (std::int64_t profile = 0; profile < 5; ++profile) {
    ASSERT_EQ(camera.GrabData(&image, &heights, &intensity), 0);
    ASSERT_EQ(heights.Length(), 2000);
    ASSERT_EQ(image.Width(), 2000);
    ASSERT_EQ(image.Height(), 1024);
    for (int x = 0; x < 2000; ++x) {
      ASSERT_EQ(heights[x], scene::SceneSensorRow(profile, x)) << profile << ", " << x;
      ASSERT_EQ(intensity.ImageData()[x], scene::SceneSensorIntensity(profile, x)) << profile << ", " << x;
    }
    int wrong = 0;
    for (int y = 0; y < 1024; ++y) {
      const unsigned char* row = image.ImageData() + static_cast<std::ptrdiff_t>(y) * image.Step();
      for (int x = 0; x < 2000; ++x) wrong += row[x] == scene::SceneSensorPixel(profile, x, y) ? 0 : 1;
    }
    EXPECT_EQ(wrong, 0) << profile;
  }
}

TEST_F(Laser, TwoHundredFiftyLinesBecomeThreeHundred) {
  ASSERT_EQ(camera.SetBatchCount(250), 0);
  int count = 0;
  EXPECT_EQ(camera.GetBatchCount(&count), 0);
  EXPECT_EQ(count, 300);
  EXPECT_EQ(GetInt("BatchNumber"), 100);
  ASSERT_EQ(camera.StartGrab(ZYN_3D_GRAB_BATCH), 0);
  for (std::int64_t scan = 0; scan < 3; ++scan) {
    ASSERT_EQ(Grab(), 0);
    EXPECT_EQ(range.Width(), 2000);
    EXPECT_EQ(ScanProfiles(), Consecutive(scan * 300, 300));
  }
  EXPECT_EQ(range.DataType(), ZYN_IMAGE_U16);
  EXPECT_FLOAT_EQ(static_cast<float>(range.ResolutionX()), 0.02F);  // 40 mm over 2,000 points
  EXPECT_EQ(range.ResolutionZ(), 0.001);
  EXPECT_EQ(range.OffsetZ(), 32768.0);
  EXPECT_EQ(range.MaxValue(), 24.0);
}

TEST_F(Laser, FortyLinesBecomeAHundredInFramesOfForty) {
  ASSERT_EQ(camera.SetBatchCount(40), 0);
  EXPECT_EQ(GetInt("AcquisitionLineCount"), 100);
  EXPECT_EQ(GetInt("BatchNumber"), 40);
  ASSERT_EQ(camera.StartGrab(ZYN_3D_GRAB_BATCH), 0);
  for (std::int64_t scan = 0; scan < 3; ++scan) {
    ASSERT_EQ(Grab(), 0);
    EXPECT_EQ(ScanProfiles(), Consecutive(scan * 120, 100));  // 20 lines of the third frame are dropped
  }
}

TEST_F(Laser, AThousandLinesInFramesOfThreeHundred) {
  StartScans(1000, 300);
  for (std::int64_t scan = 0; scan < 3; ++scan) {
    ASSERT_EQ(Grab(), 0);
    EXPECT_EQ(ScanProfiles(), Consecutive(scan * 1200, 1000));
  }
}

TEST_F(Laser, CamerasThatKnowFewerFeaturesScanToo) {
  Open("LASER-2");  // counts the lines of a scan as frames only
  ASSERT_EQ(camera.SetBatchCount(200), 0);
  int count = 0;
  EXPECT_EQ(camera.GetBatchCount(&count), 0);
  EXPECT_EQ(count, 200);
  ASSERT_EQ(camera.StartGrab(ZYN_3D_GRAB_BATCH), 0);
  ASSERT_EQ(Grab(), 0);
  EXPECT_EQ(range.Width(), 1000);
  EXPECT_EQ(ScanProfiles(), Consecutive(0, 200));
  camera.StopGrab();
  Open("LASER-3");  // does not tell its points, and counts lines only
  ASSERT_EQ(camera.SetBatchCount(200), 0);
  ASSERT_EQ(camera.StartGrab(ZYN_3D_GRAB_BATCH), 0);
  ASSERT_EQ(Grab(), 0);
  EXPECT_EQ(range.Width(), 2000);
  EXPECT_EQ(ScanProfiles(), Consecutive(0, 200));
}

TEST_F(Laser, EveryModeFollowsEveryOther) {
  for (int round = 0; round < 2; ++round) {
    ASSERT_EQ(camera.StartGrab(ZYN_3D_GRAB_CONTOUR), 0);
    EXPECT_EQ(camera.GetGrabType(), ZYN_3D_GRAB_CONTOUR);
    EXPECT_EQ(camera.GrabContour(&heights, &intensity), 0);
    EXPECT_EQ(camera.StopGrab(), 0);
    EXPECT_EQ(camera.GetGrabType(), ZYN_3D_GRAB_NONE);
    StartScans(100, 100);
    EXPECT_EQ(Grab(), 0);
    EXPECT_EQ(ScanProfiles(), Consecutive(0, 100));
    EXPECT_EQ(camera.GrabContour(&heights, &intensity), ZYN_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(camera.SetBatchCount(200), ZYN_ERROR_ALREADY_GRABBING);
    EXPECT_EQ(camera.StopGrab(), 0);
    ASSERT_EQ(camera.StartGrab(ZYN_3D_GRAB_PROFILE), 0);
    EXPECT_EQ(camera.GrabData(&image, &heights, &intensity), 0);
    EXPECT_EQ(camera.StopGrab(), 0);
  }
}

TEST_F(Laser, AScanCutShortByANewIdentifierKeepsTheRowsOfTheOneBefore) {
  Simulator simulator;
  simulator.Set("SimStreamPacing", "Camera");
  // In real time, so on a busy machine the command may come when the second scan has just ended. Then once more.
  for (int attempt = 0; attempt < 10 && (latest.empty() || latest == Consecutive(1200, 1000)); ++attempt) {
    Open("LASER-1");
    StartScans(1000, 300);
    latestProfile = 0;
    ASSERT_EQ(Grab(), 0);
    ASSERT_EQ(ScanProfiles(), Consecutive(0, 1000));
    WaitForFrames(6);
    simulator.Command("SimNewScan");
    ASSERT_EQ(Grab(), 0);
    latest = ScanProfiles();
  }
  // Whole frames of the second scan, then the rows of the first.
  std::size_t lines = 0;
  while (lines < latest.size() && latest[lines] == 1200 + static_cast<std::int64_t>(lines)) ++lines;
  EXPECT_TRUE(lines == 600 || lines == 900) << lines;
  for (std::size_t row = lines; row < latest.size(); ++row) {
    ASSERT_EQ(latest[row], static_cast<std::int64_t>(row));
  }
  // The frame that cut it short is the first of the next.
  ASSERT_EQ(Grab(), 0);
  EXPECT_EQ(ScanProfiles(), Consecutive(1200 + static_cast<std::int64_t>(lines), 1000));
}

TEST_F(Laser, AFrameOneRecordShortIsSkipped) {
  Simulator simulator;
  simulator.Set("SimShortenChunks", "1");
  StartScans(1000, 300);
  ASSERT_EQ(GrabUntilOneIsNotWhole(), 0);
  ExpectOneFrameMissing();
  ASSERT_EQ(Grab(), 0);
  EXPECT_EQ(ScanProfiles().size(), 1000U);
}

TEST_F(Laser, ALostFrameIsMissingFromItsScan) {
  Simulator simulator;
  StartScans(1000, 300);
  simulator.Set("SimDropFrames", "1");
  ASSERT_EQ(GrabUntilOneIsNotWhole(), 0);
  ExpectOneFrameMissing();
}

TEST_F(Laser, ADamagedFrameIsACodeAndMissingFromItsScan) {
  Simulator simulator;
  StartScans(1000, 300);
  simulator.Set("SimDamageFrames", "1");
  ASSERT_EQ(GrabUntilOneIsNotWhole(), ZYN_ERROR_INVALID_FRAME);
  ASSERT_EQ(Grab(), 0);
  latest = ScanProfiles();
  ExpectOneFrameMissing();
}

TEST_F(Laser, ADamagedProfileIsACodeAndTheNextOneIsWhole) {
  Simulator simulator;
  simulator.Set("SimDamageFrames", "1");
  ASSERT_EQ(camera.StartGrab(ZYN_3D_GRAB_CONTOUR), 0);
  EXPECT_EQ(camera.GrabContour(&heights, &intensity), ZYN_ERROR_INVALID_FRAME);
  EXPECT_EQ(heights.Length(), 0);
  EXPECT_EQ(intensity.ImageData(), nullptr);
  ASSERT_EQ(camera.GrabContour(&heights, &intensity), 0);
  EXPECT_EQ(heights[1000], scene::SceneHeight(1, 1000));
}

TEST_F(Laser, ACameraUnpluggedInMidScanIsReportedAtOnceAndScansAgainOnceItIsBack) {
  Simulator simulator;
  simulator.Set("SimStreamPacing", "Camera");
  StartScans(65500, 100);  // more than a minute at 1,000 lines per second
  std::thread unplugging([&] {
    WaitForFrames(2);
    simulator.Set("SimCameraPlugged", "0");
  });
  EXPECT_EQ(Grab(), kDeviceLost);
  unplugging.join();
  EXPECT_EQ(range.Data(), nullptr);
  EXPECT_EQ(Grab(), kDeviceLost);
  EXPECT_FALSE(camera.IsOpen());
  camera.StopGrab();
  EXPECT_EQ(camera.GetGrabType(), ZYN_3D_GRAB_NONE);
  camera.Close();
  latestProfile = 0;
  simulator.Set("SimCameraPlugged", "1");
  simulator.Set("SimStreamPacing", "Reader");
  Open("LASER-1");
  StartScans(200, 100);
  ASSERT_EQ(Grab(), 0);
  EXPECT_EQ(ScanProfiles(), Consecutive(0, 200));
}

TEST_F(Laser, StoppingEndsAScanThatAnotherThreadWaitsFor) {
  Simulator simulator;
  simulator.Set("SimStreamPacing", "Camera");
  StartScans(65500, 100);
  long result = 0;
  std::thread grabbing([&] { result = Grab(); });
  WaitForFrames(2);
  EXPECT_EQ(camera.StopGrab(), 0);
  grabbing.join();
  EXPECT_TRUE(result == ZYN_ERROR_GRAB_FAILED || result == ZYN_ERROR_INVALID_ARGUMENT ||
              result == ZYN_ERROR_NOT_GRABBING)
      << result;
  EXPECT_EQ(range.Data(), nullptr);
}

// SetCameraAddress speaks to cameras on real adapters; a simulated one is on none of them.
TEST_F(Laser, OnlyTheSimulatedAdapterGivesItsCamerasAddresses) {
  const std::unique_ptr<ZynCameraAttribute> attribute(camera.Attribute());
  const std::string address = attribute->CameraIp();
  EXPECT_EQ(address.rfind("198.18.", 0), 0U) << address;
  EXPECT_FALSE(attribute->SetCameraAddress("198.18.7.7", nullptr, nullptr, false));
  Open("LASER-1");
  EXPECT_EQ(Address(), address);
  {
    Simulator simulator;
    camera.Close();
    simulator.ForceAddress("LASER-1", 0xC6120707);
    Open("LASER-1");
    EXPECT_EQ(Address(), "198.18.7.7");
  }
}
