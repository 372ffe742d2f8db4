#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "PrivateNetwork.h"

namespace {

using zyntest::ChildProcess;
using zyntest::Finished;
using zyntest::RunToEnd;

class VirtualCamera : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(zyntest::IsPrivateNetwork());
    std::filesystem::create_directories(folder_);
  }
  void TearDown() override {
    if (process_) {
      EXPECT_EQ(process_->End(SIGTERM), 0);
    }
    std::filesystem::remove_all(folder_);
  }

  void Start(std::vector<std::string> options) {
    options.insert(options.begin(), ZYN_VIRTUAL_CAMERA);
    process_.emplace(options, ChildProcess::WithOutput{});
    ASSERT_EQ(process_->NextLine(), "1 on the wire");
  }
  static Finished Zyncam(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), ZYN_ZYNCAM);
    return RunToEnd(arguments);
  }
  void ExpectScanOfTheScene() {
    const Finished scan = Zyncam({"scan", "-c", "VC1", "-l", "1000", "-o", folder_.string()});
    ASSERT_EQ(scan.exitCode, 0) << scan.out << scan.err;
    const Finished check = RunToEnd({ZYN_SCENE_CHECK, (folder_ / "scan.png").string()});
    EXPECT_EQ(check.exitCode, 0) << check.out << check.err;
  }

  const std::filesystem::path folder_ =
      std::filesystem::temp_directory_path() / ("virtual-camera-test-" + std::to_string(getpid()));
  std::optional<ChildProcess> process_;
};

TEST_F(VirtualCamera, ItsFeaturesAreReadAndWritten) {
  Start({"-m", "ZS-A640"});
  EXPECT_NE(Zyncam({"list"}).out.find("VC1"), std::string::npos);
  EXPECT_EQ(Zyncam({"set", "-c", "VC1", "Height=48"}).exitCode, 0);
  EXPECT_NE(Zyncam({"get", "-c", "VC1", "Height"}).out.find("48"), std::string::npos);
}

TEST_F(VirtualCamera, ItsImagesAreGrabbed) {
  Start({"-m", "ZS-A640"});
  const Finished grab = Zyncam({"grab", "-c", "VC1", "-n", "3", "-o", folder_.string()});
  EXPECT_EQ(grab.exitCode, 0) << grab.err;
  EXPECT_TRUE(std::filesystem::exists(folder_ / "image_00003.png"));
}

TEST_F(VirtualCamera, AScanEqualsTheScene) {
  Start({"-m", "KEL-LP2000"});
  ExpectScanOfTheScene();
}

TEST_F(VirtualCamera, AScanEqualsTheSceneWhenPacketsAreLostAndSentAgain) {
  Start({"-m", "KEL-LP2000", "--loss", "10"});
  ExpectScanOfTheScene();
}

TEST_F(VirtualCamera, AnIndependentClientReadsAndWritesItsFeatures) {
  Start({"-m", "ZS-A640"});
  const Finished tool = RunToEnd({"arv-tool-0.8", "control", "Height=48", "PayloadSize"});
  EXPECT_NE(tool.out.find("PayloadSize = 30720"), std::string::npos) << tool.out << tool.err;
}

TEST_F(VirtualCamera, AnIndependentClientLosesNoFrame) {
  Start({"-m", "ZS-A640"});
  const Finished test = RunToEnd({"arv-camera-test-0.8", "--duration", "10"});
  EXPECT_NE(test.out.find("n_failures             = 0"), std::string::npos) << test.out << test.err;
  EXPECT_NE(test.out.find("n_missing_packets      = 0"), std::string::npos) << test.out << test.err;
  EXPECT_EQ(test.out.find("n_completed_buffers    = 0\n"), std::string::npos) << test.out << test.err;
}

}  // namespace
