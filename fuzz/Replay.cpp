// Runs a fuzz target over files in builds without libFuzzer: replay FOLDER-OR-FILE...
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> FilesBelow(const fs::path& root) {
  if (!fs::is_directory(root)) return {root};
  std::vector<fs::path> files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root))
    if (entry.is_regular_file()) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

bool Replay(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  if (!in) return false;
  std::printf("%s (%zu bytes)\n", file.filename().string().c_str(), bytes.size());
  std::fflush(stdout);  // the last line names the input that ends the process
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  std::size_t replayed = 0;
  for (int i = 1; i < argc; ++i) {
    for (const fs::path& file : FilesBelow(argv[i])) {
      if (!Replay(file)) {
        std::fprintf(stderr, "%s cannot be read\n", file.string().c_str());
        return 1;
      }
      ++replayed;
    }
  }
  std::printf("%zu inputs\n", replayed);
  return replayed > 0 ? 0 : 1;
}
