#include "SearchPath.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string_view>
#include <system_error>

namespace zyn::transport {

namespace fs = std::filesystem;

namespace {

constexpr const char* kPathVariable = sizeof(void*) == 8 ? "GENICAM_GENTL64_PATH" : "GENICAM_GENTL32_PATH";

// Any object of this library serves to ask the loader where the library lies.
const char kAnchor = 0;

std::string OwnFolder() {
  Dl_info info{};
  if (dladdr(&kAnchor, &info) == 0 || !info.dli_fname) return {};
  std::error_code error;
  const fs::path file = fs::canonical(info.dli_fname, error);
  return error ? std::string() : file.parent_path().string();
}

bool IsProducerName(const fs::path& path) {
  return path.extension() == ".cti";
}

// Collects the entries and remembers which files are in already.
class Collector {
 public:
  void AddPlace(const std::string& place) {
    std::error_code error;
    const fs::file_status status = fs::status(place, error);
    if (!fs::exists(status)) return AddUnusable(place, "does not exist");
    if (fs::is_directory(status)) return AddFolder(place);
    if (!IsProducerName(place)) return AddUnusable(place, "is neither a folder nor a .cti file");
    AddFile(place);
  }

  std::vector<SearchEntry> entries;

 private:
  void AddUnusable(const std::string& path, const std::string& reason) {
    entries.push_back(SearchEntry{path, "", reason});
  }

  void AddFolder(const std::string& folder) {
    std::error_code error;
    std::vector<std::string> files;
    fs::directory_iterator iterator(folder, error);
    for (; !error && iterator != fs::directory_iterator(); iterator.increment(error)) {
      if (IsProducerName(iterator->path())) files.push_back(iterator->path().string());
    }
    if (error) return AddUnusable(folder, "cannot be read: " + error.message());
    if (files.empty()) return AddUnusable(folder, "holds no .cti file");
    std::sort(files.begin(), files.end());
    for (const std::string& file : files) AddFile(file);
  }

  void AddFile(const std::string& file) {
    std::error_code error;
    const std::string canonical = fs::canonical(file, error).string();
    if (error) return AddUnusable(file, "cannot be read: " + error.message());
    if (!fs::is_regular_file(canonical, error)) return AddUnusable(file, "is no file");
    if (!known_.insert(canonical).second) return AddUnusable(file, "is the same file as one found before");
    entries.push_back(SearchEntry{file, canonical, ""});
  }

  std::set<std::string> known_;
};

}  // namespace

std::vector<std::string> SplitPathList(const char* list) {
  std::vector<std::string> entries;
  std::string_view rest = list ? list : "";
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find(':'), rest.size());
    std::string_view entry = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (entry.size() >= 2 && entry.front() == '"' && entry.back() == '"') {
      entry = entry.substr(1, entry.size() - 2);
    }
    if (!entry.empty()) entries.emplace_back(entry);
  }
  return entries;
}

std::vector<std::string> SearchPlaces() {
  std::vector<std::string> places;
  const std::string own = OwnFolder();
  if (!own.empty()) places.push_back(own + "/zyncamera/gentl");
  const char* list = std::getenv(kPathVariable);  // NOLINT(concurrency-mt-unsafe): read, never written here
  for (std::string& entry : SplitPathList(list)) places.push_back(std::move(entry));
  return places;
}

std::vector<SearchEntry> FindProducerFiles(const std::vector<std::string>& places) {
  Collector collector;
  for (const std::string& place : places) collector.AddPlace(place);
  return std::move(collector.entries);
}

}  // namespace zyn::transport
