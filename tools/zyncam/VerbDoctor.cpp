#include <KELGeniCam.h>

#include <algorithm>
#include <cstdlib>
#include <list>
#include <string>
#include <vector>

#include "JsonText.h"
#include "LibraryFolder.h"
#include "Verbs.h"
#include "doctor/Finding.h"
#include "doctor/ProducerFindings.h"
#include "doctor/SystemFindings.h"
#include "doctor/SystemReadings.h"

namespace zyncam {
namespace {

constexpr const char* kPathVariable = sizeof(void*) == 8 ? "GENICAM_GENTL64_PATH" : "GENICAM_GENTL32_PATH";

const char* ValueOf(const char* name) {
  return std::getenv(name);  // NOLINT(concurrency-mt-unsafe): read, never written while threads run
}

// Loads the producers and closes them again. They search only when they are asked to.
std::list<KELGENICAM::LoadReportEntry> LoadProducers() {
  std::list<KELGENICAM::LoadReportEntry> report;
  KELGENICAM::Init();
  KELGENICAM::LoadReport(report);
  KELGENICAM::UnInit();
  return report;
}

void Append(std::vector<Finding>& findings, std::vector<Finding> more) {
  std::move(more.begin(), more.end(), std::back_inserter(findings));
}

std::vector<Finding> Examine() {
  std::vector<Finding> findings = FindingsOf(LoadProducers());
  const std::filesystem::path own = LibraryFolder() / "zyncamera" / "gentl";
  Append(findings, FindingsOfSearchPath(own.string(), ValueOf(kPathVariable)));
  Append(findings, FindingsOfEnvironment(&ValueOf));
  Append(findings, FindingsOf(ReadSystem(SystemRoots(), zyn::gige::ListAdapters())));
  return findings;
}

nlohmann::ordered_json JsonOf(const std::vector<Finding>& findings) {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const Finding& finding : findings) {
    list.push_back({{"topic", finding.topic},
                    {"subject", finding.subject},
                    {"verdict", ToText(finding.verdict)},
                    {"text", finding.text},
                    {"advice", finding.advice}});
  }
  return {{"verdict", ToText(WorstOf(findings))}, {"findings", list}};
}

void PrintText(Console& console, const std::vector<Finding>& findings) {
  constexpr std::size_t kVerdictWidth = 9;
  std::string topic;
  for (const Finding& finding : findings) {
    if (finding.topic != topic) console.Line((topic.empty() ? "" : "\n") + finding.topic);
    topic = finding.topic;
    std::string verdict = ToText(finding.verdict);
    verdict.append(kVerdictWidth - verdict.size(), ' ');
    console.Line("  " + verdict + finding.subject + ": " + finding.text);
    if (!finding.advice.empty()) console.Line("           -> " + finding.advice);
  }
  const auto count = [&](Verdict verdict) {
    return std::to_string(std::count_if(findings.begin(), findings.end(),
                                        [=](const Finding& finding) { return finding.verdict == verdict; }));
  };
  console.Line("\n" + count(Verdict::problem) + " problems, " + count(Verdict::warning) + " warnings, " +
               count(Verdict::note) + " notes");
}

}  // namespace

bool ExamineComputer(Console& console, const CommonOptions& common) {
  const std::vector<Finding> findings = Examine();
  if (common.json) {
    console.Line(JsonText(JsonOf(findings)));
  } else {
    PrintText(console, findings);
  }
  return WorstOf(findings) != Verdict::problem;
}

}  // namespace zyncam
