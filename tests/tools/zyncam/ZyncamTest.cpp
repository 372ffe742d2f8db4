#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "FakeGigeCamera.h"
#include "PrivateNetwork.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using zyntest::FakeGigeCamera;
using zyntest::Finished;

/// A camera on the wire and a folder for files, both gone afterwards.
class Zyncam : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(zyntest::IsPrivateNetwork()) << "run this with scripts/in-namespace.sh, or through ctest";
    std::string pattern = (fs::temp_directory_path() / "zyncam-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    fake_ = std::make_unique<FakeGigeCamera>(1);
  }
  void TearDown() override {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }

  static Finished Run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), ZYN_ZYNCAM);
    return zyntest::RunToEnd(arguments);
  }
  static json Json(std::vector<std::string> arguments) {
    arguments.emplace_back("--json");
    const Finished result = Run(std::move(arguments));
    return json::parse(result.out, nullptr, false);
  }

  fs::path folder_;
  std::unique_ptr<FakeGigeCamera> fake_;
};

TEST_F(Zyncam, ListShowsTheCamerasAsATableAndAsJson) {
  const FakeGigeCamera second(2);
  const Finished table = Run({"list"});
  EXPECT_EQ(table.exitCode, 0) << table.err;
  EXPECT_NE(table.out.find("SERIAL"), std::string::npos);
  EXPECT_NE(table.out.find("GV01"), std::string::npos);
  EXPECT_NE(table.out.find("127.0.0.2"), std::string::npos);
  EXPECT_NE(table.out.find("ready"), std::string::npos);
  EXPECT_EQ(table.out.find("AdapterIP: "), std::string::npos) << "trace lines do not belong in a result";
  const json list = Json({"list"});
  ASSERT_EQ(list.size(), 2U);
  EXPECT_EQ(list[0]["serialNumber"], "GV01");
  EXPECT_EQ(list[1]["address"], "127.0.0.2");
}

TEST_F(Zyncam, TraceLinesAreShownOnRequest) {
  const Finished table = Run({"--trace", "list"});
  EXPECT_NE(table.err.find("AdapterIP: 127.0.0.1"), std::string::npos) << table.err;
}

TEST_F(Zyncam, ListWithoutCamerasSucceedsAndSaysSo) {
  fake_->Kill();
  const Finished table = Run({"list"});
  EXPECT_EQ(table.exitCode, 0);
  EXPECT_EQ(table.out, "");
  EXPECT_NE(table.err.find("No camera found"), std::string::npos);
  EXPECT_EQ(Json({"list"}), json::array());
}

TEST_F(Zyncam, InfoDescribesOneCamera) {
  const json info = Json({"info", "-c", "GV01"});
  EXPECT_EQ(info["model"], "Fake");
  EXPECT_EQ(info["protocol"], "GigE Vision");
  EXPECT_EQ(info["status"], "ready");
  EXPECT_EQ(info["is3D"], false);
  EXPECT_EQ(Run({"info", "-c", "127.0.0.1"}).exitCode, 0) << "an address names a camera too";
}

TEST_F(Zyncam, FeaturesAreShownAsTreeAndAsList) {
  const Finished tree = Run({"features"});
  EXPECT_EQ(tree.exitCode, 0) << tree.err;
  EXPECT_NE(tree.out.find("  Width  [integer RW]"), std::string::npos) << tree.out;
  const json flat = Json({"features", "--flat"});
  std::vector<std::string> names;
  for (const json& feature : flat) names.push_back(feature["name"]);
  EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
  EXPECT_NE(std::find(names.begin(), names.end(), "ExposureTimeAbs"), names.end());
}

TEST_F(Zyncam, EveryNodeMapHasFeatures) {
  for (const char* map : {"camera", "device", "transport-layer", "interface", "stream"}) {
    const json flat = Json({"features", "--flat", "-m", map});
    EXPECT_TRUE(flat.is_array()) << map << flat;
    EXPECT_GT(flat.size(), 0U) << map;
  }
}

TEST_F(Zyncam, SetWritesAndGetReads) {
  const Finished set = Run({"set", "Width=640", "ExposureTime=5000"});
  EXPECT_EQ(set.exitCode, 0) << set.err;
  EXPECT_EQ(set.out, "Width=640\nExposureTimeAbs=5000\n");
  EXPECT_EQ(Run({"get", "Width"}).out, "640\n");
  const json both = Json({"get", "Width", "PixelFormat"});
  EXPECT_EQ(both[0]["value"], 640);
  EXPECT_EQ(both[1]["value"], "Mono8");
}

TEST_F(Zyncam, ExecRunsACommand) {
  EXPECT_EQ(Run({"exec", "AcquisitionStop"}).exitCode, 0);
  EXPECT_EQ(Run({"exec", "Width"}).exitCode, 4) << "no command";
}

TEST_F(Zyncam, GrabWritesPngFiles) {
  const json result = Json({"grab", "-n", "3", "-o", folder_.string()});
  EXPECT_EQ(result["frames"], 3) << result;
  ASSERT_EQ(result["files"].size(), 3U);
  for (const json& file : result["files"]) {
    std::ifstream stream(file.get<std::string>(), std::ios::binary);
    std::string signature(8, '\0');
    stream.read(signature.data(), 8);
    EXPECT_EQ(signature, "\x89PNG\r\n\x1a\n");
  }
}

TEST_F(Zyncam, GrabWritesRawBytes) {
  Run({"set", "Width=64", "Height=32"});
  const Finished result = Run({"grab", "-f", "raw", "-o", folder_.string()});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(fs::file_size(folder_ / "image_00001.raw"), 64U * 32U);
}

TEST_F(Zyncam, GrabMakesTheFolder) {
  EXPECT_EQ(Run({"grab", "-o", (folder_ / "a" / "b").string()}).exitCode, 0);
  EXPECT_TRUE(fs::exists(folder_ / "a" / "b" / "image_00001.png"));
}

struct BadCase {
  const char* name;
  std::vector<std::string> arguments;
  int exitCode;
  const char* message;  // what standard error must hold
};

class BadInput : public Zyncam, public testing::WithParamInterface<BadCase> {};

TEST_P(BadInput, IsRefusedWithAClearMessage) {
  const Finished result = Run(GetParam().arguments);
  EXPECT_EQ(result.exitCode, GetParam().exitCode) << result.err;
  EXPECT_EQ(result.out, "");
  EXPECT_NE(result.err.find(GetParam().message), std::string::npos) << result.err;
  EXPECT_EQ(Run({"get", "Width"}).out, "512\n") << "nothing was lost, and the camera still answers";
}

INSTANTIATE_TEST_SUITE_P(
    Cases, BadInput,
    testing::Values(BadCase{"NoVerb", {}, 2, "subcommand"}, BadCase{"UnknownVerb", {"fly"}, 2, "fly"},
                    BadCase{"UnknownCamera", {"info", "-c", "NOPE"}, 3, "NOPE"},
                    BadCase{"UnknownFeature", {"get", "NoSuchFeature"}, 4, "101091"},
                    BadCase{"ValueOutOfRange", {"set", "Width=999999"}, 4, "Width"},
                    BadCase{"ValueBelowRange", {"set", "Width=-1"}, 4, "it takes"},
                    BadCase{"ValueIsNoNumber", {"set", "Width=wide"}, 4, "wide"},
                    BadCase{"UnknownEntry", {"set", "PixelFormat=Plaid"}, 4, "Plaid"},
                    BadCase{"NoAssignment", {"set", "Width"}, 2, "NAME=VALUE"},
                    BadCase{"ReadOnlyFeature", {"set", "PayloadSize=5"}, 4, "PayloadSize"},
                    BadCase{"SecondNameWrongWritesNothing", {"set", "Width=640", "NoSuch=1"}, 4, "NoSuch"},
                    BadCase{"UnknownMap", {"features", "-m", "moon"}, 2, "moon"},
                    BadCase{"WatchWithAnArgument", {"watch", "GV01"}, 2, "GV01"},
                    BadCase{"NegativeCount", {"grab", "-n", "-1"}, 2, "--count"},
                    BadCase{"UnknownFormat", {"grab", "-f", "gif"}, 2, "gif"},
                    BadCase{
                        "FolderIsAFile", {"grab", "-o", "/proc/self/status/x"}, 5, "/proc/self/status/x"}),
    [](const testing::TestParamInfo<BadCase>& param) { return param.param.name; });

/// The tool watching, until it is ended.
class Watch : public Zyncam {
 protected:
  static constexpr const char* kTime = R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}[+-]\d\d:\d\d)";
  using ChildProcess = zyntest::ChildProcess;
};

TEST_F(Watch, TellsOfCamerasThatComeAndGoUntilItIsInterrupted) {
  ChildProcess watch({ZYN_ZYNCAM, "watch"}, ChildProcess::WithOutput());
  const std::string time(kTime);
  EXPECT_TRUE(std::regex_match(watch.NextLine(),
                               std::regex(time + "  appeared  GV01  Fake  GigE Vision  127.0.0.1")));
  const FakeGigeCamera second(2);
  EXPECT_TRUE(std::regex_match(watch.NextLine(),
                               std::regex(time + "  appeared  GV02  Fake  GigE Vision  127.0.0.2")));
  fake_->Kill();
  EXPECT_TRUE(std::regex_match(watch.NextLine(),
                               std::regex(time + "  gone      GV01  Fake  GigE Vision  127.0.0.1")));
  EXPECT_EQ(watch.End(SIGINT), 0);
}

TEST_F(Watch, WritesOneJsonObjectPerLineAndEndsInOrderWhenTerminated) {
  fake_->Kill();
  ChildProcess watch({ZYN_ZYNCAM, "watch", "--json"}, ChildProcess::WithOutput());
  fake_->Start();
  const json appeared = json::parse(watch.NextLine());
  EXPECT_TRUE(std::regex_match(appeared["time"].get<std::string>(), std::regex(kTime)));
  EXPECT_EQ(appeared["event"], "appeared");
  EXPECT_EQ(appeared["serialNumber"], "GV01");
  EXPECT_EQ(appeared["address"], "127.0.0.1");
  EXPECT_EQ(appeared["is3D"], false);
  EXPECT_TRUE(appeared.contains("status"));
  fake_->Kill();
  const json gone = json::parse(watch.NextLine());
  EXPECT_EQ(gone["event"], "gone");
  EXPECT_EQ(gone["serialNumber"], "GV01");
  EXPECT_FALSE(gone.contains("status")) << "nothing is known of a camera that is gone";
  EXPECT_EQ(watch.End(SIGTERM), 0);
  EXPECT_THROW(watch.NextLine(), std::runtime_error) << "nothing is written behind the last event";
}

TEST_F(Zyncam, FailuresAreJsonToo) {
  const json result = Json({"get", "NoSuchFeature"});
  EXPECT_EQ(result["error"]["status"], 101091);
  EXPECT_NE(result["error"]["message"].get<std::string>().find("NoSuchFeature"), std::string::npos);
}

TEST_F(Zyncam, SeveralCamerasNeedAChoice) {
  const FakeGigeCamera second(2);
  const Finished result = Run({"get", "Width"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_NE(result.err.find("GV01, GV02"), std::string::npos) << result.err;
  EXPECT_EQ(Run({"get", "-c", "GV02", "Width"}).exitCode, 0);
}

}  // namespace
