// The ports of all modules: descriptions and registers. The descriptions are read here with a plain XML parser, so
// that a mistake shared with a node map cannot hide.
#include <map>
#include <pugixml.hpp>
#include <set>

#include "KitFixture.h"

namespace {

using namespace kittest;

/// A description and the port behind it: enough of a node map to reach plain features.
class Description {
 public:
  explicit Description(PORT_HANDLE port) : port_(port) {
    const std::string url = Text(Bound(GCGetPortURLInfo, port, 0U, URL_INFO_URL));
    EXPECT_EQ(url.rfind("local:", 0), 0U) << url;
    const std::uint64_t address = UInt64(Bound(GCGetPortURLInfo, port, 0U, URL_INFO_FILE_REGISTER_ADDRESS));
    const std::uint64_t length = UInt64(Bound(GCGetPortURLInfo, port, 0U, URL_INFO_FILE_SIZE));
    char expected[64];
    std::snprintf(expected, sizeof expected, ";%llX;%llX", static_cast<unsigned long long>(address),
                  static_cast<unsigned long long>(length));
    EXPECT_TRUE(url.ends_with(expected)) << url;
    text.resize(length);
    std::size_t size = length;
    EXPECT_EQ(GCReadPort(port, address, text.data(), &size), GC_ERR_SUCCESS);
    EXPECT_EQ(size, length);
    EXPECT_TRUE(document_.load_string(text.c_str()));
    for (const pugi::xml_node node : document_.child("RegisterDescription").children()) {
      const std::string name = node.attribute("Name").value();
      EXPECT_TRUE(nodes_.emplace(name, node).second) << "two nodes are called " << name;
    }
  }

  pugi::xml_node Node(const std::string& name) const {
    const auto found = nodes_.find(name);
    EXPECT_NE(found, nodes_.end()) << name;
    return found == nodes_.end() ? pugi::xml_node() : found->second;
  }

  std::string ReadText(const std::string& feature) const {
    const pugi::xml_node node = Node(feature);
    std::string bytes(node.child("Length").text().as_uint(), '?');
    std::size_t size = bytes.size();
    EXPECT_EQ(GCReadPort(port_, Address(node), bytes.data(), &size), GC_ERR_SUCCESS) << feature;
    return bytes.c_str();
  }

  std::int64_t ReadInteger(const std::string& feature) const {
    std::int64_t value = 0;
    std::size_t size = Register(feature).child("Length").text().as_uint();
    EXPECT_EQ(GCReadPort(port_, Address(Register(feature)), &value, &size), GC_ERR_SUCCESS) << feature;
    return value;
  }

  GC_ERROR WriteInteger(const std::string& feature, std::int64_t value) const {
    std::size_t size = Register(feature).child("Length").text().as_uint();
    return GCWritePort(port_, Address(Register(feature)), &value, &size);
  }

  GC_ERROR WriteText(const std::string& feature, const std::string& value) const {
    std::string bytes = value;
    bytes.resize(Node(feature).child("Length").text().as_uint());
    std::size_t size = bytes.size();
    return GCWritePort(port_, Address(Node(feature)), bytes.data(), &size);
  }

  bool IsAvailable(const std::string& feature) const {
    const std::string condition = Node(feature).child_value("pIsAvailable");
    return condition.empty() || ReadInteger(condition) != 0;
  }

  std::string ReadEntry(const std::string& feature) const {
    const std::int64_t value = ReadInteger(feature);
    for (const pugi::xml_node entry : Node(feature).children("EnumEntry")) {
      if (entry.child("Value").text().as_llong() == value) return entry.attribute("Name").value();
    }
    return "no entry";
  }

  const std::map<std::string, pugi::xml_node>& Nodes() const { return nodes_; }
  pugi::xml_node Root() const { return document_.child("RegisterDescription"); }

  std::string text;

 private:
  static std::uint64_t Address(const pugi::xml_node& node) {
    return std::stoull(node.child_value("Address"), nullptr, 16);
  }
  pugi::xml_node Register(const std::string& feature) const {
    const std::string value = Node(feature).child_value("pValue");
    return value.empty() ? Node(feature) : Node(value);
  }

  const PORT_HANDLE port_;
  pugi::xml_document document_;
  std::map<std::string, pugi::xml_node> nodes_;
};

using KitPort = StreamTest;

TEST_F(KitPort, PortInformationNamesTheModule) {
  struct Case {
    PORT_HANDLE port;
    const char *module, *name, *id, *vendor, *model;
    bool big;
  };
  const std::string path = Text(Bound(GCGetInfo, TL_INFO_PATHNAME));
  const char* const vendor = "Scripted Vendor";
  const char* const model = "Scripted Model";
  const Case cases[] = {
      {system_, "TLSystem", "TLPort", path.c_str(), vendor, model, false},
      {interface_, "TLInterface", "InterfacePort", "eth0", vendor, model, false},
      {device_, "TLDevice", "DevicePort", "CAM1", "Maker & Sons", "Model<1>", false},
      {remote_, "Device", "Device", "CAM1", "Maker & Sons", "Model<1>", true},
      {stream_, "TLDataStream", "StreamPort", "Stream0", vendor, model, false},
  };
  for (const Case& each : cases) {
    const auto ask = [&](PORT_INFO_CMD command) { return Bound(GCGetPortInfo, each.port, command); };
    EXPECT_EQ(Text(ask(PORT_INFO_MODULE)), each.module);
    EXPECT_EQ(Text(ask(PORT_INFO_PORTNAME)), each.name);
    EXPECT_EQ(Text(ask(PORT_INFO_ID)), each.id);
    EXPECT_EQ(Text(ask(PORT_INFO_VENDOR)), each.vendor);
    EXPECT_EQ(Text(ask(PORT_INFO_MODEL)), each.model);
    EXPECT_EQ(Text(ask(PORT_INFO_TLTYPE)), "GEV");
    EXPECT_FALSE(Text(ask(PORT_INFO_VERSION)).empty());
    EXPECT_EQ(Bool(ask(PORT_INFO_BIG_ENDIAN)), each.big);
    EXPECT_EQ(Bool(ask(PORT_INFO_LITTLE_ENDIAN)), !each.big);
    EXPECT_TRUE(Bool(ask(PORT_INFO_ACCESS_READ)));
    EXPECT_TRUE(Bool(ask(PORT_INFO_ACCESS_WRITE)));
    EXPECT_FALSE(Bool(ask(PORT_INFO_ACCESS_NA)));
    EXPECT_FALSE(Bool(ask(PORT_INFO_ACCESS_NI)));
  }
}

TEST_F(KitPort, EveryDescriptionIsSound) {
  for (PORT_HANDLE port : {system_, interface_, device_, stream_}) {
    const Description description(port);
    const pugi::xml_node head = description.Root();
    for (const char* attribute : {"ModelName", "VendorName", "StandardNameSpace", "SchemaMajorVersion",
                                  "SchemaMinorVersion", "SchemaSubMinorVersion", "MajorVersion",
                                  "MinorVersion", "SubMinorVersion", "ProductGuid", "VersionGuid"})
      EXPECT_FALSE(head.attribute(attribute).empty()) << attribute;
    EXPECT_STREQ(head.attribute("xmlns").value(), "http://www.genicam.org/GenApi/Version_1_1");
    const std::string portName = Text(Bound(GCGetPortInfo, port, PORT_INFO_PORTNAME));
    EXPECT_STREQ(description.Node(portName).name(), "Port");
    EXPECT_STREQ(description.Node("Root").name(), "Category");
    // Every link leads to a node.
    const std::set<std::string> links = {"pValue", "pMax", "pPort", "pFeature", "pSelected", "pIsAvailable"};
    for (const auto& [name, node] : description.Nodes()) {
      for (const pugi::xml_node child : node.children()) {
        if (links.count(child.name()) != 0) description.Node(child.text().as_string());
      }
    }
  }
}

// Reads every register of every description: all that the text declares exists.
TEST_F(KitPort, EveryDeclaredRegisterCanBeRead) {
  for (PORT_HANDLE port : {system_, interface_, device_, stream_}) {
    const Description description(port);
    const std::string portName = Text(Bound(GCGetPortInfo, port, PORT_INFO_PORTNAME));
    int registers = 0;
    for (const auto& [name, node] : description.Nodes()) {
      if (portName != node.child_value("pPort")) continue;
      std::vector<char> bytes(node.child("Length").text().as_uint());
      std::size_t size = bytes.size();
      const std::uint64_t address = std::stoull(node.child_value("Address"), nullptr, 16);
      EXPECT_EQ(GCReadPort(port, address, bytes.data(), &size), GC_ERR_SUCCESS) << name;
      ++registers;
    }
    EXPECT_GT(registers, 10);
  }
}

TEST_F(KitPort, MandatoryFeaturesAreThere) {
  const std::map<PORT_HANDLE, std::vector<const char*>> expected = {
      {system_,
       {"TLID", "TLVendorName", "TLModelName", "TLVersion", "TLPath", "TLType", "GenTLVersionMajor",
        "GenTLVersionMinor", "InterfaceUpdateList", "InterfaceSelector", "InterfaceID",
        "GevInterfaceMACAddress", "GevInterfaceDefaultIPAddress", "GevInterfaceDefaultSubnetMask"}},
      {interface_,
       {"InterfaceID",
        "InterfaceType",
        "InterfaceTLVersionMajor",
        "InterfaceTLVersionMinor",
        "GevInterfaceGatewaySelector",
        "GevInterfaceGateway",
        "GevInterfaceMACAddress",
        "GevInterfaceSubnetSelector",
        "GevInterfaceSubnetIPAddress",
        "GevInterfaceSubnetMask",
        "DeviceUpdateList",
        "DeviceSelector",
        "DeviceID",
        "DeviceVendorName",
        "DeviceModelName",
        "DeviceAccessStatus",
        "DeviceTLVersionMajor",
        "DeviceTLVersionMinor",
        "GevDeviceIPAddress",
        "GevDeviceSubnetMask",
        "GevDeviceMACAddress"}},
      {device_,
       {"DeviceID", "DeviceVendorName", "DeviceModelName", "DeviceType", "DeviceAccessStatus",
        "GevDeviceMACAddress", "GevDeviceIPAddress", "GevDeviceSubnetMask", "GevDeviceGateway",
        "DeviceEndianessMechanism", "StreamSelector", "StreamID"}},
      {stream_,
       {"StreamInformation", "StreamID", "StreamType", "StreamAnnouncedBufferCount",
        "StreamBufferHandlingMode", "StreamAnnounceBufferMinimum"}}};
  for (const auto& [port, names] : expected) {
    const Description description(port);
    for (const char* name : names) description.Node(name);
  }
}

TEST_F(KitPort, SystemFeaturesAgreeWithTheInformationCommands) {
  const Description description(system_);
  const std::pair<const char*, TL_INFO_CMD> texts[] = {
      {"TLID", TL_INFO_ID},           {"TLVendorName", TL_INFO_VENDOR},
      {"TLModelName", TL_INFO_MODEL}, {"TLVersion", TL_INFO_VERSION},
      {"TLFileName", TL_INFO_NAME},   {"TLDisplayName", TL_INFO_DISPLAYNAME},
      {"TLPath", TL_INFO_PATHNAME}};
  for (const auto& [feature, command] : texts)
    EXPECT_EQ(description.ReadText(feature), Text(Bound(TLGetInfo, system_, command))) << feature;
  EXPECT_EQ(description.ReadEntry("TLType"), "GigEVision");
  EXPECT_EQ(description.ReadInteger("GenTLVersionMajor"), 1);
  EXPECT_EQ(description.ReadInteger("GenTLVersionMinor"), 6);
  EXPECT_EQ(description.ReadText("InterfaceID"), "eth0");
  EXPECT_EQ(description.ReadInteger("GevInterfaceMACAddress"), 0x0A0B0C0D0E0F);
  EXPECT_EQ(description.ReadInteger("GevInterfaceDefaultIPAddress"), 0xC0A80001);
  EXPECT_EQ(description.ReadInteger("GevInterfaceDefaultSubnetMask"), 0xFFFFFF00);
  EXPECT_EQ(description.ReadInteger("GevInterfaceDefaultGateway"), 0xC0A800FE);
}

TEST_F(KitPort, SelectedInterfacesFollowTheSelectorAndTheUpdateCommand) {
  const Description description(system_);
  scripted::InterfaceInfo usb;
  usb.id = "usb";
  usb.tlType = GENTL_TLTYPE_U3V;
  TheScript().interfaces.push_back(usb);
  EXPECT_EQ(description.ReadInteger("InterfaceSelectorMaxReg"), 0);
  EXPECT_EQ(description.WriteInteger("InterfaceSelector", 1), GC_ERR_INVALID_VALUE);
  EXPECT_EQ(description.WriteInteger("InterfaceUpdateList", 1), GC_ERR_SUCCESS);
  EXPECT_EQ(description.ReadInteger("InterfaceSelectorMaxReg"), 1);
  EXPECT_TRUE(description.IsAvailable("GevInterfaceMACAddress"));
  EXPECT_EQ(description.WriteInteger("InterfaceSelector", 1), GC_ERR_SUCCESS);
  EXPECT_EQ(description.ReadText("InterfaceID"), "usb");
  EXPECT_FALSE(description.IsAvailable("GevInterfaceMACAddress"));
  TheScript().interfaces.clear();
  EXPECT_EQ(TLUpdateInterfaceList(system_, nullptr, 10), GC_ERR_SUCCESS);
  EXPECT_EQ(description.ReadInteger("InterfaceSelector"), 0);
  EXPECT_FALSE(description.IsAvailable("InterfaceID"));
}

TEST_F(KitPort, InterfaceFeaturesShowAdapterAndDevices) {
  const Description description(interface_);
  EXPECT_EQ(description.ReadText("InterfaceID"), "eth0");
  EXPECT_EQ(description.ReadText("InterfaceDisplayName"), "eth0 display");
  EXPECT_EQ(description.ReadEntry("InterfaceType"), "GigEVision");
  EXPECT_EQ(description.ReadInteger("InterfaceTLVersionMajor"), 2);
  EXPECT_EQ(description.ReadInteger("GevInterfaceMACAddress"), 0x0A0B0C0D0E0F);
  EXPECT_EQ(description.ReadInteger("GevInterfaceSubnetSelectorMaxReg"), 1);
  EXPECT_EQ(description.ReadInteger("GevInterfaceSubnetIPAddress"), 0xC0A80001);
  EXPECT_EQ(description.WriteInteger("GevInterfaceSubnetSelector", 1), GC_ERR_SUCCESS);
  EXPECT_EQ(description.ReadInteger("GevInterfaceSubnetIPAddress"), 0x0A000001);
  EXPECT_EQ(description.ReadInteger("GevInterfaceSubnetMask"), 0xFF000000);
  EXPECT_EQ(description.ReadInteger("GevInterfaceGateway"), 0xC0A800FE);
  const std::pair<const char*, DEVICE_INFO_CMD> texts[] = {{"DeviceID", DEVICE_INFO_ID},
                                                           {"DeviceVendorName", DEVICE_INFO_VENDOR},
                                                           {"DeviceModelName", DEVICE_INFO_MODEL},
                                                           {"DeviceSerialNumber", DEVICE_INFO_SERIAL_NUMBER},
                                                           {"DeviceUserID", DEVICE_INFO_USER_DEFINED_NAME}};
  for (const auto& [feature, command] : texts)
    EXPECT_EQ(description.ReadText(feature), Text(Bound(IFGetDeviceInfo, interface_, "CAM1", command)))
        << feature;
  EXPECT_EQ(description.ReadEntry("DeviceAccessStatus"), "OpenReadWrite");
  EXPECT_EQ(description.ReadInteger("GevDeviceIPAddress"), 0xC0A80010);
  EXPECT_EQ(description.ReadInteger("GevDeviceSubnetMask"), 0xFFFFFF00);
  EXPECT_EQ(description.ReadInteger("GevDeviceGateway"), 0xC0A800FE);
  EXPECT_EQ(description.ReadInteger("GevDeviceMACAddress"), 0x001122334455);
  EXPECT_EQ(description.ReadEntry("GevDeviceIPConfigurationStatus"), "PersistentIP");
  EXPECT_TRUE(description.IsAvailable("GevDeviceIPAddress"));
  EXPECT_FALSE(description.IsAvailable("U3vDeviceGUID"));
}

TEST_F(KitPort, UsbDevicesShowTheirGuidAndSpeed) {
  scripted::DeviceInfo usb;
  usb.id = "USB1";
  usb.tlType = GENTL_TLTYPE_U3V;
  usb.u3v = scripted::U3vDeviceInfo{"0123456789AB", "SuperSpeed"};
  TheScript().devices["eth0"].push_back(usb);
  const Description description(interface_);
  EXPECT_EQ(description.WriteInteger("DeviceUpdateList", 1), GC_ERR_SUCCESS);
  EXPECT_EQ(description.WriteInteger("DeviceSelector", 1), GC_ERR_SUCCESS);
  EXPECT_EQ(description.ReadText("U3vDeviceGUID"), "0123456789AB");
  EXPECT_EQ(description.ReadText("U3vDeviceSpeedSupport"), "SuperSpeed");
  EXPECT_TRUE(description.IsAvailable("U3vDeviceGUID"));
  EXPECT_FALSE(description.IsAvailable("GevDeviceIPAddress"));
}

TEST_F(KitPort, AnAddressIsForcedOnDevicesThatAreNotOpen) {
  const Description description(interface_);
  EXPECT_EQ(description.WriteInteger("GevDeviceForceIPAddress", 0xC0A80020), GC_ERR_SUCCESS);
  EXPECT_EQ(description.WriteInteger("GevDeviceForceSubnetMask", 0xFFFF0000), GC_ERR_SUCCESS);
  EXPECT_EQ(description.WriteInteger("GevDeviceForceGateway", 0xC0A80001), GC_ERR_SUCCESS);
  EXPECT_EQ(description.WriteInteger("GevDeviceForceIPAddress", 0x100000000), GC_ERR_INVALID_VALUE);
  EXPECT_EQ(description.WriteInteger("GevDeviceForceIP", 1), GC_ERR_ACCESS_DENIED);
  EXPECT_EQ(DevClose(device_), GC_ERR_SUCCESS);
  EXPECT_EQ(description.WriteInteger("GevDeviceForceIP", 1), GC_ERR_SUCCESS);
  EXPECT_EQ(TheScript().forced.address, 0xC0A80020);
  EXPECT_EQ(TheScript().forced.mask, 0xFFFF0000);
  EXPECT_EQ(TheScript().forced.gateway, 0xC0A80001);
}

TEST_F(KitPort, DeviceFeaturesAgreeWithTheInformationCommands) {
  const Description description(device_);
  const std::pair<const char*, DEVICE_INFO_CMD> texts[] = {{"DeviceID", DEVICE_INFO_ID},
                                                           {"DeviceVendorName", DEVICE_INFO_VENDOR},
                                                           {"DeviceModelName", DEVICE_INFO_MODEL},
                                                           {"DeviceSerialNumber", DEVICE_INFO_SERIAL_NUMBER},
                                                           {"DeviceVersion", DEVICE_INFO_VERSION},
                                                           {"DeviceDisplayName", DEVICE_INFO_DISPLAYNAME},
                                                           {"DeviceUserID", DEVICE_INFO_USER_DEFINED_NAME}};
  for (const auto& [feature, command] : texts)
    EXPECT_EQ(description.ReadText(feature), Text(Bound(DevGetInfo, device_, command))) << feature;
  EXPECT_EQ(description.ReadEntry("DeviceType"), "GigEVision");
  EXPECT_EQ(description.ReadEntry("DeviceAccessStatus"), "OpenReadWrite");
  EXPECT_EQ(description.ReadEntry("DeviceChunkDataFormat"), "GigEVision");
  EXPECT_EQ(description.ReadEntry("DeviceEndianessMechanism"), "Standard");
  EXPECT_EQ(description.WriteInteger("DeviceEndianessMechanism", 0), GC_ERR_INVALID_VALUE);
  EXPECT_EQ(description.ReadInteger("DeviceTimestampFrequency"), 1000);
  EXPECT_EQ(description.ReadText("StreamID"), "Stream0");
  EXPECT_EQ(description.WriteText("DeviceUserID", "right"), GC_ERR_SUCCESS);
  EXPECT_EQ(Text(Bound(DevGetInfo, device_, DEVICE_INFO_USER_DEFINED_NAME)), "right");
  EXPECT_EQ(description.WriteText("DeviceUserID", "a name that is too long"), GC_ERR_INVALID_VALUE);
  EXPECT_EQ(description.WriteInteger("LinkCommandRetryCount", 7), GC_ERR_SUCCESS);
  EXPECT_EQ(description.ReadInteger("LinkCommandRetryCount"), 7);
  const std::int64_t bits = description.ReadInteger("LinkCommandTimeout");
  double timeout = 0;
  std::memcpy(&timeout, &bits, sizeof timeout);
  EXPECT_EQ(timeout, 500000.0);
}

TEST_F(KitPort, StreamFeaturesAgreeWithTheInformationCommands) {
  StartWith(4);
  TheScript().SendFrame(1);
  Announce();
  const Description description(stream_);
  EXPECT_EQ(description.ReadText("StreamID"), "Stream0");
  EXPECT_EQ(description.ReadEntry("StreamType"), "GigEVision");
  EXPECT_EQ(description.ReadEntry("StreamBufferHandlingMode"), "OldestFirst");
  EXPECT_EQ(description.ReadInteger("StreamAnnouncedBufferCount"), 5);
  EXPECT_EQ(description.ReadInteger("StreamAnnounceBufferMinimum"), 2);
  EXPECT_EQ(description.ReadInteger("StreamDeliveredFrameCount"), 1);
  EXPECT_EQ(description.ReadInteger("StreamInputBufferCount"), 3);
  EXPECT_EQ(description.ReadInteger("StreamOutputBufferCount"), 1);
  EXPECT_EQ(description.ReadInteger("StreamStartedFrameCount"), 1);
  EXPECT_EQ(description.ReadInteger("StreamLostFrameCount"), 0);
  EXPECT_EQ(description.ReadInteger("StreamIsGrabbing"), 1);
  EXPECT_EQ(description.ReadInteger("PayloadSize"), 64);
  EXPECT_TRUE(description.IsAvailable("PayloadSize"));
  TheScript().payloadSize = 0;
  EXPECT_FALSE(description.IsAvailable("PayloadSize"));
}

TEST_F(KitPort, NewestOnlyKeepsOneFrame) {
  const Description description(stream_);
  ASSERT_EQ(description.WriteInteger("StreamBufferHandlingMode", 3), GC_ERR_SUCCESS);
  StartWith(3);
  EXPECT_EQ(description.WriteInteger("StreamBufferHandlingMode", 1), GC_ERR_ACCESS_DENIED);
  for (std::uint8_t i = 1; i <= 9; ++i) EXPECT_TRUE(TheScript().SendFrame(i));
  EXPECT_EQ(Awaiting(), 1U);
  EXPECT_EQ(UInt64(Ask(Fetch(), BUFFER_INFO_FRAMEID)), 9U);
  EXPECT_EQ(Fetch(), nullptr);
  EXPECT_EQ(DSFlushQueue(stream_, ACQ_QUEUE_INPUT_TO_OUTPUT), GC_ERR_NOT_IMPLEMENTED);
}

TEST_F(KitPort, OverwritingKeepsTheNewestFramesInOrder) {
  const Description description(stream_);
  ASSERT_EQ(description.WriteInteger("StreamBufferHandlingMode", 2), GC_ERR_SUCCESS);
  StartWith(3);
  for (std::uint8_t i = 1; i <= 9; ++i) EXPECT_TRUE(TheScript().SendFrame(i));
  for (std::uint64_t i = 7; i <= 9; ++i) EXPECT_EQ(UInt64(Ask(Fetch(), BUFFER_INFO_FRAMEID)), i);
  EXPECT_EQ(UInt64(Ask(STREAM_INFO_NUM_UNDERRUN)), 0U);
}

TEST_F(KitPort, TheBackendsOwnFeaturesJoinTheModule) {
  const Description description(interface_);
  EXPECT_EQ(description.WriteInteger("ScriptedValue", 0x1234), GC_ERR_SUCCESS);
  EXPECT_EQ(description.ReadInteger("ScriptedValue"), 0x1234);
  EXPECT_EQ(TheScript().extension[1], 0x12);
  char byte = 0;
  std::size_t size = 1;
  EXPECT_EQ(GCReadPort(interface_, 0x08000020, &byte, &size), GC_ERR_INVALID_ADDRESS);
  EXPECT_EQ(GCReadPort(device_, 0x08000000, &byte, &size), GC_ERR_INVALID_ADDRESS);
}

TEST_F(KitPort, ModuleEventsFireAsTheirNotificationSays) {
  EVENT_HANDLE event = nullptr;
  ASSERT_EQ(GCRegisterEvent(interface_, EVENT_MODULE, &event), GC_ERR_SUCCESS);
  const Description description(interface_);
  EXPECT_STREQ(description.Node("EventDeviceListChangedPort").child_value("EventID"), "01");
  const auto queued = [&] { return Size(Bound(EventGetInfo, event, EVENT_NUM_IN_QUEUE)); };
  const auto change = [&] {
    TheScript().devices["eth0"][0].version += "x";
    EXPECT_EQ(IFUpdateDeviceList(interface_, nullptr, 10), GC_ERR_SUCCESS);
  };
  EXPECT_EQ(description.ReadEntry("EventNotification"), "On");
  change();
  EXPECT_EQ(queued(), 1U);
  EXPECT_EQ(IFUpdateDeviceList(interface_, nullptr, 10), GC_ERR_SUCCESS);  // nothing changed
  EXPECT_EQ(queued(), 1U);
  EXPECT_EQ(description.WriteInteger("EventNotification", 2), GC_ERR_SUCCESS);
  change();
  change();
  EXPECT_EQ(queued(), 2U);
  EXPECT_EQ(description.ReadEntry("EventNotification"), "Off");
  EXPECT_EQ(description.WriteInteger("EventNotification", 3), GC_ERR_INVALID_VALUE);
}

// ---- transfers ----

TEST_F(KitPort, RegistersAreBytesAtAnyAddressAndLength) {
  const std::uint64_t base = 0x1000;
  char whole[64] = {};
  std::size_t size = sizeof whole;
  ASSERT_EQ(GCReadPort(device_, base, whole, &size), GC_ERR_SUCCESS);
  EXPECT_STREQ(whole, "CAM1");
  char part[3] = {};
  size = 2;
  ASSERT_EQ(GCReadPort(device_, base + 1, part, &size), GC_ERR_SUCCESS);
  EXPECT_STREQ(part, "AM");
  char across[4] = {};
  size = 4;
  ASSERT_EQ(GCReadPort(device_, base + 510, across, &size), GC_ERR_SUCCESS);  // into the vendor's name
  EXPECT_EQ(std::string(across + 2, 2), "Ma");
}

TEST_F(KitPort, BadTransfersAreRefused) {
  char bytes[16] = {};
  std::size_t size = 4;
  EXPECT_EQ(GCReadPort(device_, 0, bytes, &size), GC_ERR_INVALID_ADDRESS);
  EXPECT_EQ(GCReadPort(device_, ~std::uint64_t{0}, bytes, &size), GC_ERR_INVALID_ADDRESS);
  EXPECT_EQ(GCReadPort(device_, ~std::uint64_t{0} - 1, bytes, &size), GC_ERR_INVALID_ADDRESS);
  EXPECT_EQ(GCWritePort(device_, 0x1000, bytes, &size), GC_ERR_ACCESS_DENIED);
  EXPECT_EQ(GCWritePort(device_, 0x10000000, bytes, &size), GC_ERR_ACCESS_DENIED);
  EXPECT_EQ(GCReadPort(device_, 0x1000, nullptr, &size), GC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(GCReadPort(device_, 0x1000, bytes, nullptr), GC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(GCReadPort(remote_, 0x400, bytes, &size), GC_ERR_INVALID_ADDRESS);
  const Description description(device_);
  std::vector<char> all(description.text.size() + 16);
  size = all.size();
  EXPECT_EQ(GCReadPort(device_, 0x10000000, all.data(), &size), GC_ERR_INVALID_ADDRESS);
}

TEST_F(KitPort, StackedTransfersRunInOrderAndCountTheSuccesses) {
  char a[4] = {1, 2, 3, 4};
  char b[4] = {5, 6, 7, 8};
  PORT_REGISTER_STACK_ENTRY entries[3] = {{0x10, a, 4}, {0x400, a, 4}, {0x14, b, 4}};
  std::size_t count = 3;
  EXPECT_EQ(GCWritePortStacked(remote_, entries, &count), GC_ERR_INVALID_ADDRESS);
  EXPECT_EQ(count, 1U);
  EXPECT_EQ(TheScript().registers[0x13], 4);
  EXPECT_EQ(TheScript().registers[0x14], 0);
  entries[1] = entries[2];
  count = 2;
  EXPECT_EQ(GCWritePortStacked(remote_, entries, &count), GC_ERR_SUCCESS);
  EXPECT_EQ(count, 2U);
  char read[8] = {};
  PORT_REGISTER_STACK_ENTRY reads[2] = {{0x10, read, 4}, {0x14, read + 4, 4}};
  EXPECT_EQ(GCReadPortStacked(remote_, reads, &count), GC_ERR_SUCCESS);
  EXPECT_EQ(std::string(read, 8), std::string("\1\2\3\4\5\6\7\10", 8));
  EXPECT_EQ(GCReadPortStacked(remote_, nullptr, &count), GC_ERR_INVALID_PARAMETER);
  EXPECT_EQ(GCReadPortStacked(remote_, reads, nullptr), GC_ERR_INVALID_PARAMETER);
}

TEST_F(KitPort, AReadOnlyDeviceIsNotWritten) {
  EXPECT_EQ(DevClose(device_), GC_ERR_SUCCESS);
  OpenDevice(DEVICE_ACCESS_READONLY);
  char bytes[4] = {};
  std::size_t size = 4;
  EXPECT_EQ(GCReadPort(remote_, 0x10, bytes, &size), GC_ERR_SUCCESS);
  EXPECT_EQ(GCWritePort(remote_, 0x10, bytes, &size), GC_ERR_ACCESS_DENIED);
  EXPECT_FALSE(Bool(Bound(GCGetPortInfo, remote_, PORT_INFO_ACCESS_WRITE)));
  EXPECT_EQ(Description(device_).WriteText("DeviceUserID", "right"), GC_ERR_ACCESS_DENIED);
}

TEST_F(KitPort, TheCamerasUrlsAreTakenApart) {
  std::uint32_t count = 0;
  EXPECT_EQ(GCGetNumPortURLs(remote_, &count), GC_ERR_SUCCESS);
  ASSERT_EQ(count, 2U);
  const auto ask = [&](std::uint32_t index, URL_INFO_CMD command) {
    return Bound(GCGetPortURLInfo, remote_, index, command);
  };
  EXPECT_EQ(Text(ask(0, URL_INFO_URL)), "local:camera.xml;100;20");
  EXPECT_EQ(UInt64(ask(0, URL_INFO_FILE_REGISTER_ADDRESS)), 0x100U);
  EXPECT_EQ(UInt64(ask(0, URL_INFO_FILE_SIZE)), 0x20U);
  EXPECT_EQ(Int32(ask(0, URL_INFO_SCHEME)), URL_SCHEME_LOCAL);
  EXPECT_EQ(Text(ask(0, URL_INFO_FILENAME)), "camera.xml");
  EXPECT_EQ(Int32(ask(0, URL_INFO_SCHEMA_VER_MAJOR)), 1);
  EXPECT_EQ(Int32(ask(0, URL_INFO_SCHEMA_VER_MINOR)), 1);
  EXPECT_EQ(Int32(ask(1, URL_INFO_SCHEME)), URL_SCHEME_FILE);
  EXPECT_EQ(Text(ask(1, URL_INFO_FILENAME)), "camera.xml");
  EXPECT_EQ(ResultOf(ask(1, URL_INFO_FILE_REGISTER_ADDRESS)), GC_ERR_NOT_AVAILABLE);
  EXPECT_EQ(ResultOf(ask(0, URL_INFO_FILE_SHA1_HASH)), GC_ERR_NOT_AVAILABLE);
  EXPECT_EQ(ResultOf(ask(2, URL_INFO_URL)), GC_ERR_INVALID_INDEX);
  char list[200];
  std::size_t size = sizeof list;
  ASSERT_EQ(GCGetPortURL(remote_, list, &size), GC_ERR_SUCCESS);
  const std::string expected(
      "local:camera.xml;100;20?SchemaVersion=1.1.0\0"
      "file:///opt/camera.xml?SchemaVersion=1.1.0\0",
      87);
  EXPECT_EQ(std::string(list, size), expected + '\0');
}

}  // namespace
