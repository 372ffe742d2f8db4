// Events of devices as features.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../MemoryPort.h"
#include "GenApi/EventAdapterGEV.h"
#include "GenApi/EventAdapterGeneric.h"
#include "GenApi/EventAdapterU3V.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

std::string EventRegister(const char* name, int address, int length, const char* endian = "BigEndian") {
  return std::string("<IntReg Name=\"") + name + "\"><Address>" + std::to_string(address) +
         "</Address><Length>" + std::to_string(length) + "</Length><pPort>Event</pPort><Endianess>" + endian +
         "</Endianess></IntReg>";
}

std::string Nodes(const char* endian, int timestampAt, int dataAt) {
  return "<Port Name=\"Event\"><EventID>9001</EventID></Port>"
         "<Category Name=\"EventData\"><EventID>9001</EventID><pFeature>Time</pFeature></Category>"
         "<Port Name=\"Other\"><EventID>9002</EventID></Port>" +
         EventRegister("Id", 2, 2, endian) + EventRegister("Time", timestampAt, 8, endian) +
         EventRegister("Data", dataAt, 4, endian);
}

struct Calls {
  explicit Calls(Camera& camera, const char* node)
      : handle(Register(&camera.Node(node), [this](INode*) { ++count; })) {}
  ~Calls() { Deregister(handle); }
  int count = 0;
  CallbackHandleType handle;
};

using Bytes = std::vector<uint8_t>;

// Magic, flags, command, length, request.
Bytes GevMessage(int flags, int command, const Bytes& items) {
  Bytes message = {0x42, static_cast<uint8_t>(flags),        0, static_cast<uint8_t>(command),
                   0,    static_cast<uint8_t>(items.size()), 0, 1};
  message.insert(message.end(), items.begin(), items.end());
  return message;
}

const Bytes kGevItem = {0, 0, 0x90, 0x01, 0, 0, 0, 5, 0, 0, 0, 0, 0, 0, 0, 42};

TEST(Events, OfGigEVisionFireCallbacksAndShowTheirBytes) {
  Camera camera(Nodes("BigEndian", 8, 16));
  EXPECT_EQ(camera.Access("Time"), NI) << "without an adapter there are no events";
  CEventAdapterGEV adapter(camera.map._Ptr);
  EXPECT_EQ(camera.Access("Time"), NA) << "none came yet";
  Calls category(camera, "EventData"), time(camera, "Time"), other(camera, "Other");
  const Bytes event = GevMessage(0, 0xC0, kGevItem);
  adapter.DeliverMessage(event.data(), static_cast<uint32_t>(event.size()));
  EXPECT_EQ(category.count, 2) << "once itself and once through the port";
  EXPECT_EQ(time.count, 1);
  EXPECT_EQ(other.count, 0);
  EXPECT_EQ(camera.Access("Time"), RO);
  EXPECT_EQ(camera.Integer("Time").GetValue(), 42);
  EXPECT_EQ(camera.Integer("Id").GetValue(), 0x9001);
  EXPECT_THROW(camera.Integer("Data").GetValue(), OutOfRangeException) << "this event has none";

  Bytes withData = kGevItem;
  withData.insert(withData.end(), {0, 0, 1, 2});
  const Bytes eventData = GevMessage(0, 0xC2, withData);
  adapter.DeliverEventMessage(reinterpret_cast<const GVCP_EVENTDATA_REQUEST*>(eventData.data()));
  EXPECT_EQ(camera.Integer("Data").GetValue(), 0x102);
}

TEST(Events, OfOneMessageAreDeliveredOneByOne) {
  Camera camera(Nodes("BigEndian", 8, 16));
  CEventAdapterGEV adapter(camera.map._Ptr);
  Calls time(camera, "Time"), other(camera, "Other");
  Bytes items = kGevItem;
  items.insert(items.end(), kGevItem.begin(), kGevItem.end());
  items[19] = 0x02;
  const Bytes event = GevMessage(0, 0xC0, items);
  adapter.DeliverEventMessage(reinterpret_cast<const GVCP_EVENT_REQUEST*>(event.data()));
  EXPECT_EQ(time.count, 1);
  EXPECT_EQ(other.count, 1);

  // Sized events: 20 bytes with data, then 16 without.
  Bytes sized = kGevItem;
  sized[1] = 20;
  sized.insert(sized.end(), {0, 0, 0, 9});
  sized.insert(sized.end(), kGevItem.begin(), kGevItem.end());
  sized[21] = 16;
  sized[23] = 0x02;
  const Bytes message = GevMessage(0, 0xC2, sized);
  adapter.DeliverMessage(message.data(), static_cast<uint32_t>(message.size()));
  EXPECT_EQ(camera.Integer("Data").GetValue(), 9);
  EXPECT_EQ(other.count, 2);
}

TEST(Events, WithExtendedIdentifiersAreLonger) {
  Camera camera(Nodes("BigEndian", 16, 24));
  CEventAdapterGEV adapter(camera.map._Ptr);
  Bytes item = {0, 0, 0x90, 0x01, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 5, 0, 0, 0, 0, 0, 0, 0, 42};
  Bytes two = item;
  two.insert(two.end(), item.begin(), item.end());
  const Bytes event = GevMessage(0x10, 0xC0, two);
  adapter.DeliverMessage(event.data(), static_cast<uint32_t>(event.size()));
  EXPECT_EQ(camera.Integer("Time").GetValue(), 42);
}

TEST(Events, MalformedGigEVisionMessagesAreRefused) {
  Camera camera(Nodes("BigEndian", 8, 16));
  CEventAdapterGEV adapter(camera.map._Ptr);
  const Bytes good = GevMessage(0, 0xC0, kGevItem);
  for (uint32_t length = 0; length < good.size(); ++length)
    EXPECT_THROW(adapter.DeliverMessage(good.data(), length), RuntimeException) << length;
  Bytes bad = good;
  bad[0] = 0x41;
  EXPECT_THROW(adapter.DeliverMessage(bad.data(), static_cast<uint32_t>(bad.size())), RuntimeException);
  bad = GevMessage(0, 0x80, kGevItem);
  EXPECT_THROW(adapter.DeliverMessage(bad.data(), static_cast<uint32_t>(bad.size())), RuntimeException);
  for (const uint8_t size : {1, 15, 17, 255}) {
    bad = good;
    bad[9] = size;
    EXPECT_THROW(adapter.DeliverMessage(bad.data(), static_cast<uint32_t>(bad.size())), RuntimeException)
        << int{size};
  }
  EXPECT_THROW(adapter.DeliverMessage(nullptr, 8), InvalidArgumentException);
  CEventAdapterGEV unattached;
  EXPECT_THROW(unattached.DeliverMessage(good.data(), static_cast<uint32_t>(good.size())), RuntimeException);
}

TEST(Events, OfUsb3VisionBeginBehindTheHeader) {
  Camera camera(Nodes("LittleEndian", 4, 12));
  CEventAdapterU3V adapter(camera.map._Ptr);
  const Bytes message = {0x55, 0x33, 0x56, 0x45, 0, 0, 0x00, 0x0C, 16, 0, 1, 0, 0, 0,
                         0x01, 0x90, 42,   0,    0, 0, 0,    0,    0,  0, 2, 1, 0, 0};
  for (uint32_t length = 0; length < message.size(); ++length)
    EXPECT_THROW(adapter.DeliverMessage(message.data(), length), RuntimeException) << length;
  adapter.DeliverMessage(message.data(), static_cast<uint32_t>(message.size()));
  EXPECT_EQ(camera.Integer("Time").GetValue(), 42);
  EXPECT_EQ(camera.Integer("Data").GetValue(), 0x102);
  Bytes bad = message;
  bad[6] = 1;
  EXPECT_THROW(adapter.DeliverMessage(bad.data(), static_cast<uint32_t>(bad.size())), RuntimeException);
  adapter.DeliverEventMessage(reinterpret_cast<const U3V_EVENT_MESSAGE*>(message.data()));
}

TEST(Events, TakenApartBySomethingElseComeWithTheirIdentifier) {
  Camera camera(Nodes("BigEndian", 0, 8));
  CEventAdapterGeneric adapter(camera.map._Ptr);
  Calls time(camera, "Time");
  Bytes event = {0, 0, 0, 0, 0, 0, 0, 7, 0, 0, 0, 8};
  adapter.DeliverMessage(event.data(), 12, uint64_t{0x9001});
  EXPECT_EQ(camera.Integer("Time").GetValue(), 7);
  EXPECT_EQ(camera.Integer("Data").GetValue(), 8);
  event[7] = 9;
  EXPECT_EQ(camera.Integer("Time").GetValue(), 7) << "the event was copied";
  adapter.DeliverMessage(event.data(), 12, gcstring("009001"));
  EXPECT_EQ(camera.Integer("Time").GetValue(), 9);
  adapter.DeliverMessage(event.data(), 12, gcstring("no number"));
  EXPECT_EQ(time.count, 2);
  EXPECT_THROW(adapter.DeliverMessage(event.data(), 12), RuntimeException);
  EXPECT_THROW(camera.Integer("Time").SetValue(1), AccessException);
  adapter.DetachNodeMap();
  EXPECT_EQ(camera.Access("Time"), NI);
}

}  // namespace
