#include <GenICam.h>

#include <atomic>
#include <thread>

#include "TransportFixture.h"
#include "mock/MockDescriptions.h"

namespace zyn::transport_test {
namespace {

using namespace KELGENICAM;

class NodeMapTest : public TransportTest {
 protected:
  static GenApi::IInteger& Integer(INodeMapHolder* holder, const char* name) {
    GenApi::INodeMap* map = holder->NodeMap();
    if (!map) throw std::runtime_error("no node map");
    GenApi::CIntegerPtr integer(map->GetNode(name));
    return *integer;
  }
};

TEST_F(NodeMapTest, FeaturesReachTheirModule) {
  const CameraPtr camera = OpenOne(mock_);
  mock_.SetRegister(mock::kWidthAt, 640);
  EXPECT_EQ(Integer(camera->RemoteDeviceNodeMap(), "Width").GetValue(), 640);
  Integer(camera->RemoteDeviceNodeMap(), "Height").SetValue(480);
  EXPECT_EQ(mock_.Register(mock::kHeightAt), 480U);
  EXPECT_EQ(Integer(camera->InterfaceNodeMap(), "DeviceSelector").GetValue(), 0);
  EXPECT_NE(camera->LocalDeviceNodeMap()->NodeMap(), nullptr);
  EXPECT_EQ(camera->TLNodeMap()->NodeMap(), nullptr);  // the mock's system has no description
  EXPECT_EQ(camera->DataStreamNodeMap()->NodeMap(), nullptr);
}

TEST_F(NodeMapTest, TheUrlListOfOldProducersServesAsWell) {
  SetPath(ZYN_MOCK_OLD_CTI);
  const CameraPtr camera = OpenOne(old_);
  old_.SetRegister(mock::kWidthAt, 320);
  EXPECT_EQ(Integer(camera->RemoteDeviceNodeMap(), "Width").GetValue(), 320);
}

TEST_F(NodeMapTest, NodesOfAClosedCameraThrow) {
  const CameraPtr camera = OpenOne(mock_);
  GenApi::IInteger& width = Integer(camera->RemoteDeviceNodeMap(), "Width");
  ASSERT_EQ(camera->Close(), RESULT_OK);
  EXPECT_EQ(camera->RemoteDeviceNodeMap()->NodeMap(), nullptr);
  EXPECT_THROW(width.GetValue(false, true), GenICam::GenericException);
  EXPECT_EQ(mock_.Calls("DevClose"), 1);
}

TEST_F(NodeMapTest, AFailingTransferThrowsWithItsCauseAndTheCameraStays) {
  const CameraPtr camera = OpenOne(mock_);
  GenApi::IInteger& width = Integer(camera->RemoteDeviceNodeMap(), "Width");
  mock_.SetHook("GCReadPort", [](const std::string&) { return GenTL::GC_ERR_INVALID_ADDRESS; });
  try {
    width.GetValue(false, true);
    FAIL();
  } catch (const GenICam::GenericException& error) {
    EXPECT_NE(std::string(error.GetDescription()).find("GC_ERR_INVALID_ADDRESS"), std::string::npos);
  }
  mock_.SetHook("GCReadPort", [](const std::string&) { return GenTL::GC_ERR_SUCCESS; });
  EXPECT_TRUE(camera->IsOnline());
  EXPECT_NO_THROW(width.GetValue(false, true));
}

TEST_F(NodeMapTest, ARegisterAccessThatFindsTheDeviceGoneMarksItLost) {
  const CameraPtr camera = OpenOne(mock_);
  GenApi::IInteger& width = Integer(camera->RemoteDeviceNodeMap(), "Width");
  mock_.LoseDevice("cam", false);
  EXPECT_THROW(width.GetValue(false, true), GenICam::AccessException);
  EXPECT_FALSE(camera->IsOnline());
  const int reads = mock_.Calls("GCReadPort");
  EXPECT_THROW(width.GetValue(false, true), GenICam::AccessException);
  EXPECT_EQ(mock_.Calls("GCReadPort"), reads);  // a lost device is not asked any more
}

TEST_F(NodeMapTest, ACameraWhoseDescriptionIsUnreadableStillOpensAndStreams) {
  const CameraPtr camera(CreateCamera(OneCamera(mock_)));
  mock_.SetHook("GCReadPort", [](const std::string&) { return GenTL::GC_ERR_INVALID_ADDRESS; });
  ASSERT_EQ(camera->Open(ACCESS_CONTROL), RESULT_OK);
  EXPECT_EQ(camera->RemoteDeviceNodeMap()->NodeMap(), nullptr);
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  ASSERT_TRUE(mock_.SendFrame(Frame(3)));
  EXPECT_EQ(GrabOne(*camera)->FrameID(), 3);
}

TEST_F(NodeMapTest, TheCameraIsLockedStartedStoppedAndUnlocked) {
  const CameraPtr camera = OpenOne(mock_);
  std::vector<std::pair<std::string, std::uint32_t>> atStart;
  mock_.SetHook("DSStartAcquisition", [&](const std::string&) {
    EXPECT_EQ(mock_.Register(mock::kLockedAt), 1U);
    EXPECT_EQ(mock_.Register(mock::kStartAt), 0U);  // the host first
    return GenTL::GC_ERR_SUCCESS;
  });
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  EXPECT_EQ(mock_.Register(mock::kStartAt), 1U);
  EXPECT_EQ(mock_.Register(mock::kLockedAt), 1U);
  mock_.SetHook("DSStopAcquisition", [&](const std::string&) {
    EXPECT_EQ(mock_.Register(mock::kStopAt), 1U);  // the camera first
    return GenTL::GC_ERR_SUCCESS;
  });
  ASSERT_EQ(camera->StopGrabbing(), RESULT_OK);
  EXPECT_EQ(mock_.Register(mock::kLockedAt), 0U);
}

TEST_F(NodeMapTest, AFailedStartUnlocksTheCameraAndLeavesNoBuffers) {
  const CameraPtr camera = OpenOne(mock_);
  for (const char* function :
       {"DSStartAcquisition", "GCRegisterEvent", "DSQueueBuffer", "DSAnnounceBuffer"}) {
    mock_.SetHook(function, [](const std::string&) { return GenTL::GC_ERR_RESOURCE_EXHAUSTED; });
    EXPECT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_EXHAUSTED) << function;
    EXPECT_FALSE(camera->IsGrabbing());
    EXPECT_EQ(mock_.Register(mock::kLockedAt), 0U);
    EXPECT_EQ(mock_.Announced(), 0U);
    mock_.SetHook(function, [](const std::string&) { return GenTL::GC_ERR_SUCCESS; });
  }
  EXPECT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
}

TEST_F(NodeMapTest, ThePayloadSizeComesFromTheCameraWhereTheStreamHasNone) {
  MockDevice device{"cam", "SN1"};
  device.payloadBytes = 0;
  const CameraPtr camera = OpenOne(mock_, device);
  EXPECT_NE(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  mock_.SetRegister(mock::kPayloadSizeAt, 8);
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  ASSERT_TRUE(mock_.SendFrame(Frame(1)));
  EXPECT_TRUE(GrabOne(*camera)->IsValid());
  ASSERT_EQ(camera->StopGrabbing(), RESULT_OK);
  mock_.SetRegister(mock::kPayloadSizeAt, 0);
  mock_.SetRegister(mock::kWidthAt, 4);
  mock_.SetRegister(mock::kHeightAt, 2);
  mock_.SetRegister(mock::kPixelFormatAt, 0x01080001);
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  ASSERT_TRUE(mock_.SendFrame(Frame(1)));
  EXPECT_TRUE(GrabOne(*camera)->IsValid());
}

TEST_F(NodeMapTest, TheFrameIdentifierChunkGoesBeforeTheStreamsIdentifier) {
  const CameraPtr camera = OpenOne(mock_);
  ASSERT_EQ(camera->StartGrabbing(GRAB_ONE_BY_ONE, -1), RESULT_OK);
  MockFrame frame = Frame(5);
  ASSERT_TRUE(mock_.SendFrame(frame));
  EXPECT_EQ(GrabOne(*camera)->FrameID(), 5);
  frame.chunks = {{0x20, {9}}, {mock::kFrameIdChunk, {0x78, 0x56, 0x34, 0x12}}};
  ASSERT_TRUE(mock_.SendFrame(frame));
  EXPECT_EQ(GrabOne(*camera)->FrameID(), 0x12345678);
  frame.payloadType = GenTL::PAYLOAD_TYPE_CHUNK_ONLY;
  ASSERT_TRUE(mock_.SendFrame(frame));
  EXPECT_EQ(GrabOne(*camera)->FrameID(), 0x12345678);
  frame.chunks = {{mock::kFrameIdChunk, {0x78, 0x56}}};  // too short to be read
  ASSERT_TRUE(mock_.SendFrame(frame));
  EXPECT_EQ(GrabOne(*camera)->FrameID(), 5);
}

// ---- Camera Link parameters -----------------------------------------------------------------------------

TEST_F(NodeMapTest, CameraLinkParametersAreWrittenFromTheirText) {
  const CameraPtr camera = OpenOne(mock_);
  EXPECT_EQ(camera->SetCLCameraParam("CardGain", "17"), RESULT_OK);
  EXPECT_EQ(mock_.Register(0x200), 17U);
  EXPECT_EQ(camera->SetCLCameraParam("NoSuchFeature", "17"), RESULT_NOT_AVAILABLE);
  EXPECT_NE(camera->SetCLCameraParam("CardGain", "loud"), RESULT_OK);
  EXPECT_EQ(mock_.Register(0x200), 17U);
}

TEST_F(NodeMapTest, CameraLinkParametersOfEveryKindAreWritten) {
  const CameraPtr camera = OpenOne(mock_);
  const struct {
    const char* name;
    const char* text;
    std::uint64_t address;
    std::uint32_t expected;
  } cases[] = {{"CardGain", "0x20", 0x200, 32},  {"CardTaps", "10", 0x208, 10},
               {"CardMirror", "true", 0x20C, 1}, {"CardMirror", "0", 0x20C, 0},
               {"CardLink", "Full", 0x210, 2},   {"CardScale", "1.5", 0x214, 0x3FC00000},
               {"CardReset", "1", 0x218, 1}};
  for (const auto& [name, text, address, expected] : cases) {
    mock_.SetRegister(address, 99);
    EXPECT_EQ(camera->SetCLCameraParam(name, text), RESULT_OK) << name << " = " << text;
    EXPECT_EQ(mock_.Register(address), expected) << name << " = " << text;
  }
}

TEST_F(NodeMapTest, CameraLinkParametersThatTheCardRefusesChangeNothing) {
  const CameraPtr camera = OpenOne(mock_);
  const struct {
    const char* name;
    const char* text;
    std::uint64_t address;
  } cases[] = {{"CardGain", "", 0x200},     {"CardTemperature", "5", 0x204}, {"CardTaps", "0", 0x208},
               {"CardTaps", "11", 0x208},   {"CardMirror", "maybe", 0x20C},  {"CardLink", "Medium", 0x210},
               {"CardLink", "full", 0x210}, {"CardScale", "wide", 0x214}};
  for (const auto& [name, text, address] : cases) {
    mock_.SetRegister(address, 7);
    EXPECT_LT(camera->SetCLCameraParam(name, text), RESULT_OK) << name << " = " << text;
    EXPECT_EQ(mock_.Register(address), 7U) << name << " = " << text;
  }
  EXPECT_EQ(camera->SetCLCameraParam("CardTaps", "11"), RESULT_INVALID_ARGUMENT);
  EXPECT_EQ(camera->SetCLCameraParam("CardTemperature", "5"), RESULT_INVALID_ARGUMENT);
  EXPECT_EQ(camera->SetCLCameraParam("Root", "5"), RESULT_INVALID_ARGUMENT);
}

TEST_F(NodeMapTest, CameraLinkParametersNeedAnOpenCameraANameAndAValue) {
  const CameraPtr camera = OpenOne(mock_);
  EXPECT_EQ(camera->SetCLCameraParam(nullptr, "1"), RESULT_INVALID_ARGUMENT);
  EXPECT_EQ(camera->SetCLCameraParam("CardGain", nullptr), RESULT_INVALID_ARGUMENT);
  EXPECT_EQ(camera->SetCLCameraParam("", "1"), RESULT_NOT_AVAILABLE);
  EXPECT_EQ(camera->SetCLCameraParam("Width", "1"), RESULT_NOT_AVAILABLE) << "a feature of the camera itself";
  ASSERT_EQ(camera->Close(), RESULT_OK);
  EXPECT_EQ(camera->SetCLCameraParam("CardGain", "1"), RESULT_NOT_OPEN);
}

TEST_F(NodeMapTest, ACardThatDoesNotAnswerRefusesItsParameters) {
  const CameraPtr camera = OpenOne(mock_);
  mock_.SetHook("GCWritePort", [](const std::string&) { return GenTL::GC_ERR_TIMEOUT; });
  EXPECT_LT(camera->SetCLCameraParam("CardGain", "1"), RESULT_OK);
  mock_.SetHook("GCWritePort", [](const std::string&) { return GenTL::GC_ERR_SUCCESS; });
  EXPECT_EQ(camera->SetCLCameraParam("CardGain", "1"), RESULT_OK);
}

// ---- addresses ------------------------------------------------------------------------------------------

TEST_F(NodeMapTest, AddressesComeFromTheInterface) {
  MockDevice first{"cam1", "SN1"};
  MockDevice second{"cam2", "SN2"};
  second.ip = 0xC0A80102;
  second.mac = 0x00FF10A0B0C0;
  mock_.SetInterfaces({MockInterface{"if0", "GEV", {first, second}}});
  ASSERT_EQ(Init(), RESULT_OK);
  const InfoList found = Discover();
  ASSERT_EQ(found.size(), 2U);
  EXPECT_STREQ(found.front()->Text(TEXT_IP_ADDRESS), "192.168.1.99");
  EXPECT_STREQ(found.front()->Text(TEXT_MAC_ADDRESS), "0a:0b:0c:0d:0e:0f");
  ICameraInfo& info = *found.back();
  EXPECT_STREQ(info.Text(TEXT_IP_ADDRESS), "192.168.1.2");
  EXPECT_STREQ(info.Text(TEXT_MAC_ADDRESS), "00:ff:10:a0:b0:c0");
  EXPECT_STREQ(info.Text(TEXT_SUBNET_MASK), "255.255.255.0");
  EXPECT_STREQ(info.Text(TEXT_GATEWAY), "192.168.1.1");
  EXPECT_STREQ(info.Text(TEXT_ADAPTER_IP_ADDRESS), "192.168.1.10");
  EXPECT_STREQ(info.Text(TEXT_ADAPTER_SUBNET_MASK), "255.255.255.0");
  EXPECT_EQ(Discover("192.168.1.2"), InfoList{&info});
  EXPECT_EQ(Discover("00:ff:10:a0:b0:c0"), InfoList{&info});
}

TEST_F(NodeMapTest, AnAddressThatChangedIsFoundByTheNextSearch) {
  ICameraInfo* before = OneCamera(mock_);
  MockDevice moved{"cam", "SN1"};
  moved.ip = 0x0A000001;
  mock_.SetInterfaces({MockInterface{"if0", "GEV", {moved}}});
  ICameraInfo* after = Discover().front();
  EXPECT_STREQ(before->Text(TEXT_IP_ADDRESS), "192.168.1.99");
  EXPECT_STREQ(after->Text(TEXT_IP_ADDRESS), "10.0.0.1");
}

TEST_F(NodeMapTest, CamerasThatAreNotOnANetworkHaveNoAddress) {
  mock_.SetInterfaces({MockInterface{"if0", "U3V", {MockDevice{"cam", "SN1"}}}});
  ASSERT_EQ(Init(), RESULT_OK);
  EXPECT_STREQ(Discover().front()->Text(TEXT_IP_ADDRESS), "");
}

TEST_F(NodeMapTest, ASearchPutsTheDeviceSelectorBack) {
  mock_.SetInterfaces({MockInterface{"if0", "GEV", {MockDevice{"cam1", "SN1"}, MockDevice{"cam2", "SN2"}}}});
  ASSERT_EQ(Init(), RESULT_OK);
  const CameraPtr camera(CreateCamera(Discover().front()));
  ASSERT_EQ(camera->Open(ACCESS_CONTROL), RESULT_OK);
  GenApi::IInteger& selector = Integer(camera->InterfaceNodeMap(), "DeviceSelector");
  selector.SetValue(0);  // a search ends at the last device
  EXPECT_EQ(Discover().size(), 2U);
  EXPECT_EQ(selector.GetValue(false, true), 0);
}

TEST_F(NodeMapTest, SelectingUnderTheLockIsNotDisturbedBySearches) {
  mock_.SetInterfaces({MockInterface{"if0", "GEV", {MockDevice{"cam1", "SN1"}, MockDevice{"cam2", "SN2"}}}});
  ASSERT_EQ(Init(), RESULT_OK);
  const CameraPtr camera(CreateCamera(Discover().front()));
  ASSERT_EQ(camera->Open(ACCESS_CONTROL), RESULT_OK);
  std::atomic<bool> isOver{false};
  std::thread searcher([&] {
    while (!isOver) Discover();
  });
  GenApi::INodeMap* map = camera->InterfaceNodeMap()->NodeMap();
  GenApi::CStringPtr id(map->GetNode("DeviceID"));
  for (int i = 0; i < 200; ++i) {
    const GenApi::AutoLock lock(map->GetLock());
    Integer(camera->InterfaceNodeMap(), "DeviceSelector").SetValue(1);
    EXPECT_EQ(std::string(id->GetValue(false, true).c_str()), "cam2");
  }
  isOver = true;
  searcher.join();
}

}  // namespace
}  // namespace zyn::transport_test
