#include "gige/Address.h"

#include <gtest/gtest.h>

#include "gige/Adapter.h"

namespace zyn::gige {
namespace {

TEST(Address, DottedDecimalIsReadStrictly) {
  const struct {
    const char* text;
    std::optional<Ipv4> address;
  } rows[] = {
      {"192.168.77.50", Ipv4{0xC0A84D32}},
      {"0.0.0.0", Ipv4{0}},
      {"255.255.255.255", Ipv4{0xFFFFFFFF}},
      {"010.001.000.009", Ipv4{0x0A010009}},  // decimal, not octal
      {"", std::nullopt},
      {"1.2.3", std::nullopt},
      {"1.2.3.", std::nullopt},
      {"1.2.3.4.", std::nullopt},
      {"1.2.3.4.5", std::nullopt},
      {"1.2.3.256", std::nullopt},
      {"1.2.3.0256", std::nullopt},
      {" 1.2.3.4", std::nullopt},
      {"1.2.3.4 ", std::nullopt},
      {"1..3.4", std::nullopt},
      {"-1.2.3.4", std::nullopt},
      {"a.b.c.d", std::nullopt},
      {"1,2,3,4", std::nullopt},
      {"99999999999.1.1.1", std::nullopt},
  };
  for (const auto& row : rows) EXPECT_EQ(ParseIpv4(row.text), row.address) << row.text;
}

TEST(Address, TextsReadBack) {
  EXPECT_EQ(ToText(Ipv4{0xC0A84D32}), "192.168.77.50");
  EXPECT_EQ(ToText(MacAddress{{0x02, 0x11, 0x22, 0xAA, 0xBB, 0x0C}}), "02:11:22:AA:BB:0C");
}

TEST(Address, MasksAreLeadingOnes) {
  EXPECT_TRUE(IsSubnetMask(Ipv4{0xFFFFFF00}));
  EXPECT_TRUE(IsSubnetMask(Ipv4{0x80000000}));
  EXPECT_TRUE(IsSubnetMask(Ipv4{0xFFFFFFFF}));
  EXPECT_FALSE(IsSubnetMask(Ipv4{0}));
  EXPECT_FALSE(IsSubnetMask(Ipv4{0xFF00FF00}));
  EXPECT_FALSE(IsSubnetMask(Ipv4{0x000000FF}));
}

TEST(Address, HostAddressesExcludeNetworkBroadcastAndMulticast) {
  const struct {
    const char* ip;
    const char* mask;
    bool isHost;
  } rows[] = {
      {"192.168.1.50", "255.255.255.0", true},   {"192.168.1.0", "255.255.255.0", false},
      {"192.168.1.255", "255.255.255.0", false}, {"192.168.1.255", "255.255.0.0", true},
      {"10.0.0.1", "255.255.255.254", true},     {"224.0.0.1", "255.255.255.0", false},
      {"255.255.255.255", "255.0.0.0", false},   {"0.0.0.5", "255.255.255.0", false},
      {"127.0.0.9", "255.0.0.0", true},          {"10.0.0.1", "255.0.255.0", false},
  };
  for (const auto& row : rows)
    EXPECT_EQ(IsHostAddress(*ParseIpv4(row.ip), *ParseIpv4(row.mask)), row.isHost) << row.ip;
}

TEST(Adapter, PrefersTheAddressInTheDevicesSubnet) {
  Adapter adapter;
  adapter.addresses = {{Ipv4{0x0A000001}, Ipv4{0xFF000000}, {}}, {Ipv4{0xC0A80101}, Ipv4{0xFFFFFF00}, {}}};
  EXPECT_EQ(adapter.AddressFor(Ipv4{0xC0A80150}), &adapter.addresses[1]);
  EXPECT_EQ(adapter.AddressFor(Ipv4{0xC0A90150}), nullptr);
  EXPECT_EQ(&adapter.ClosestAddress(Ipv4{0xC0A90150}), &adapter.addresses[0]);
}

}  // namespace
}  // namespace zyn::gige
