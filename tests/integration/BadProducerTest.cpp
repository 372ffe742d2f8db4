/// Folders on the search path that hold nothing usable: each is told, and the rest works.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "ChildProcess.h"
#include "FakeGigeCamera.h"

namespace {

namespace fs = std::filesystem;

/// A folder of its own, removed afterwards.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = (fs::temp_directory_path() / "zyn-producers-XXXXXX").string();
    path_ = mkdtemp(pattern.data());
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  const fs::path& Path() const { return path_; }

 private:
  fs::path path_;
};

/// Lists the cameras with these folders on the search path. The camera on the wire must be found all the
/// same.
std::string MessagesOfList(const std::string& searchPath) {
  const zyntest::FakeGigeCamera fake(1);
  const zyntest::Finished listed =
      zyntest::RunToEnd({ZYN_ZYNCAM, "list"}, {{"GENICAM_GENTL64_PATH", searchPath}});
  EXPECT_EQ(listed.exitCode, 0) << listed.err;
  EXPECT_NE(listed.out.find("GV01"), std::string::npos) << listed.out << listed.err;
  return listed.err;
}

TEST(BadProducer, AMissingFolderIsNamed) {
  const std::string messages = MessagesOfList("/nowhere/at/all");
  EXPECT_NE(messages.find("/nowhere/at/all"), std::string::npos) << messages;
}

TEST(BadProducer, AFileThatIsNoLibraryIsNamed) {
  const TemporaryFolder folder;
  std::ofstream(folder.Path() / "text.cti") << "this is no library\n";
  const std::string messages = MessagesOfList(folder.Path().string());
  EXPECT_NE(messages.find("text.cti"), std::string::npos) << messages;
}

TEST(BadProducer, ALibraryWithoutTheFunctionsIsNamed) {
  const TemporaryFolder folder;
  fs::copy_file(ZYN_LIBRARY_WITHOUT_GENTL, folder.Path() / "other.cti");
  const std::string messages = MessagesOfList(folder.Path().string());
  EXPECT_NE(messages.find("other.cti"), std::string::npos) << messages;
}

TEST(BadProducer, SeveralFoldersAreAllLookedAt) {
  const TemporaryFolder folder;
  std::ofstream(folder.Path() / "text.cti") << "this is no library\n";
  const std::string messages = MessagesOfList("/nowhere/at/all:" + folder.Path().string());
  EXPECT_NE(messages.find("/nowhere/at/all"), std::string::npos) << messages;
  EXPECT_NE(messages.find("text.cti"), std::string::npos) << messages;
}

}  // namespace
