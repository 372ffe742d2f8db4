#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <iterator>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "ChildProcess.h"
#include "FakeGigeCamera.h"
#include "PrivateNetwork.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using zyntest::FakeGigeCamera;
using zyntest::Finished;

std::string PathOf(const std::string& example) {
  return std::string(ZYN_EXAMPLES) + "/" + example;
}

Finished RunExample(const std::string& example, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), PathOf(example));
  return zyntest::RunToEnd(arguments);
}

Finished Zyncam(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), ZYN_ZYNCAM);
  return zyntest::RunToEnd(arguments);
}

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// A camera on the wire.
class Examples : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(zyntest::IsPrivateNetwork()) << "run this with scripts/in-namespace.sh, or through ctest";
  }

  FakeGigeCamera fake_{1};
};

TEST_F(Examples, ListCamerasShowsEveryCamera) {
  const FakeGigeCamera second(2);
  const Finished result = RunExample("list_cameras", {});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  std::vector<std::string> lines = LinesOf(result.out);
  ASSERT_EQ(lines.size(), 3U) << result.out;
  EXPECT_EQ(lines[0], "2 camera(s)");
  lines.erase(lines.begin());
  EXPECT_THAT(lines, testing::UnorderedElementsAre("GV01: Aravis Fake at 127.0.0.1",
                                                   "GV02: Aravis Fake at 127.0.0.2"));
}

TEST_F(Examples, ListCamerasWithoutCamerasSaysSo) {
  fake_.Kill();
  const Finished result = RunExample("list_cameras", {});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "0 camera(s)\n");
}

TEST_F(Examples, SetFeaturesWritesToTheCamera) {
  const Finished result = RunExample("set_features", {"GV01"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(
      LinesOf(result.out),
      (std::vector<std::string>{
          "Width is 512, may be 1 to 2048 in steps of 1", "Width is now 1024", "ExposureTime is now 5000",
          "PixelFormat is Mono8, may be BayerBG8 BayerGB8 BayerGR8 BayerRG8 Mono8 RGB8 Mono16",
          "There is no NoSuchFeature"}));
  EXPECT_EQ(Zyncam({"get", "Width", "ExposureTime"}).out, "Width=1024\nExposureTimeAbs=5000\n");
}

TEST_F(Examples, GrabLoopGrabsTheImagesThatWereAskedFor) {
  Zyncam({"set", "Width=64", "Height=32"});
  const Finished result = RunExample("grab_loop", {"GV01", "4"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  const std::vector<std::string> lines = LinesOf(result.out);
  ASSERT_EQ(lines.size(), 4U) << result.out;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    double mean = -1;
    const std::string wanted = "image " + std::to_string(i + 1) + ": 64 x 32, mean %lf";
    EXPECT_EQ(std::sscanf(lines[i].c_str(), wanted.c_str(), &mean), 1) << lines[i];
    EXPECT_GT(mean, 0);
    EXPECT_LT(mean, 255);
  }
}

TEST_F(Examples, ReceiveImagesGetsTheImagesThatWereAskedFor) {
  Zyncam({"set", "Width=64", "Height=32"});
  const Finished result = RunExample("receive_images", {"GV01", "4"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out, "image 1: 64 x 32\nimage 2: 64 x 32\nimage 3: 64 x 32\nimage 4: 64 x 32\n");
}

TEST_F(Examples, SoftwareTriggerTakesAnImagePerTrigger) {
  Zyncam({"set", "Width=64", "Height=32", "TriggerSource=Software", "TriggerMode=On"});
  const Finished untriggered = RunExample("grab_loop", {"GV01", "1"});
  EXPECT_EQ(untriggered.exitCode, 1) << "without a trigger this camera must send nothing";
  EXPECT_THAT(untriggered.err, HasSubstr("101023"));

  const Finished result = RunExample("software_trigger", {"GV01", "3"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out,
            "triggered image 1: 64 x 32\ntriggered image 2: 64 x 32\ntriggered image 3: 64 x 32\n");
  EXPECT_EQ(Zyncam({"get", "TriggerMode"}).out, "Off\n");
}

TEST_F(Examples, ListFeaturesShowsEveryNodeMap) {
  const Finished result = RunExample("list_features", {"GV01"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  for (const char* map : {"Camera", "Local device", "Transport layer", "Interface", "Data stream"}) {
    EXPECT_THAT(result.out, HasSubstr(std::string(map) + ": "));
  }
  EXPECT_THAT(result.out, testing::Not(HasSubstr(": 0 features")));
  EXPECT_THAT(result.out, testing::Not(HasSubstr("status")));
  EXPECT_THAT(result.out, HasSubstr("\n  Width (integer) = 512\n"));
  EXPECT_THAT(result.out, HasSubstr("\n  PixelFormat (enumeration) = Mono8\n"));
  EXPECT_THAT(result.out, HasSubstr("\n  TriggerSoftware (command)\n"));
}

/// Waits until the file holds so many lines, for 30 seconds at most.
bool WaitForLines(const fs::path& file, std::size_t count) {
  for (int i = 0; i < 600; ++i) {
    std::ifstream stream(file);
    const std::string text((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    if (LinesOf(text).size() >= count) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return false;
}

TEST_F(Examples, WatchCamerasTellsOfCamerasThatComeAndGo) {
  std::string file = (fs::temp_directory_path() / "watch-XXXXXX").string();
  close(mkstemp(file.data()));
  auto watching = std::async(std::launch::async, [&] {
    return zyntest::RunToEnd({"sh", "-c", "exec \"$0\" 3 >\"$1\"", PathOf("watch_cameras"), file});
  });
  EXPECT_TRUE(WaitForLines(file, 1));
  fake_.Kill();
  EXPECT_TRUE(WaitForLines(file, 2));
  fake_.Start();
  EXPECT_EQ(watching.get().exitCode, 0);
  std::ifstream stream(file);
  const std::string text((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
  fs::remove(file);
  EXPECT_EQ(text, "GV01 appeared\nGV01 is gone\nGV01 appeared\n");
}

TEST_F(Examples, AWrongCommandLineShowsTheUsage) {
  for (const char* example : {"set_features", "grab_loop", "receive_images", "watch_cameras",
                              "software_trigger", "list_features"}) {
    const Finished result = RunExample(example, {});
    EXPECT_EQ(result.exitCode, 2) << example;
    EXPECT_THAT(result.err, HasSubstr(std::string("usage: ") + example));
    EXPECT_EQ(result.out, "");
  }
}

TEST_F(Examples, AnUnknownCameraIsNamedByItsStatus) {
  const std::vector<std::vector<std::string>> commands = {{"set_features", "NOPE"},
                                                          {"grab_loop", "NOPE", "1"},
                                                          {"receive_images", "NOPE", "1"},
                                                          {"software_trigger", "NOPE", "1"},
                                                          {"list_features", "NOPE"}};
  for (const std::vector<std::string>& command : commands) {
    const Finished result = RunExample(command[0], {command.begin() + 1, command.end()});
    EXPECT_EQ(result.exitCode, 1) << command[0];
    EXPECT_THAT(result.err, HasSubstr("101006"));
  }
}

}  // namespace
