#include "Simulator.h"

#include <KELGeniCam.h>
#include <dlfcn.h>
#include <stdlib.h>

#include <filesystem>
#include <string>
#include <system_error>

#include "Failure.h"

namespace zyncam {
namespace {

constexpr const char* kProducerPath = sizeof(void*) == 8 ? "GENICAM_GENTL64_PATH" : "GENICAM_GENTL32_PATH";

// The transport's library lies in the library folder of the build tree and of an installation alike.
std::filesystem::path SimulatorFolder() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&KELGENICAM::Init), &info) == 0 || info.dli_fname == nullptr) return {};
  std::error_code error;
  const std::filesystem::path library = std::filesystem::canonical(info.dli_fname, error);
  return error ? std::filesystem::path() : library.parent_path() / "zyncamera" / "gentl-sim";
}

}  // namespace

void AddSimulatedCameras() {
  const std::filesystem::path folder = SimulatorFolder();
  std::error_code error;
  if (folder.empty() || !std::filesystem::is_directory(folder, error)) {
    throw Failure(kExitFailed, "the simulated cameras are not installed",
                  "they belong into the folder " + folder.string());
  }
  std::string path = folder.string();
  const char* const others = getenv(kProducerPath);  // NOLINT(concurrency-mt-unsafe): no other thread yet
  if (others != nullptr && *others != '\0') path += ":" + std::string(others);
  setenv(kProducerPath, path.c_str(), 1);  // NOLINT(concurrency-mt-unsafe): no other thread yet
}

}  // namespace zyncam
