#include "gige/Discovery.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "ScriptedDevice.h"

namespace zyn::gige {
namespace {

using test::CommandOf;
using test::DeviceIdentity;
using test::DiscoveryPayload;
using test::LoopbackIdentity;
using test::MakeAck;
using test::ScriptedDevice;

const DiscoveredDevice* Find(const std::vector<DiscoveredDevice>& devices, const std::string& serial) {
  const auto found = std::find_if(devices.begin(), devices.end(),
                                  [&](const DiscoveredDevice& d) { return d.description.serial == serial; });
  return found == devices.end() ? nullptr : &*found;
}

TEST(Discovery, ListsTheLoopbackAdapter) {
  const auto adapters = ListAdapters();
  const auto loopback = std::find_if(adapters.begin(), adapters.end(),
                                     [](const Adapter& a) { return IsLoopback(a.addresses.front().ip); });
  ASSERT_NE(loopback, adapters.end());
  EXPECT_EQ(loopback->name, "lo");
  EXPECT_GT(loopback->index, 0U);
  EXPECT_EQ(loopback->addresses.front().mask, Ipv4{0xFF000000});
  EXPECT_EQ(loopback->addresses.front().broadcast, Ipv4{0x7FFFFFFF});
}

TEST(Discovery, FindsNothingOnAnEmptyNetworkWithinItsTime) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(Discover().empty());
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(250));
}

TEST(Discovery, ReportsEveryField) {
  DeviceIdentity identity = LoopbackIdentity(7, "SER-7");
  const ScriptedDevice device(identity);
  const auto devices = Discover();
  ASSERT_EQ(devices.size(), 1U);
  const DiscoveredDevice& found = devices.front();
  EXPECT_EQ(found.description.versionMajor, 2);
  EXPECT_EQ(found.description.versionMinor, 0);
  EXPECT_EQ(found.description.mac, identity.mac);
  EXPECT_EQ(found.description.ipConfiguration, 6U);
  EXPECT_EQ(found.description.ip, identity.ip);
  EXPECT_EQ(found.description.mask, identity.mask);
  EXPECT_EQ(found.description.gateway, identity.gateway);
  EXPECT_EQ(found.description.manufacturer, identity.manufacturer);
  EXPECT_EQ(found.description.model, identity.model);
  EXPECT_EQ(found.description.version, identity.version);
  EXPECT_EQ(found.description.manufacturerInfo, identity.info);
  EXPECT_EQ(found.description.serial, identity.serial);
  EXPECT_EQ(found.description.userName, identity.userName);
  EXPECT_EQ(found.adapterName, "lo");
  EXPECT_EQ(found.adapter.ip, Ipv4{0x7F000001});
  EXPECT_EQ(found.adapter.mask, Ipv4{0xFF000000});
  EXPECT_EQ(found.control, ControlState::free);
}

TEST(Discovery, FindsManyCamerasWithinItsTime) {
  std::vector<std::unique_ptr<ScriptedDevice>> devices;
  for (std::uint8_t host = 2; host < 22; ++host) {
    devices.push_back(std::make_unique<ScriptedDevice>(LoopbackIdentity(host, "M" + std::to_string(host))));
  }
  const auto start = std::chrono::steady_clock::now();
  const auto found = Discover();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(250));
  EXPECT_EQ(found.size(), devices.size());
}

TEST(Discovery, SeesWhoIsControlled) {
  ScriptedDevice controlled(LoopbackIdentity(2, "CONTROLLED"));
  controlled.SetRegister(bootstrap::kControlPrivilege, kControlAccess);
  ScriptedDevice exclusive(LoopbackIdentity(3, "EXCLUSIVE"));
  exclusive.SetScript([](ByteView command) -> std::optional<std::vector<Bytes>> {
    if (CommandOf(command) != command::kReadRegister) return std::nullopt;
    return std::vector<Bytes>{MakeAck(command, status::kAccessDenied, {})};
  });
  ScriptedDevice silent(LoopbackIdentity(4, "SILENT"));
  silent.SetScript([](ByteView command) -> std::optional<std::vector<Bytes>> {
    if (CommandOf(command) != command::kReadRegister) return std::nullopt;
    return std::vector<Bytes>{};
  });
  const auto start = std::chrono::steady_clock::now();
  const auto devices = Discover();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(250));
  ASSERT_EQ(devices.size(), 3U);
  EXPECT_EQ(Find(devices, "CONTROLLED")->control, ControlState::controlled);
  EXPECT_EQ(Find(devices, "EXCLUSIVE")->control, ControlState::controlled);
  EXPECT_EQ(Find(devices, "SILENT")->control, ControlState::unknown);
  EXPECT_LE(silent.Commands(command::kReadRegister).size(), 3U) << "questions are bounded";
}

TEST(Discovery, AsksAgainWhenTheQuestionIsLost) {
  ScriptedDevice device(LoopbackIdentity(2, "LOSSY"));
  device.SetScript([seen = 0](ByteView command) mutable -> std::optional<std::vector<Bytes>> {
    if (CommandOf(command) == command::kReadRegister && seen++ == 0) return std::vector<Bytes>{};
    return std::nullopt;
  });
  const auto devices = Discover();
  ASSERT_EQ(devices.size(), 1U);
  EXPECT_EQ(devices.front().control, ControlState::free);
}

TEST(Discovery, IncludesCamerasOfForeignSubnets) {
  DeviceIdentity identity = LoopbackIdentity(9, "FOREIGN");
  identity.ip = *ParseIpv4("192.168.9.9");
  identity.mask = *ParseIpv4("255.255.255.0");
  const ScriptedDevice device(identity);
  const auto devices = Discover();
  ASSERT_EQ(devices.size(), 1U);
  EXPECT_EQ(devices.front().description.ip, identity.ip);
  EXPECT_EQ(devices.front().adapterName, "lo");
  EXPECT_EQ(devices.front().control, ControlState::outOfReach);
  EXPECT_TRUE(device.Commands(command::kReadRegister).empty()) << "it cannot be asked";
}

TEST(Discovery, MergesRepeatedAnswersAndKeepsCamerasApart) {
  const DeviceIdentity first = LoopbackIdentity(2, "A");
  const DeviceIdentity sameSerialOtherMac = [] {
    DeviceIdentity identity = LoopbackIdentity(3, "A");
    return identity;
  }();
  DeviceIdentity noMac = LoopbackIdentity(4, "B");
  noMac.mac = {};
  DeviceIdentity noMacEither = LoopbackIdentity(5, "B");
  noMacEither.mac = {};
  ScriptedDevice device(first);
  device.SetScript([&](ByteView command) -> std::optional<std::vector<Bytes>> {
    if (CommandOf(command) != command::kDiscovery) return std::nullopt;
    std::vector<Bytes> answers;
    for (int i = 0; i < 3; ++i) {
      for (const DeviceIdentity& identity : {first, sameSerialOtherMac, noMac, noMacEither}) {
        answers.push_back(MakeAck(command, 0, DiscoveryPayload(identity)));
      }
    }
    return answers;
  });
  EXPECT_EQ(Discover().size(), 4U);
}

TEST(Discovery, TakesTheNewerAddressOfACameraThatChangesIt) {
  DeviceIdentity identity = LoopbackIdentity(2, "MOVING");
  ScriptedDevice device(identity);
  device.SetScript([identity](ByteView command) mutable -> std::optional<std::vector<Bytes>> {
    if (CommandOf(command) != command::kDiscovery) return std::nullopt;
    const Bytes before = MakeAck(command, 0, DiscoveryPayload(identity));
    identity.ip = Ipv4{0x7F000042};
    return std::vector<Bytes>{before, MakeAck(command, 0, DiscoveryPayload(identity))};
  });
  const auto devices = Discover();
  ASSERT_EQ(devices.size(), 1U);
  EXPECT_EQ(devices.front().description.ip, Ipv4{0x7F000042});
}

TEST(Discovery, DropsMalformedAnswers) {
  struct Row {
    const char* name;
    Bytes (*make)(ByteView command, const DeviceIdentity& identity);
  };
  const Row rows[] = {
      {"empty", [](ByteView, const DeviceIdentity&) { return Bytes{}; }},
      {"one byte", [](ByteView, const DeviceIdentity&) { return Bytes{0}; }},
      {"header only", [](ByteView c, const DeviceIdentity&) { return MakeAck(c, 0, {}); }},
      {"one byte short",
       [](ByteView c, const DeviceIdentity& i) {
         Bytes payload = DiscoveryPayload(i);
         payload.pop_back();
         return MakeAck(c, 0, payload);
       }},
      {"cut behind its length field",
       [](ByteView c, const DeviceIdentity& i) {
         Bytes ack = MakeAck(c, 0, DiscoveryPayload(i));
         ack.resize(100);
         return ack;
       }},
      {"error status",
       [](ByteView c, const DeviceIdentity& i) { return MakeAck(c, 0x8006, DiscoveryPayload(i)); }},
      {"another request",
       [](ByteView c, const DeviceIdentity& i) {
         Bytes ack = MakeAck(c, 0, DiscoveryPayload(i));
         ack[6] = 0;
         ack[7] = 1;
         return ack;
       }},
      {"request zero",
       [](ByteView c, const DeviceIdentity& i) {
         Bytes ack = MakeAck(c, 0, DiscoveryPayload(i));
         ack[6] = ack[7] = 0;
         return ack;
       }},
      {"another acknowledge",
       [](ByteView c, const DeviceIdentity& i) {
         Bytes ack = MakeAck(c, 0, DiscoveryPayload(i));
         ack[3] = 0x81;
         return ack;
       }},
      {"the command itself", [](ByteView c, const DeviceIdentity&) { return Bytes(c.begin(), c.end()); }},
      {"larger than any datagram of this protocol",
       [](ByteView, const DeviceIdentity&) { return Bytes(9000, 0xFF); }},
      {"no address",
       [](ByteView c, const DeviceIdentity& i) {
         DeviceIdentity none = i;
         none.ip = kNoAddress;
         return MakeAck(c, 0, DiscoveryPayload(none));
       }},
  };
  const DeviceIdentity good = LoopbackIdentity(2, "GOOD");
  const DeviceIdentity bad = LoopbackIdentity(3, "BAD");
  for (const Row& row : rows) {
    ScriptedDevice device(good);
    device.SetScript([&](ByteView command) -> std::optional<std::vector<Bytes>> {
      if (CommandOf(command) != command::kDiscovery) return std::nullopt;
      return std::vector<Bytes>{row.make(command, bad), MakeAck(command, 0, DiscoveryPayload(good))};
    });
    const auto devices = Discover();
    ASSERT_EQ(devices.size(), 1U) << row.name;
    EXPECT_EQ(devices.front().description.serial, "GOOD") << row.name;
  }
}

TEST(Discovery, AFloodOfForgedCamerasEndsInTime) {
  ScriptedDevice device(LoopbackIdentity(2, "FLOOD"));
  device.SetScript([](ByteView command) -> std::optional<std::vector<Bytes>> {
    if (CommandOf(command) != command::kDiscovery) return std::nullopt;
    std::vector<Bytes> answers;
    DeviceIdentity identity = LoopbackIdentity(2, "");
    for (int i = 0; i < 6000; ++i) {
      identity.serial = std::to_string(i);
      answers.push_back(MakeAck(command, 0, DiscoveryPayload(identity)));
    }
    return answers;
  });
  const auto start = std::chrono::steady_clock::now();
  EXPECT_LE(Discover().size(), 4096U);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

}  // namespace
}  // namespace zyn::gige
