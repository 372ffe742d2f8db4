// The conformance checks: good producers pass all, and each check fails for a producer that breaks its rule.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "ProducerCheck.h"

namespace {

using namespace zyn::producercheck;

struct BrokenRule {
  const char* check;
  const char* fault;        ///< see Fault.h
  const char* camera = "";  ///< the first is a laser camera, whose frames are chunks
};

void PrintTo(const BrokenRule& rule, std::ostream* out) {
  *out << rule.fault;
}

constexpr const char* kAreaCamera = "SIM0004";

constexpr BrokenRule kBrokenRules[] = {
    {"before-init", "DSGetInfo:-1002>-1006"},
    {"init", "GCInitLib:=-1001"},
    {"init-twice", "GCInitLib:-1004>0"},
    {"close-twice", "GCCloseLib:-1002>0"},
    {"init-again", "GCInitLib@2:=-1001"},
    {"after-close", "DSGetInfo:-1002>-1006"},
    {"unload", "unload"},
    {"interface-list", "TLGetInterfaceID:-1017>0"},
    {"interface-list", "TLUpdateInterfaceList:=0"},
    {"device-list", "IFGetDeviceID:-1017>0"},
    {"device-list", "IFGetDeviceID:text=Twin"},
    {"stream-list", "DevGetDataStreamID:-1017>-1001"},
    {"open-without-update", "needs-update"},
    {"unknown-ids", "IFOpenDevice:-1007>-1001"},
    {"null-ids", "DevOpenDataStream:-1009>-1001"},
    {"access-flags", "IFOpenDevice#77:-1009>0"},
    {"system-twice", "TLOpen:-1004>-1001"},
    {"interface-twice", "TLOpenInterface:-1004>-1001"},
    {"device-twice", "IFOpenDevice:-1004>-1001"},
    {"stream-twice", "DevOpenDataStream:-1004>-1001"},
    {"info-system", "TLGetInfo#1:=-1003"},
    {"info-system", "TLGetInfo#2:text=Other"},
    {"info-interface", "IFGetInfo#2:type=5"},
    {"info-device", "DevGetInfo#5:value=1"},
    {"info-device", "DevGetInfo#6:=-1009"},
    {"info-stream", "DSGetInfo#8:value=1"},
    {"info-stream", "DSGetInfo#8:size=4"},
    {"info-port", "GCGetPortInfo#12:=-1003"},
    {"info-port", "GCGetPortInfo#4:text=Device"},
    {"size-query", "DSGetInfo#0:-1016>0"},
    {"id-size-query", "IFGetDeviceID:-1016>0"},
    {"null-parameters", "DSGetInfo:-1009>0"},
    {"unknown-command", "DSGetInfo#999:-1003>-1001"},
    {"null-handles", "DSStopAcquisition:-1006>0"},
    {"garbage-handles", "DSStopAcquisition:-1006>0"},
    {"wrong-handles", "DSStopAcquisition:-1006>0"},
    {"stale-handles", "DSStopAcquisition:-1006>0"},
    {"close-parents", "TLClose:=0"},
    {"close-remote", "DevClose:-1006>0"},
    {"parents", "DSGetParentDev:value=4660"},
    {"last-error", "GCGetLastError:=0"},
    {"urls", "GCGetPortURLInfo#8:value=1"},
    {"urls", "GCGetNumPortURLs:value=0"},
    {"url-list", "GCGetPortURL:=-1003"},
    {"descriptions", "GCGetPortInfo#12:text=Nowhere"},
    {"descriptions", "GCReadPort:replace=<RegisterDescription/<RegisterDescriptiom"},
    {"features", "GCReadPort:replace=Name=\"StreamType\"/Name=\"StreamKind\""},
    {"features-agree", "TLGetInfo#1:text=Other"},
    {"device-port", "DevGetPort:self"},
    {"read-port", "GCReadPort:size=3"},
    {"port-errors", "GCReadPort:-1009>0"},
    {"stacked-read", "GCReadPortStacked:size=2"},
    {"write-port", "GCWritePort:=0"},
    {"event-twice", "GCRegisterEvent:-1004>0"},
    {"event-unregistered", "GCUnregisterEvent:-1002>0"},
    {"event-types", "GCRegisterEvent#99:-1003>-1001"},
    {"event-info", "EventGetInfo#0:value=0"},
    {"event-timeout", "EventGetData:=-1011"},
    {"event-kill", "EventGetData:-1012>-1011"},
    {"event-kill-ahead", "EventKill:=0"},
    {"event-kill-one", "EventKill:twice"},
    {"event-kill-forgotten", "EventGetData@1:=-1012"},
    {"event-unregister-wakes", "EventGetData:-1012>-1011"},
    {"event-close-wakes", "EventGetData:-1012>-1011"},
    {"event-parameters", "EventGetData:-1009>0"},
    {"event-too-small", "EventGetData:-1016>0"},
    {"event-null-drops", "EventGetData:=0"},
    {"event-kill-first", "EventKill:=0"},
    {"event-flush", "EventFlush:=0"},
    {"event-data", "EventGetDataInfo#0:value=1"},
    {"announce", "DSAnnounceBuffer:-1004>0"},
    {"announce-parameters", "DSAnnounceBuffer:-1009>0"},
    {"allocate", "DSGetBufferInfo#0:value=0"},
    {"revoke", "DSRevokeBuffer:-1006>0"},
    {"buffer-ids", "DSGetBufferID:-1017>0"},
    {"queue-twice", "DSQueueBuffer:-1004>0"},
    {"revoke-queued", "DSRevokeBuffer:-1022>0"},
    {"buffer-handles", "DSGetBufferInfo:-1006>0"},
    {"flush-input-to-output", "DSFlushQueue#0:=0"},
    {"flush-input-to-output", "DSGetBufferInfo#4:value=1"},
    {"flush-output-discard", "DSFlushQueue#1:=0"},
    {"flush-all-to-input", "DSFlushQueue#2:=0"},
    {"flush-unqueued-to-input", "DSFlushQueue#3:=0"},
    {"flush-all-discard", "DSFlushQueue#4:=0"},
    {"flush-by-unregistering", "GCUnregisterEvent:=0"},
    {"flush-unknown", "DSFlushQueue#999:-1003>0"},
    {"start-parameters", "DSStartAcquisition:-1009>0"},
    {"too-few-buffers", "DSStartAcquisition:-1013>0"},
    {"close-revokes", "DSClose:=0"},
    {"acquire", "DSGetBufferInfo#16:value=7"},
    {"acquire-allocated", "DSAllocAndAnnounceBuffer:=-1001"},
    {"start-twice", "DSStartAcquisition:-1004>0"},
    {"frame-info", "DSGetBufferInfo#10:value=1000000", kAreaCamera},
    {"frame-info", "DSGetBufferInfo#30:=-1003"},
    {"frame-info-stacked", "DSGetBufferInfo#16:value=7"},
    {"frame-parts", "DSGetNumBufferParts:-1008>0"},
    {"frame-chunks", "DSGetBufferChunkData:-1008>0", kAreaCamera},
    {"frame-chunks", "DSGetBufferChunkData:size=0"},
    {"frame-kept", "scribble"},
    {"frame-times", "DSGetBufferInfo#28:countdown"},
    {"counted", "endless"},
    {"again", "DSStartAcquisition@2:=-1001"},
    {"stopped", "DSFlushQueue#4:=0"},
    {"close-running", "DSClose:=0"},
    {"threads", "GCReadPort:elsewhere=-1022"},
};

std::vector<CheckResult> Check(const char* file, const char* fault, const std::vector<std::string>& only = {},
                               std::chrono::milliseconds limit = std::chrono::seconds(60),
                               const char* camera = "") {
  setenv("ZYN_FAULT", fault, 1);
  unsetenv("ZYN_SIMULATOR_CONFIG");
  CheckOptions options;
  options.only = only;
  options.limit = limit;
  options.device = camera;
  return CheckProducer(file, options);
}

std::vector<std::string> Failures(const std::vector<CheckResult>& results) {
  std::vector<std::string> failures;
  for (const CheckResult& result : results) {
    if (result.outcome == Outcome::kFailed) failures.push_back(result.name + ": " + result.sentence);
  }
  return failures;
}

TEST(ProducerCheck, TheSimulatorsProducerPassesEveryCheck) {
  const std::vector<CheckResult> results = Check(ZYN_SIMULATION_PRODUCER, "");
  EXPECT_EQ(Failures(results), std::vector<std::string>());
  EXPECT_EQ(results.size(), AllChecks().size());
  for (const CheckResult& result : results) EXPECT_EQ(result.outcome, Outcome::kPassed) << result.name;
}

TEST(ProducerCheck, AProducerThatForwardsEverythingPassesToo) {
  EXPECT_EQ(Failures(Check(ZYN_FAULTY_PRODUCER, "")), std::vector<std::string>());
}

class ABrokenRule : public testing::TestWithParam<BrokenRule> {};

TEST_P(ABrokenRule, FailsItsCheckWithASentence) {
  const auto results = Check(ZYN_FAULTY_PRODUCER, GetParam().fault, {GetParam().check},
                             std::chrono::seconds(60), GetParam().camera);
  ASSERT_EQ(results.size(), 1U);
  EXPECT_EQ(results[0].name, GetParam().check);
  EXPECT_EQ(results[0].outcome, Outcome::kFailed) << results[0].sentence;
  EXPECT_GT(results[0].sentence.size(), 10U);
  // The rule's own sentence, not that of a checker that fell over.
  if (GetParam().check != std::string("unload")) {
    EXPECT_EQ(results[0].sentence.find("crashed"), std::string::npos) << results[0].sentence;
    EXPECT_EQ(results[0].sentence.find("hangs"), std::string::npos) << results[0].sentence;
  }
  RecordProperty("sentence", results[0].sentence);
}

INSTANTIATE_TEST_SUITE_P(Table, ABrokenRule, testing::ValuesIn(kBrokenRules), [](const auto& rule) {
  std::string name = std::to_string(rule.index) + "_" + rule.param.check;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
});

TEST(ProducerCheck, EveryCheckHasARuleThatBreaksIt) {
  std::set<std::string> broken = {"load", "exports"};  // tests of their own below
  for (const BrokenRule& rule : kBrokenRules) broken.insert(rule.check);
  for (const CheckName& check : AllChecks()) EXPECT_EQ(broken.count(check.name), 1U) << check.name;
}

TEST(ProducerCheck, AMissingFunctionIsNamedAndOnlyItsChecksDoNotApply) {
  const auto results = Check(ZYN_LACKING_PRODUCER, "", {"exports", "init-twice", "buffer-handles"});
  ASSERT_EQ(results.size(), 3U);
  EXPECT_EQ(results[0].outcome, Outcome::kFailed);
  EXPECT_NE(results[0].sentence.find("DSGetNumBufferSegments"), std::string::npos) << results[0].sentence;
  EXPECT_EQ(results[1].outcome, Outcome::kPassed);
  EXPECT_EQ(results[2].outcome, Outcome::kPassed);
}

TEST(ProducerCheck, AFileThatIsNoLibraryFailsToLoadAndNothingElseIsTried) {
  const auto file = std::filesystem::temp_directory_path() / "zyn-no-library.cti";
  std::ofstream(file) << "text";
  const auto results = Check(file.c_str(), "");
  std::filesystem::remove(file);
  ASSERT_EQ(results.size(), AllChecks().size());
  EXPECT_EQ(results[0].name, "load");
  EXPECT_EQ(results[0].outcome, Outcome::kFailed);
  for (std::size_t i = 1; i < results.size(); ++i) {
    EXPECT_EQ(results[i].outcome, Outcome::kNotApplicable) << results[i].name;
    EXPECT_EQ(results[i].sentence, "load failed");
  }
}

TEST(ProducerCheck, AProducerThatCannotStartFailsOnce) {
  const auto results = Check(ZYN_FAULTY_PRODUCER, "GCInitLib:=-1001");
  EXPECT_EQ(Failures(results).size(), 1U);
}

TEST(ProducerCheck, ACrashCostsOneCheckOnly) {
  const auto results = Check(ZYN_FAULTY_PRODUCER, "IFGetInfo:crash",
                             {"info-system", "info-interface", "info-device", "acquire"});
  ASSERT_EQ(results.size(), 4U);
  EXPECT_EQ(results[0].outcome, Outcome::kPassed);
  EXPECT_EQ(results[1].outcome, Outcome::kFailed);
  EXPECT_NE(results[1].sentence.find("crashed"), std::string::npos) << results[1].sentence;
  EXPECT_EQ(results[2].outcome, Outcome::kPassed);
  EXPECT_EQ(results[3].outcome, Outcome::kPassed);
}

TEST(ProducerCheck, AHangCostsOneCheckOnly) {
  const auto results = Check(ZYN_FAULTY_PRODUCER, "IFGetInfo:hang",
                             {"info-system", "info-interface", "info-device"}, std::chrono::seconds(3));
  ASSERT_EQ(results.size(), 3U);
  EXPECT_EQ(results[0].outcome, Outcome::kPassed);
  EXPECT_EQ(results[1].outcome, Outcome::kFailed);
  EXPECT_EQ(results[1].sentence, "the producer hangs");
  EXPECT_EQ(results[2].outcome, Outcome::kPassed);
}

TEST(ProducerCheck, WithoutACameraTheChecksThatNeedOneDoNotApply) {
  setenv("ZYN_FAULT", "", 1);
  CheckOptions options;
  options.device = "no such camera";
  options.only = {"init-twice", "acquire", "device-twice"};
  const auto results = CheckProducer(ZYN_SIMULATION_PRODUCER, options);
  EXPECT_EQ(results[0].outcome, Outcome::kPassed);
  EXPECT_EQ(results[1].outcome, Outcome::kNotApplicable);
  EXPECT_EQ(results[1].sentence, "the producer shows no camera no such camera");
  EXPECT_EQ(results[2].outcome, Outcome::kNotApplicable);
}

TEST(ProducerCheck, ACameraIsChosenBySerialNumber) {
  setenv("ZYN_FAULT", "", 1);
  CheckOptions options;
  options.device = "SIM0002";
  options.only = {"device-twice"};
  EXPECT_EQ(CheckProducer(ZYN_SIMULATION_PRODUCER, options)[0].outcome, Outcome::kPassed);
}

TEST(ProducerCheck, AnUnknownNameIsAnError) {
  EXPECT_THROW(Check(ZYN_SIMULATION_PRODUCER, "", {"no-such-check"}), std::invalid_argument);
}

}  // namespace
