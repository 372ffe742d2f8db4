#include "CameraLink.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string_view>
#include <system_error>
#include <vector>

#include "../producer/SearchPath.h"
#include "CameraLinkLibrary.h"
#include "LibraryInquiry.h"

namespace zyn::transport {

namespace fs = std::filesystem;

namespace {

#if defined(__APPLE__)
constexpr std::array<const char*, 2> kPlatformFolders = {"Maci64_x64", "Maci64_ARM"};
#elif defined(__aarch64__)
constexpr std::array<const char*, 1> kPlatformFolders = {"Linux64_ARM"};
#else
constexpr std::array<const char*, 1> kPlatformFolders = {"Linux64_x64"};
#endif

constexpr std::array<const char*, 6> kSystemFolders = {"/usr/local/lib",
                                                       "/usr/lib/x86_64-linux-gnu",
                                                       "/usr/lib/aarch64-linux-gnu",
                                                       "/usr/lib64",
                                                       "/usr/lib",
                                                       "/lib"};

constexpr std::chrono::milliseconds kPatience{2000};  // for all libraries together

std::vector<std::string> FoldersOf(const char* variable) {
  return SplitPathList(std::getenv(variable));  // NOLINT(concurrency-mt-unsafe): read, never written here
}

// The shared libraries in the folders whose name begins so, each file once.
std::vector<std::string> LibrariesIn(const std::vector<std::string>& folders, std::string_view prefix) {
  std::vector<std::string> libraries;
  std::set<std::string> known;
  for (const std::string& folder : folders) {
    std::error_code error;
    std::vector<std::string> found;
    for (fs::directory_iterator it(folder, error); !error && it != fs::directory_iterator();
         it.increment(error)) {
      const std::string name = it->path().filename().string();
      const bool isLibrary = it->path().extension() == ".so" && name.compare(0, prefix.size(), prefix) == 0;
      if (isLibrary) found.push_back(it->path().string());
    }
    std::sort(found.begin(), found.end());
    for (const std::string& file : found) {
      const std::string canonical = fs::canonical(file, error).string();
      if (!error && known.insert(canonical).second) libraries.push_back(file);
    }
  }
  return libraries;
}

// A library that was given up stays in the inquiry's care until its call returns, hence the objects are never destroyed.
LibraryInquiry& SerialInquiry() {
  static auto* const inquiry = new LibraryInquiry(SerialPortsOf);
  return *inquiry;
}

LibraryInquiry& ProtocolInquiry() {
  static auto* const inquiry = new LibraryInquiry(ProtocolDriverIn);
  return *inquiry;
}

}  // namespace

std::list<std::string> FindProtocolDrivers() {
  std::vector<std::string> folders;
  for (const std::string& root : FoldersOf("GENICAM_CLPROTOCOL")) {
    folders.push_back(root);
    for (const char* platform : kPlatformFolders) folders.push_back(root + "/" + platform);
  }
  return ProtocolInquiry().Ask(LibrariesIn(folders, ""), kPatience);
}

std::list<std::string> FindSerialPorts() {
  std::vector<std::string> folders = FoldersOf("CLSERIALPATH");
  for (std::string& folder : FoldersOf("LD_LIBRARY_PATH")) folders.push_back(std::move(folder));
  folders.insert(folders.end(), kSystemFolders.begin(), kSystemFolders.end());
  return SerialInquiry().Ask(LibrariesIn(folders, "libclser"), kPatience);
}

}  // namespace zyn::transport
