#include "doctor/ProducerFindings.h"

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <system_error>

namespace zyncam {
namespace {

namespace fs = std::filesystem;
using KELGENICAM::LoadReportEntry;

constexpr const char* kProducers = "producers";
constexpr const char* kEnvironment = "environment";
constexpr const char* kSearchPath = "search path";

struct Cause {
  const char* sign;  // what the message holds
  Verdict verdict;
  const char* advice;
};

// The first that fits counts.
constexpr Cause kCauses[] = {
    {"is the same file as one found before", Verdict::note,
     "name each producer once in GENICAM_GENTL64_PATH"},
    {"does not exist", Verdict::warning, "install it, or remove it from GENICAM_GENTL64_PATH"},
    {"holds no .cti file", Verdict::warning,
     "install a producer there, or remove it from GENICAM_GENTL64_PATH"},
    {"is neither a folder nor", Verdict::warning, "name folders or .cti files in GENICAM_GENTL64_PATH"},
    {"cannot be read", Verdict::warning, "check the rights of the file and its folders"},
    {"wrong ELF class", Verdict::warning,
     "it is built for another kind of processor: install the other version"},
    {"invalid ELF header", Verdict::warning, "the file is damaged or no library: install the producer again"},
    {"file too short", Verdict::warning, "the file is damaged or no library: install the producer again"},
    {"cannot open shared object file", Verdict::warning,
     "a library that it needs is missing: 'ldd FILE' names it. Install it, or set LD_LIBRARY_PATH as its "
     "maker says"},
    {"undefined symbol", Verdict::warning,
     "a library that it needs has another version: 'ldd -r FILE' names it"},
    {"is no GenTL producer", Verdict::warning, "remove it from the search path"},
};

Cause CauseOf(const std::string& message) {
  const auto* found = std::find_if(std::begin(kCauses), std::end(kCauses), [&](const Cause& cause) {
    return message.find(cause.sign) != std::string::npos;
  });
  return found != std::end(kCauses) ? *found : Cause{"", Verdict::warning, "ask the producer's maker"};
}

std::string StateOf(const std::string& place) {
  std::error_code error;
  if (!fs::exists(place, error)) return "does not exist";
  if (!fs::is_directory(place, error)) return "a file";
  std::size_t count = 0;
  fs::directory_iterator entry(place, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    if (entry->path().extension() == ".cti") ++count;
  }
  if (error) return "cannot be read";
  return std::to_string(count) + (count == 1 ? " producer" : " producers");
}

}  // namespace

std::vector<Finding> FindingsOf(const std::list<LoadReportEntry>& report) {
  std::vector<Finding> findings;
  for (const LoadReportEntry& entry : report) {
    if (entry.loaded) {
      findings.push_back({kProducers, entry.path, Verdict::good, entry.message, ""});
      continue;
    }
    const Cause cause = CauseOf(entry.message);
    findings.push_back({kProducers, entry.path, cause.verdict, "not used: " + entry.message, cause.advice});
  }
  if (std::none_of(report.begin(), report.end(), [](const LoadReportEntry& entry) { return entry.loaded; })) {
    findings.push_back(
        {kProducers, "all", Verdict::problem, "none is in use: no camera can be found",
         "install this library again, or name other makers' producers in GENICAM_GENTL64_PATH"});
  }
  return findings;
}

std::vector<Finding> FindingsOfEnvironment(const std::function<const char*(const char* name)>& valueOf) {
  const struct {
    const char* name;
    const char* unset;
    bool isFile;  // names a file that must be there
  } variables[] = {{"GENICAM_GENTL64_PATH", "not set: only this library's own producers are used", false},
                   {"GENICAM_CLPROTOCOL", "not set: no Camera Link protocols", false},
                   {"CLSERIALPATH", "not set: Camera Link serial libraries of the system only", false},
                   {"ZYN_SIMULATOR_CONFIG", "not set: one simulated camera of each model", true}};
  std::vector<Finding> findings;
  for (const auto& variable : variables) {
    const char* const value = valueOf(variable.name);
    if (value == nullptr || *value == '\0') {
      findings.push_back({kEnvironment, variable.name, Verdict::good, variable.unset, ""});
      continue;
    }
    std::error_code error;
    const bool isMissing = variable.isFile && !fs::is_regular_file(value, error);
    findings.push_back({kEnvironment, variable.name, isMissing ? Verdict::warning : Verdict::good,
                        value + std::string(isMissing ? ": there is no such file" : ""),
                        isMissing ? "name a file that is there, or unset the variable" : ""});
  }
  return findings;
}

std::vector<Finding> FindingsOfSearchPath(const std::string& ownFolder, const char* list) {
  std::vector<std::string> places = {ownFolder};
  std::istringstream rest(list != nullptr ? list : "");
  for (std::string place; std::getline(rest, place, ':');) {
    const bool isQuoted = place.size() >= 2 && place.front() == '"' && place.back() == '"';
    if (isQuoted) place = place.substr(1, place.size() - 2);
    if (!place.empty()) places.push_back(place);
  }
  std::vector<Finding> findings;
  for (std::size_t i = 0; i < places.size(); ++i) {
    findings.push_back(
        {kSearchPath, std::to_string(i + 1), Verdict::good, places[i] + " (" + StateOf(places[i]) + ")", ""});
  }
  return findings;
}

}  // namespace zyncam
