#include <KELGeniCam.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <list>
#include <string>

namespace zyn::transport_test {
namespace {

namespace fs = std::filesystem;

class CameraLink : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = (fs::temp_directory_path() / "transport-cl-XXXXXX").string();
    folder_ = mkdtemp(name.data());
  }
  void TearDown() override { fs::remove_all(folder_); }

  fs::path folder_;
};

TEST_F(CameraLink, ListsThePortsOfTheSerialLibrariesThatCanBeLoaded) {
  fs::create_symlink(ZYN_MOCK_CL_SERIAL, folder_ / "libclserGrabbers.so");
  fs::create_symlink(ZYN_MOCK_CL_SERIAL, folder_ / "libclserAgain.so");  // the same file: listed once
  fs::create_symlink(ZYN_MOCK_CL_PROTOCOL, folder_ / "libclserOther.so");
  std::ofstream(folder_ / "libclserBroken.so") << "no library";
  setenv("CLSERIALPATH", ("/nowhere:" + folder_.string()).c_str(), 1);
  std::list<std::string> serials{"old"};
  ASSERT_EQ(KELGENICAM::GetCLSerials(serials), KELGENICAM::RESULT_OK);
  EXPECT_EQ(std::count(serials.begin(), serials.end(), "Grabbers#Port 0"), 1);
  EXPECT_EQ(std::count(serials.begin(), serials.end(), "Grabbers#Port 1"), 1);
  EXPECT_EQ(std::count(serials.begin(), serials.end(), "old"), 0);
}

TEST_F(CameraLink, ListsTheProtocolDriversInTheFoldersOfTheVariable) {
  fs::create_symlink(ZYN_MOCK_CL_PROTOCOL, folder_ / "libDriver.so");
  fs::create_symlink(ZYN_MOCK_CL_SERIAL, folder_ / "libNoDriver.so");
  std::ofstream(folder_ / "libBroken.so") << "no library";
  setenv("GENICAM_CLPROTOCOL", folder_.c_str(), 1);
  std::list<std::string> protocols{"old"};
  ASSERT_EQ(KELGENICAM::GetCLProtocols(protocols), KELGENICAM::RESULT_OK);
  EXPECT_EQ(protocols, std::list<std::string>{(folder_ / "libDriver.so").string()});
}

TEST_F(CameraLink, WithoutTheVariableThereIsNoDriver) {
  unsetenv("GENICAM_CLPROTOCOL");
  std::list<std::string> protocols{"old"};
  ASSERT_EQ(KELGENICAM::GetCLProtocols(protocols), KELGENICAM::RESULT_OK);
  EXPECT_TRUE(protocols.empty());
}

}  // namespace
}  // namespace zyn::transport_test
