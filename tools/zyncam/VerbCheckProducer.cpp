#include <algorithm>
#include <filesystem>
#include <map>
#include <vector>

#include "Failure.h"
#include "JsonText.h"
#include "ProducerCheck.h"
#include "Verbs.h"

namespace zyncam {
namespace {

using zyn::producercheck::CheckResult;
using zyn::producercheck::Outcome;

const char* WordFor(Outcome outcome) {
  switch (outcome) {
    case Outcome::kPassed:
      return "passed";
    case Outcome::kFailed:
      return "failed";
    case Outcome::kNotApplicable:
      return "not applicable";
  }
  return "";
}

std::string LineFor(const CheckResult& result) {
  constexpr std::size_t kOutcomeWidth = 16;
  constexpr std::size_t kNameWidth = 25;
  std::string line = WordFor(result.outcome);
  line.resize(kOutcomeWidth, ' ');
  line += result.name;
  line.resize(std::max(line.size() + 2, kOutcomeWidth + kNameWidth), ' ');
  line += result.what;
  if (!result.sentence.empty()) line += ": " + result.sentence;
  return line;
}

nlohmann::ordered_json JsonFor(const std::string& file, const std::vector<CheckResult>& results,
                               const std::map<Outcome, int>& counts) {
  const auto count = [&](Outcome outcome) {
    const auto it = counts.find(outcome);
    return it == counts.end() ? 0 : it->second;
  };
  nlohmann::ordered_json checks = nlohmann::ordered_json::array();
  for (const CheckResult& result : results) {
    checks.push_back({{"name", result.name},
                      {"rule", result.what},
                      {"outcome", WordFor(result.outcome)},
                      {"sentence", result.sentence}});
  }
  return {{"file", file},
          {"passed", count(Outcome::kPassed)},
          {"failed", count(Outcome::kFailed)},
          {"notApplicable", count(Outcome::kNotApplicable)},
          {"checks", checks}};
}

void ListChecks(Console& console, const CommonOptions& common) {
  nlohmann::ordered_json list = nlohmann::ordered_json::array();
  for (const auto& check : zyn::producercheck::AllChecks()) {
    list.push_back({{"name", check.name}, {"rule", check.what}});
    if (!common.json) console.Line(check.name + ": " + check.what);
  }
  if (common.json) console.Line(JsonText(list));
}

std::vector<CheckResult> RunChecks(const std::string& file, const zyn::producercheck::CheckOptions& options) {
  try {
    return zyn::producercheck::CheckProducer(file, options);
  } catch (const std::invalid_argument& error) {
    throw Failure(kExitUsage, error.what(), "'zyncam check-producer --list' shows them");
  }
}

}  // namespace

ExitCode CheckProducerFile(Console& console, const CommonOptions& common,
                           const CheckProducerOptions& options) {
  if (options.list) {
    ListChecks(console, common);
    return kExitOk;
  }
  std::error_code error;
  const std::string file = std::filesystem::absolute(options.file, error).string();
  if (options.file.empty() || !std::filesystem::is_regular_file(file, error)) {
    throw Failure(kExitUsage, "there is no file \"" + options.file + "\"", "give the path of a .cti file");
  }
  std::map<Outcome, int> counts;
  zyn::producercheck::CheckOptions check;
  check.device = common.camera;
  check.only = options.only;
  check.limit = std::chrono::milliseconds(options.timeoutMs);
  check.onResult = [&](const CheckResult& result) {
    ++counts[result.outcome];
    if (!common.json) console.Line(LineFor(result));
  };
  const std::vector<CheckResult> results = RunChecks(file, check);
  if (common.json) {
    console.Line(JsonText(JsonFor(file, results, counts)));
  } else {
    console.Line(std::to_string(counts[Outcome::kPassed]) + " passed, " +
                 std::to_string(counts[Outcome::kFailed]) + " failed, " +
                 std::to_string(counts[Outcome::kNotApplicable]) + " not applicable");
  }
  const auto lacksCamera = [](const CheckResult& result) { return result.lacksCamera; };
  if (std::any_of(results.begin(), results.end(), lacksCamera)) {
    Console::Note("zyncam: the producer shows no camera \"" + common.camera + "\"");
    return kExitNoCamera;
  }
  return counts[Outcome::kFailed] == 0 ? kExitOk : kExitFailed;
}

}  // namespace zyncam
