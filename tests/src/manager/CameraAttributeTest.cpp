#include "CameraAttribute.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "EmptyText.h"
#include "FakeTransport.h"
#include "LogicCamera.h"
#include "SetWrapperValue.h"
#include "ZynCamera.h"

using namespace ZYNSDK;
using fakes::FakeCameraInfo;

namespace {

constexpr unsigned int kGigE = 1;
constexpr unsigned int kUsb3 = 2;
constexpr unsigned int kCameraLink = 4;

// A description with every text filled in, and the record and handle on it.
class CameraAttributeTest : public testing::Test {
 protected:
  CameraAttributeTest() {
    info.texts = {nullptr, "192.168.1.99", "00:11",         "255.255.255.0", "192.168.1.1",
                  "eth0",  "192.168.1.10", "255.255.255.0", "guid",          "super"};
    SetWrapperValue(&handle, &record, true);
  }

  // Runs with standard output captured in `output`.
  template <class Work>
  auto Quietly(Work work) {
    testing::internal::CaptureStdout();
    const auto result = work();
    output = testing::internal::GetCapturedStdout();
    return result;
  }

  fakes::FakeTransport transport;
  FakeCameraInfo info{"SN1", "Model"};
  LogicCamera owner{&info};
  CameraAttribute record{&owner, &info};
  ZynCameraAttribute handle;
  std::string output;
};

struct ModelCase {
  const char* name;
  const char* model;
  bool is3D;
};

class Is3DCamera : public testing::TestWithParam<ModelCase> {};

struct StatusCase {
  const char* name;
  int state;
  unsigned int protocol;
  const char* deviceIp;
  int status;
};

class CameraStatus : public CameraAttributeTest, public testing::WithParamInterface<StatusCase> {};

const auto kName = [](const auto& test) { return std::string(test.param.name); };

}  // namespace

TEST_P(Is3DCamera, LooksAtTheBeginningOfTheModelName) {
  FakeCameraInfo info("SN1", GetParam().model);
  EXPECT_EQ(CameraAttribute(nullptr, &info).Is3DCamera(), GetParam().is3D);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Is3DCamera,
    testing::Values(ModelCase{"LaserProfile", "KEL-LP3000", true}, ModelCase{"Exactly", "KEL-LP", true},
                    ModelCase{"Vx7", "VX7-x", true}, ModelCase{"ExactlyVx7", "VX7", true},
                    ModelCase{"NotAtTheStart", "XKEL-LP", false},
                    ModelCase{"Vx7NotAtTheStart", "AVX7", false}, ModelCase{"XVx7", "XVX7", false},
                    ModelCase{"LowerCase", "vx7", false}, ModelCase{"Short", "KEL-L", false},
                    ModelCase{"VeryShort", "VX", false}, ModelCase{"Empty", "", false},
                    ModelCase{"Null", nullptr, false}),
    kName);

TEST(CameraAttributeWithoutInfo, AnswersEmpty) {
  const CameraAttribute record(nullptr, nullptr);
  EXPECT_EQ(record.GetCameraInfo(), nullptr);
  EXPECT_FALSE(record.Is3DCamera());
  EXPECT_EQ(record.ProtocolType(), 0U);
  EXPECT_EQ(record.CameraName(), kEmptyText);
  EXPECT_EQ(record.CameraManufactureName(), kEmptyText);
  EXPECT_EQ(record.CameraModel(), kEmptyText);
  EXPECT_EQ(record.CameraSerialNumber(), kEmptyText);
  EXPECT_EQ(record.GigeCameraIp(), kEmptyText);
  EXPECT_EQ(record.Usb3CameraGUID(), kEmptyText);
  EXPECT_EQ(record.CameraStatus(), 3);
  EXPECT_FALSE(record.GigeIsNetSegmentConsistent());
  EXPECT_FALSE(record.GigeSetCameraAddress("1.2.3.4", nullptr, nullptr, false));
}

TEST(EmptyAttributeHandle, AnswersTheNullResults) {
  ZynCameraAttribute handle;
  EXPECT_EQ(handle.ProtocolType(), 0U);
  EXPECT_EQ(handle.CameraStatus(), 3);
  EXPECT_EQ(handle.SpeedSupport(), 0);
  EXPECT_FALSE(handle.IsNetSegmentConsistent());
  EXPECT_FALSE(handle.SetCameraAddress("1.2.3.4", nullptr, nullptr, false));
  const std::vector<const char*> texts = {handle.CameraName(),    handle.CameraManufactureName(),
                                          handle.CameraModel(),   handle.CameraSerialNumber(),
                                          handle.CameraVersion(), handle.UserdefName(),
                                          handle.CameraMac(),     handle.CameraIp(),
                                          handle.CameraMask(),    handle.CameraGateway(),
                                          handle.CameraID(),      handle.AdapterName(),
                                          handle.AdapterIP(),     handle.AdapterMask(),
                                          handle.CameraGUID(),    handle.GenCPVersion(),
                                          handle.U3VVersion(),    handle.FamilyName(),
                                          handle.DisplayName()};
  for (const char* text : texts) EXPECT_EQ(text, kEmptyText);  // the one shared text
}

TEST_F(CameraAttributeTest, GeneralTextsAreThoseOfTheDescription) {
  EXPECT_EQ(handle.ProtocolType(), kGigE);
  EXPECT_STREQ(handle.CameraName(), "Name");
  EXPECT_STREQ(handle.CameraManufactureName(), "Maker");
  EXPECT_STREQ(handle.CameraModel(), "Model");
  EXPECT_STREQ(handle.CameraSerialNumber(), "SN1");
  EXPECT_EQ(record.GetCameraInfo(), &info);
}

TEST_F(CameraAttributeTest, GeneralTextsPassNullOn) {
  info.name = info.manufacturer = info.model = info.serial = nullptr;
  EXPECT_EQ(handle.CameraName(), nullptr);
  EXPECT_EQ(handle.CameraManufactureName(), nullptr);
  EXPECT_EQ(handle.CameraModel(), nullptr);
  EXPECT_EQ(handle.CameraSerialNumber(), nullptr);
}

TEST_F(CameraAttributeTest, GigETextsAreThoseOfAGigECamera) {
  EXPECT_STREQ(handle.CameraVersion(), "V1");
  EXPECT_STREQ(handle.UserdefName(), "Mine");
  EXPECT_STREQ(handle.CameraID(), "id0");
  EXPECT_STREQ(handle.CameraIp(), "192.168.1.99");
  EXPECT_STREQ(handle.CameraMac(), "00:11");
  EXPECT_STREQ(handle.CameraMask(), "255.255.255.0");
  EXPECT_STREQ(handle.CameraGateway(), "192.168.1.1");
  EXPECT_STREQ(handle.AdapterName(), "eth0");
  EXPECT_STREQ(handle.AdapterIP(), "192.168.1.10");
  EXPECT_STREQ(handle.AdapterMask(), "255.255.255.0");
  EXPECT_STREQ(handle.CameraGUID(), "");
  EXPECT_STREQ(handle.DisplayName(), "");
}

TEST_F(CameraAttributeTest, Usb3TextsAreThoseOfAUsb3Camera) {
  info.protocol = kUsb3;
  EXPECT_STREQ(handle.CameraVersion(), "V1");
  EXPECT_STREQ(handle.UserdefName(), "Mine");
  EXPECT_STREQ(handle.CameraGUID(), "guid");
  EXPECT_STREQ(handle.DisplayName(), "Name");
  for (const char* text :
       {handle.CameraID(), handle.CameraIp(), handle.CameraMac(), handle.CameraMask(), handle.CameraGateway(),
        handle.AdapterName(), handle.AdapterIP(), handle.AdapterMask(), handle.GenCPVersion(),
        handle.U3VVersion(), handle.FamilyName()}) {
    EXPECT_EQ(text, kEmptyText);
  }
}

TEST_F(CameraAttributeTest, OtherProtocolsHaveNoSuchTexts) {
  info.protocol = kCameraLink;
  EXPECT_EQ(handle.CameraVersion(), kEmptyText);
  EXPECT_EQ(handle.UserdefName(), kEmptyText);
  EXPECT_EQ(handle.CameraIp(), kEmptyText);
  EXPECT_EQ(handle.DisplayName(), kEmptyText);
  EXPECT_FALSE(handle.IsNetSegmentConsistent());
  EXPECT_FALSE(handle.SetCameraAddress("192.168.1.50", nullptr, nullptr, false));
}

TEST_F(CameraAttributeTest, ProtocolTextsTurnNullIntoEmpty) {
  info.version = info.userName = info.id = info.name = nullptr;
  info.texts = {};
  for (unsigned int protocol : {kGigE, kUsb3}) {
    info.protocol = protocol;
    for (const char* text :
         {handle.CameraVersion(), handle.UserdefName(), handle.CameraID(), handle.CameraIp(),
          handle.AdapterMask(), handle.CameraGUID(), handle.DisplayName()}) {
      EXPECT_EQ(text, kEmptyText);
    }
  }
}

TEST_F(CameraAttributeTest, SpeedSupportReadsTheFieldTwiceAndAnswersZero) {
  info.protocol = kUsb3;
  EXPECT_EQ(handle.SpeedSupport(), 0);
  EXPECT_EQ(info.calls.Names(), (std::vector<std::string>{"Text9", "Text9"}));
  info.texts[9] = nullptr;
  info.calls.Clear();
  EXPECT_EQ(handle.SpeedSupport(), 0);
  EXPECT_EQ(info.calls.Names(), (std::vector<std::string>{"Text9", "Text9"}));
  info.protocol = kGigE;
  info.calls.Clear();
  EXPECT_EQ(handle.SpeedSupport(), 0);
  EXPECT_TRUE(info.calls.Names().empty());
}

TEST_P(CameraStatus, FollowsTheDeviceState) {
  info.state = GetParam().state;
  info.protocol = GetParam().protocol;
  info.texts[1] = GetParam().deviceIp;
  EXPECT_EQ(Quietly([&] { return handle.CameraStatus(); }), GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(Table, CameraStatus,
                         testing::Values(StatusCase{"Unknown", 0, kGigE, "192.168.1.99", 3},
                                         StatusCase{"FreeInTheSubnet", 1, kGigE, "192.168.1.99", 0},
                                         StatusCase{"FreeOutsideTheSubnet", 1, kGigE, "192.168.2.99", 2},
                                         StatusCase{"ReadOnlyInTheSubnet", 2, kGigE, "192.168.1.99", 0},
                                         StatusCase{"FreeUsb3", 1, kUsb3, "192.168.2.99", 0},
                                         StatusCase{"FreeCameraLink", 2, kCameraLink, "192.168.2.99", 0},
                                         StatusCase{"NoAccess", 3, kGigE, "192.168.1.99", 3},
                                         StatusCase{"Busy", 4, kGigE, "192.168.2.99", 1},
                                         StatusCase{"OpenHere", 5, kUsb3, "192.168.1.99", 1},
                                         StatusCase{"OpenHereForReading", 6, kGigE, "192.168.1.99", 1},
                                         StatusCase{"Beyond", 7, kGigE, "192.168.1.99", 3},
                                         StatusCase{"Negative", -1, kGigE, "192.168.1.99", 3}),
                         kName);

TEST_F(CameraAttributeTest, NetSegmentIsComparedAndTraced) {
  EXPECT_TRUE(Quietly([&] { return handle.IsNetSegmentConsistent(); }));
  EXPECT_EQ(output,
            "AdapterIP: 192.168.1.10\nAdapterMask: 255.255.255.0\nDevIP: 192.168.1.99\n"
            "DevMask: 255.255.255.0\n");
  EXPECT_EQ(info.calls.Names(), (std::vector<std::string>{"Text6", "Text7", "Text1", "Text3"}));
  info.texts[1] = "192.168.2.99";
  EXPECT_FALSE(Quietly([&] { return handle.IsNetSegmentConsistent(); }));
}

TEST_F(CameraAttributeTest, AnUnreadableMaskIsInconsistentAndStillTraced) {
  info.texts[3] = nullptr;
  EXPECT_FALSE(Quietly([&] { return handle.IsNetSegmentConsistent(); }));
  EXPECT_NE(output.find("DevMask: \n"), std::string::npos);
  info.texts[3] = "255.255.255.0";
  info.texts[7] = "x";
  EXPECT_FALSE(Quietly([&] { return handle.IsNetSegmentConsistent(); }));
}

TEST_F(CameraAttributeTest, DifferingMasksCanStillCompareEqual) {
  info.texts[6] = "10.0.0.1";
  info.texts[7] = "255.0.0.0";
  info.texts[1] = "10.0.0.77";
  info.texts[3] = "255.255.0.0";
  EXPECT_TRUE(Quietly([&] { return handle.IsNetSegmentConsistent(); }));
}

TEST_F(CameraAttributeTest, OtherCamerasTraceNothing) {
  info.protocol = kUsb3;
  EXPECT_FALSE(Quietly([&] { return handle.IsNetSegmentConsistent(); }));
  EXPECT_EQ(output, "");
}

TEST_F(CameraAttributeTest, AddressTakesMaskAndGatewayFromTheAdapter) {
  EXPECT_TRUE(Quietly([&] { return handle.SetCameraAddress("192.168.1.50", nullptr, nullptr, true); }));
  ASSERT_EQ(transport.addresses.size(), 1U);
  EXPECT_EQ(transport.addresses[0].serial, "SN1");
  EXPECT_EQ(transport.addresses[0].ip, "192.168.1.50");
  EXPECT_EQ(transport.addresses[0].mask, "255.255.255.0");
  EXPECT_EQ(transport.addresses[0].gateway, "192.168.1.1");
  EXPECT_TRUE(transport.addresses[0].persistent);
}

TEST_F(CameraAttributeTest, TheGatewayIsTheFirstAddressOfTheNetworkByDefault) {
  EXPECT_TRUE(Quietly([&] { return handle.SetCameraAddress("10.20.30.40", "255.255.0.0", nullptr, false); }));
  EXPECT_TRUE(
      Quietly([&] { return handle.SetCameraAddress("192.168.1.200", "255.255.255.128", nullptr, false); }));
  ASSERT_EQ(transport.addresses.size(), 2U);
  EXPECT_EQ(transport.addresses[0].gateway, "10.20.0.1");
  EXPECT_EQ(transport.addresses[1].gateway, "192.168.1.129");
}

TEST_F(CameraAttributeTest, GivenTextsGoOutInTheirPlainForm) {
  EXPECT_TRUE(
      Quietly([&] { return handle.SetCameraAddress("010.1.1.1", " 255.0.0.0", "10.1.1.9x", false); }));
  ASSERT_EQ(transport.addresses.size(), 1U);
  EXPECT_EQ(transport.addresses[0].ip, "10.1.1.1");
  EXPECT_EQ(transport.addresses[0].mask, "255.0.0.0");
  EXPECT_EQ(transport.addresses[0].gateway, "10.1.1.9");
  EXPECT_FALSE(transport.addresses[0].persistent);
}

TEST_F(CameraAttributeTest, WhatIsNoAddressIsNotSent) {
  EXPECT_FALSE(handle.SetCameraAddress(nullptr, nullptr, nullptr, false));
  EXPECT_FALSE(handle.SetCameraAddress("192.168.1.256", nullptr, nullptr, false));
  EXPECT_FALSE(handle.SetCameraAddress("192.168.1", nullptr, nullptr, false));
  EXPECT_FALSE(handle.SetCameraAddress("192.168.1.50", "255.255", nullptr, false));
  EXPECT_FALSE(handle.SetCameraAddress("192.168.1.50", nullptr, "x", false));
  info.texts[7] = nullptr;
  EXPECT_FALSE(handle.SetCameraAddress("192.168.1.50", nullptr, nullptr, false));
  EXPECT_TRUE(transport.addresses.empty());
}

TEST_F(CameraAttributeTest, ARefusedAddressIsFalse) {
  transport.setIpResult = 3;
  EXPECT_FALSE(Quietly([&] { return handle.SetCameraAddress("192.168.1.50", nullptr, nullptr, false); }));
  transport.hook = [](const std::string&) { throw 42; };
  EXPECT_FALSE(Quietly([&] { return handle.SetCameraAddress("192.168.1.50", nullptr, nullptr, false); }));
}

TEST_F(CameraAttributeTest, AnExceptionAnywhereOnTheWayOfAnAddressIsFalse) {
  info.throwsOnSerialNumber = true;
  EXPECT_FALSE(Quietly([&] { return handle.SetCameraAddress("192.168.1.50", nullptr, nullptr, false); }));
  info.throwsOnSerialNumber = false;
  info.throwsOnText = true;
  EXPECT_FALSE(Quietly([&] { return handle.SetCameraAddress("192.168.1.50", nullptr, nullptr, false); }));
  EXPECT_TRUE(transport.addresses.empty());
  EXPECT_TRUE(Quietly([&] { return handle.SetCameraAddress("192.168.1.50", "255.0.0.0", nullptr, false); }));
}
