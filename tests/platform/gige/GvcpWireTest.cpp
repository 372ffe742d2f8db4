#include "gige/GvcpWire.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zyn::gige {
namespace {

TEST(GvcpWire, CommandsAreTheBytesThatDevicesExpect) {
  EXPECT_EQ(EncodeDiscovery(0xFFFF, false), (Bytes{0x42, 0x01, 0x00, 0x02, 0, 0, 0xFF, 0xFF}));
  EXPECT_EQ(EncodeDiscovery(0xFFFF, true), (Bytes{0x42, 0x11, 0x00, 0x02, 0, 0, 0xFF, 0xFF}));
  EXPECT_EQ(EncodeReadRegister(1, 0x0A00), (Bytes{0x42, 1, 0, 0x80, 0, 4, 0, 1, 0, 0, 0x0A, 0}));
  EXPECT_EQ(EncodeWriteRegister(2, 0x0A00, 2),
            (Bytes{0x42, 1, 0, 0x82, 0, 8, 0, 2, 0, 0, 0x0A, 0, 0, 0, 0, 2}));
  EXPECT_EQ(EncodeReadMemory(3, 0x200, 512), (Bytes{0x42, 1, 0, 0x84, 0, 8, 0, 3, 0, 0, 2, 0, 0, 0, 2, 0}));
  const Bytes data{1, 2, 3, 4};
  EXPECT_EQ(EncodeWriteMemory(4, 0xD04, data),
            (Bytes{0x42, 1, 0, 0x86, 0, 8, 0, 4, 0, 0, 0x0D, 4, 1, 2, 3, 4}));
}

TEST(GvcpWire, ForceIpCarriesMacAddressMaskAndGatewayAtTheirPlaces) {
  const Bytes bytes = EncodeForceIp(0x1234, MacAddress{{0x02, 0x11, 0x22, 0x33, 0x44, 0x55}},
                                    Ipv4{0xC0A84D32}, Ipv4{0xFFFFFF00}, Ipv4{0xC0A84DFE});
  Bytes expected{0x42, 0x11, 0x00, 0x04, 0x00, 0x38, 0x12, 0x34,
                 0x00, 0x00, 0x02, 0x11, 0x22, 0x33, 0x44, 0x55};
  expected.resize(expected.size() + 12);
  expected.insert(expected.end(), {0xC0, 0xA8, 0x4D, 0x32});
  expected.resize(expected.size() + 12);
  expected.insert(expected.end(), {0xFF, 0xFF, 0xFF, 0x00});
  expected.resize(expected.size() + 12);
  expected.insert(expected.end(), {0xC0, 0xA8, 0x4D, 0xFE});
  EXPECT_EQ(bytes, expected);
}

TEST(GvcpWire, OnlyAcknowledgesAreParsed) {
  const struct {
    const char* name;
    Bytes datagram;
    bool isAck;
  } rows[] = {
      {"empty", {}, false},
      {"shorter than a header", {0, 0, 0, 3, 0, 0, 0}, false},
      {"no payload", {0, 0, 0, 5, 0, 0, 1, 2}, true},
      {"error status", {0x80, 6, 0, 0x83, 0, 0, 0, 2}, true},
      {"generic error status", {0x8F, 0xFF, 0, 0x83, 0, 0, 0, 2}, true},
      {"a command", {0x42, 1, 0, 2, 0, 0, 0xFF, 0xFF}, false},
      {"payload shorter than announced", {0, 0, 0, 0x81, 0, 4, 0, 1, 0, 0, 0}, false},
      {"announced length enormous", {0, 0, 0, 0x81, 0xFF, 0xFF, 0, 1, 0, 0, 0, 0}, false},
      {"bytes beyond the announced length", {0, 0, 0, 0x81, 0, 4, 0, 1, 0, 0, 0, 2, 9, 9}, true},
  };
  for (const auto& row : rows) EXPECT_EQ(ParseAck(row.datagram).has_value(), row.isAck) << row.name;
}

TEST(GvcpWire, AcknowledgeFieldsAreRead) {
  const Bytes datagram{0x80, 0x06, 0x00, 0x83, 0x00, 0x04, 0x12, 0x34, 1, 2, 3, 4, 9, 9};
  const auto ack = ParseAck(datagram);
  ASSERT_TRUE(ack);
  EXPECT_EQ(ack->status, status::kAccessDenied);
  EXPECT_EQ(ack->ackId, command::kWriteRegister + 1);
  EXPECT_EQ(ack->requestId, 0x1234);
  EXPECT_EQ(Bytes(ack->payload.begin(), ack->payload.end()), (Bytes{1, 2, 3, 4}));
}

TEST(GvcpWire, DiscoveryTextsMayFillTheirFieldsAndHoldNoControlCharacters) {
  Bytes payload(0xF8, 'x');  // no text is terminated
  auto device = ParseDiscovery(payload);
  ASSERT_TRUE(device);
  EXPECT_EQ(device->manufacturer, std::string(32, 'x'));
  EXPECT_EQ(device->manufacturerInfo, std::string(48, 'x'));
  EXPECT_EQ(device->serial, std::string(16, 'x'));
  EXPECT_EQ(device->userName, std::string(16, 'x'));

  payload[0xD8 + 1] = '\n';
  payload[0xD8 + 2] = 0x7F;
  payload[0xD8 + 4] = 0;
  device = ParseDiscovery(payload);
  ASSERT_TRUE(device);
  EXPECT_EQ(device->serial, "x??x");
}

TEST(GvcpWire, DiscoveryCutAnywhereOrWithoutAddressIsNoDevice) {
  const Bytes whole(0xF8, 1);
  for (std::size_t size = 0; size < whole.size(); ++size) {
    // A heap block of exactly this size, so that reading beyond it is seen.
    const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_FALSE(ParseDiscovery(cut)) << size;
  }
  EXPECT_TRUE(ParseDiscovery(whole));
  Bytes noAddress = whole;
  std::fill_n(noAddress.begin() + 0x24, 4, std::uint8_t{0});
  EXPECT_FALSE(ParseDiscovery(noAddress));
}

TEST(GvcpWire, ShortRegisterAndMemoryAnswersAreNoValues) {
  EXPECT_EQ(ParseReadRegister(Bytes{0, 0, 1, 2}), 0x102U);
  EXPECT_FALSE(ParseReadRegister(Bytes{0, 0, 1}));
  EXPECT_FALSE(ParseReadMemory(Bytes{0, 0, 2, 0, 1, 2, 3}, 0x200, 4));
  EXPECT_FALSE(ParseReadMemory(Bytes{0, 0, 2, 4, 1, 2, 3, 4}, 0x200, 4)) << "another address";
  EXPECT_FALSE(ParseReadMemory(Bytes{0, 0, 2, 0, 1, 2, 3, 4, 5}, 0x200, 4)) << "too long";
  const Bytes good{0, 0, 2, 0, 1, 2, 3, 4};
  const auto data = ParseReadMemory(good, 0x200, 4);
  ASSERT_TRUE(data);
  EXPECT_EQ(data->front(), 1);
  EXPECT_EQ(ParsePendingAck(Bytes{0, 0, 1, 0xF4}), 500);
  EXPECT_FALSE(ParsePendingAck(Bytes{0, 0, 1}));
}

}  // namespace
}  // namespace zyn::gige
