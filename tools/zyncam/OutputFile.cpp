#include "OutputFile.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "Failure.h"

namespace zyncam {

void MakeFolder(const std::string& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error || !std::filesystem::is_directory(folder)) {
    throw Failure(kExitOutput,
                  "cannot make the folder " + folder + ": " + (error ? error.message() : "it is a file"),
                  "choose another one with --output");
  }
}

void WriteFile(const std::string& path, const void* data, std::size_t size) {
  std::ofstream file(path, std::ios::binary);
  file.write(static_cast<const char*>(data), static_cast<std::streamsize>(size));
  file.close();
  if (file) return;
  std::remove(path.c_str());
  throw Failure(kExitOutput, "cannot write " + path, "is the disk full? choose another folder with --output");
}

std::string NumberedPath(const std::string& folder, const std::string& name, int number,
                         const std::string& ending) {
  char digits[16];
  std::snprintf(digits, sizeof digits, "_%05d", number);
  return folder + "/" + name + digits + ending;
}

}  // namespace zyncam
