// Ports that programs connect.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../MemoryPort.h"
#include "GenApi/PortStackedImpl.h"
#include "GenApi/PortWriteList.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

struct Registers {
  uint32_t first;
  uint16_t second;
  uint16_t third;
};

TEST(StructPort, IsADeviceMadeOfAStructure) {
  CTestPortStruct<Registers> port(0x100);
  CNodeMapRef map;
  map._LoadXMLFromString(
      Description(Register("IntReg", "First", 0x100, 4) + Register("IntReg", "Third", 0x106, 2) +
                  Register("IntReg", "Behind", 0x107, 2) + Register("IntReg", "Before", 0xFF, 2))
          .c_str());
  map._Connect(&port);
  port.first = 5;
  EXPECT_EQ(CIntegerPtr(map._GetNode("First"))->GetValue(), 5);
  CIntegerPtr(map._GetNode("Third"))->SetValue(9);
  EXPECT_EQ(port.third, 9);
  EXPECT_EQ(port.second, 0);
  EXPECT_EQ(port.GetNumReads(), 1);
  EXPECT_EQ(port.GetNumWrites(), 1);
  EXPECT_THROW(CIntegerPtr(map._GetNode("Behind"))->GetValue(), RuntimeException);
  EXPECT_THROW(CIntegerPtr(map._GetNode("Before"))->GetValue(), RuntimeException);
  port.first = 6;
  EXPECT_EQ(CIntegerPtr(map._GetNode("First"))->GetValue(), 5) << "the map does not know yet";
  port.InvalidateNode();
  EXPECT_EQ(CIntegerPtr(map._GetNode("First"))->GetValue(), 6);
  port.ResetStatistics();
  EXPECT_EQ(port.GetNumReads() + port.GetNumWrites(), 0);
  port.MemSet(0x11);
  EXPECT_EQ(port.second, 0x1111);
}

// Counts how writes come in.
class StackedMemory : public CPortStackedImpl {
 public:
  EAccessMode GetAccessMode() const override { return RW; }
  void Read(void* buffer, int64_t address, int64_t length) override {
    ++reads;
    memory.Read(buffer, address, length);
  }
  void Write(const void* buffer, int64_t address, int64_t length) override {
    ++singleWrites;
    memory.Write(buffer, address, length);
  }
  void Write(PORT_REGISTER_STACK_ENTRY* entries, size_t count) override {
    stacks.push_back(count);
    if (foreign) throw 42;
    if (fails) throw TIMEOUT_EXCEPTION("The device does not answer");
    for (size_t i = 0; i < count; ++i)
      memory.Write(entries[i].pBuffer, static_cast<int64_t>(entries[i].Address),
                   static_cast<int64_t>(entries[i].Size));
  }
  MemoryPort memory;
  int reads = 0;
  int singleWrites = 0;
  bool fails = false;
  bool foreign = false;
  std::vector<size_t> stacks;
};

std::string StackNodes() {
  return Register("IntReg", "A", 0x10, 4) + Register("IntReg", "B", 0x14, 4) +
         Register("MaskedIntReg", "Low", 0x18, 4, "<LSB>0</LSB><MSB>7</MSB>") +
         Register("MaskedIntReg", "High", 0x18, 4, "<LSB>8</LSB><MSB>15</MSB>") +
         "<Float Name=\"F\"><pValue>B</pValue></Float><String Name=\"S\"><Value>x</Value></String>";
}

struct StackedCamera {
  StackedCamera() {
    map._LoadXMLFromString(Description(StackNodes()).c_str());
    connected = map._Connect(static_cast<IPortStacked*>(&port));
  }
  int64_t Value(const char* name) { return CIntegerPtr(map._GetNode(name))->GetValue(); }
  StackedMemory port;
  CNodeMapRef map;
  bool connected;
};

TEST(StackedPort, TakesConcatenatedWritesInOneCall) {
  StackedCamera camera;
  ASSERT_TRUE(camera.connected);
  int calls = 0;
  const CallbackHandleType handle = Register(camera.map._GetNode("F"), [&](INode*) { ++calls; });
  CNodeWriteConcatenatorRef writes(camera.map._NewNodeWriteConcatenator());
  writes._Add("A", int64_t{1});
  writes._Add("F", 2.0);
  writes._Add("S", "text");
  gcstring_vector errors;
  EXPECT_TRUE(camera.map._ConcatenatedWrite(writes.get(), true, &errors));
  EXPECT_EQ(errors.size(), 0U);
  EXPECT_EQ(camera.port.stacks, std::vector<size_t>{2});
  EXPECT_EQ(camera.port.singleWrites, 0);
  EXPECT_EQ(camera.port.memory.bytes[0x10], 1);
  EXPECT_EQ(camera.port.memory.bytes[0x14], 2);
  EXPECT_EQ(CStringPtr(camera.map._GetNode("S"))->GetValue(), "text");
  EXPECT_EQ(calls, 1);
  Deregister(handle);
  EXPECT_EQ(camera.Value("A"), 1);
  CIntegerPtr(camera.map._GetNode("A"))->SetValue(3);
  EXPECT_EQ(camera.port.singleWrites, 1) << "a single write goes the usual way";
}

TEST(StackedPort, SeesItsWritesBeforeItReadsWhatTheyTouch) {
  StackedCamera camera;
  CNodeWriteConcatenatorRef writes(camera.map._NewNodeWriteConcatenator());
  writes._Add("Low", int64_t{1});
  writes._Add("High", int64_t{2});
  EXPECT_TRUE(camera.map._ConcatenatedWrite(writes.get()));
  EXPECT_EQ(camera.port.memory.bytes[0x18], 1);
  EXPECT_EQ(camera.port.memory.bytes[0x19], 2);
}

TEST(StackedPort, AFailedStackIsReportedAndNothingOfItIsBelieved) {
  StackedCamera camera;
  camera.port.fails = true;
  CNodeWriteConcatenatorRef writes(camera.map._NewNodeWriteConcatenator());
  writes._Add("A", int64_t{7});
  writes._Add("Missing", int64_t{7});
  gcstring_vector errors;
  EXPECT_FALSE(camera.map._ConcatenatedWrite(writes.get(), false, &errors));
  ASSERT_EQ(errors.size(), 2U);
  EXPECT_NE(std::string(errors[0].c_str()).find("'Missing' not found"), std::string::npos)
      << errors[0].c_str();
  EXPECT_NE(std::string(errors[1].c_str()).find("does not answer"), std::string::npos) << errors[1].c_str();
  EXPECT_EQ(camera.Value("A"), 0);
  camera.port.fails = false;
  CIntegerPtr(camera.map._GetNode("A"))->SetValue(8);
  EXPECT_EQ(camera.port.memory.bytes[0x10], 8) << "writing works again";
}

TEST(StackedPort, ForeignExceptionsPassAndDropWhatWasKeptBack) {
  StackedCamera camera;
  MemoryPort* const memory = &camera.port.memory;
  CNodeWriteConcatenatorRef writes(camera.map._NewNodeWriteConcatenator());
  writes._Add("A", int64_t{7});
  writes._Add("Low", int64_t{1});  // has to read the other bits
  camera.port.foreign = true;
  EXPECT_THROW(camera.map._ConcatenatedWrite(writes.get()), int);
  camera.port.foreign = false;
  EXPECT_EQ(camera.Value("A"), 0);
  EXPECT_EQ(memory->bytes[0x10], 0);
  CIntegerPtr(camera.map._GetNode("A"))->SetValue(8);
  EXPECT_EQ(memory->bytes[0x10], 8);
}

// Writes, single and stacked, in the order in which they reach the device.
class Listener : public StackedMemory {
 public:
  void Write(const void* buffer, int64_t address, int64_t length) override {
    order.push_back(address);
    if (address == refused) throw TIMEOUT_EXCEPTION("The device does not answer");
    StackedMemory::Write(buffer, address, length);
  }
  void Write(PORT_REGISTER_STACK_ENTRY* entries, size_t count) override {
    for (size_t i = 0; i < count; ++i) order.push_back(static_cast<int64_t>(entries[i].Address));
    StackedMemory::Write(entries, count);
  }
  std::vector<int64_t> order;
  int64_t refused = -1;
};

std::string StreamingNodes() {
  return StackNodes() + Register("IntReg", "StartReg", 0x20, 4) + Register("IntReg", "EndReg", 0x24, 4) +
         "<Command "
         "Name=\"DeviceRegistersStreamingStart\"><pValue>StartReg</pValue><CommandValue>1</CommandValue>"
         "</Command><Command Name=\"DeviceRegistersStreamingEnd\"><pValue>EndReg</pValue><CommandValue>1"
         "</CommandValue></Command>";
}

struct StreamingCamera {
  StreamingCamera()
      : writes((map._LoadXMLFromString(Description(StreamingNodes()).c_str()),
                map._NewNodeWriteConcatenator())) {
    map._Connect(static_cast<IPortStacked*>(&port));
    writes._Add("A", int64_t{1});
    writes._Add("B", int64_t{2});
  }
  bool Write(bool featureStreaming) {
    return map._ConcatenatedWrite(writes.get(), featureStreaming, &errors);
  }
  Listener port;
  CNodeMapRef map;
  CNodeWriteConcatenatorRef writes;
  gcstring_vector errors;
};

TEST(StackedPort, FeatureStreamingTellsTheDeviceBeforeAndAfter) {
  StreamingCamera camera;
  EXPECT_TRUE(camera.Write(true));
  EXPECT_EQ(camera.port.order, (std::vector<int64_t>{0x20, 0x10, 0x14, 0x24}));
  EXPECT_EQ(camera.port.stacks, std::vector<size_t>{2});
  camera.port.order.clear();
  EXPECT_TRUE(camera.Write(false));
  EXPECT_EQ(camera.port.order, (std::vector<int64_t>{0x10, 0x14}));
}

TEST(StackedPort, AFailedAnnouncementIsReportedAndTheValuesAreWritten) {
  StreamingCamera camera;
  camera.port.refused = 0x20;
  EXPECT_FALSE(camera.Write(true));
  EXPECT_EQ(camera.errors.size(), 1U);
  EXPECT_EQ(camera.port.order, (std::vector<int64_t>{0x20, 0x10, 0x14})) << "what did not begin need not end";
  camera.port.order.clear();
  camera.port.refused = 0x24;
  EXPECT_FALSE(camera.Write(true));
  EXPECT_EQ(camera.errors.size(), 1U);
  EXPECT_EQ(camera.port.order, (std::vector<int64_t>{0x20, 0x10, 0x14, 0x24}));
}

TEST(StackedPort, TheDeviceHearsOfTheEndWhateverHappens) {
  StreamingCamera camera;
  camera.writes._Add("Low", int64_t{1});  // has to read the other bits
  camera.port.foreign = true;
  EXPECT_THROW(camera.Write(true), int);
  ASSERT_FALSE(camera.port.order.empty());
  EXPECT_EQ(camera.port.order.back(), 0x24);
}

TEST(StackedPort, IsToldItsNode) {
  StackedCamera camera;
  EXPECT_EQ(camera.Value("A"), 0);
  camera.port.memory.bytes[0x10] = 5;
  camera.port.InvalidateNode();
  EXPECT_EQ(camera.Value("A"), 5);
  EXPECT_FALSE(camera.map._Connect(static_cast<IPortStacked*>(&camera.port), "Missing"));
}

TEST(PortWriteList, RecordsAndReplays) {
  Camera camera(Register("IntReg", "A", 0x10, 4) + Register("IntReg", "B", 0x14, 4));
  CPortRecorderPtr recorder(camera.map._GetNode("Device"));
  CPortWriteList list;
  recorder->StartRecording(&list);
  camera.Integer("A").SetValue(1);
  camera.Integer("B").SetValue(2);
  recorder->StopRecording();
  camera.Integer("A").SetValue(3);
  list.SetCookie(42);
  EXPECT_EQ(list.GetCookie(), 42);
  CPortReplayPtr(camera.map._GetNode("Device"))->Replay(&list);
  EXPECT_EQ(camera.port.bytes[0x10], 1);
  EXPECT_EQ(camera.Integer("A").GetValue(), 1) << "replaying forgets what was cached";
  camera.Integer("B").SetValue(9);
  camera.port.Replay(&list, false);
  EXPECT_EQ(camera.port.bytes[0x14], 2);
  EXPECT_EQ(camera.Integer("B").GetValue(), 9) << "nothing was invalidated";
  EXPECT_THROW(list.Replay(nullptr), InvalidArgumentException);
  EXPECT_THROW(list.Write(nullptr, 0, 1), InvalidArgumentException);
}

TEST(Factory, WritesTheDescriptionOutAgain) {
  const std::string nodes =
      StackNodes() +
      "<StructReg Comment=\"c\"><Address>0</Address><Length>4</Length><pPort>Device</pPort><StructEntry "
      "Name=\"SE\">"
      "<Bit>3</Bit></StructEntry></StructReg><EnumEntry Name=\"Outside\"><Value>4</Value></EnumEntry>"
      "<Enumeration Name=\"E\"><pEnumEntry>Outside</pEnumEntry><EnumEntry "
      "Name=\"In\"><Value>1</Value></EnumEntry>"
      "<Value>1</Value></Enumeration>"
      "<IntReg Name=\"Moved\"><IntSwissKnife Name=\"K\"><pVariable "
      "Name=\"V\">A</pVariable><Formula>V&lt;&lt;2</Formula>"
      "</IntSwissKnife><pIndex Offset=\"0x10\">A</pIndex><pIndex pOffset=\"B\">A</pIndex><Length>4</Length>"
      "<pPort>Device</pPort></IntReg>"
      "<Integer Name=\"X\" NameSpace=\"Standard\" ExposeStatic=\"Yes\"><ToolTip>&quot;a&quot; &amp; "
      "b</ToolTip><pIndex>A</pIndex>"
      "<ValueIndexed Index=\"1\">5</ValueIndexed><ValueDefault>6</ValueDefault></Integer>"
      "<Float Name=\"R\"><Value>0.1</Value><Max>INF</Max></Float>";
  CNodeMapFactory factory(Description(nodes).c_str());
  const gcstring xml = factory.ToXml();
  CNodeMapFactory again(xml);
  EXPECT_EQ(again.ToXml(), xml);
  EXPECT_NE(std::string(xml.c_str()).find("ExposeStatic=\"Yes\""), std::string::npos);
  CNodeMapRef map(again.CreateNodeMap());
  MemoryPort port;
  map._Connect(&port);
  EXPECT_EQ(map._GetNode("X")->GetToolTip(), "\"a\" & b");
  EXPECT_EQ(map._GetNode("X")->GetNameSpace(), Standard);
  EXPECT_NE(map._GetNode("EnumEntry_E_In"), nullptr);
  EXPECT_EQ(CEnumerationPtr(map._GetNode("E"))->GetEntryByName("Outside")->GetValue(), 4);
  CIntegerPtr(map._GetNode("A"))->SetValue(2);
  CIntegerPtr(map._GetNode("B"))->SetValue(3);
  EXPECT_EQ(CRegisterPtr(map._GetNode("Moved"))->GetAddress(), 8 + 0x20 + 6);
  EXPECT_EQ(CFloatPtr(map._GetNode("R"))->GetValue(), 0.1);
  EXPECT_EQ(CIntegerPtr(map._GetNode("X"))->GetValue(), 6);
}

}  // namespace
