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

// What a camera has stored before a test.
constexpr std::uint32_t kOldIp = 0x0A000007;
constexpr std::uint32_t kOldMask = 0xFF000000;
constexpr std::uint32_t kOldGateway = 0x0A000001;
constexpr std::uint32_t kOldMethods = 6;

void StoreOldAddress(ScriptedDevice& device) {
  device.SetRegister(bootstrap::kPersistentIp, kOldIp);
  device.SetRegister(bootstrap::kPersistentMask, kOldMask);
  device.SetRegister(bootstrap::kPersistentGateway, kOldGateway);
  device.SetRegister(bootstrap::kIpConfiguration, kOldMethods);
}

void ExpectOldAddressStored(const ScriptedDevice& device) {
  EXPECT_EQ(device.Register(bootstrap::kPersistentIp), kOldIp);
  EXPECT_EQ(device.Register(bootstrap::kPersistentMask), kOldMask);
  EXPECT_EQ(device.Register(bootstrap::kPersistentGateway), kOldGateway);
  EXPECT_EQ(device.Register(bootstrap::kIpConfiguration), kOldMethods);
  EXPECT_EQ(device.Register(bootstrap::kControlPrivilege), 0U) << "control is given back";
}

// Refuses all but the first `granted` FORCEIP commands.
ScriptedDevice::Script RefuseForceIpAfter(int granted) {
  return [granted](ByteView datagram) mutable -> std::optional<std::vector<Bytes>> {
    if (CommandOf(datagram) != command::kForceIp || granted-- > 0) return AsUsual();
    return std::vector<Bytes>{MakeAck(datagram, zyn::gige::status::kInvalidParameter, {})};
  };
}

ScriptedDevice::Script RefuseWritesTo(std::uint32_t address, std::uint16_t status) {
  return [=](ByteView datagram) -> std::optional<std::vector<Bytes>> {
    if (CommandOf(datagram) != command::kWriteRegister) return AsUsual();
    if ((datagram[10] << 8 | datagram[11]) != static_cast<int>(address)) return AsUsual();
    return std::vector<Bytes>{MakeAck(datagram, status, {})};
  };
}

zyn::test::DeviceIdentity ForeignIdentity() {
  auto identity = LoopbackIdentity(2, "FAR");
  identity.ip = Ipv4{0xC0A80909};
  identity.mask = Ipv4{0xFFFFFF00};
  identity.gateway = Ipv4{0xC0A80901};
  return identity;
}

const char* const kForeignIp = "10.9.8.7";
constexpr std::uint32_t kForeignIpValue = 0x0A090807;

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

TEST(SetCameraIp, ACameraWithoutASerialNumberGoesByItsMacAddress) {
  const ScriptedDevice unnamed(LoopbackIdentity(4, ""));
  const ScriptedDevice named(LoopbackIdentity(5, "NAMED"));
  EXPECT_EQ(SetCameraIP(ToText(named.Identity().mac), kIp, kMask, kGateway, false), GEV_IP_NOT_FOUND);
  EXPECT_EQ(SetCameraIP(ToText(unnamed.Identity().mac), kIp, kMask, kGateway, false), GEV_IP_OK);
  EXPECT_EQ(unnamed.Identity().ip, kIpValue);
  EXPECT_EQ(named.Identity().ip, LoopbackIdentity(5, "").ip);
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

class StoringFails : public testing::TestWithParam<std::uint32_t> {
 protected:
  StoringFails() {
    StoreOldAddress(device_);
    device_.SetScript(RefuseWritesTo(GetParam(), zyn::gige::status::kWriteProtect));
  }

  ScriptedDevice device_{LoopbackIdentity(2, "S")};
};

TEST_P(StoringFails, TheAddressIsInForceAndTheOldOneStaysStored) {
  EXPECT_EQ(SetCameraIP("S", kIp, kMask, kGateway, true), GEV_IP_NOT_PERSISTENT);
  EXPECT_EQ(device_.Identity().ip, kIpValue);
  ExpectOldAddressStored(device_);
}

TEST_P(StoringFails, ACameraAboutToLeaveTheNetworkStaysAsItWas) {
  EXPECT_EQ(SetCameraIP("S", kForeignIp, kMask, "0.0.0.0", true), GEV_IP_NOT_STORED);
  EXPECT_TRUE(device_.Commands(command::kForceIp).empty());
  ExpectOldAddressStored(device_);
}

INSTANTIATE_TEST_SUITE_P(EachRegister, StoringFails,
                         testing::Values(bootstrap::kControlPrivilege, bootstrap::kPersistentIp,
                                         bootstrap::kPersistentMask, bootstrap::kPersistentGateway,
                                         bootstrap::kIpConfiguration));

TEST(SetCameraIp, WhoLosesTheRaceForControlIsToldThatTheCameraIsInUse) {
  ScriptedDevice device(LoopbackIdentity(2, "S"));
  device.SetScript(RefuseWritesTo(bootstrap::kControlPrivilege, zyn::gige::status::kAccessDenied));
  EXPECT_EQ(SetCameraIP("S", kForeignIp, kMask, "0.0.0.0", true), GEV_IP_IN_USE);
  EXPECT_TRUE(device.Commands(command::kForceIp).empty());
}

TEST(SetCameraIp, WhatWasStoredForANetworkThatTheCameraRefusesIsTakenBack) {
  ScriptedDevice device(LoopbackIdentity(2, "S"));
  StoreOldAddress(device);
  device.SetScript(RefuseForceIpAfter(0));
  EXPECT_EQ(SetCameraIP("S", kForeignIp, kMask, "0.0.0.0", true), GEV_IP_REFUSED);
  EXPECT_FALSE(device.Commands(command::kWriteRegister).empty()) << "it was stored first";
  ExpectOldAddressStored(device);
  EXPECT_EQ(device.Identity().ip, LoopbackIdentity(2, "").ip);
}

TEST(SetCameraIp, ACameraThatVanishesAfterStoringIsReportedAsHalfDone) {
  ScriptedDevice device(LoopbackIdentity(2, "S"));
  device.SetScript([isGone = false](ByteView datagram) mutable -> std::optional<std::vector<Bytes>> {
    isGone = isGone || CommandOf(datagram) == command::kForceIp;
    return isGone ? std::optional<std::vector<Bytes>>(std::vector<Bytes>{}) : AsUsual();
  });
  EXPECT_EQ(SetCameraIP("S", kForeignIp, kMask, "0.0.0.0", true), GEV_IP_HALF_DONE);
  EXPECT_EQ(device.Register(bootstrap::kPersistentIp), kForeignIpValue);
}

TEST(SetCameraIp, ACameraBetweenTwoForeignNetworksStoresTheAddressOnTheWay) {
  const ScriptedDevice device(ForeignIdentity());
  EXPECT_EQ(SetCameraIP("FAR", kForeignIp, kMask, "10.9.8.1", true), GEV_IP_OK);
  EXPECT_EQ(device.Identity().ip, Ipv4{kForeignIpValue});
  EXPECT_EQ(device.Register(bootstrap::kPersistentIp), kForeignIpValue);
  EXPECT_EQ(device.Register(bootstrap::kPersistentMask), kMaskValue.value);
  EXPECT_EQ(device.Register(bootstrap::kPersistentGateway), 0x0A090801U);
  EXPECT_EQ(device.Register(bootstrap::kIpConfiguration), 5U);
  const auto forced = device.Commands(command::kForceIp);
  ASSERT_EQ(forced.size(), 2U);
  EXPECT_EQ(forced[0][8 + 20], 127) << "first an address of the adapter's network";
}

TEST(SetCameraIp, TheAddressOnTheWayIsNoOtherCameras) {
  auto neighbour = LoopbackIdentity(3, "OTHER");
  neighbour.ip = Ipv4{0x7FFFFFFE};
  neighbour.gateway = Ipv4{0x7FFFFFFD};
  const ScriptedDevice other(neighbour);
  const ScriptedDevice device(ForeignIdentity());
  EXPECT_EQ(SetCameraIP("FAR", kForeignIp, kMask, "0.0.0.0", true), GEV_IP_OK);
  const auto forced = device.Commands(command::kForceIp);
  ASSERT_FALSE(forced.empty());
  EXPECT_EQ(forced[0][8 + 23], 0xFC);
}

TEST(SetCameraIp, AForeignCameraThatCannotStoreGoesBack) {
  ScriptedDevice device(ForeignIdentity());
  StoreOldAddress(device);
  device.SetScript(RefuseWritesTo(bootstrap::kPersistentMask, zyn::gige::status::kWriteProtect));
  EXPECT_EQ(SetCameraIP("FAR", kForeignIp, kMask, "0.0.0.0", true), GEV_IP_NOT_STORED);
  EXPECT_EQ(device.Identity().ip, ForeignIdentity().ip);
  EXPECT_EQ(device.Identity().gateway, ForeignIdentity().gateway);
  ExpectOldAddressStored(device);
}

TEST(SetCameraIp, AForeignCameraThatRefusesTheAddressOnTheWayKeepsWhatItHas) {
  ScriptedDevice device(ForeignIdentity());
  device.SetScript(RefuseForceIpAfter(0));
  EXPECT_EQ(SetCameraIP("FAR", kForeignIp, kMask, "0.0.0.0", true), GEV_IP_REFUSED);
  EXPECT_EQ(device.Identity().ip, ForeignIdentity().ip);
  EXPECT_TRUE(device.Commands(command::kWriteRegister).empty());
}

TEST(SetCameraIp, AForeignCameraThatRefusesTheNewAddressAndTheWayBackIsHalfDone) {
  ScriptedDevice device(ForeignIdentity());
  StoreOldAddress(device);
  device.SetScript(RefuseForceIpAfter(1));
  EXPECT_EQ(SetCameraIP("FAR", kForeignIp, kMask, "0.0.0.0", true), GEV_IP_HALF_DONE);
  ExpectOldAddressStored(device);
}

TEST(SetCameraIp, AForeignCameraThatRefusesTheNewAddressOnlyGoesBack) {
  ScriptedDevice device(ForeignIdentity());
  StoreOldAddress(device);
  device.SetScript([](ByteView datagram) -> std::optional<std::vector<Bytes>> {
    const bool isToNewAddress = CommandOf(datagram) == command::kForceIp && datagram[8 + 20] == 10;
    if (!isToNewAddress) return AsUsual();
    return std::vector<Bytes>{MakeAck(datagram, zyn::gige::status::kInvalidParameter, {})};
  });
  EXPECT_EQ(SetCameraIP("FAR", kForeignIp, kMask, "0.0.0.0", true), GEV_IP_REFUSED);
  EXPECT_EQ(device.Identity().ip, ForeignIdentity().ip);
  ExpectOldAddressStored(device);
}

TEST(SetCameraIp, AnErrorOfAnotherCameraIsNoRefusal) {
  ScriptedDevice other(LoopbackIdentity(3, "OTHER"));
  other.SetScript([](ByteView datagram) -> std::optional<std::vector<Bytes>> {
    if (CommandOf(datagram) != command::kForceIp) return AsUsual();
    return std::vector<Bytes>{MakeAck(datagram, zyn::gige::status::kNotImplemented, {})};
  });
  const ScriptedDevice device(LoopbackIdentity(2, "S"));
  EXPECT_EQ(SetCameraIP("S", kIp, kMask, kGateway, false), GEV_IP_OK);
}

TEST(SetCameraIp, AWriteThatDoesNotStickIsNoticed) {
  ScriptedDevice device(LoopbackIdentity(2, "S"));
  device.SetScript([](ByteView datagram) -> std::optional<std::vector<Bytes>> {
    if (CommandOf(datagram) != command::kWriteRegister || datagram[10] != 0x06) return AsUsual();
    return std::vector<Bytes>{MakeAck(datagram, 0, {0, 0, 0, 1})};  // acknowledged, yet not done
  });
  EXPECT_EQ(SetCameraIP("S", kIp, kMask, kGateway, true), GEV_IP_NOT_PERSISTENT);
}

}  // namespace
