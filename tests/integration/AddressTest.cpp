/// A camera on the other end of a cable, in a network that this computer has no address of: it is found, given an
/// address, and opened.
#include <GevIpLib.h>
#include <ZynCamera.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <optional>
#include <string>

#include "Chain.h"
#include "ChildProcess.h"
#include "PrivateNetwork.h"
#include "SecondNetwork.h"
#include "gige/PersistentIp.h"

namespace {

using zyn::gige::Ipv4;
using zyn::gige::PersistentIp;
using zyn::gige::RegisterClient;
using ZYNSDK::ZynCamera;
using ZYNSDK::ZynCameraAttribute;
using zyntest::ChildProcess;
using zyntest::SecondNetwork;

constexpr long kReady = 0;
constexpr long kWrongSubnet = 2;
constexpr RegisterClient::Options kPatient{std::chrono::milliseconds{1000}, 5};

/// Serial numbers differ from test to test: the SDK remembers its cameras.
class Address : public testing::Test {
 protected:
  static constexpr const char* kCamera = "10.9.9.5";
  static constexpr zyn::gige::MacAddress kMac{{0x02, 0x5A, 10, 9, 9, 5}};

  void SetUp() override { ASSERT_EQ(ZYNSDK::ZynSDKInit(), 0); }
  void TearDown() override {
    EXPECT_EQ(ZYNSDK::ZynSDKUnInit(), 0);
    camera_.reset();
  }

  void Start(const std::string& serial, bool takesAddresses = true, const char* near = "192.168.77.1/24") {
    network_.emplace(near, std::string(kCamera) + "/24");
    std::vector<std::string> command = {ZYN_VIRTUAL_CAMERA, "-a", kCamera, "-m", "ZS-A640", "-s", serial};
    if (takesAddresses) command.emplace_back("--configure-adapter");
    camera_.emplace(network_->Inside(command), ChildProcess::WithOutput());
    ASSERT_EQ(camera_->NextLine(), "1 on the wire");
  }
  static std::unique_ptr<ZynCameraAttribute> AttributeOf(const std::string& serial) {
    return std::unique_ptr<ZynCameraAttribute>(chain::Find(serial).Attribute());
  }
  static void ExpectItCannotBeOpened(const std::string& serial) {
    EXPECT_NE(chain::Find(serial).Open(nullptr), 0);
  }
  static void ExpectAFeatureCanBeRead(const std::string& serial) {
    ZynCamera camera = chain::Find(serial);
    ASSERT_EQ(camera.Open(nullptr), 0);
    EXPECT_EQ(chain::GetInt(camera, "Width"), 640);
    EXPECT_EQ(camera.Close(), 0);
  }
  // What the camera has stored, asked at an address of this computer's network.
  static PersistentIp StoredAt(Ipv4 address) {
    PersistentIp stored;
    const auto client = RegisterClient::Connect(zyn::gige::kNoAddress, address, kPatient);
    EXPECT_TRUE(client && zyn::gige::ReadPersistentIp(*client, stored) == zyn::gige::Result::ok);
    return stored;
  }
  // No address means: look for one, as when the power comes on. Nobody is seen at no address, so this has no answer.
  static void Restart() {
    for (const zyn::gige::Adapter& adapter : zyn::gige::ListAdapters()) {
      if (adapter.name == "near0") zyn::gige::ForceIp(adapter, kMac, {}, std::chrono::milliseconds{300});
    }
  }
  bool WaitForFarAddress(const std::string& address) const {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!network_->HasFarAddress(address)) {
      if (std::chrono::steady_clock::now() > deadline) return false;
    }
    return true;
  }

  std::optional<SecondNetwork> network_;
  std::optional<ChildProcess> camera_;
};

TEST_F(Address, ACameraOfAForeignSubnetIsFoundGivenAnAddressAndOpened) {
  Start("A1");
  const auto before = AttributeOf("A1");
  EXPECT_EQ(before->CameraStatus(), kWrongSubnet);
  EXPECT_STREQ(before->CameraIp(), kCamera);
  EXPECT_STREQ(before->AdapterName(), "near0");
  EXPECT_STREQ(before->AdapterIP(), "192.168.77.1");
  EXPECT_FALSE(before->IsNetSegmentConsistent());
  ExpectItCannotBeOpened("A1");
  ASSERT_TRUE(AttributeOf("A1")->SetCameraAddress("192.168.77.50", nullptr, nullptr, false));
  const auto after = AttributeOf("A1");
  EXPECT_EQ(after->CameraStatus(), kReady);
  EXPECT_STREQ(after->CameraIp(), "192.168.77.50");
  EXPECT_STREQ(after->CameraMask(), "255.255.255.0") << "the adapter's";
  EXPECT_STREQ(after->CameraGateway(), "192.168.77.1");
  EXPECT_TRUE(network_->HasFarAddress("192.168.77.50")) << "it is at the other end of the cable";
  EXPECT_FALSE(network_->HasFarAddress(kCamera));
  ExpectAFeatureCanBeRead("A1");
  EXPECT_EQ(StoredAt({0xC0A84D32}).settings.ip, zyn::gige::kNoAddress) << "it lasts until its power goes";
}

TEST_F(Address, APersistentAddressIsStoredInTheCamera) {
  Start("A2");
  ASSERT_TRUE(AttributeOf("A2")->SetCameraAddress("192.168.77.50", "255.255.255.0", "192.168.77.254", true));
  ExpectAFeatureCanBeRead("A2");
  const PersistentIp stored = StoredAt({0xC0A84D32});
  EXPECT_EQ(stored.settings, (zyn::gige::IpSettings{{0xC0A84D32}, {0xFFFFFF00}, {0xC0A84DFE}}));
  EXPECT_EQ(stored.methods, zyn::gige::kPersistentIpEnabled | zyn::gige::kLinkLocalEnabled);

  ASSERT_EQ(SetCameraIP("A2", "192.168.77.60", "255.255.255.0", "0.0.0.0", false), GEV_IP_OK);
  Restart();
  EXPECT_TRUE(WaitForFarAddress("192.168.77.50")) << "it starts with what is stored";
  EXPECT_FALSE(network_->HasFarAddress("192.168.77.60"));
  EXPECT_STREQ(AttributeOf("A2")->CameraIp(), "192.168.77.50");
  EXPECT_STREQ(AttributeOf("A2")->CameraGateway(), "192.168.77.254");
  ExpectAFeatureCanBeRead("A2");
}

TEST_F(Address, AnAddressOfAThirdNetworkIsTakenButOpensNothing) {
  Start("A3");
  ASSERT_TRUE(AttributeOf("A3")->SetCameraAddress("172.20.1.2", "255.255.0.0", "0.0.0.0", false));
  EXPECT_STREQ(AttributeOf("A3")->CameraIp(), "172.20.1.2");
  EXPECT_EQ(AttributeOf("A3")->CameraStatus(), kWrongSubnet);
  ExpectItCannotBeOpened("A3");
}

TEST_F(Address, ACameraThatRefusesKeepsItsAddressAndStaysClosed) {
  Start("A4", false);
  EXPECT_EQ(SetCameraIP("A4", "192.168.77.50", "255.255.255.0", "0.0.0.0", false), GEV_IP_REFUSED);
  EXPECT_FALSE(AttributeOf("A4")->SetCameraAddress("192.168.77.50", nullptr, nullptr, false));
  EXPECT_EQ(AttributeOf("A4")->CameraStatus(), kWrongSubnet);
  ExpectItCannotBeOpened("A4");
}

TEST_F(Address, TheAddressOfThisComputerIsTaken) {
  Start("A5");
  EXPECT_EQ(SetCameraIP("A5", "192.168.77.1", "255.255.255.0", "0.0.0.0", false), GEV_IP_ADDRESS_TAKEN);
  // On another adapter, too: this computer would talk to itself there.
  const std::vector<std::string> other = {"192.168.77.66/32", "dev", "lo"};
  const auto change = [&](const char* verb) {
    std::vector<std::string> command = {"ip", "address", verb};
    command.insert(command.end(), other.begin(), other.end());
    return zyntest::RunToEnd(command).exitCode;
  };
  ASSERT_EQ(change("add"), 0);
  EXPECT_EQ(SetCameraIP("A5", "192.168.77.66", "255.255.255.0", "0.0.0.0", false), GEV_IP_ADDRESS_TAKEN);
  EXPECT_EQ(change("del"), 0);
  EXPECT_TRUE(network_->HasFarAddress(kCamera));
}

TEST_F(Address, ACameraThatIsGoneIsNotFound) {
  Start("A6");
  EXPECT_EQ(AttributeOf("A6")->CameraStatus(), kWrongSubnet);
  const auto remembered = AttributeOf("A6");
  EXPECT_EQ(camera_->End(SIGTERM), 0);
  EXPECT_EQ(SetCameraIP("A6", "192.168.77.50", "255.255.255.0", "0.0.0.0", false), GEV_IP_NOT_FOUND);
  EXPECT_FALSE(remembered->SetCameraAddress("192.168.77.50", nullptr, nullptr, false));
}

TEST_F(Address, ACameraLeavesForAForeignNetworkAndComesBack) {
  Start("A7");
  ASSERT_TRUE(AttributeOf("A7")->SetCameraAddress("192.168.77.50", nullptr, nullptr, false));
  ASSERT_EQ(SetCameraIP("A7", "172.20.1.2", "255.255.0.0", "172.20.0.1", true), GEV_IP_OK);
  EXPECT_EQ(AttributeOf("A7")->CameraStatus(), kWrongSubnet);
  ASSERT_TRUE(AttributeOf("A7")->SetCameraAddress("192.168.77.51", nullptr, nullptr, false));
  EXPECT_EQ(StoredAt({0xC0A84D33}).settings.ip, Ipv4{0xAC140102}) << "stored before it left";
  ExpectAFeatureCanBeRead("A7");
}

TEST_F(Address, BetweenTwoForeignNetworksTheAddressIsStoredOnTheWay) {
  Start("A8");
  network_->AddFarAddress("192.168.77.254/32");  // a router, say: it answers where the camera might go
  ASSERT_EQ(SetCameraIP("A8", "172.20.1.2", "255.255.0.0", "172.20.0.1", true), GEV_IP_OK);
  EXPECT_TRUE(network_->HasFarAddress("172.20.1.2"));
  EXPECT_FALSE(network_->HasFarAddress(kCamera));
  EXPECT_FALSE(network_->HasFarAddress("192.168.77.253")) << "it was there for a moment only";
  EXPECT_TRUE(network_->HasFarAddress("192.168.77.254")) << "and not at another host's address";
  ASSERT_TRUE(AttributeOf("A8")->SetCameraAddress("192.168.77.50", nullptr, nullptr, false));
  EXPECT_EQ(StoredAt({0xC0A84D32}).settings,
            (zyn::gige::IpSettings{{0xAC140102}, {0xFFFF0000}, {0xAC140001}}));
}

TEST_F(Address, WithoutAFreeAddressOnTheWayItIsInForceButNotStored) {
  Start("A9", true, "192.168.77.1/30");
  network_->AddFarAddress("192.168.77.2/32");
  EXPECT_EQ(SetCameraIP("A9", "172.20.1.2", "255.255.0.0", "172.20.0.1", true), GEV_IP_NOT_REACHED);
  EXPECT_TRUE(network_->HasFarAddress("172.20.1.2"));
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (!zyntest::IsPrivateNetwork()) {
    std::fprintf(stderr,
                 "These tests send packets. Run them with scripts/in-namespace.sh, or through ctest.\n");
    return 2;
  }
  return RUN_ALL_TESTS();
}
