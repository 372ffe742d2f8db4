// zyncam --simulate: the tool without any hardware.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "PngReader.h"
#include "PrivateNetwork.h"
#include "cameras/laser/Scene.h"

namespace {

namespace fs = std::filesystem;
namespace scene = zyn::cameras::scene;
using nlohmann::json;
using zyntest::Finished;

class ZyncamSimulate : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(zyntest::IsPrivateNetwork()) << "run this with scripts/in-namespace.sh, or through ctest";
    std::string pattern = (fs::temp_directory_path() / "zyncam-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    environment_ = {{"ZYN_SIMULATOR_CONFIG", ""}, {"GENICAM_GENTL64_PATH", ""}};
  }
  void TearDown() override {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  void Configure(const std::string& text) {
    const std::string path = (folder_ / "cameras.json").string();
    std::ofstream(path) << text;
    environment_["ZYN_SIMULATOR_CONFIG"] = path;
  }

  Finished Run(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), ZYN_ZYNCAM);
    return zyntest::RunToEnd(arguments, environment_);
  }

  fs::path folder_;
  std::map<std::string, std::string> environment_;
};

constexpr const char* kOne =
    R"({"cameras": [{"model": "KEL-LP2000", "serialNumber": "L1", "userDefinedName": "left"}]})";

TEST_F(ZyncamSimulate, WithoutTheOptionThereAreNoSimulatedCameras) {
  Configure(kOne);
  EXPECT_EQ(json::parse(Run({"list", "--json"}).out, nullptr, false), json::array());
}

TEST_F(ZyncamSimulate, ListsOneCameraOfEachModelWithoutAConfiguration) {
  const Finished result = Run({"--simulate", "list", "--json"});
  const json list = json::parse(result.out, nullptr, false);
  ASSERT_TRUE(list.is_array()) << result.out << result.err;
  std::vector<std::string> models;
  for (const json& camera : list) {
    models.push_back(camera["model"]);
    EXPECT_EQ(camera["status"], "ready") << camera;
  }
  EXPECT_NE(std::find(models.begin(), models.end(), "KEL-LP2000"), models.end()) << result.out;
  EXPECT_EQ(list.back()["model"], "ZS-CL1280") << result.out;
  EXPECT_EQ(list.back()["protocol"], "Camera Link");
}

TEST_F(ZyncamSimulate, NamesAVerbThatIsNotThereBehindAFlagToo) {
  const Finished result = Run({"--simulate", "frobnicate"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(result.err.find("there is no verb \"frobnicate\""), std::string::npos) << result.err;
}

TEST_F(ZyncamSimulate, ShowsTheLimitsThatSaySomething) {
  Configure(kOne);
  const std::string shown = Run({"--simulate", "features", "-c", "L1"}).out;
  for (const char* line : {"Width  [integer RW]  2000  (64..2000 step 4 px)\n", "(any C)\n", "(>= 0 ns)\n",
                           "AcquisitionLineRate  [float RW]  1000  (1..20000 Hz)\n"}) {
    EXPECT_NE(shown.find(line), std::string::npos) << line << " in " << shown;
  }
  EXPECT_EQ(shown.find("e+308"), std::string::npos) << shown;
}

TEST_F(ZyncamSimulate, ListsTheCamerasOfTheConfiguration) {
  Configure(kOne);
  const json list = json::parse(Run({"list", "--simulate", "--json"}).out, nullptr, false);
  ASSERT_EQ(list.size(), 1U);
  EXPECT_EQ(list[0]["serialNumber"], "L1");
  EXPECT_EQ(list[0]["model"], "KEL-LP2000");
  EXPECT_EQ(list[0]["address"], "198.18.1.1");
}

TEST_F(ZyncamSimulate, ReadsAndWritesFeatures) {
  Configure(kOne);
  const Finished set = Run({"--simulate", "set", "BatchNumber=37"});
  EXPECT_EQ(set.exitCode, 0) << set.err;
  EXPECT_EQ(set.out, "BatchNumber=37\n");
  EXPECT_EQ(Run({"--simulate", "get", "DeviceUserID"}).out, "left\n");
  EXPECT_EQ(Run({"--simulate", "get", "-m", "interface", "SimCameraPlugged"}).exitCode, 0);
}

TEST_F(ZyncamSimulate, TextsThatAreNotUtf8StillMakeValidJson) {
  Configure(kOne);
  const Finished unknown = Run({"--simulate", "info", "-c", "caf\xe9", "--json"});
  EXPECT_EQ(unknown.exitCode, 3) << unknown.err;
  EXPECT_EQ(json::parse(unknown.out, nullptr, false)["error"]["message"],
            "no camera matches \"caf\xEF\xBF\xBD\"");
  const Finished set = Run({"--simulate", "set", "DeviceUserID=caf\xe9", "--json"});
  EXPECT_EQ(set.exitCode, 0) << set.err;
  EXPECT_EQ(json::parse(set.out, nullptr, false)[0]["value"], "caf\xEF\xBF\xBD") << set.out;
}

TEST_F(ZyncamSimulate, ProfileWritesTheScenesHeightsAsATableAndAPlot) {
  Configure(kOne);
  const Finished result =
      Run({"--simulate", "profile", "-n", "2", "-o", (folder_ / "out").string(), "--json"});
  ASSERT_EQ(result.exitCode, 0) << result.out << result.err;
  const json report = json::parse(result.out, nullptr, false);
  EXPECT_EQ(report["profiles"], 2);
  EXPECT_EQ(report["points"], 2000);
  EXPECT_EQ(report["files"].size(), 4U);
  std::ifstream table(folder_ / "out" / "profile_00002.csv");
  std::string line;
  std::getline(table, line);
  EXPECT_EQ(line, "point,x_mm,z_mm,height,intensity");
  int wrong = 0;
  int points = 0;
  for (; std::getline(table, line); ++points) {
    int point = -1, height = -1, intensity = -1;
    double x = -1, z = -1;
    ASSERT_EQ(std::sscanf(line.c_str(), "%d,%lf,%lf,%d,%d", &point, &x, &z, &height, &intensity), 5) << line;
    const int truth = scene::SceneHeight(1, points);
    const bool isRight =
        point == points && height == truth && intensity == scene::SceneIntensity(1, points) &&
        std::abs(z - (truth - scene::kZero) / 1000.0) < 1e-4 && std::abs(x - points * 0.02) < 1e-3;
    if (!isRight) ++wrong;
  }
  EXPECT_EQ(points, 2000);
  EXPECT_EQ(wrong, 0);
  EXPECT_GT(fs::file_size(folder_ / "out" / "profile_00002.png"), 100U);
}

TEST_F(ZyncamSimulate, ScanWritesHeightMapScalePictureAndPointCloud) {
  Configure(kOne);
  const Finished result = Run({"--simulate", "scan", "-l", "200", "-o", folder_.string(), "--json"});
  ASSERT_EQ(result.exitCode, 0) << result.out << result.err;
  const json report = json::parse(result.out, nullptr, false);
  EXPECT_EQ(report["width"], 2000);
  EXPECT_EQ(report["height"], 200);
  EXPECT_EQ(report["files"].size(), 4U);
  std::ifstream sidecar(folder_ / "scan.json");
  const json scale = json::parse(sidecar, nullptr, false);
  EXPECT_EQ(scale["z"]["resolution"], 0.001);
  EXPECT_EQ(scale["z"]["offset"], 32768.0);
  EXPECT_EQ(scale["y"]["resolution"], 0.02);
  EXPECT_EQ(fs::file_size(folder_ / "scan_colours.png") > 100, true);

  std::ifstream cloud(folder_ / "scan.ply", std::ios::binary);
  std::string line;
  while (std::getline(cloud, line) && line != "end_header") {
    if (line.rfind("element vertex", 0) == 0) {
      EXPECT_EQ(line, "element vertex 400000");
    }
  }
  int wrong = 0;
  for (int i = 0; i < 400000; ++i) {
    float position[3] = {};
    char intensity = 0;
    cloud.read(reinterpret_cast<char*>(position), sizeof position);
    cloud.read(&intensity, 1);
    const int row = i / 2000;
    const int point = i % 2000;
    const double truth = (scene::SceneHeight(row, point) - scene::kZero) / 1000.0;
    const bool isRight = std::abs(position[0] - point * 0.02) < 1e-3 &&
                         std::abs(position[1] - row * 0.02) < 1e-3 && std::abs(position[2] - truth) < 1e-4 &&
                         static_cast<unsigned char>(intensity) == scene::SceneIntensity(row, point);
    if (!isRight) ++wrong;
  }
  EXPECT_TRUE(cloud.good());
  EXPECT_EQ(cloud.peek(), std::char_traits<char>::eof());
  EXPECT_EQ(wrong, 0);
}

// The scan takes more than a minute, at a thousand lines per second.
TEST_F(ZyncamSimulate, ScanShowsTheLinesThatCameAndEndsAtOnceOnCtrlC) {
  Configure(kOne);
  std::vector<std::string> arguments = {"env"};
  for (const auto& [name, value] : environment_) arguments.push_back(name + "=" + value);
  for (const std::string& argument :
       {std::string(ZYN_ZYNCAM), std::string("--simulate"), std::string("scan"), std::string("--lines"),
        std::string("65500"), std::string("-o"), folder_.string()}) {
    arguments.push_back(argument);
  }
  zyntest::ChildProcess scan(arguments, zyntest::ChildProcess::OnTerminal{});
  const std::regex progress(R"(\[#*\.*\] scanning, ([1-9]\d*) of 65500 lines)");
  const int first = std::stoi(scan.WaitForText(progress));
  const int second = std::stoi(scan.WaitForText(progress));
  EXPECT_LT(first, second);
  EXPECT_LT(second, 65500);
  const auto before = std::chrono::steady_clock::now();
  EXPECT_EQ(scan.End(SIGINT), 130);
  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(30));
  EXPECT_FALSE(fs::exists(folder_ / "scan.png"));
}

TEST_F(ZyncamSimulate, VerbsForImagesRefuseCamerasForProfiles) {
  Configure(kOne);
  EXPECT_EQ(Run({"--simulate", "grab"}).exitCode, 1) << "a 3D camera has no images for this verb";
}

TEST_F(ZyncamSimulate, GrabWritesImagesOfAreaCameras) {
  Configure(R"({"cameras": [{"model": "ZS-A640", "serialNumber": "A1", "pacing": "reader"}]})");
  const Finished result = Run({"--simulate", "grab", "-n", "3", "-o", folder_.string(), "--json"});
  ASSERT_EQ(result.exitCode, 0) << result.out << result.err;
  const json report = json::parse(result.out, nullptr, false);
  EXPECT_EQ(report["frames"], 3);
  EXPECT_EQ(report["width"], 640);
  EXPECT_EQ(report["height"], 480);
  EXPECT_TRUE(fs::exists(folder_ / "image_00003.png"));
}

TEST_F(ZyncamSimulate, VerbsForProfilesRefuseCamerasForImages) {
  Configure(R"({"cameras": [{"model": "ZS-A640", "serialNumber": "A1"}]})");
  EXPECT_EQ(Run({"--simulate", "profile", "-o", folder_.string()}).exitCode, 1);
  EXPECT_EQ(Run({"--simulate", "scan", "-o", folder_.string()}).exitCode, 1);
}

/// A Camera Link camera, and a file for its card.
class ZyncamCard : public ZyncamSimulate {
 protected:
  void SetUp() override {
    ZyncamSimulate::SetUp();
    Configure(R"({"cameras": [{"model": "ZS-CL1280", "serialNumber": "C1", "pacing": "reader"}]})");
  }
  std::string Card(const std::string& settings) const {
    std::string path = (folder_ / "card.cfg").string();
    std::ofstream(path) << settings;
    return path;
  }
};

TEST_F(ZyncamCard, TheFileShapesTheImages) {
  const std::string card = Card("Width = 320\nHeight = 200 ; lines\nPixelFormat = Mono12\n");
  const Finished result =
      Run({"--simulate", "grab", "--card", card, "-n", "2", "-o", folder_.string(), "--json"});
  ASSERT_EQ(result.exitCode, 0) << result.out << result.err;
  const json report = json::parse(result.out, nullptr, false);
  EXPECT_EQ(report["frames"], 2);
  EXPECT_EQ(report["width"], 320);
  EXPECT_EQ(report["height"], 200);
  EXPECT_EQ(report["pixelFormat"], "Mono12") << "the card's, for that is what it stores";
  const zyntest::Decoded image = zyntest::Read((folder_ / "image_00002.png").string());
  EXPECT_EQ(image.width, 320U);
  EXPECT_EQ(image.height, 200U);
  EXPECT_EQ(image.significantBits, 12);
}

TEST_F(ZyncamCard, TheFileIsAppliedBeforeFeaturesAreReadAndWritten) {
  const std::string card = Card("Width = 320\nNoSuchFeature = 1\nReverseX = True\n");
  EXPECT_EQ(Run({"--simulate", "get", "-m", "device", "--card", card, "Width", "ReverseX", "Height"}).out,
            "Width=320\nReverseX=true\nHeight=1024\n");
  EXPECT_EQ(Run({"--simulate", "set", "-m", "device", "--card", card, "Height=10"}).exitCode, 0);
  EXPECT_EQ(Run({"--simulate", "exec", "-m", "device", "--card", card, "TriggerSoftware"}).exitCode, 0);
  const Finished features = Run({"--simulate", "features", "-m", "device", "--card", card, "--flat"});
  EXPECT_NE(features.out.find("Width  [integer RW]  320"), std::string::npos) << features.out;
}

TEST_F(ZyncamCard, AFileThatIsMissingOrBadIsNamed) {
  const std::string missing = (folder_ / "none.cfg").string();
  Finished result = Run({"--simulate", "grab", "--card", missing, "--json"});
  EXPECT_EQ(result.exitCode, 1);
  const json error = json::parse(result.out, nullptr, false)["error"];
  EXPECT_EQ(error["status"], 101044) << result.out;
  EXPECT_NE(error["message"].get<std::string>().find(missing), std::string::npos);
  result = Run({"--simulate", "get", "--card", Card("Width = wide\n"), "Width"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.err.find("101040"), std::string::npos) << result.err;
}

TEST_F(ZyncamCard, AGrabWithNothingButIncompleteFramesEnds) {
  const std::string card = Card("Height = 2000\n");
  const Finished result = Run({"--simulate", "grab", "--card", card, "-t", "200", "-o", folder_.string()});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.err.find("101084"), std::string::npos) << result.err;
}

TEST_F(ZyncamCard, ThreeDimensionalCamerasTakeNoFile) {
  Configure(kOne);
  const Finished result = Run({"--simulate", "get", "--card", Card("Width = 1\n"), "Width"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.err.find("3D camera"), std::string::npos) << result.err;
  EXPECT_EQ(Run({"--simulate", "scan", "--card", "card.cfg"}).exitCode, 2) << "no option of this verb";
}

TEST_F(ZyncamSimulate, TellsWhatIsWrongWithAConfiguration) {
  Configure(R"({"cameras": [{"model": "NONE"}]})");
  const Finished result = Run({"--simulate", "get", "Width"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_NE(result.err.find("there is no model \"NONE\""), std::string::npos) << result.err;
}

}  // namespace
