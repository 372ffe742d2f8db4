// zyncam check-producer: what it prints and how it exits.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "ChildProcess.h"

namespace {

using nlohmann::json;
using zyntest::Finished;

Finished RunVerb(std::vector<std::string> arguments, const std::string& fault = {}) {
  arguments.insert(arguments.begin(), {ZYN_ZYNCAM, "check-producer"});
  return zyntest::RunToEnd(arguments, {{"ZYN_FAULT", fault}, {"ZYN_SIMULATOR_CONFIG", ""}});
}

TEST(CheckProducerVerb, PrintsALineForEachCheckAndTheSum) {
  const Finished result = RunVerb({ZYN_FAULTY_PRODUCER, "--only", "init-twice", "device-twice"});
  EXPECT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 3) << result.out;
  EXPECT_NE(result.out.find("2 passed, 0 failed, 0 not applicable"), std::string::npos) << result.out;
}

TEST(CheckProducerVerb, ExitsWithOneAndSaysWhyWhenACheckFails) {
  const Finished result =
      RunVerb({ZYN_FAULTY_PRODUCER, "--only", "init-twice", "device-twice"}, "GCInitLib:-1004>0");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.out.find("a second GCInitLib returned GC_ERR_SUCCESS instead of GC_ERR_RESOURCE_IN_USE"),
            std::string::npos)
      << result.out;
}

TEST(CheckProducerVerb, WritesOneJsonTextAlsoWhenAProducerCrashes) {
  const Finished result =
      RunVerb({ZYN_FAULTY_PRODUCER, "--json", "--only", "init-twice", "info-interface"}, "IFGetInfo:crash");
  EXPECT_EQ(result.exitCode, 1);
  const json report = json::parse(result.out, nullptr, false);
  ASSERT_TRUE(report.is_object()) << result.out;
  EXPECT_EQ(report["file"], ZYN_FAULTY_PRODUCER);
  EXPECT_EQ(report["passed"], 1);
  EXPECT_EQ(report["failed"], 1);
  EXPECT_EQ(report["notApplicable"], 0);
  ASSERT_EQ(report["checks"].size(), 2U);
  EXPECT_EQ(report["checks"][1]["name"], "info-interface");
  EXPECT_EQ(report["checks"][1]["outcome"], "failed");
  EXPECT_EQ(report["checks"][1]["sentence"].get<std::string>().substr(0, 32),
            "the producer crashed with signal");
}

TEST(CheckProducerVerb, ListsTheChecks) {
  const json list = json::parse(RunVerb({"--list", "--json"}).out, nullptr, false);
  ASSERT_TRUE(list.is_array());
  EXPECT_EQ(list[0]["name"], "load");
  EXPECT_GT(list.size(), 90U);
}

TEST(CheckProducerVerb, RefusesAFileThatIsNotThereAndAnUnknownCheck) {
  EXPECT_EQ(RunVerb({"/no/such/file.cti"}).exitCode, 2);
  EXPECT_EQ(RunVerb({}).exitCode, 2);
  EXPECT_EQ(RunVerb({ZYN_FAULTY_PRODUCER, "--only", "no-such-check"}).exitCode, 2);
}

}  // namespace
