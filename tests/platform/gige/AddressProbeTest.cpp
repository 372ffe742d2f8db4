#include "gige/AddressProbe.h"

#include <gtest/gtest.h>

#include <sstream>

#include "ScriptedDevice.h"

namespace zyn::gige {
namespace {

using std::chrono::milliseconds;

constexpr Ipv4 kHost{0x7F000001};
const char* const kTable =
    "IP address       HW type     Flags       HW address            Mask     Device\n"
    "192.168.77.50    0x1         0x2         02:5a:c0:a8:4d:32     *        eth1\n"
    "192.168.77.51    0x1         0x0         00:00:00:00:00:00     *        eth1\n"
    "192.168.77.52    0x1         0x6         02:5a:c0:a8:4d:34     *        eth2\n"
    "192.168.77.5\n";

TEST(AddressProbe, OnlyCompleteEntriesOfTheAdapterAreNeighbours) {
  const struct {
    const char* address;
    const char* adapter;
    bool isNeighbour;
  } rows[] = {{"192.168.77.50", "eth1", true},  {"192.168.77.50", "eth2", false},
              {"192.168.77.51", "eth1", false}, {"192.168.77.52", "eth2", true},
              {"192.168.77.5", "eth1", false},  {"192.168.77.99", "eth1", false}};
  for (const auto& row : rows) {
    std::istringstream table(kTable);
    EXPECT_EQ(IsNeighbour(table, row.adapter, *ParseIpv4(row.address)), row.isNeighbour)
        << row.address << " " << row.adapter;
  }
  std::istringstream nothing;
  EXPECT_FALSE(IsNeighbour(nothing, "eth1", *ParseIpv4("192.168.77.50")));
}

TEST(AddressProbe, AnAnswerIsASignOfLife) {
  const test::ScriptedDevice device(test::LoopbackIdentity(2, "S"));
  EXPECT_TRUE(IsAddressInUse(ListAdapters().at(0), kHost, device.Identity().ip, milliseconds(10'000)));
}

TEST(AddressProbe, ARefusalIsASignOfLifeToo) {
  EXPECT_TRUE(IsAddressInUse(ListAdapters().at(0), kHost, {0x7F000009}, milliseconds(10'000)));
}

TEST(AddressProbe, ADeviceThatSaysNothingAndHasNoNeighbourEntryIsNotNoticed) {
  test::ScriptedDevice device(test::LoopbackIdentity(2, "S"));
  device.SetScript([](ByteView) { return std::vector<Bytes>{}; });
  EXPECT_FALSE(IsAddressInUse(ListAdapters().at(0), kHost, device.Identity().ip, milliseconds(50)));
}

}  // namespace
}  // namespace zyn::gige
