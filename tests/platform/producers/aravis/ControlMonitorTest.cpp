#include "ControlMonitor.h"

#include <gtest/gtest.h>

#include <future>

#include "ScriptedDevice.h"

namespace zyn::aravis {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using test::LoopbackIdentity;
using test::MakeAck;
using test::ScriptedDevice;
namespace bootstrap = gige::bootstrap;
using Answers = std::optional<std::vector<gige::Bytes>>;

class ControlMonitorTest : public testing::Test {
 protected:
  ControlMonitorTest() {
    device_->SetRegister(bootstrap::kControlPrivilege, gige::kControlAccess);
    device_->SetRegister(bootstrap::kCapability, 0);
  }

  void StartMonitor(bool isExclusive = false) {
    auto client =
        gige::RegisterClient::Connect(gige::kNoAddress, gige::Ipv4{0x7F000002}, ControlMonitor::Options());
    monitor_ = std::make_unique<ControlMonitor>(
        std::move(client), isExclusive, [this](const std::string& cause) { cause_.set_value(cause); });
  }

  // Returns when the monitor has asked for the privilege `count` times.
  void WaitForQuestions(std::size_t count) {
    const auto deadline = std::chrono::steady_clock::now() + seconds(20);
    while (device_->Commands(gige::command::kReadRegister).size() < count) {
      ASSERT_LT(std::chrono::steady_clock::now(), deadline);
      std::this_thread::yield();
    }
  }

  bool IsLostWithin(milliseconds time) { return lost_.wait_for(time) == std::future_status::ready; }

  std::unique_ptr<ScriptedDevice> device_ = std::make_unique<ScriptedDevice>(LoopbackIdentity(2, "S"));
  std::promise<std::string> cause_;
  std::future<std::string> lost_ = cause_.get_future();
  std::unique_ptr<ControlMonitor> monitor_;
};

TEST_F(ControlMonitorTest, ACameraThatIsOursStaysOurs) {
  StartMonitor();
  WaitForQuestions(4);
  EXPECT_FALSE(IsLostWithin(milliseconds(0)));
}

TEST_F(ControlMonitorTest, AVanishedCameraIsLostWithinThreeSeconds) {
  StartMonitor();
  WaitForQuestions(1);
  device_.reset();
  EXPECT_TRUE(IsLostWithin(seconds(3)));
}

TEST_F(ControlMonitorTest, ASilentCameraIsLostWithinThreeSeconds) {
  StartMonitor();
  WaitForQuestions(1);
  device_->SetScript([](gige::ByteView) -> Answers { return std::vector<gige::Bytes>{}; });
  EXPECT_TRUE(IsLostWithin(seconds(3)));
  EXPECT_NE(lost_.get().find("does not answer"), std::string::npos);
}

TEST_F(ControlMonitorTest, SingleLostAnswersAreForgiven) {
  device_->SetScript([asked = 0](gige::ByteView) mutable -> Answers {
    if (++asked % 3 != 0) return std::vector<gige::Bytes>{};
    return std::nullopt;
  });
  StartMonitor();
  WaitForQuestions(8);
  EXPECT_FALSE(IsLostWithin(milliseconds(0)));
}

TEST_F(ControlMonitorTest, ErrorAnswersAreAnswers) {
  StartMonitor();
  device_->SetScript([](gige::ByteView command) -> Answers {
    return std::vector<gige::Bytes>{MakeAck(command, gige::status::kBusy, {})};
  });
  WaitForQuestions(6);
  EXPECT_FALSE(IsLostWithin(milliseconds(0)));
}

TEST_F(ControlMonitorTest, ControlThatTheCameraGaveUpIsALoss) {
  StartMonitor();
  WaitForQuestions(1);
  device_->SetRegister(bootstrap::kControlPrivilege, 0);
  EXPECT_TRUE(IsLostWithin(seconds(3)));
}

TEST_F(ControlMonitorTest, AnExclusiveOwnerOtherThanUsIsALoss) {
  StartMonitor();
  WaitForQuestions(1);
  device_->SetScript([](gige::ByteView command) -> Answers {
    return std::vector<gige::Bytes>{MakeAck(command, gige::status::kAccessDenied, {})};
  });
  EXPECT_TRUE(IsLostWithin(seconds(3)));
}

TEST_F(ControlMonitorTest, OurOwnExclusiveAccessIsNoLoss) {
  device_->SetScript([](gige::ByteView command) -> Answers {
    return std::vector<gige::Bytes>{MakeAck(command, gige::status::kAccessDenied, {})};
  });
  StartMonitor(true);
  WaitForQuestions(4);
  EXPECT_FALSE(IsLostWithin(milliseconds(0)));
}

TEST_F(ControlMonitorTest, AnotherControllerIsNoticedWhereTheCameraTells) {
  device_->SetRegister(bootstrap::kCapability, gige::kHasPrimaryApplication);
  device_->SetRegister(bootstrap::kPrimaryIp, 0x7F000001);
  device_->SetRegister(bootstrap::kPrimaryPort, 5000);
  StartMonitor();
  WaitForQuestions(6);
  EXPECT_FALSE(IsLostWithin(milliseconds(0)));
  device_->SetRegister(bootstrap::kPrimaryPort, 5001);
  EXPECT_TRUE(IsLostWithin(seconds(3)));
}

}  // namespace
}  // namespace zyn::aravis
