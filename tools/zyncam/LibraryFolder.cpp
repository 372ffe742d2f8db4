#include "LibraryFolder.h"

#include <KELGeniCam.h>
#include <dlfcn.h>

#include <system_error>

namespace zyncam {

std::filesystem::path LibraryFolder() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&KELGENICAM::Init), &info) == 0 || info.dli_fname == nullptr) return {};
  std::error_code error;
  const std::filesystem::path library = std::filesystem::canonical(info.dli_fname, error);
  return error ? std::filesystem::path() : library.parent_path();
}

}  // namespace zyncam
