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

struct CameraCase {
  const char* name;
  const char* camera;
  std::vector<std::string> checks;
  const char* fault;
  int exitCode;
};

TEST(CheckProducerVerb, ExitsWithThreeWhenTheCameraAskedForIsNotThere) {
  const CameraCase rows[] = {
      {"there, by serial number", "SIM0004", {"device-twice"}, "", 0},
      {"not there", "NOWHERE", {"device-twice"}, "", 3},
      {"not there, and a rule is broken", "NOWHERE", {"init-twice", "device-twice"}, "GCInitLib:-1004>0", 3},
      {"nobody looks for it", "NOWHERE", {"init-twice"}, "", 0},
  };
  for (const CameraCase& row : rows) {
    for (const bool asJson : {false, true}) {
      std::vector<std::string> arguments{ZYN_FAULTY_PRODUCER, "-c", row.camera};
      if (asJson) arguments.emplace_back("--json");
      arguments.emplace_back("--only");
      arguments.insert(arguments.end(), row.checks.begin(), row.checks.end());
      const Finished result = RunVerb(arguments, row.fault);
      EXPECT_EQ(result.exitCode, row.exitCode) << row.name;
      const bool says = result.err.find("no camera \"NOWHERE\"") != std::string::npos;
      EXPECT_EQ(says, row.exitCode == 3) << row.name << result.err;
      EXPECT_EQ(json::accept(result.out), asJson) << row.name;
    }
  }
}

TEST(CheckProducerVerb, RefusesAFileThatIsNotThereAndAnUnknownCheck) {
  EXPECT_EQ(RunVerb({"/no/such/file.cti"}).exitCode, 2);
  EXPECT_EQ(RunVerb({}).exitCode, 2);
  EXPECT_EQ(RunVerb({ZYN_FAULTY_PRODUCER, "--only", "no-such-check"}).exitCode, 2);
}

}  // namespace
