#include <latch>
#include <set>
#include <thread>

#include "TransportFixture.h"

namespace zyn::transport_test {
namespace {

using namespace KELGENICAM;

class DiscoveryTest : public TransportTest {
 protected:
  static std::vector<std::string> Ids(const InfoList& found) {
    std::vector<std::string> ids;
    for (ICameraInfo* info : found) ids.emplace_back(info->CameraID());
    return ids;
  }
};

TEST_F(DiscoveryTest, DescribesACamera) {
  MockDevice device{"cam", "SN1"};
  device.userName = "left";
  ICameraInfo* info = OneCamera(mock_, device);
  EXPECT_EQ(info->ProtocolType(), static_cast<unsigned>(PROTOCOL_GIGE_VISION));
  EXPECT_EQ(info->DeviceState(), DEVICE_STATE_READWRITE);
  EXPECT_STREQ(info->CameraID(), "cam");
  EXPECT_STREQ(info->SerialNumber(), "SN1");
  EXPECT_STREQ(info->ManufacturerName(), "Maker");
  EXPECT_STREQ(info->ModelName(), "Model");
  EXPECT_STREQ(info->CameraName(), "Display cam");
  EXPECT_STREQ(info->UserDefinedName(), "left");
  EXPECT_STREQ(info->DeviceVersion(), "1.0");
  EXPECT_STREQ(info->InterfaceID(), "if0");
  EXPECT_STREQ(info->Text(TEXT_ADAPTER_NAME), "Adapter if0");
  EXPECT_STREQ(info->Text(0), "");
  EXPECT_STREQ(info->Text(-1), "");
  EXPECT_STREQ(info->Text(10), "");
}

TEST_F(DiscoveryTest, AnOldProducerIsAskedWhatItKnowsAndTheRestIsFilledIn) {
  SetPath(ZYN_MOCK_OLD_CTI);
  ICameraInfo* info = OneCamera(old_);
  EXPECT_STREQ(info->SerialNumber(), "cam");
  EXPECT_STREQ(info->CameraName(), "Maker Model (cam)");
  EXPECT_STREQ(info->UserDefinedName(), "");
  EXPECT_STREQ(info->DeviceVersion(), "");
}

TEST_F(DiscoveryTest, TheOrderIsFixedWhateverTheProducersOrder) {
  ASSERT_EQ(Init(), RESULT_OK);
  mock_.SetInterfaces({MockInterface{"b", "GEV", {MockDevice{"z", "1"}, MockDevice{"y", "2"}}},
                       MockInterface{"a", "U3V", {MockDevice{"x", "3"}}}});
  EXPECT_EQ(Ids(Discover()), (std::vector<std::string>{"x", "y", "z"}));
}

struct FilterCase {
  const char* filter;
  std::vector<std::string> ids;
};

TEST_F(DiscoveryTest, AFilterMatchesIdSerialModelAndUserName) {
  MockDevice first{"one", "SN1"};
  first.model = "Big";
  MockDevice second{"two", "SN2"};
  second.userName = "right";
  mock_.SetInterfaces({MockInterface{"if0", "GEV", {first, second}}});
  ASSERT_EQ(Init(), RESULT_OK);
  const std::vector<FilterCase> cases = {{"", {"one", "two"}}, {"one", {"one"}},   {"SN2", {"two"}},
                                         {"Big", {"one"}},     {"right", {"two"}}, {"SN", {}}};
  for (const FilterCase& row : cases) EXPECT_EQ(Ids(Discover(row.filter)), row.ids) << row.filter;
}

TEST_F(DiscoveryTest, InterfacesOfOtherProtocolsAreNotAsked) {
  mock_.SetInterfaces({MockInterface{"gev", "GEV", {MockDevice{"g", "1"}}},
                       MockInterface{"u3v", "U3V", {MockDevice{"u", "2"}}},
                       MockInterface{"cl", "CL", {MockDevice{"c", "3"}}},
                       MockInterface{"cxp", "CXP", {MockDevice{"x", "4"}}},
                       MockInterface{"own", "Custom", {MockDevice{"o", "5"}}}});
  std::vector<std::string> asked;
  std::mutex mutex;
  mock_.SetHook("IFUpdateDeviceList", [&](const std::string& id) {
    const std::lock_guard lock(mutex);
    asked.push_back(id);
    return GenTL::GC_ERR_SUCCESS;
  });
  ASSERT_EQ(Init(), RESULT_OK);
  const std::pair<unsigned long, const char*> rows[] = {
      {PROTOCOL_GIGE_VISION, "g"}, {PROTOCOL_USB3_VISION, "u"}, {PROTOCOL_CAMERA_LINK, "c"},
      {PROTOCOL_COAXPRESS, "x"},   {PROTOCOL_OTHER, "o"},
  };
  for (const auto& [mask, id] : rows) {
    asked.clear();
    InfoList found;
    ASSERT_EQ(DiscoveryByTLType(mask, found), RESULT_OK);
    EXPECT_EQ(Ids(found), std::vector<std::string>{id});
    EXPECT_EQ(asked.size(), 1U);
    ASSERT_FALSE(found.empty());
    EXPECT_EQ(found.front()->ProtocolType(), mask);
  }
  InfoList none;
  ASSERT_EQ(DiscoveryByTLType(0, none), RESULT_OK);
  EXPECT_TRUE(none.empty());
  mock_.SetHook("IFUpdateDeviceList", [](const std::string&) { return GenTL::GC_ERR_SUCCESS; });
}

TEST_F(DiscoveryTest, AnUnchangedCameraIsTheSameObject) {
  ICameraInfo* first = OneCamera(mock_);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(Discover().front(), first);
}

TEST_F(DiscoveryTest, AChangedCameraIsAnotherObjectAndTheOldOneKeepsItsContent) {
  ICameraInfo* first = OneCamera(mock_);
  MockDevice busy{"cam", "SN1"};
  busy.status = GenTL::DEVICE_ACCESS_STATUS_BUSY;
  mock_.SetInterfaces({MockInterface{"if0", "GEV", {busy}}});
  ICameraInfo* second = Discover().front();
  EXPECT_NE(second, first);
  EXPECT_EQ(first->DeviceState(), DEVICE_STATE_READWRITE);
  EXPECT_EQ(second->DeviceState(), DEVICE_STATE_BUSY);
  first->CopyFrom(*second);
  EXPECT_EQ(first->DeviceState(), DEVICE_STATE_BUSY);
  EXPECT_EQ(Discover().front(), second);
}

TEST_F(DiscoveryTest, ACameraThatKeepsChangingBetweenTwoStatesDoesNotGrowMemory) {
  ICameraInfo* latest = OneCamera(mock_);
  std::list<ICameraInfo*> seen{latest};
  MockDevice device{"cam", "SN1"};
  for (int i = 0; i < 40; ++i) {
    device.status = i % 2 == 0 ? GenTL::DEVICE_ACCESS_STATUS_BUSY : GenTL::DEVICE_ACCESS_STATUS_READWRITE;
    mock_.SetInterfaces({MockInterface{"if0", "GEV", {device}}});
    ICameraInfo* found = Discover().front();
    EXPECT_EQ(found->DeviceState(), static_cast<int>(device.status));
    latest->CopyFrom(*found);
    latest = found;
    seen.push_back(found);
  }
  seen.sort();
  seen.unique();
  EXPECT_LE(seen.size(), 4U);
}

TEST_F(DiscoveryTest, OneSerialNumberOnTwoInterfacesStaysTwoObjectsWhateverIsCopiedAcross) {
  mock_.SetInterfaces({MockInterface{"a", "GEV", {MockDevice{"near", "SN1"}}},
                       MockInterface{"b", "GEV", {MockDevice{"far", "SN1"}}}});
  ASSERT_EQ(Init(), RESULT_OK);
  std::set<ICameraInfo*> seen;
  ICameraInfo* latest = nullptr;
  for (int i = 0; i < 100; ++i) {
    const InfoList found = Discover();
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(Ids(found), (std::vector<std::string>{"near", "far"}));
    for (ICameraInfo* info : found) {
      if (latest) latest->CopyFrom(*info);
      latest = info;
      seen.insert(info);
    }
  }
  EXPECT_EQ(seen.size(), 2U);
}

class ForeignInfo : public ICameraInfo {
 public:
  unsigned int ProtocolType() override { return 1; }
  int DeviceState() override { return 1; }
  const char* CameraID() override { return "foreign"; }
  const char* SerialNumber() override { return "foreign"; }
  const char* ManufacturerName() override { return ""; }
  const char* ModelName() override { return ""; }
  const char* CameraName() override { return ""; }
  const char* UserDefinedName() override { return ""; }
  const char* DeviceVersion() override { return ""; }
  const char* InterfaceID() override { return ""; }
  const char* Text(int) override { return ""; }
  void CopyFrom(const ICameraInfo&) override {}
};

TEST_F(DiscoveryTest, AForeignDescriptionIsRefused) {
  ICameraInfo* info = OneCamera(mock_);
  ForeignInfo foreign;
  EXPECT_EQ(CreateCamera(&foreign), nullptr);
  EXPECT_EQ(CreateCamera(nullptr), nullptr);
  info->CopyFrom(foreign);
  info->CopyFrom(*info);
  EXPECT_STREQ(info->CameraID(), "cam");
}

TEST_F(DiscoveryTest, ACameraIsMadeBySerialNumberAndSearchedForWhenUnknown) {
  mock_.SetInterfaces({MockInterface{"if0", "GEV", {MockDevice{"byserial", "SN-only-here"}}}});
  ASSERT_EQ(Init(), RESULT_OK);
  const CameraPtr camera(CreateCameraBySN("SN-only-here"));
  ASSERT_NE(camera, nullptr);
  EXPECT_EQ(camera->Open(ACCESS_CONTROL), RESULT_OK);
  EXPECT_EQ(CreateCameraBySN("no such number"), nullptr);
}

TEST_F(DiscoveryTest, InterfacesAreSearchedAtTheSameTime) {
  mock_.SetInterfaces(
      {MockInterface{"a", "GEV", {MockDevice{"1", "1"}}}, MockInterface{"b", "GEV", {MockDevice{"2", "2"}}}});
  auto both = std::make_shared<std::latch>(2);
  mock_.SetHook("IFUpdateDeviceList", [both](const std::string&) {
    both->arrive_and_wait();  // would never return if one waited for the other
    return GenTL::GC_ERR_SUCCESS;
  });
  ASSERT_EQ(Init(), RESULT_OK);
  EXPECT_EQ(Discover().size(), 2U);
}

TEST_F(DiscoveryTest, AnInterfaceThatHangsDoesNotStopTheRest) {
  SetPath(std::string(ZYN_MOCK_CTI) + ":" + ZYN_MOCK_OLD_CTI);
  mock_.SetInterfaces({MockInterface{"bad", "GEV", {MockDevice{"1", "1"}}},
                       MockInterface{"good", "GEV", {MockDevice{"2", "2"}}}});
  old_.SetInterfaces({MockInterface{"old", "GEV", {MockDevice{"3", "3"}}}});
  auto freed = std::make_shared<std::latch>(1);
  mock_.SetHook("IFUpdateDeviceList", [freed](const std::string& id) {
    if (id == "bad") freed->wait();
    return GenTL::GC_ERR_SUCCESS;
  });
  ASSERT_EQ(Init(), RESULT_OK);
  EXPECT_EQ(Ids(Discover()), (std::vector<std::string>{"2", "3"}));
  // The hanging interface is waited for once; afterwards the search does not lose time on it.
  const auto begin = std::chrono::steady_clock::now();
  for (int i = 0; i < 20; ++i) EXPECT_EQ(Discover().size(), 2U);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
  freed->count_down();
  while (Discover().size() != 3) std::this_thread::yield();
}

struct SubnetCase {
  const char* name;
  std::string tlType;
  std::int32_t status;
  std::uint32_t ip;  // the adapter is 192.168.1.10 with mask 255.255.255.0
  std::uint32_t mask;
  int state;
};

TEST_F(DiscoveryTest, AGigeCameraThatOnlyLacksAnAddressOfTheSubnetIsNotCalledUnreachable) {
  constexpr std::uint32_t kMask = 0xFFFFFF00;
  constexpr std::int32_t kNoAccess = GenTL::DEVICE_ACCESS_STATUS_NOACCESS;
  const std::vector<SubnetCase> cases = {
      {"another subnet", "GEV", kNoAccess, 0xC0A80263, kMask, DEVICE_STATE_READWRITE},
      {"link-local", "GEV", kNoAccess, 0xA9FE0102, 0xFFFF0000, DEVICE_STATE_READWRITE},
      {"another subnet without a mask", "GEV", kNoAccess, 0xC0A80263, 0, DEVICE_STATE_READWRITE},
      {"no address yet", "GEV", kNoAccess, 0, 0, DEVICE_STATE_READWRITE},
      {"same subnet", "GEV", kNoAccess, 0xC0A80163, kMask, DEVICE_STATE_NOACCESS},
      {"same subnet, wider mask", "GEV", kNoAccess, 0xC0A80163, 0xFFFF0000, DEVICE_STATE_NOACCESS},
      {"other states stay", "GEV", GenTL::DEVICE_ACCESS_STATUS_BUSY, 0xC0A80263, kMask, DEVICE_STATE_BUSY},
      {"no network camera", "U3V", kNoAccess, 0xC0A80263, kMask, DEVICE_STATE_NOACCESS},
  };
  ASSERT_EQ(Init(), RESULT_OK);
  for (const SubnetCase& row : cases) {
    MockDevice device{"cam", "SN1"};
    device.status = row.status;
    device.ip = row.ip;
    device.mask = row.mask;
    mock_.SetInterfaces({MockInterface{"if0", row.tlType, {device}}});
    const InfoList found = Discover();
    ASSERT_EQ(found.size(), 1U) << row.name;
    EXPECT_EQ(found.front()->DeviceState(), row.state) << row.name;
  }
}

TEST_F(DiscoveryTest, ADeviceOpenHereSaysSoEvenIfTheProducerCallsItFree) {
  const CameraPtr camera = OpenOne(mock_);
  EXPECT_EQ(Discover().front()->DeviceState(), DEVICE_STATE_OPEN_READWRITE);
  ASSERT_EQ(camera->Close(), RESULT_OK);
  EXPECT_EQ(Discover().front()->DeviceState(), DEVICE_STATE_READWRITE);
}

}  // namespace
}  // namespace zyn::transport_test
