#include "gigedevice/EventWire.h"

#include <gtest/gtest.h>

#include "GenApi/EventAdapterGEV.h"
#include "GenICam.h"
#include "cameras/Catalog.h"

namespace zyn::gigedevice {
namespace {

using gige::Bytes;

TEST(EventWire, AnEventWithoutDataIsOneItem) {
  EXPECT_EQ(
      EncodeEvent({0x9001, 0, 0}, 0x0102030405060708, 0x1234, true),
      (Bytes{0x42, 1, 0, 0xC0, 0, 16, 0x12, 0x34, 0, 0, 0x90, 1, 0xFF, 0xFF, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(EventWire, AnEventOfAFrameHasItsNumberAsData) {
  const Bytes message = EncodeEvent({0x9002, 0, 0x1122}, 7, 1, false);
  EXPECT_EQ(message, (Bytes{0x42, 0, 0, 0xC2, 0, 24, 0, 1, 0, 0, 0x90, 2, 0xFF, 0xFF, 0,    0,
                            0,    0, 0, 0,    0, 0,  0, 7, 0, 0, 0,    0, 0,    0,    0x11, 0x22}));
}

TEST(EventWire, TheDescriptionFindsWhatTheMessageHolds) {
  const auto camera = cameras::MakeCamera("ZS-A640", "S1");
  GenApi::CNodeMapRef map;
  map._LoadXMLFromString(std::string(camera->Description()).c_str());
  GenApi::CEventAdapterGEV adapter(map._Ptr);
  const Bytes message = EncodeEvent({cameras::kExposureEndEvent, 0, 0x1122}, 77, 1, true);
  adapter.DeliverMessage(message.data(), static_cast<std::uint32_t>(message.size()));
  EXPECT_EQ(GenApi::CIntegerPtr(map._GetNode("EventExposureEndTimestamp"))->GetValue(), 77);
  EXPECT_EQ(GenApi::CIntegerPtr(map._GetNode("EventExposureEndFrameID"))->GetValue(), 0x1122);
}

}  // namespace
}  // namespace zyn::gigedevice
