// zyncam --simulate: the tool without any hardware.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "PrivateNetwork.h"

namespace {

namespace fs = std::filesystem;
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

TEST_F(ZyncamSimulate, TellsWhatIsWrongWithAConfiguration) {
  Configure(R"({"cameras": [{"model": "NONE"}]})");
  const Finished result = Run({"--simulate", "get", "Width"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_NE(result.err.find("there is no model \"NONE\""), std::string::npos) << result.err;
}

}  // namespace
