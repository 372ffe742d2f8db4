#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "FakeTransport.h"
#include "PhysicCamera.h"
#include "TestNodeMap.h"
#include "ZynCamera.h"

using namespace ZYNSDK;
using fakes::MemoryPort;
using fakes::TestNodeMap;

namespace {

using Nodes = std::vector<std::pair<std::string, ZynNodeType>>;

constexpr auto kRemote = ZYN_XML_REMOTE_DEVICE;
constexpr auto kNoSource = static_cast<ZynXmlSource>(5);
constexpr auto kNegativeSource = static_cast<ZynXmlSource>(-1);

// An open device whose remote node map is the test camera.
class PhysicCameraNodes : public testing::Test {
 protected:
  PhysicCameraNodes() {
    transport.cameras[&info] = {&camera};
    device.Open(&info);
    camera.remoteMap.map = area.Map();
  }
  ~PhysicCameraNodes() override { device.Close(); }

  long Type(const char* name, ZynNodeType& type) {
    return device.GetNodeType(std::string(name), kRemote, type);
  }
  long ReadInt(const char* name) { return device.GetInt(name, kRemote, value, minimum, maximum, increment); }
  long ReadFloat(const char* name) { return device.GetFloat(name, kRemote, real, realMin, realMax, realInc); }

  TestNodeMap area;
  fakes::FakeTransport transport;
  fakes::FakeCameraInfo info;
  fakes::FakeCamera camera;
  PhysicCamera device;
  int value = -1, minimum = -1, maximum = -1, increment = -1;
  float real = -1, realMin = -1, realMax = -1, realInc = -1;
  ZynString current;
  ZynStringArray entries;
};

std::vector<std::string> Texts(const ZynStringArray& array) {
  std::vector<std::string> texts;
  for (unsigned int i = 0; i < array.length(); ++i) texts.emplace_back(array[static_cast<int>(i)].getStr());
  return texts;
}

struct SourceCase {
  const char* name;
  ZynXmlSource source;
  fakes::FakeNodeMapHolder fakes::FakeCamera::*holder;
  const char* getter;
};

class EachSource : public PhysicCameraNodes, public testing::WithParamInterface<SourceCase> {};

struct TypeCase {
  const char* name;
  ZynNodeType type;
  long result;
};

class NodeTypes : public PhysicCameraNodes, public testing::WithParamInterface<TypeCase> {};

struct TriggerCase {
  const char* name;
  unsigned int mode;
  unsigned int source;
  int expected;
};

class TriggerSources : public PhysicCameraNodes, public testing::WithParamInterface<TriggerCase> {};

const auto kName = [](const auto& test) { return std::string(test.param.name); };

}  // namespace

TEST_P(EachSource, ComesFromItsOwnGetter) {
  TestNodeMap map(R"(<Integer Name="Only"><Value>3</Value></Integer>)", {"Only"});
  (camera.*GetParam().holder).map = map.Map();
  camera.calls.Clear();
  EXPECT_EQ(device.GetInt("Only", GetParam().source, value, minimum, maximum, increment), ZYN_OK);
  EXPECT_EQ(value, 3);
  EXPECT_EQ(camera.calls.Names(), (std::vector<std::string>{"IsOpen", GetParam().getter}));
  EXPECT_EQ(device.GetNodesMap(GetParam().source), map.Map());
  // The name exists nowhere else.
  const auto other = GetParam().source == ZYN_XML_INTERFACE ? ZYN_XML_DATA_STREAM : ZYN_XML_INTERFACE;
  camera.interfaceMap.map = GetParam().source == ZYN_XML_INTERFACE ? map.Map() : area.Map();
  camera.streamMap.map = GetParam().source == ZYN_XML_DATA_STREAM ? map.Map() : area.Map();
  EXPECT_EQ(device.GetInt("Only", other, value, minimum, maximum, increment), ZYN_ERROR_NO_SUCH_NODE);
}

INSTANTIATE_TEST_SUITE_P(
    Table, EachSource,
    testing::Values(
        SourceCase{"Remote", ZYN_XML_REMOTE_DEVICE, &fakes::FakeCamera::remoteMap, "RemoteDeviceNodeMap"},
        SourceCase{"Local", ZYN_XML_LOCAL_DEVICE, &fakes::FakeCamera::localMap, "LocalDeviceNodeMap"},
        SourceCase{"TransportLayer", ZYN_XML_TRANSPORT_LAYER, &fakes::FakeCamera::tlMap, "TLNodeMap"},
        SourceCase{"Interface", ZYN_XML_INTERFACE, &fakes::FakeCamera::interfaceMap, "InterfaceNodeMap"},
        SourceCase{"DataStream", ZYN_XML_DATA_STREAM, &fakes::FakeCamera::streamMap, "DataStreamNodeMap"}),
    kName);

TEST_F(PhysicCameraNodes, ASourceOutOfRangeIsRefusedBeforeAnyLookUp) {
  GenApi::INode* node = reinterpret_cast<GenApi::INode*>(&camera);
  camera.calls.Clear();
  EXPECT_EQ(device.GetNode("Width", kNoSource, node), ZYN_ERROR_NO_NODE_MAP);
  EXPECT_EQ(node, nullptr);
  EXPECT_EQ(device.GetNode("Width", kNegativeSource, node), ZYN_ERROR_NO_NODE_MAP);
  Nodes nodes;
  EXPECT_EQ(device.GetNodes(kNoSource, nodes), ZYN_ERROR_NO_NODE_MAP);
  EXPECT_EQ(device.GetNodesMap(kNoSource), nullptr);
  EXPECT_EQ(camera.calls.Count("RemoteDeviceNodeMap"), 0);
}

TEST_F(PhysicCameraNodes, AMissingHolderOrMapIsNoNodeMap) {
  GenApi::INode* node = nullptr;
  EXPECT_EQ(device.GetNode("Width", ZYN_XML_INTERFACE, node), ZYN_ERROR_NO_NODE_MAP);
  camera.hasHolders = false;
  EXPECT_EQ(device.GetNode("Width", kRemote, node), ZYN_ERROR_NO_NODE_MAP);
  EXPECT_EQ(device.GetNodesMap(kRemote), nullptr);
}

TEST_F(PhysicCameraNodes, ACameraThatIsNotOpenAnswersSo) {
  camera.isOpen = false;
  GenApi::INode* node = nullptr;
  Nodes nodes;
  EXPECT_EQ(device.GetNode("Width", kNoSource, node), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(device.GetNodes(kNoSource, nodes), ZYN_ERROR_NOT_OPEN);
}

TEST_F(PhysicCameraNodes, AClosedDeviceAnswersSoEverywhere) {
  PhysicCamera closed;
  GenApi::INode* node = reinterpret_cast<GenApi::INode*>(&camera);
  Nodes nodes;
  ZynNodeType type = ZYN_NODE_FLOAT;
  bool flag = false;
  EXPECT_EQ(closed.GetNode("Width", kNoSource, node), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(node, nullptr);
  EXPECT_EQ(closed.GetNodeType(std::string("Width"), kRemote, type), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(type, ZYN_NODE_UNKNOWN);
  EXPECT_EQ(closed.GetNodes(kRemote, nodes), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(closed.GetNodesMap(kRemote), nullptr);
  EXPECT_EQ(closed.GetBool("Flag", kRemote, flag), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(closed.GetInt("Width", kRemote, value, minimum, maximum, increment), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(closed.GetFloat("Stepped", kRemote, real, realMin, realMax, realInc), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(closed.SetBool("Flag", kRemote, true), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(closed.SetInt("Width", kRemote, 1), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(closed.SetFloat("Stepped", kRemote, 1), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(closed.SetEnumString("Mode", kRemote, "First"), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(closed.SetEnumIndex("Mode", kRemote, 10), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(closed.Execute("Reset", kRemote, 0), ZYN_ERROR_NOT_OPEN);
  current = "old";
  entries.push_back(current);
  EXPECT_EQ(closed.GetEnum("Mode", kRemote, current, entries), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(current.length(), 0U);  // emptied whatever follows
  EXPECT_EQ(entries.length(), 0U);
}

TEST_F(PhysicCameraNodes, AnUnknownNameIsNoSuchNode) {
  GenApi::INode* node = nullptr;
  EXPECT_EQ(device.GetNode("Nothing", kRemote, node), ZYN_ERROR_NO_SUCH_NODE);
  EXPECT_EQ(device.GetNode("Width", kRemote, node), ZYN_OK);
  ASSERT_NE(node, nullptr);
  EXPECT_STREQ(node->GetName().c_str(), "Width");
}

TEST_P(NodeTypes, FollowTheInterface) {
  ZynNodeType type = ZYN_NODE_OTHER;
  EXPECT_EQ(Type(GetParam().name, type), GetParam().result);
  EXPECT_EQ(type, GetParam().type);
}

INSTANTIATE_TEST_SUITE_P(Table, NodeTypes,
                         testing::Values(TypeCase{"Flag", ZYN_NODE_BOOLEAN, ZYN_OK},
                                         TypeCase{"Width", ZYN_NODE_INTEGER, ZYN_OK},
                                         TypeCase{"Hidden", ZYN_NODE_INTEGER, ZYN_OK},
                                         TypeCase{"Stepped", ZYN_NODE_FLOAT, ZYN_OK},
                                         TypeCase{"Mode", ZYN_NODE_ENUMERATION, ZYN_OK},
                                         TypeCase{"Reset", ZYN_NODE_COMMAND, ZYN_OK},
                                         TypeCase{"Text", ZYN_NODE_UNKNOWN, ZYN_ERROR_UNSUPPORTED_NODE},
                                         TypeCase{"Raw", ZYN_NODE_UNKNOWN, ZYN_ERROR_UNSUPPORTED_NODE},
                                         TypeCase{"Group", ZYN_NODE_UNKNOWN, ZYN_ERROR_UNSUPPORTED_NODE},
                                         TypeCase{"Device", ZYN_NODE_UNKNOWN, ZYN_ERROR_UNSUPPORTED_NODE},
                                         TypeCase{"Nothing", ZYN_NODE_UNKNOWN, ZYN_ERROR_NO_SUCH_NODE}),
                         kName);

TEST_F(PhysicCameraNodes, NoNodeIsOfNoType) {
  EXPECT_EQ(PhysicCamera::GetNodeType(nullptr), ZYN_NODE_UNKNOWN);
}

TEST_F(PhysicCameraNodes, ListsVisibleFeaturesOfServedTypes) {
  Nodes nodes{{"kept", ZYN_NODE_OTHER}};
  EXPECT_EQ(device.GetNodes(kRemote, nodes), ZYN_OK);
  const auto has = [&](const char* name, ZynNodeType type) {
    for (const auto& node : nodes) {
      if (node.first == name) return node.second == type;
    }
    return false;
  };
  EXPECT_EQ(nodes.front().first, "kept");  // appends
  EXPECT_TRUE(has("Width", ZYN_NODE_INTEGER));
  EXPECT_TRUE(has("Stepped", ZYN_NODE_FLOAT));
  EXPECT_TRUE(has("Flag", ZYN_NODE_BOOLEAN));
  EXPECT_TRUE(has("Mode", ZYN_NODE_ENUMERATION));
  EXPECT_TRUE(has("Reset", ZYN_NODE_COMMAND));
  EXPECT_TRUE(has("ForExperts", ZYN_NODE_INTEGER));
  EXPECT_TRUE(has("ForGurus", ZYN_NODE_INTEGER));
  EXPECT_TRUE(has("NotAvailable", ZYN_NODE_INTEGER));
  for (const auto& [name, type] : nodes) {
    for (const char* unlisted :
         {"Hidden", "NoFeature", "WidthReg", "Text", "Raw", "Group", "Root", "Device"}) {
      EXPECT_NE(name, unlisted);
    }
  }
}

TEST_F(PhysicCameraNodes, ListsInTheOrderOfTheNodeMap) {
  Nodes nodes;
  device.GetNodes(kRemote, nodes);
  GenApi::NodeList_t all;
  area.Map()->GetNodes(all);
  std::size_t next = 0;
  for (GenApi::INode* node : all) {
    if (next < nodes.size() && nodes[next].first == node->GetName().c_str()) ++next;
  }
  EXPECT_EQ(next, nodes.size());
}

TEST_F(PhysicCameraNodes, AMapOfTextsAndCategoriesListsNothing) {
  TestNodeMap texts(R"(<String Name="A"><Value>a</Value></String><Category Name="B"/>)", {"A", "B"});
  camera.localMap.map = texts.Map();
  Nodes nodes;
  EXPECT_EQ(device.GetNodes(ZYN_XML_LOCAL_DEVICE, nodes), ZYN_OK);
  EXPECT_TRUE(nodes.empty());
}

TEST_F(PhysicCameraNodes, ReadsAnIntegerWithItsLimits) {
  EXPECT_EQ(ReadInt("Width"), ZYN_OK);
  EXPECT_EQ(value, 640);
  EXPECT_EQ(minimum, 16);
  EXPECT_EQ(maximum, 4096);
  EXPECT_EQ(increment, 8);
}

TEST_F(PhysicCameraNodes, TypedReadsRefuseOtherTypesAndUnreadableNodes) {
  bool flag = false;
  for (const char* name : {"Stepped", "Flag", "Mode", "Reset", "Text", "WriteOnly", "NotAvailable"}) {
    EXPECT_EQ(ReadInt(name), ZYN_ERROR_NOT_READABLE) << name;
  }
  for (const char* name : {"Flag", "Mode", "Reset", "Text", "NotAvailableFloat"}) {
    EXPECT_EQ(ReadFloat(name), ZYN_ERROR_NOT_READABLE) << name;
  }
  for (const char* name : {"Width", "Stepped", "Mode", "Text", "WriteOnlyFlag"}) {
    EXPECT_EQ(device.GetBool(name, kRemote, flag), ZYN_ERROR_NOT_READABLE) << name;
  }
  EXPECT_EQ(ReadInt("Nothing"), ZYN_ERROR_NO_SUCH_NODE);
  EXPECT_EQ(ReadFloat("Nothing"), ZYN_ERROR_NO_SUCH_NODE);
  EXPECT_EQ(device.GetBool("Nothing", kRemote, flag), ZYN_ERROR_NO_SUCH_NODE);
}

TEST_F(PhysicCameraNodes, AnIntegerReadIsTriedThreeTimes) {
  area.port.Put(MemoryPort::kVolatile, 42);
  area.port.failingReads = 2;
  EXPECT_EQ(ReadInt("Volatile"), ZYN_OK);
  EXPECT_EQ(value, 42);
  area.port.reads = 0;
  area.port.failingReads = 100;
  EXPECT_EQ(ReadInt("Volatile"), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(area.port.reads, 3);
}

TEST_F(PhysicCameraNodes, AFailingLimitRepeatsTheWholeRead) {
  TestNodeMap map(R"(
<Integer Name="Ranged"><pValue>ValueReg</pValue><pMin>Nowhere</pMin></Integer>
<IntReg Name="ValueReg"><Address>0x00</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
  <Cachable>NoCache</Cachable><Sign>Signed</Sign><Endianess>BigEndian</Endianess></IntReg>
<IntReg Name="Nowhere"><Address>0x1000</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
  <Cachable>NoCache</Cachable><Sign>Signed</Sign><Endianess>BigEndian</Endianess></IntReg>)",
                  {"Ranged"});
  camera.remoteMap.map = map.Map();
  EXPECT_EQ(ReadInt("Ranged"), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(map.port.reads, 6);  // value and minimum, three times
}

TEST_F(PhysicCameraNodes, AReadAgainComesFromTheCache) {
  bool flag = false;
  device.GetBool("Flag", kRemote, flag);
  ReadInt("Width");
  ReadFloat("Stepped");
  device.GetEnum("Mode", kRemote, current, entries);
  area.port.reads = 0;
  EXPECT_EQ(device.GetBool("Flag", kRemote, flag), ZYN_OK);
  EXPECT_EQ(ReadInt("Width"), ZYN_OK);
  EXPECT_EQ(ReadFloat("Stepped"), ZYN_OK);
  EXPECT_EQ(device.GetEnum("Mode", kRemote, current, entries), ZYN_OK);
  EXPECT_EQ(area.port.reads, 0);
}

TEST_F(PhysicCameraNodes, AFloatReadIsNotRetried) {
  area.port.failingReads = 1;
  EXPECT_THROW(ReadFloat("VolatileFloat"), GenICam::GenericException);
  EXPECT_EQ(area.port.failingReads, 0);
}

TEST_F(PhysicCameraNodes, AFloatWithoutAFixedIncrementReportsOne) {
  EXPECT_EQ(device.SetFloat("ExposureTimeAbs", kRemote, 125.5F), ZYN_OK);
  EXPECT_EQ(ReadFloat("ExposureTimeAbs"), ZYN_OK);
  EXPECT_EQ(real, 125.5F);
  EXPECT_EQ(realMin, 10.0F);
  EXPECT_EQ(realMax, 1000000.0F);
  EXPECT_EQ(realInc, 1.0F);
}

TEST_F(PhysicCameraNodes, AFloatWithAFixedIncrementReportsIt) {
  EXPECT_EQ(ReadFloat("Stepped"), ZYN_OK);
  EXPECT_EQ(realInc, 0.5F);
}

TEST_F(PhysicCameraNodes, ReadsAndWritesABoolean) {
  bool flag = true;
  EXPECT_EQ(device.GetBool("Flag", kRemote, flag), ZYN_OK);
  EXPECT_FALSE(flag);
  EXPECT_EQ(device.SetBool("Flag", kRemote, true), ZYN_OK);
  EXPECT_EQ(area.port.Get(MemoryPort::kFlag), 1U);
  EXPECT_EQ(device.GetBool("Flag", kRemote, flag), ZYN_OK);
  EXPECT_TRUE(flag);
}

TEST_F(PhysicCameraNodes, ReadsTheAvailableEntriesOfAnEnumeration) {
  EXPECT_EQ(device.GetEnum("Mode", kRemote, current, entries), ZYN_OK);
  EXPECT_STREQ(current.getStr(), "Second");
  EXPECT_EQ(Texts(entries), (std::vector<std::string>{"First", "Second", "Third", "Fourth"}));
}

TEST_F(PhysicCameraNodes, AnEnumerationReadOfSomethingElseIsEmptyAndNoFailure) {
  for (const char* name : {"Width", "Text", "WriteOnlyMode"}) {
    current = "old";
    entries.push_back(current);
    EXPECT_EQ(device.GetEnum(name, kRemote, current, entries), ZYN_OK) << name;
    EXPECT_EQ(current.length(), 0U);
    EXPECT_EQ(entries.length(), 0U);
  }
  EXPECT_EQ(device.GetEnum("Nothing", kRemote, current, entries), ZYN_ERROR_NO_SUCH_NODE);
}

TEST_F(PhysicCameraNodes, AnEnumerationReadLetsExceptionsThrough) {
  area.port.failingReads = 1;
  EXPECT_THROW(device.GetEnum("VolatileMode", kRemote, current, entries), GenICam::GenericException);
}

TEST_F(PhysicCameraNodes, WritesAnEnumerationByNameAndByValue) {
  EXPECT_EQ(device.SetEnumString("Mode", kRemote, "Third"), ZYN_OK);
  EXPECT_EQ(area.port.Get(MemoryPort::kMode), 14U);
  EXPECT_EQ(device.SetEnumIndex("Mode", kRemote, 10), ZYN_OK);
  EXPECT_EQ(area.port.Get(MemoryPort::kMode), 10U);
  EXPECT_THROW(device.SetEnumString("Mode", kRemote, "Fifth"), GenICam::GenericException);
  EXPECT_THROW(device.SetEnumIndex("Mode", kRemote, 99), GenICam::GenericException);
}

TEST_F(PhysicCameraNodes, WritesAnInteger) {
  EXPECT_EQ(device.SetInt("Width", kRemote, 1024), ZYN_OK);
  EXPECT_EQ(area.port.Get(MemoryPort::kWidth), 1024U);
  EXPECT_THROW(device.SetInt("Width", kRemote, 5000), GenICam::GenericException);
}

TEST_F(PhysicCameraNodes, WritingToAnotherTypeThrowsTheNullPointersException) {
  const auto expectNullPointer = [](const std::function<void()>& write) {
    try {
      write();
      ADD_FAILURE() << "no exception";
    } catch (const GenICam::LogicalErrorException& exception) {
      EXPECT_STREQ(exception.GetDescription(), "NULL pointer dereferenced");
    }
  };
  expectNullPointer([&] { device.SetBool("Width", kRemote, true); });
  expectNullPointer([&] { device.SetInt("Text", kRemote, 1); });
  expectNullPointer([&] { device.SetFloat("Text", kRemote, 1); });
  expectNullPointer([&] { device.SetEnumString("Width", kRemote, "First"); });
  expectNullPointer([&] { device.SetEnumIndex("Width", kRemote, 1); });
  expectNullPointer([&] { device.Execute("Width", kRemote, 0); });
}

TEST_F(PhysicCameraNodes, WritingToAnUnknownNameIsNoSuchNode) {
  EXPECT_EQ(device.SetBool("Nothing", kRemote, true), ZYN_ERROR_NO_SUCH_NODE);
  EXPECT_EQ(device.SetInt("Nothing", kRemote, 1), ZYN_ERROR_NO_SUCH_NODE);
  EXPECT_EQ(device.SetFloat("Nothing", kRemote, 1), ZYN_ERROR_NO_SUCH_NODE);
  EXPECT_EQ(device.SetEnumString("Nothing", kRemote, "x"), ZYN_ERROR_NO_SUCH_NODE);
  EXPECT_EQ(device.SetEnumIndex("Nothing", kRemote, 1), ZYN_ERROR_NO_SUCH_NODE);
  EXPECT_EQ(device.Execute("Nothing", kRemote, 1), ZYN_ERROR_NO_SUCH_NODE);
}

TEST_F(PhysicCameraNodes, ExecuteOfACommandThatIsDoneSucceedsAtOnce) {
  EXPECT_EQ(device.Execute("Reset", kRemote, 0), ZYN_OK);
  EXPECT_EQ(area.port.Get(MemoryPort::kCommand), 1U);
}

TEST_F(PhysicCameraNodes, ExecuteWithTimeoutZeroOnABusyCommandExecutesAndAnswersMinusOne) {
  device.Execute("Reset", kRemote, 0);  // now it is running
  area.port.writes = 0;
  EXPECT_EQ(device.Execute("Reset", kRemote, 0), -1);
  EXPECT_EQ(area.port.writes, 1);
  EXPECT_EQ(device.Execute("Reset", kRemote, -5), -1);
}

TEST_F(PhysicCameraNodes, ExecuteWaitsForAnEarlierExecution) {
  device.Execute("Reset", kRemote, 0);
  area.port.clearsAfterReads = 3;
  area.port.writes = 0;
  EXPECT_EQ(device.Execute("Reset", kRemote, 60000), ZYN_OK);
  EXPECT_EQ(area.port.writes, 1);
}

TEST_F(PhysicCameraNodes, ExecuteExecutesAlsoAfterATimeout) {
  device.Execute("Reset", kRemote, 0);
  area.port.writes = 0;
  EXPECT_EQ(device.Execute("Reset", kRemote, 2), -1);
  EXPECT_EQ(area.port.writes, 1);
}

TEST_F(PhysicCameraNodes, CloseDuringARead) {
  // The read below holds the device until it has its value, although it is closed in the middle of it.
  camera.hook = [this](const std::string& call) {
    if (call == "RemoteDeviceNodeMap") device.Close();
  };
  EXPECT_EQ(ReadInt("Width"), ZYN_OK);
  EXPECT_EQ(value, 640);
  EXPECT_EQ(camera.Releases(), 1);
}

TEST_P(TriggerSources, AreNotedAtTheStart) {
  area.port.Put(MemoryPort::kTriggerMode, GetParam().mode);
  area.port.Put(MemoryPort::kTriggerSource, GetParam().source);
  area.port.writes = 0;
  EXPECT_EQ(device.StartGrab(KELGENICAM::GRAB_ONE_BY_ONE, 0), ZYN_OK);
  EXPECT_EQ(device.TriggerSource(), GetParam().expected);
  EXPECT_EQ(area.port.writes, 0);  // only looks
}

INSTANTIATE_TEST_SUITE_P(Table, TriggerSources,
                         testing::Values(TriggerCase{"Software", 1, 0, 1}, TriggerCase{"Line1", 1, 1, 2},
                                         TriggerCase{"Line2", 1, 2, 3}, TriggerCase{"Line3", 1, 3, 4},
                                         TriggerCase{"Line4", 1, 4, 5}, TriggerCase{"OtherCase", 1, 5, 0},
                                         TriggerCase{"Line10", 1, 6, 0}, TriggerCase{"OffOnLine1", 0, 1, 0}),
                         kName);

TEST_F(PhysicCameraNodes, ASecondStartLeavesTheTriggerSourceAlone) {
  area.port.Put(MemoryPort::kTriggerMode, 1);
  area.port.Put(MemoryPort::kTriggerSource, 3);
  device.StartGrab(KELGENICAM::GRAB_ONE_BY_ONE, 0);
  EXPECT_EQ(device.SetEnumString("TriggerSource", kRemote, "Line1"), ZYN_OK);
  EXPECT_EQ(device.StartGrab(KELGENICAM::GRAB_ONE_BY_ONE, 0), ZYN_ERROR_ALREADY_GRABBING);
  EXPECT_EQ(device.TriggerSource(), 4);
  device.StopGrab();
  EXPECT_EQ(device.StartGrab(KELGENICAM::GRAB_ONE_BY_ONE, 0), ZYN_OK);
  EXPECT_EQ(device.TriggerSource(), 2);
}

TEST_F(PhysicCameraNodes, AStartThatCannotReadTheTriggerForgetsTheSourceBefore) {
  area.port.Put(MemoryPort::kTriggerMode, 1);
  area.port.Put(MemoryPort::kTriggerSource, 3);
  device.StartGrab(KELGENICAM::GRAB_ONE_BY_ONE, 0);
  EXPECT_EQ(device.TriggerSource(), 4);
  device.StopGrab();
  camera.hook = [](const std::string& call) {
    if (call == "RemoteDeviceNodeMap") throw 42;
  };
  EXPECT_THROW(device.StartGrab(KELGENICAM::GRAB_ONE_BY_ONE, 0), int);
  EXPECT_EQ(device.TriggerSource(), 0);
  camera.hook = nullptr;
}

TEST_F(PhysicCameraNodes, ACameraWithoutTriggerSourceStartsFreeRunning) {
  TestNodeMap onlyMode(R"(<Enumeration Name="TriggerMode"><EnumEntry Name="On"><Value>1</Value></EnumEntry>
      <Value>1</Value></Enumeration>)",
                       {"TriggerMode"});
  camera.remoteMap.map = onlyMode.Map();
  EXPECT_EQ(device.StartGrab(KELGENICAM::GRAB_ONE_BY_ONE, 0), ZYN_OK);
  EXPECT_EQ(device.TriggerSource(), 0);
}
