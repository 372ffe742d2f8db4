// The descriptions of the modules in our own GenICam runtime: they load, and their nodes reach the registers.
#include <GenApi/GenApi.h>

#include "KitFixture.h"

namespace {

using namespace kittest;

/// A port of the producer as the runtime sees it.
class ProducerPort final : public GenApi::IPort {
 public:
  explicit ProducerPort(PORT_HANDLE port) : port_(port) {}

  GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
  void Read(void* buffer, std::int64_t address, std::int64_t length) override {
    auto size = static_cast<std::size_t>(length);
    Check(GCReadPort(port_, static_cast<std::uint64_t>(address), buffer, &size));
  }
  void Write(const void* buffer, std::int64_t address, std::int64_t length) override {
    auto size = static_cast<std::size_t>(length);
    Check(GCWritePort(port_, static_cast<std::uint64_t>(address), buffer, &size));
  }

 private:
  static void Check(GC_ERROR error) {
    if (error != GC_ERR_SUCCESS) throw RUNTIME_EXCEPTION("producer error %d", error);
  }
  const PORT_HANDLE port_;
};

class KitNodeMap : public StreamTest {
 protected:
  void Load(GenApi::CNodeMapRef& map, ProducerPort& port, PORT_HANDLE handle) {
    std::string xml(UInt64(Bound(GCGetPortURLInfo, handle, 0U, URL_INFO_FILE_SIZE)), '\0');
    std::size_t size = xml.size();
    const std::uint64_t address = UInt64(Bound(GCGetPortURLInfo, handle, 0U, URL_INFO_FILE_REGISTER_ADDRESS));
    ASSERT_EQ(GCReadPort(handle, address, xml.data(), &size), GC_ERR_SUCCESS);
    ASSERT_NO_THROW(map._LoadXMLFromString(xml.c_str()));
    ASSERT_TRUE(map._Connect(&port, Text(Bound(GCGetPortInfo, handle, PORT_INFO_PORTNAME)).c_str()));
  }

  static std::int64_t Integer(const GenApi::CNodeMapRef& map, const char* name) {
    const GenApi::CIntegerPtr node(map._GetNode(name));
    return node->GetValue();
  }
  static std::string String(const GenApi::CNodeMapRef& map, const char* name) {
    const GenApi::CStringPtr node(map._GetNode(name));
    return node->GetValue().c_str();
  }
  static std::string Entry(const GenApi::CNodeMapRef& map, const char* name) {
    const GenApi::CEnumerationPtr node(map._GetNode(name));
    return node->ToString().c_str();
  }
};

TEST_F(KitNodeMap, TheSystemAnswers) {
  GenApi::CNodeMapRef map;
  ProducerPort port(system_);
  Load(map, port, system_);
  EXPECT_EQ(String(map, "TLVendorName"), "Scripted Vendor");
  EXPECT_EQ(String(map, "TLPath"), Text(Bound(TLGetInfo, system_, TL_INFO_PATHNAME)));
  EXPECT_EQ(Entry(map, "TLType"), "GigEVision");
  EXPECT_EQ(String(map, "InterfaceID"), "eth0");
  EXPECT_EQ(Integer(map, "GevInterfaceDefaultIPAddress"), 0xC0A80001);
}

TEST_F(KitNodeMap, TheInterfaceFollowsItsSelectorsAndCommands) {
  GenApi::CNodeMapRef map;
  ProducerPort port(interface_);
  Load(map, port, interface_);
  EXPECT_EQ(Integer(map, "GevDeviceIPAddress"), 0xC0A80010);
  EXPECT_EQ(Integer(map, "GevInterfaceSubnetMask"), 0xFFFFFF00);
  EXPECT_EQ(Entry(map, "DeviceAccessStatus"), "OpenReadWrite");
  const GenApi::CIntegerPtr selector(map._GetNode("DeviceSelector"));
  EXPECT_EQ(selector->GetMax(), 0);
  scripted::DeviceInfo usb;
  usb.id = "USB1";
  usb.u3v = scripted::U3vDeviceInfo{"0123456789AB", "SuperSpeed"};
  TheScript().devices["eth0"].push_back(usb);
  const GenApi::CCommandPtr update(map._GetNode("DeviceUpdateList"));
  update->Execute();
  EXPECT_TRUE(update->IsDone());
  EXPECT_EQ(selector->GetMax(), 1);
  selector->SetValue(1);
  EXPECT_EQ(String(map, "DeviceID"), "USB1");
  EXPECT_EQ(String(map, "U3vDeviceGUID"), "0123456789AB");
  EXPECT_FALSE(GenApi::IsAvailable(map._GetNode("GevDeviceIPAddress")));
  const GenApi::CIntegerPtr own(map._GetNode("ScriptedValue"));
  own->SetValue(0x55);
  EXPECT_EQ(TheScript().extension[0], 0x55);
}

TEST_F(KitNodeMap, TheDeviceAnswersAndTakesValues) {
  GenApi::CNodeMapRef map;
  ProducerPort port(device_);
  Load(map, port, device_);
  EXPECT_EQ(String(map, "DeviceModelName"), "Model<1>");
  EXPECT_EQ(Integer(map, "GevDeviceMACAddress"), 0x001122334455);
  const GenApi::CStringPtr name(map._GetNode("DeviceUserID"));
  name->SetValue("right");
  EXPECT_EQ(Text(Bound(DevGetInfo, device_, DEVICE_INFO_USER_DEFINED_NAME)), "right");
  const GenApi::CFloatPtr timeout(map._GetNode("LinkCommandTimeout"));
  timeout->SetValue(250000.0);
  EXPECT_EQ(timeout->GetValue(), 250000.0);
}

TEST_F(KitNodeMap, TheStreamCountsAndChangesItsMode) {
  GenApi::CNodeMapRef map;
  ProducerPort port(stream_);
  Load(map, port, stream_);
  const GenApi::CEnumerationPtr mode(map._GetNode("StreamBufferHandlingMode"));
  mode->FromString("NewestOnly");
  EXPECT_EQ(mode->GetIntValue(), 3);
  StartWith(3);
  TheScript().SendFrame(1);
  TheScript().SendFrame(2);
  EXPECT_EQ(Integer(map, "StreamDeliveredFrameCount"), 2);
  EXPECT_EQ(Integer(map, "StreamOutputBufferCount"), 1);
  const GenApi::CBooleanPtr grabbing(map._GetNode("StreamIsGrabbing"));
  EXPECT_TRUE(grabbing->GetValue());
}

}  // namespace
