// The producer keeps every rule with a USB3 Vision camera too.
#include <gtest/gtest.h>
#include <pthread.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "PrivateNetwork.h"
#include "ProducerCheck.h"
#include "usb3vision/UsbCamera.h"

namespace {

using namespace zyn::producercheck;

// A virtual bus serves the process that made it, and checks run in processes of their own: each gets a camera when it
// begins. It lives as long as the process, which ends without a word.
void PlugIn() {
  if (!zyntest::usb3::HasVirtualUsb()) std::abort();
  new zyntest::usb3::UsbCamera("ZS-A1600", "USB-2D");
}

// What the processes leave in the folder for temporary files goes when the test does.
class OwnTemporaryFolder {
 public:
  OwnTemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "zyn-usb-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for temporary files");
    path_ = name;
    setenv("TMPDIR", name.c_str(), 1);  // NOLINT(concurrency-mt-unsafe): there is no other thread
  }
  ~OwnTemporaryFolder() { std::filesystem::remove_all(path_); }
  OwnTemporaryFolder(const OwnTemporaryFolder&) = delete;
  OwnTemporaryFolder& operator=(const OwnTemporaryFolder&) = delete;

 private:
  std::filesystem::path path_;
};

TEST(Usb3ProducerCheck, PassesWithAVirtualCamera) {
  ASSERT_TRUE(zyntest::IsPrivateNetwork()) << "run this through ctest";
  const OwnTemporaryFolder folder;
  ASSERT_EQ(pthread_atfork(nullptr, nullptr, PlugIn), 0);
  CheckOptions options;
  options.device = "USB-2D";
  const std::vector<CheckResult> results = CheckProducer(ZYN_PRODUCER, options);
  EXPECT_EQ(results.size(), AllChecks().size());
  for (const CheckResult& result : results)
    EXPECT_EQ(result.outcome, Outcome::kPassed) << result.name << ": " << result.sentence;
}

}  // namespace
