#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "PrivateNetwork.h"
#include "ScriptedDevice.h"

namespace {

using nlohmann::json;
using zyn::test::ScriptedDevice;
using zyntest::Finished;

class Doctor : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(zyntest::IsPrivateNetwork()); }
  static Finished Run(std::vector<std::string> arguments,
                      const std::map<std::string, std::string>& environment = {}) {
    arguments.insert(arguments.begin(), {ZYN_ZYNCAM, "doctor"});
    return zyntest::RunToEnd(arguments, environment);
  }
  static json FindingOn(const json& result, const std::string& topic, const std::string& subject) {
    for (const json& finding : result["findings"]) {
      if (finding["topic"] == topic &&
          finding["subject"].get<std::string>().find(subject) != std::string::npos)
        return finding;
    }
    return {};
  }
};

TEST_F(Doctor, TellsOfProducersNetworkAndRights) {
  const Finished text = Run({});
  EXPECT_EQ(text.exitCode, 0) << text.err;
  for (const char* topic :
       {"producers\n", "search path\n", "environment\n", "network\n", "buffers\n", "rights\n", "ZynTL.cti"}) {
    EXPECT_NE(text.out.find(topic), std::string::npos) << topic << text.out;
  }
  EXPECT_NE(text.out.find(" problems, "), std::string::npos);
}

TEST_F(Doctor, JsonHoldsAVerdictForEachFinding) {
  const json result = json::parse(Run({"--json"}).out);
  EXPECT_EQ(result["verdict"], "warning") << "a private network has no adapter for cameras";
  EXPECT_EQ(FindingOn(result, "producers", "ZynTL.cti")["verdict"], "ok");
  EXPECT_EQ(FindingOn(result, "network", "adapters")["verdict"], "warning");
  EXPECT_EQ(FindingOn(result, "network", "lo")["text"], "127.0.0.1/255.0.0.0");
  for (const json& finding : result["findings"]) {
    EXPECT_EQ(finding["advice"] == "", finding["verdict"] == "ok") << finding;
  }
}

TEST_F(Doctor, TellsWhyAProducerIsNotUsed) {
  const json result = json::parse(Run({"--json"}, {{"GENICAM_GENTL64_PATH", "/no/such/folder"}}).out);
  const json finding = FindingOn(result, "producers", "/no/such/folder");
  EXPECT_EQ(finding["verdict"], "warning");
  EXPECT_EQ(finding["text"], "not used: does not exist");
  EXPECT_EQ(FindingOn(result, "environment", "GENICAM_GENTL64_PATH")["text"], "/no/such/folder");
}

TEST_F(Doctor, SendsNothing) {
  const ScriptedDevice device(zyn::test::LoopbackIdentity(2, "S"));
  EXPECT_EQ(Run({}).exitCode, 0);
  EXPECT_TRUE(device.Commands(zyn::gige::command::kDiscovery).empty());
  EXPECT_TRUE(device.Commands(zyn::gige::command::kReadRegister).empty());
  zyntest::RunToEnd({ZYN_ZYNCAM, "list"});
  EXPECT_FALSE(device.Commands(zyn::gige::command::kDiscovery).empty()) << "a search would have been noticed";
}

}  // namespace
