#include <gtest/gtest.h>

#include <csignal>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "FakeGigeCamera.h"
#include "PrivateNetwork.h"
#include "ScriptedDevice.h"
#include "gige/PersistentIp.h"

namespace {

using nlohmann::json;
using zyn::gige::Ipv4;
using zyn::gige::RegisterClient;
using zyntest::ChildProcess;
using zyntest::Finished;

constexpr RegisterClient::Options kPatient{std::chrono::milliseconds{2000}, 3};

/// Two virtual cameras on the loopback adapter: VC5 at 127.0.0.5 and VC6 at 127.0.0.6.
class Ip : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(zyntest::IsPrivateNetwork()) << "run this with scripts/in-namespace.sh, or through ctest";
    ASSERT_EQ(cameras_.NextLine(), "2 on the wire");
  }
  static Finished Run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {ZYN_ZYNCAM, "ip"});
    return zyntest::RunToEnd(arguments);
  }
  static json Json(std::vector<std::string> arguments) {
    arguments.emplace_back("--json");
    return json::parse(Run(std::move(arguments)).out, nullptr, false);
  }

  ChildProcess cameras_{{ZYN_VIRTUAL_CAMERA, "-m", "ZS-A640", "-a", "127.0.0.5", "127.0.0.6"},
                        ChildProcess::WithOutput()};
};

TEST_F(Ip, TheTableShowsWhatEachCameraHas) {
  const Finished table = Run({});
  EXPECT_EQ(table.exitCode, 0) << table.err;
  for (const char* text :
       {"SERIAL", "ADAPTER", "MAC", "METHODS", "STORED", "VC5", "VC6", "ZS-A640", "lo", "02:5A:7F:00:00:05",
        "127.0.0.6", "255.0.0.0", "persistent,dhcp,link-local", "none", "ready"}) {
    EXPECT_NE(table.out.find(text), std::string::npos) << text << "\n" << table.out;
  }
}

TEST_F(Ip, JsonHoldsTheSame) {
  const json list = Json({});
  ASSERT_EQ(list.size(), 2U) << list;
  EXPECT_EQ(list[0]["serialNumber"], "VC5");
  EXPECT_EQ(list[0]["model"], "ZS-A640");
  EXPECT_EQ(list[0]["status"], "ready");
  EXPECT_EQ(list[0]["mac"], "02:5A:7F:00:00:05");
  EXPECT_EQ(list[0]["adapter"], "lo");
  EXPECT_EQ(list[0]["adapterAddress"], "127.0.0.1");
  EXPECT_EQ(list[0]["adapterMask"], "255.0.0.0");
  EXPECT_EQ(list[0]["address"], "127.0.0.5");
  EXPECT_EQ(list[0]["mask"], "255.0.0.0");
  EXPECT_EQ(list[0]["gateway"], "0.0.0.0");
  EXPECT_EQ(list[0]["methods"], json({{"persistent", true}, {"dhcp", true}, {"linkLocal", true}}));
  EXPECT_EQ(list[0]["stored"]["address"], "0.0.0.0");
  EXPECT_EQ(list[1]["serialNumber"], "VC6");
}

TEST_F(Ip, OneCameraIsShownOnRequest) {
  for (const char* name : {"VC6", "127.0.0.6", "02:5A:7F:00:00:06"}) {
    const json list = Json({name});
    ASSERT_EQ(list.size(), 1U) << name;
    EXPECT_EQ(list[0]["serialNumber"], "VC6");
  }
}

TEST_F(Ip, ACameraOfAnotherNetworkIsShownWithoutWhatItCannotBeAskedFor) {
  const zyntest::FakeGigeCamera fake(1);
  fake.PretendAddress(0x0A090905, 0xFFFFFF00);
  const json list = Json({"GV01"});
  ASSERT_EQ(list.size(), 1U);
  EXPECT_EQ(list[0]["address"], "10.9.9.5");
  EXPECT_EQ(list[0]["status"], "wrong subnet");
  EXPECT_TRUE(list[0]["stored"].is_null());
}

TEST_F(Ip, AnAddressLastsUntilPowerGoesUnlessItIsToBeStored) {
  const Finished set = Run({"VC5", "127.0.7.9"});
  EXPECT_EQ(set.exitCode, 0) << set.err;
  EXPECT_NE(set.out.find("127.0.7.9"), std::string::npos) << "the camera is shown as it is now: " << set.out;
  const json camera = Json({"VC5"})[0];
  EXPECT_EQ(camera["address"], "127.0.7.9");
  EXPECT_EQ(camera["mask"], "255.0.0.0") << "the adapter's";
  EXPECT_EQ(camera["gateway"], "127.0.0.1") << "the first of the network";
  EXPECT_EQ(camera["methods"]["dhcp"], true);
  EXPECT_EQ(camera["stored"]["address"], "0.0.0.0");
  EXPECT_EQ(Json({"VC6"})[0]["address"], "127.0.0.6");
}

TEST_F(Ip, PersistentStoresTheAddressAndSwitchesDhcpOff) {
  const json set =
      Json({"VC5", "127.0.7.9", "--mask", "255.255.255.0", "--gateway", "127.0.7.254", "--persistent"});
  ASSERT_EQ(set.size(), 1U) << set;
  EXPECT_EQ(set[0]["address"], "127.0.7.9");
  EXPECT_EQ(set[0]["methods"], json({{"persistent", true}, {"dhcp", false}, {"linkLocal", true}}));
  EXPECT_EQ(set[0]["stored"],
            json({{"address", "127.0.7.9"}, {"mask", "255.255.255.0"}, {"gateway", "127.0.7.254"}}));
}

TEST_F(Ip, TheFirstAddressOfTheNetworkIsNoGatewayForItself) {
  EXPECT_EQ(Json({"VC5", "127.0.7.1", "--mask", "255.255.255.0"})[0]["gateway"], "0.0.0.0");
}

TEST_F(Ip, ACameraThatAnotherProgramControlsIsInUse) {
  const auto other = RegisterClient::Connect({0x7F000001}, {0x7F000005}, kPatient);
  const zyn::gige::Control control(*other);
  ASSERT_EQ(control.Outcome(), zyn::gige::Result::ok);
  EXPECT_EQ(Json({"VC5"})[0]["status"], "busy");
  const Finished set = Run({"VC5", "127.0.7.9"});
  EXPECT_EQ(set.exitCode, 1);
  EXPECT_NE(set.err.find("controls the camera (result 5)"), std::string::npos) << set.err;
  EXPECT_EQ(Json({"VC5"})[0]["address"], "127.0.0.5");
}

struct RefusedCase {
  const char* name;
  std::vector<std::string> arguments;
  int exitCode;
  const char* message;
};

class Refused : public Ip, public testing::WithParamInterface<RefusedCase> {};

TEST_P(Refused, WithAClearMessageAndNothingChanged) {
  const json before = Json({});
  const Finished result = Run(GetParam().arguments);
  EXPECT_EQ(result.exitCode, GetParam().exitCode) << result.err;
  EXPECT_EQ(result.out, "");
  EXPECT_NE(result.err.find(GetParam().message), std::string::npos) << result.err;
  EXPECT_EQ(Json({}), before);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Refused,
    testing::Values(
        RefusedCase{"UnknownCamera", {"NOPE", "127.0.7.9"}, 3, "VC5, VC6"},
        RefusedCase{"UnknownCameraToShow", {"NOPE"}, 3, "NOPE"},
        RefusedCase{"NoAddress", {"VC5", "127.0.7.256"}, 2, "127.0.7.256"},
        RefusedCase{"AddressOfTheNetwork", {"VC5", "127.0.0.0"}, 2, "no camera can have these settings"},
        RefusedCase{"NoMask", {"VC5", "127.0.7.9", "--mask", "255.0.255.0"}, 2, "255.0.255.0"},
        RefusedCase{"NoGateway", {"VC5", "127.0.7.9", "--gateway", "router"}, 2, "router"},
        RefusedCase{"TakenAddress", {"VC5", "127.0.0.6"}, 1, "another camera"},
        RefusedCase{
            "CameraRefuses", {"VC5", "10.1.1.1", "--persistent"}, 1, "refused the address (result 3)"},
        RefusedCase{"MaskWithoutAddress", {"VC5", "--mask", "255.0.0.0"}, 2, "--mask"},
        RefusedCase{"PersistentWithoutAddress", {"VC5", "--persistent"}, 2, "--persistent"},
        RefusedCase{"TooManyArguments", {"VC5", "127.0.7.9", "255.0.0.0"}, 2, "255.0.0.0"}),
    [](const testing::TestParamInfo<RefusedCase>& param) { return param.param.name; });

TEST_F(Ip, FailuresAreJsonToo) {
  const json result = Json({"VC5", "127.0.0.6"});
  EXPECT_EQ(result["error"]["status"], 8) << result;
  EXPECT_NE(result["error"]["message"].get<std::string>().find("127.0.0.6"), std::string::npos);
}

TEST_F(Ip, CamerasOfOneSerialNumberCannotBeToldApart) {
  ChildProcess twin({ZYN_VIRTUAL_CAMERA, "-a", "127.0.0.7", "-s", "VC6"}, ChildProcess::WithOutput());
  ASSERT_EQ(twin.NextLine(), "1 on the wire");
  EXPECT_EQ(Json({"VC6"}).size(), 2U);
  EXPECT_EQ(Run({"VC6", "127.0.7.9"}).exitCode, 3);
  const Finished byAddress = Run({"127.0.0.7", "127.0.7.9"});
  EXPECT_EQ(byAddress.exitCode, 3);
  EXPECT_NE(byAddress.err.find("several have it"), std::string::npos) << byAddress.err;
}

TEST_F(Ip, ACameraWithoutASerialNumberGoesByItsMacAddress) {
  const zyn::test::ScriptedDevice unnamed(zyn::test::LoopbackIdentity(9, ""));
  const std::string mac = zyn::gige::ToText(unnamed.Identity().mac);
  const Finished result = Run({mac, "127.0.7.9"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(unnamed.Identity().ip, Ipv4{0x7F000709});
  EXPECT_EQ(Json({mac})[0]["address"], "127.0.7.9");
}

TEST_F(Ip, WithoutCamerasItSucceedsAndSaysSo) {
  cameras_.End(SIGTERM);
  const Finished table = Run({});
  EXPECT_EQ(table.exitCode, 0);
  EXPECT_EQ(table.out, "");
  EXPECT_NE(table.err.find("No GigE Vision camera found"), std::string::npos);
  EXPECT_EQ(Json({}), json::array());
  EXPECT_EQ(Run({"VC5", "127.0.7.9"}).exitCode, 3);
}

}  // namespace
