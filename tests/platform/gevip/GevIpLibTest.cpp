#include "GevIpLib.h"

#include <gtest/gtest.h>

#include <chrono>

#include "ScriptedDevice.h"

namespace {

using zyn::gige::Bytes;
using zyn::gige::ByteView;
using zyn::gige::Ipv4;
using zyn::test::CommandOf;
using zyn::test::LoopbackIdentity;
using zyn::test::MakeAck;
using zyn::test::ScriptedDevice;
namespace bootstrap = zyn::gige::bootstrap;
namespace command = zyn::gige::command;

const char* const kIp = "127.0.7.50";
const char* const kMask = "255.255.255.0";
const char* const kGateway = "127.0.7.1";
const Ipv4 kIpValue{0x7F000732};
const Ipv4 kMaskValue{0xFFFFFF00};
const Ipv4 kGatewayValue{0x7F000701};

std::optional<std::vector<Bytes>> AsUsual() {
  return std::nullopt;
}

TEST(SetCameraIp, TheCameraHasTheAddressAfterwards) {
  const ScriptedDevice other(LoopbackIdentity(3, "OTHER"));
  const ScriptedDevice device(LoopbackIdentity(2, "WANTED"));
  EXPECT_EQ(SetCameraIP("WANTED", kIp, kMask, kGateway, false), GEV_IP_OK);
  EXPECT_EQ(device.Identity().ip, kIpValue);
  EXPECT_EQ(device.Identity().mask, kMaskValue);
  EXPECT_EQ(device.Identity().gateway, kGatewayValue);
  EXPECT_EQ(other.Identity().ip, LoopbackIdentity(3, "").ip);
  EXPECT_TRUE(device.Commands(command::kWriteRegister).empty()) << "nothing is stored in the camera";
}

TEST(SetCameraIp, WorksForACameraOutsideTheAdaptersSubnet) {
  auto identity = LoopbackIdentity(2, "FAR");
  identity.ip = Ipv4{0xC0A80909};
  identity.mask = Ipv4{0xFFFFFF00};
  const ScriptedDevice device(identity);
  EXPECT_EQ(SetCameraIP("FAR", kIp, kMask, kGateway, false), GEV_IP_OK);
  EXPECT_EQ(device.Identity().ip, kIpValue);
}

TEST(SetCameraIp, PersistentStoresTheAddressAndSwitchesDhcpOff) {
  const ScriptedDevice device(LoopbackIdentity(2, "KEEP"));
  EXPECT_EQ(SetCameraIP("KEEP", kIp, kMask, kGateway, true), GEV_IP_OK);
  EXPECT_EQ(device.Identity().ip, kIpValue);
  EXPECT_EQ(device.Register(bootstrap::kPersistentIp), kIpValue.value);
  EXPECT_EQ(device.Register(bootstrap::kPersistentMask), kMaskValue.value);
  EXPECT_EQ(device.Register(bootstrap::kPersistentGateway), kGatewayValue.value);
  EXPECT_EQ(device.Register(bootstrap::kIpConfiguration), 5U)
      << "persistent on, DHCP off, link-local as it was";
  EXPECT_EQ(device.Register(bootstrap::kControlPrivilege), 0U) << "control is given back";
}

TEST(SetCameraIp, AnAddressOfAnotherNetworkIsStoredBeforeTheCameraLeaves) {
  const ScriptedDevice device(LoopbackIdentity(2, "LEAVING"));
  EXPECT_EQ(SetCameraIP("LEAVING", "10.9.8.7", "255.255.255.0", "0.0.0.0", true), GEV_IP_OK);
  EXPECT_EQ(device.Identity().ip, Ipv4{0x0A090807});
  EXPECT_EQ(device.Register(bootstrap::kPersistentIp), 0x0A090807U);
}

TEST(SetCameraIp, TheAddressItHasAlreadyIsNotForcedAgain) {
  const ScriptedDevice device(LoopbackIdentity(2, "SAME"));
  EXPECT_EQ(SetCameraIP("SAME", "127.0.0.2", "255.0.0.0", "127.0.0.254", true), GEV_IP_OK);
  EXPECT_TRUE(device.Commands(command::kForceIp).empty());
  EXPECT_EQ(device.Register(bootstrap::kPersistentIp), 0x7F000002U);
}

TEST(SetCameraIp, UnknownEmptyAndDoubledSerialNumbersTouchNoCamera) {
  const ScriptedDevice first(LoopbackIdentity(2, "TWIN"));
  const ScriptedDevice second(LoopbackIdentity(3, "TWIN"));
  const ScriptedDevice unnamed(LoopbackIdentity(4, ""));
  EXPECT_EQ(SetCameraIP("TWI", kIp, kMask, kGateway, false), GEV_IP_NOT_FOUND);
  EXPECT_EQ(SetCameraIP("", kIp, kMask, kGateway, false), GEV_IP_NOT_FOUND);
  EXPECT_EQ(SetCameraIP("TWIN", kIp, kMask, kGateway, false), GEV_IP_NOT_FOUND);
  for (const ScriptedDevice* device : {&first, &second, &unnamed}) {
    EXPECT_TRUE(device->Commands(command::kForceIp).empty());
  }
}

TEST(SetCameraIp, UnusableAddressesAreRefusedBeforeAnythingIsSent) {
  const struct {
    const char* ip;
    const char* mask;
    const char* gateway;
  } rows[] = {
      {"", kMask, kGateway},
      {"127.0.7", kMask, kGateway},
      {"127.0.7.256", kMask, kGateway},
      {kIp, "", kGateway},
      {kIp, "255.0.255.0", kGateway},
      {kIp, "0.0.0.0", kGateway},
      {kIp, kMask, "x"},
      {kIp, kMask, ""},
      {kIp, kMask, "224.0.0.1"},
      {"0.0.0.0", kMask, kGateway},
      {"127.0.7.0", kMask, kGateway},
      {"127.0.7.255", kMask, kGateway},
      {"239.1.2.3", kMask, kGateway},
      {"255.255.255.255", kMask, kGateway},
  };
  const ScriptedDevice device(LoopbackIdentity(2, "S"));
  for (const auto& row : rows) {
    EXPECT_EQ(SetCameraIP("S", row.ip, row.mask, row.gateway, true), GEV_IP_INVALID_ADDRESS)
        << row.ip << " " << row.mask << " " << row.gateway;
  }
  EXPECT_TRUE(device.Commands(command::kDiscovery).empty());
}

TEST(SetCameraIp, AnotherCamerasAddressIsTaken) {
  const ScriptedDevice device(LoopbackIdentity(2, "S"));
  const ScriptedDevice other(LoopbackIdentity(3, "OTHER"));
  EXPECT_EQ(SetCameraIP("S", "127.0.0.3", "255.0.0.0", "0.0.0.0", false), GEV_IP_ADDRESS_TAKEN);
  EXPECT_TRUE(device.Commands(command::kForceIp).empty());
}

TEST(SetCameraIp, AControlledCameraIsInUse) {
  ScriptedDevice device(LoopbackIdentity(2, "S"));
  device.SetRegister(bootstrap::kControlPrivilege, 2);
  EXPECT_EQ(SetCameraIP("S", kIp, kMask, kGateway, false), GEV_IP_IN_USE);
  EXPECT_TRUE(device.Commands(command::kForceIp).empty());
}

TEST(SetCameraIp, RefusalOfTheCameraIsReported) {
  ScriptedDevice device(LoopbackIdentity(2, "S"));
  device.SetScript([](ByteView datagram) -> std::optional<std::vector<Bytes>> {
    if (CommandOf(datagram) != command::kForceIp) return AsUsual();
    return std::vector<Bytes>{MakeAck(datagram, zyn::gige::status::kInvalidParameter, {})};
  });
  EXPECT_EQ(SetCameraIP("S", kIp, kMask, kGateway, false), GEV_IP_REFUSED);
}

TEST(SetCameraIp, ACameraThatKeepsItsAddressGivesNoAnswerWithinThePromisedTime) {
  ScriptedDevice device(LoopbackIdentity(2, "S"));
  device.SetScript([](ByteView datagram) -> std::optional<std::vector<Bytes>> {
    if (CommandOf(datagram) != command::kForceIp) return AsUsual();
    return std::vector<Bytes>{};
  });
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(SetCameraIP("S", kIp, kMask, kGateway, false), GEV_IP_NO_ANSWER);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(3500));
}

TEST(SetCameraIp, WithoutMacAddressNoCameraCanBeMeant) {
  auto identity = LoopbackIdentity(2, "S");
  identity.mac = {};
  const ScriptedDevice device(identity);
  EXPECT_EQ(SetCameraIP("S", kIp, kMask, kGateway, false), GEV_IP_NO_ANSWER);
  EXPECT_TRUE(device.Commands(command::kForceIp).empty());
}

class StoringFails : public testing::TestWithParam<std::uint32_t> {};

TEST_P(StoringFails, TheAddressIsInForceButNotPersistent) {
  ScriptedDevice device(LoopbackIdentity(2, "S"));
  device.SetScript([](ByteView datagram) -> std::optional<std::vector<Bytes>> {
    if (CommandOf(datagram) != command::kWriteRegister) return AsUsual();
    if ((datagram[10] << 8 | datagram[11]) != static_cast<int>(GetParam())) return AsUsual();
    return std::vector<Bytes>{MakeAck(datagram, zyn::gige::status::kWriteProtect, {})};
  });
  EXPECT_EQ(SetCameraIP("S", kIp, kMask, kGateway, true), GEV_IP_NOT_PERSISTENT);
  EXPECT_EQ(device.Identity().ip, kIpValue);
  EXPECT_EQ(device.Register(bootstrap::kControlPrivilege), 0U);
}

INSTANTIATE_TEST_SUITE_P(EachRegister, StoringFails,
                         testing::Values(bootstrap::kControlPrivilege, bootstrap::kPersistentIp,
                                         bootstrap::kPersistentMask, bootstrap::kPersistentGateway,
                                         bootstrap::kIpConfiguration));

TEST(SetCameraIp, AWriteThatDoesNotStickIsNoticed) {
  ScriptedDevice device(LoopbackIdentity(2, "S"));
  device.SetScript([](ByteView datagram) -> std::optional<std::vector<Bytes>> {
    if (CommandOf(datagram) != command::kWriteRegister || datagram[10] != 0x06) return AsUsual();
    return std::vector<Bytes>{MakeAck(datagram, 0, {0, 0, 0, 1})};  // acknowledged, yet not done
  });
  EXPECT_EQ(SetCameraIP("S", kIp, kMask, kGateway, true), GEV_IP_NOT_PERSISTENT);
}

}  // namespace
