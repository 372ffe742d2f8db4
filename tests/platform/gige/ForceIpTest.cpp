#include "gige/ForceIp.h"

#include <gtest/gtest.h>

#include "ScriptedDevice.h"

namespace zyn::gige {
namespace {

using std::chrono::milliseconds;
using test::CommandOf;
using test::LoopbackIdentity;
using test::MakeAck;
using test::ScriptedDevice;

const IpSettings kNew{Ipv4{0x7F000032}, Ipv4{0xFFFF0000}, Ipv4{0x7F000001}};

Adapter Loopback() {
  for (const Adapter& adapter : ListAdapters()) {
    if (adapter.name == "lo") return adapter;
  }
  return {};
}

TEST(ForceIp, IsConfirmedByTheCameraAtItsNewAddress) {
  const auto identity = LoopbackIdentity(2, "S");
  const ScriptedDevice device(identity);
  EXPECT_EQ(ForceIp(Loopback(), identity.mac, kNew, milliseconds(2000)), ForceIpResult::confirmed);
  EXPECT_EQ(device.Identity().ip, kNew.ip);
  EXPECT_EQ(device.Identity().mask, kNew.mask);
  EXPECT_EQ(device.Identity().gateway, kNew.gateway);
}

TEST(ForceIp, LeavesOtherCamerasAlone) {
  const ScriptedDevice other(LoopbackIdentity(3, "OTHER"));
  EXPECT_EQ(ForceIp(Loopback(), LoopbackIdentity(2, "").mac, kNew, milliseconds(150)),
            ForceIpResult::noAnswer);
  EXPECT_EQ(other.Identity().ip, LoopbackIdentity(3, "").ip);
}

TEST(ForceIp, IsSentAgainWhenItIsLost) {
  const auto identity = LoopbackIdentity(2, "S");
  ScriptedDevice device(identity);
  device.SetScript([seen = 0](ByteView command) mutable -> std::optional<std::vector<Bytes>> {
    if (CommandOf(command) == command::kForceIp && seen++ == 0) return std::vector<Bytes>{};
    return std::nullopt;
  });
  EXPECT_EQ(ForceIp(Loopback(), identity.mac, kNew, milliseconds(2000)), ForceIpResult::confirmed);
  EXPECT_EQ(device.Commands(command::kForceIp).size(), 2U);
}

TEST(ForceIp, RefusalIsReportedBeforeThePatienceEnds) {
  const auto identity = LoopbackIdentity(2, "S");
  ScriptedDevice device(identity);
  device.SetScript([](ByteView command) -> std::optional<std::vector<Bytes>> {
    if (CommandOf(command) != command::kForceIp) return std::nullopt;
    return std::vector<Bytes>{MakeAck(command, status::kInvalidParameter, {})};
  });
  EXPECT_EQ(ForceIp(Loopback(), identity.mac, kNew, milliseconds(60'000)), ForceIpResult::refused);
}

TEST(ForceIp, AnAcknowledgeWithoutTheNewAddressIsNoSuccess) {
  const auto identity = LoopbackIdentity(2, "S");
  ScriptedDevice device(identity);
  device.SetScript([](ByteView command) -> std::optional<std::vector<Bytes>> {
    if (CommandOf(command) != command::kForceIp) return std::nullopt;
    return std::vector<Bytes>{MakeAck(command, status::kSuccess, {})};
  });
  EXPECT_EQ(ForceIp(Loopback(), identity.mac, kNew, milliseconds(700)), ForceIpResult::noAnswer);
}

TEST(ForceIp, ReachesACameraOfAForeignSubnet) {
  auto identity = LoopbackIdentity(2, "S");
  identity.ip = *ParseIpv4("10.99.1.2");
  const ScriptedDevice device(identity);
  EXPECT_EQ(ForceIp(Loopback(), identity.mac, kNew, milliseconds(2000)), ForceIpResult::confirmed);
}

}  // namespace
}  // namespace zyn::gige
