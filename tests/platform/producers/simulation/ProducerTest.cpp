// Finding, opening and setting up simulated cameras.
#include <set>
#include <thread>

#include "SimulatorFixture.h"
#include "cameras/Catalog.h"

namespace {

using namespace simtest;

class SimulatorProducer : public SimulatorTest {};

constexpr const char* kOneLaser = R"({"cameras": [
  {"model": "KEL-LP2000", "serialNumber": "L1", "userDefinedName": "left"}]})";

TEST_F(SimulatorProducer, WithoutConfigurationHasOneCameraOfEachModel) {
  unsetenv("ZYN_SIMULATOR_CONFIG");
  ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
  ASSERT_EQ(TLOpen(&system_), GC_ERR_SUCCESS);
  ASSERT_EQ(TLUpdateInterfaceList(system_, nullptr, 1000), GC_ERR_SUCCESS);
  std::uint32_t interfaces = 0;
  EXPECT_EQ(TLGetNumInterfaces(system_, &interfaces), GC_ERR_SUCCESS);
  EXPECT_EQ(interfaces, 2U);
  std::multiset<std::string> models;
  std::set<std::string> serials;
  for (const char* id : {kEthernet, kGrabber}) {
    ASSERT_EQ(TLOpenInterface(system_, id, &interface_), GC_ERR_SUCCESS);
    for (const std::string& device : Devices()) {
      const auto text = [&](DEVICE_INFO_CMD command) {
        return Text(Bound(IFGetDeviceInfo, interface_, device.c_str(), command));
      };
      models.insert(text(DEVICE_INFO_MODEL));
      serials.insert(text(DEVICE_INFO_SERIAL_NUMBER));
    }
    ASSERT_EQ(IFClose(interface_), GC_ERR_SUCCESS);
  }
  std::multiset<std::string> expected;
  for (const auto& entry : zyn::cameras::Catalog()) expected.emplace(entry.model);
  EXPECT_EQ(models, expected);
  EXPECT_EQ(serials.size(), expected.size());
}

TEST_F(SimulatorProducer, TheGrabberIsOnlyThereWhenACameraNeedsIt) {
  Begin(kOneLaser);
  std::uint32_t interfaces = 0;
  EXPECT_EQ(TLGetNumInterfaces(system_, &interfaces), GC_ERR_SUCCESS);
  EXPECT_EQ(interfaces, 1U);
}

TEST_F(SimulatorProducer, DescribesItsCameras) {
  Begin(kOneLaser);
  EXPECT_EQ(Devices(), std::vector<std::string>{"Sim:L1"});
  const auto text = [this](DEVICE_INFO_CMD command) {
    return Text(Bound(IFGetDeviceInfo, interface_, "Sim:L1", command));
  };
  EXPECT_EQ(text(DEVICE_INFO_MODEL), "KEL-LP2000");
  EXPECT_EQ(text(DEVICE_INFO_SERIAL_NUMBER), "L1");
  EXPECT_EQ(text(DEVICE_INFO_USER_DEFINED_NAME), "left");
  EXPECT_EQ(text(DEVICE_INFO_TLTYPE), "GEV");
  EXPECT_EQ(AccessStatus("Sim:L1"), DEVICE_ACCESS_STATUS_READWRITE);
  EXPECT_EQ(UInt64(Bound(IFGetDeviceInfo, interface_, "Sim:L1", DEVICE_INFO_TIMESTAMP_FREQUENCY)),
            1'000'000'000U);
}

TEST_F(SimulatorProducer, GivesEveryCameraAnAddressInTheAdaptersSubnet) {
  Begin(R"({"cameras": [{"model": "VX7-2000", "count": 600}]})");
  const std::uint64_t mask = static_cast<std::uint64_t>(simulator_->Int("GevInterfaceSubnetMask"));
  const std::uint64_t net = static_cast<std::uint64_t>(simulator_->Int("GevInterfaceSubnetIPAddress")) & mask;
  std::set<std::int64_t> addresses;
  for (std::int64_t i = 0; i < 600; ++i) {
    simulator_->Set("DeviceSelector", i);
    const std::int64_t address = simulator_->Int("GevDeviceIPAddress");
    EXPECT_TRUE(addresses.insert(address).second) << i;
    EXPECT_EQ(static_cast<std::uint64_t>(address) & mask, net) << i;
  }
}

TEST_F(SimulatorProducer, OpensCamerasByAnyOfTheirNames) {
  Begin(kOneLaser);
  for (const char* name : {"Sim:L1", "L1", "left", "198.18.1.1"}) {
    DEV_HANDLE device = nullptr;
    ASSERT_EQ(Open(name, &device), GC_ERR_SUCCESS) << name;
    EXPECT_EQ(AccessStatus("Sim:L1"), DEVICE_ACCESS_STATUS_OPEN_READWRITE);
    DEV_HANDLE second = nullptr;
    EXPECT_EQ(Open(name, &second), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(DevClose(device), GC_ERR_SUCCESS);
  }
  DEV_HANDLE device = nullptr;
  EXPECT_EQ(Open("L2", &device), GC_ERR_INVALID_ID);
}

TEST_F(SimulatorProducer, RefusesBadConfigurationsAndTellsWhy) {
  EXPECT_EQ(Initialise(R"({"cameras": [{"model": "NONE"}]})"), GC_ERR_INVALID_VALUE);
  EXPECT_NE(LastErrorText().find(file_->Path() + ": cameras[0].model: there is no model \"NONE\""),
            std::string::npos)
      << LastErrorText();
  EXPECT_EQ(Initialise("{"), GC_ERR_INVALID_VALUE);
  EXPECT_EQ(Initialise(kOneLaser), GC_ERR_SUCCESS) << "a later attempt works";
}

TEST_F(SimulatorProducer, FeaturesAreReadAndWrittenThroughTheRemotePort) {
  Begin(kOneLaser);
  OpenCamera camera(interface_, "L1");
  EXPECT_EQ(camera.features->Text("DeviceModelName"), "KEL-LP2000");
  camera.features->Set("BatchNumber", 37);
  EXPECT_EQ(camera.features->Int("BatchNumber"), 37);
  EXPECT_THROW(camera.features->Set("BatchNumber", 5000), GenICam_3_4::GenericException);
  EXPECT_EQ(camera.features->Int("BatchNumber"), 37);
}

TEST_F(SimulatorProducer, SettingsOutliveTheDeviceHandle) {
  Begin(kOneLaser);
  {
    OpenCamera camera(interface_, "L1");
    camera.features->Set("BatchNumber", 37);
  }
  OpenCamera camera(interface_, "L1");
  EXPECT_EQ(camera.features->Int("BatchNumber"), 37);
}

TEST_F(SimulatorProducer, ThePortTakesAnyAddressAndSizeWithinARegister) {
  Begin(kOneLaser);
  OpenCamera camera(interface_, "L1");
  const std::string url = Text(Bound(GCGetPortURLInfo, camera.port, 0U, URL_INFO_URL));
  const std::uint64_t address = std::strtoull(url.c_str() + url.find(';') + 1, nullptr, 16);
  char text[5] = {};
  std::size_t size = 4;
  ASSERT_EQ(GCReadPort(camera.port, address + 2, text, &size), GC_ERR_SUCCESS);
  EXPECT_STREQ(text, "xml ");
  EXPECT_EQ(GCWritePort(camera.port, address, text, &size), GC_ERR_ACCESS_DENIED);
  EXPECT_EQ(GCReadPort(camera.port, 0x10, text, &size), GC_ERR_INVALID_ADDRESS);
  EXPECT_EQ(GCReadPort(camera.port, ~std::uint64_t{0} - 3, text, &size), GC_ERR_INVALID_ADDRESS);
}

TEST_F(SimulatorProducer, TheUserDefinedNameIsTheCamerasOwn) {
  Begin(kOneLaser);
  OpenCamera camera(interface_, "L1");
  EXPECT_EQ(camera.features->Text("DeviceUserID"), "left");
  const NodeMap local(camera.device);
  EVENT_HANDLE invalidated = nullptr;
  ASSERT_EQ(GCRegisterEvent(camera.device, EVENT_FEATURE_INVALIDATE, &invalidated), GC_ERR_SUCCESS);
  local.SetText("DeviceUserID", "right");
  char name[600] = {};
  std::size_t size = sizeof name;
  EXPECT_EQ(EventGetData(invalidated, name, &size, 10000), GC_ERR_SUCCESS);
  EXPECT_STREQ(name, "DeviceUserID");
  camera.features = std::make_unique<NodeMap>(camera.port);  // forgets what it knew
  EXPECT_EQ(camera.features->Text("DeviceUserID"), "right");
  Devices();
  EXPECT_EQ(Text(Bound(IFGetDeviceInfo, interface_, "Sim:L1", DEVICE_INFO_USER_DEFINED_NAME)), "right");
}

TEST_F(SimulatorProducer, AForcedAddressOutsideTheSubnetPutsTheCameraOutOfReach) {
  Begin(kOneLaser);
  simulator_->Set("DeviceSelector", 0);
  simulator_->Set("GevDeviceForceIPAddress", 0x0A000005);
  simulator_->Set("GevDeviceForceSubnetMask", 0xFF000000);
  simulator_->Execute("GevDeviceForceIP");
  Devices();
  EXPECT_EQ(simulator_->Int("GevDeviceIPAddress"), 0x0A000005);
  EXPECT_EQ(AccessStatus("Sim:L1"), DEVICE_ACCESS_STATUS_NOACCESS);
  DEV_HANDLE device = nullptr;
  EXPECT_EQ(Open("L1", &device), GC_ERR_ACCESS_DENIED);
  simulator_->Set("GevDeviceForceIPAddress", 0xC6120505);
  simulator_->Set("GevDeviceForceSubnetMask", 0xFFFE0000);
  simulator_->Execute("GevDeviceForceIP");
  Devices();
  EXPECT_EQ(Open("L1", &device), GC_ERR_SUCCESS);
}

TEST_F(SimulatorProducer, CameraLinkCamerasHangOnAGrabberWithSettings) {
  Begin(R"({"cameras": [{"model": "VX7-2000", "serialNumber": "E"},
                        {"model": "VX7-2000", "serialNumber": "C", "link": "CameraLink"}]})",
        kGrabber);
  EXPECT_EQ(Devices(), std::vector<std::string>{"Sim:C"});
  EXPECT_EQ(Text(Bound(IFGetDeviceInfo, interface_, "Sim:C", DEVICE_INFO_TLTYPE)), "CL");
  OpenCamera camera(interface_, "C");
  const NodeMap card(camera.device);
  card.Set("Width", 640);
  EXPECT_EQ(card.Int("Width"), 640);
}

TEST_F(SimulatorProducer, ManyCamerasAreOpenAndUsedAtTheSameTime) {
  constexpr int kCameras = 40;
  Begin(R"({"cameras": [{"model": "KEL-LP1000F", "count": 40}]})");
  std::vector<std::thread> users;
  for (int i = 1; i <= kCameras; ++i) {
    users.emplace_back([this, i] {
      const std::string serial = std::string("SIM00") + (i < 10 ? "0" : "") + std::to_string(i);
      OpenCamera camera(interface_, serial.c_str());
      for (int round = 0; round < 20; ++round) {
        camera.features->Set("BatchNumber", i * 20 + round);
        EXPECT_EQ(camera.features->Int("BatchNumber"), i * 20 + round);
      }
    });
  }
  for (int round = 0; round < 20; ++round) EXPECT_EQ(Devices().size(), 40U);
  for (std::thread& user : users) user.join();
}

}  // namespace
