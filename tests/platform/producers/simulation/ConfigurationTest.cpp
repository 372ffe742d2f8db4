// The simulator's configuration file.
#include "Configuration.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace zyn::simulation {
namespace {

const std::vector<ModelEntry> kModels = {{"AREA"}, {"LASER"}, {"CARD", true}};

std::string ErrorOf(const std::string& json) {
  try {
    ParseConfiguration(json, kModels);
  } catch (const ConfigurationError& error) {
    return error.what();
  }
  return "";
}

TEST(SimulatorConfiguration, HoldsTheCamerasInTheirOrder) {
  const Configuration configuration = ParseConfiguration(R"({
    // comments are welcome
    "cameras": [
      {"model": "LASER", "serialNumber": "L-1", "userDefinedName": "left", "link": "CameraLink",
       "pacing": "reader", "plugged": false, "busy": true},
      {"model": "AREA"}
    ]})",
                                                         kModels);
  ASSERT_EQ(configuration.cameras.size(), 2U);
  const CameraSetting& first = configuration.cameras[0];
  EXPECT_EQ(first.model, "LASER");
  EXPECT_EQ(first.serial, "L-1");
  EXPECT_EQ(first.userName, "left");
  EXPECT_EQ(first.link, LinkKind::cameraLink);
  EXPECT_EQ(first.pacing, Pacing::reader);
  EXPECT_FALSE(first.isPlugged);
  EXPECT_TRUE(first.isBusy);
  const CameraSetting& second = configuration.cameras[1];
  EXPECT_EQ(second.model, "AREA");
  EXPECT_EQ(second.serial, "SIM0001");
  EXPECT_EQ(second.userName, "");
  EXPECT_EQ(second.link, LinkKind::ethernet);
  EXPECT_EQ(second.pacing, Pacing::camera);
  EXPECT_TRUE(second.isPlugged);
  EXPECT_FALSE(second.isBusy);
}

TEST(SimulatorConfiguration, NumbersManyCamerasAroundTheSerialNumbersThatAreGiven) {
  const Configuration configuration = ParseConfiguration(
      R"({"cameras": [{"model": "AREA", "count": 3}, {"model": "LASER", "serialNumber": "SIM0002"}]})",
      kModels);
  ASSERT_EQ(configuration.cameras.size(), 4U);
  EXPECT_EQ(configuration.cameras[0].serial, "SIM0001");
  EXPECT_EQ(configuration.cameras[1].serial, "SIM0003");
  EXPECT_EQ(configuration.cameras[2].serial, "SIM0004");
  EXPECT_EQ(configuration.cameras[3].serial, "SIM0002");
}

TEST(SimulatorConfiguration, MayHaveNoCameraAtAll) {
  EXPECT_TRUE(ParseConfiguration(R"({"cameras": []})", kModels).cameras.empty());
}

TEST(SimulatorConfiguration, DefaultsToOneCameraOfEachModel) {
  const Configuration configuration = DefaultConfiguration(kModels);
  ASSERT_EQ(configuration.cameras.size(), 3U);
  EXPECT_EQ(configuration.cameras[0].model, "AREA");
  EXPECT_EQ(configuration.cameras[1].model, "LASER");
  EXPECT_EQ(configuration.cameras[2].model, "CARD");
  EXPECT_EQ(configuration.cameras[0].serial, "SIM0001");
  EXPECT_EQ(configuration.cameras[2].serial, "SIM0003");
  EXPECT_EQ(configuration.cameras[0].link, LinkKind::ethernet);
  EXPECT_EQ(configuration.cameras[2].link, LinkKind::cameraLink) << "it has no other connector";
}

struct BadText {
  const char* name;
  const char* json;
  const char* expected;  // part of the message
};

class BadConfiguration : public testing::TestWithParam<BadText> {};

TEST_P(BadConfiguration, IsRefusedWithItsPlaceAndCause) {
  const std::string error = ErrorOf(GetParam().json);
  EXPECT_NE(error.find(GetParam().expected), std::string::npos) << error;
}

INSTANTIATE_TEST_SUITE_P(
    Texts, BadConfiguration,
    testing::Values(
        BadText{"Empty", "", "no JSON text"}, BadText{"CutOff", R"({"cameras": [)", "no JSON text"},
        BadText{"NotUtf8", "{\"cameras\": [{\"model\": \"\xFF\"}]}", "no JSON text"},
        BadText{"NoObject", "[]", "an object is expected"},
        BadText{"NoCameras", "{}", "\"cameras\" is missing"},
        BadText{"UnknownTopKey", R"({"cameras": [], "camera": 1})", "there is no setting \"camera\""},
        BadText{"NoList", R"({"cameras": {}})", "cameras: a list is expected"},
        BadText{"NoEntryObject", R"({"cameras": [1]})", "cameras[0]: an object is expected"},
        BadText{"NoModel", R"({"cameras": [{}]})", "cameras[0]: \"model\" is missing"},
        BadText{"UnknownModel", R"({"cameras": [{"model": "AREA"}, {"model": "X"}]})",
                "cameras[1].model: there is no model \"X\"; the models are AREA, LASER, CARD"},
        BadText{"ModelNoText", R"({"cameras": [{"model": 1}]})", "cameras[0].model: a text is expected"},
        BadText{"UnknownKey", R"({"cameras": [{"model": "AREA", "serial": "1"}]})",
                "cameras[0]: there is no setting \"serial\""},
        BadText{
            "SerialTwice",
            R"({"cameras": [{"model": "AREA", "serialNumber": "A"}, {"model": "AREA", "serialNumber": "A"}]})",
            "cameras[1].serialNumber: the serial number \"A\" is there twice"},
        BadText{"SerialEmpty", R"({"cameras": [{"model": "AREA", "serialNumber": ""}]})",
                "is no serial number"},
        BadText{"SerialTooLong", R"({"cameras": [{"model": "AREA", "serialNumber": "1234567890123456"}]})",
                "is no serial number"},
        BadText{"SerialWithBlank", R"({"cameras": [{"model": "AREA", "serialNumber": "A B"}]})",
                "is no serial number"},
        BadText{"SerialAndCount", R"({"cameras": [{"model": "AREA", "serialNumber": "A", "count": 2}]})",
                "exclude each other"},
        BadText{"NameTooLong", R"({"cameras": [{"model": "AREA", "userDefinedName": "1234567890123456"}]})",
                "userDefinedName: at most 15 bytes"},
        BadText{"NameWithControl", R"({"cameras": [{"model": "AREA", "userDefinedName": "a\nb"}]})",
                "userDefinedName: at most 15 bytes"},
        BadText{"LinkUnknown", R"({"cameras": [{"model": "AREA", "link": "USB"}]})",
                "cameras[0].link: \"USB\" is none of Ethernet, CameraLink"},
        BadText{"LinkThatTheModelLacks", R"({"cameras": [{"model": "CARD", "link": "Ethernet"}]})",
                "cameras[0].link: the model \"CARD\" has a Camera Link connector only"},
        BadText{"PacingUnknown", R"({"cameras": [{"model": "AREA", "pacing": "fast"}]})",
                "\"fast\" is none of camera, reader"},
        BadText{"PluggedNoTruth", R"({"cameras": [{"model": "AREA", "plugged": 1}]})",
                "plugged: true or false is expected"},
        BadText{"CountZero", R"({"cameras": [{"model": "AREA", "count": 0}]})", "count: a number from 1"},
        BadText{"CountNegative", R"({"cameras": [{"model": "AREA", "count": -1}]})",
                "count: a number from 1"},
        BadText{"CountBroken", R"({"cameras": [{"model": "AREA", "count": 1.5}]})", "count: a number from 1"},
        BadText{"TooMany",
                R"({"cameras": [{"model": "AREA", "count": 9999}, {"model": "AREA", "count": 2}]})",
                "more than 10000 cameras"}),
    [](const auto& text) { return text.param.name; });

TEST(SimulatorConfiguration, DeeplyNestedTextIsRefusedLikeAnyOther) {
  EXPECT_NE(ErrorOf(std::string(200000, '[')), "");
}

class ConfigurationFile : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (std::filesystem::temp_directory_path() / "simulator-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  void TearDown() override {
    unsetenv("ZYN_SIMULATOR_CONFIG");
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  std::string Write(const std::string& text) const {
    std::string path = (folder_ / "cameras.json").string();
    std::ofstream(path) << text;
    return path;
  }

  static std::string LoadError() {
    try {
      LoadConfiguration(kModels);
    } catch (const ConfigurationError& error) {
      return error.what();
    }
    return "";
  }

  std::filesystem::path folder_;
};

TEST_F(ConfigurationFile, IsTheOneThatTheEnvironmentNames) {
  setenv("ZYN_SIMULATOR_CONFIG", Write(R"({"cameras": [{"model": "AREA", "serialNumber": "X"}]})").c_str(),
         1);
  const Configuration configuration = LoadConfiguration(kModels);
  ASSERT_EQ(configuration.cameras.size(), 1U);
  EXPECT_EQ(configuration.cameras[0].serial, "X");
}

TEST_F(ConfigurationFile, WithoutOneTheDefaultHolds) {
  unsetenv("ZYN_SIMULATOR_CONFIG");
  EXPECT_EQ(LoadConfiguration(kModels).cameras.size(), kModels.size());
  setenv("ZYN_SIMULATOR_CONFIG", "", 1);
  EXPECT_EQ(LoadConfiguration(kModels).cameras.size(), kModels.size());
}

TEST_F(ConfigurationFile, ThatIsMissingOrBadIsNamedInTheError) {
  const std::string missing = (folder_ / "none.json").string();
  setenv("ZYN_SIMULATOR_CONFIG", missing.c_str(), 1);
  EXPECT_EQ(LoadError(), missing + ": the file cannot be opened");
  const std::string bad = Write("{");
  setenv("ZYN_SIMULATOR_CONFIG", bad.c_str(), 1);
  EXPECT_EQ(LoadError().rfind(bad + ": no JSON text", 0), 0U) << LoadError();
  setenv("ZYN_SIMULATOR_CONFIG", folder_.c_str(), 1);
  EXPECT_NE(LoadError(), "");
}

}  // namespace
}  // namespace zyn::simulation
