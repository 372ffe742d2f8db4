#include "CameraLink.h"

#include <dlfcn.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <set>
#include <string_view>
#include <system_error>
#include <vector>

#include "../producer/SearchPath.h"

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

constexpr unsigned kMostPorts = 1024;  // a larger count is a broken library

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

template <class Function>
Function Symbol(void* library, const char* name) {
  void* symbol = dlsym(library, name);
  Function function = nullptr;
  std::memcpy(&function, &symbol, sizeof(function));
  return function;
}

using GetManufacturerInfo = std::int32_t (*)(char*, std::uint32_t*, std::uint32_t*);
using GetNumSerialPorts = std::int32_t (*)(std::uint32_t*);
using GetSerialPortIdentifier = std::int32_t (*)(std::uint32_t, char*, std::uint32_t*);

std::string Manufacturer(void* library, const std::string& file) {
  std::array<char, 512> name{};
  auto size = static_cast<std::uint32_t>(name.size() - 1);
  std::uint32_t version = 0;
  const auto ask = Symbol<GetManufacturerInfo>(library, "clGetManufacturerInfo");
  if (ask && ask(name.data(), &size, &version) == 0 && name.front() != '\0') return name.data();
  return fs::path(file).stem().string();
}

void AddPorts(const std::string& file, std::list<std::string>& ports) {
  void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!library) return;  // stays loaded afterwards: vendors' libraries do not survive unloading reliably
  const auto count = Symbol<GetNumSerialPorts>(library, "clGetNumSerialPorts");
  const auto identify = Symbol<GetSerialPortIdentifier>(library, "clGetSerialPortIdentifier");
  std::uint32_t number = 0;
  if (!count || !identify || count(&number) != 0) return;
  const std::string manufacturer = Manufacturer(library, file);
  for (std::uint32_t i = 0; i < std::min(number, kMostPorts); ++i) {
    std::array<char, 512> port{};
    auto size = static_cast<std::uint32_t>(port.size() - 1);
    if (identify(i, port.data(), &size) == 0) ports.push_back(manufacturer + "#" + port.data());
  }
}

bool IsProtocolDriver(const std::string& file) {
  void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  return library && dlsym(library, "clpProbeDevice") != nullptr;
}

}  // namespace

std::list<std::string> FindProtocolDrivers() {
  std::vector<std::string> folders;
  for (const std::string& root : FoldersOf("GENICAM_CLPROTOCOL")) {
    folders.push_back(root);
    for (const char* platform : kPlatformFolders) folders.push_back(root + "/" + platform);
  }
  std::list<std::string> drivers;
  for (const std::string& file : LibrariesIn(folders, "")) {
    if (IsProtocolDriver(file)) drivers.push_back(file);
  }
  return drivers;
}

std::list<std::string> FindSerialPorts() {
  std::vector<std::string> folders = FoldersOf("CLSERIALPATH");
  for (std::string& folder : FoldersOf("LD_LIBRARY_PATH")) folders.push_back(std::move(folder));
  folders.insert(folders.end(), kSystemFolders.begin(), kSystemFolders.end());
  std::list<std::string> ports;
  for (const std::string& file : LibrariesIn(folders, "libclser")) AddPorts(file, ports);
  return ports;
}

}  // namespace zyn::transport
