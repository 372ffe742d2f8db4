#include "Simulator.h"

#include <stdlib.h>

#include <filesystem>
#include <string>
#include <system_error>

#include "Failure.h"
#include "LibraryFolder.h"

namespace zyncam {
namespace {

constexpr const char* kProducerPath = sizeof(void*) == 8 ? "GENICAM_GENTL64_PATH" : "GENICAM_GENTL32_PATH";

}  // namespace

void AddSimulatedCameras() {
  const std::filesystem::path folder = LibraryFolder() / "zyncamera" / "gentl-sim";
  std::error_code error;
  if (!std::filesystem::is_directory(folder, error)) {
    throw Failure(kExitFailed, "the simulated cameras are not installed",
                  "they belong into the folder " + folder.string());
  }
  std::string path = folder.string();
  const char* const others = getenv(kProducerPath);  // NOLINT(concurrency-mt-unsafe): no other thread yet
  if (others != nullptr && *others != '\0') path += ":" + std::string(others);
  setenv(kProducerPath, path.c_str(), 1);  // NOLINT(concurrency-mt-unsafe): no other thread yet
}

}  // namespace zyncam
