#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>
#include <string>
#include <vector>

#include "FakeNodeMap.h"
#include "FakeTransport.h"
#include "Handles.h"
#include "LogicCamera.h"
#include "TestNodeMap.h"
#include "ZynCamera.h"

using namespace ZYNSDK;
using fakes::InternalOf;
using fakes::MemoryPort;
using fakes::TestNodeMap;

namespace {

constexpr auto kRemote = ZYN_XML_REMOTE_DEVICE;

// An open camera whose remote node map is the test camera.
class LogicCameraNodes : public testing::Test {
 protected:
  LogicCameraNodes() {
    transport.cameras[&info] = {&device};
    camera.Open(nullptr);
    device.remoteMap.map = area.Map();
  }
  ~LogicCameraNodes() override {
    device.hook = nullptr;
    camera.Close();
  }

  void ThrowInLookUps() {
    device.hook = [](const std::string& call) {
      if (call == "RemoteDeviceNodeMap") throw RUNTIME_EXCEPTION("lost");
    };
  }

  TestNodeMap area;
  fakes::FakeTransport transport;
  fakes::FakeCameraInfo info;
  fakes::FakeCamera device;
  LogicCamera camera{&info};
  ZynNode node;
  ZynNodeArray nodes;
};

struct FamilyCase {
  const char* name;
  fakes::FakeNodeMapHolder fakes::FakeCamera::*holder;
  long (LogicCamera::*one)(const char*, ZynNode*);
  long (LogicCamera::*all)(ZynNodeArray*);
};

class EachFamily : public LogicCameraNodes, public testing::WithParamInterface<FamilyCase> {};

}  // namespace

TEST_P(EachFamily, LooksInItsOwnMap) {
  TestNodeMap map(R"(<Integer Name="Only"><Value>3</Value></Integer>)", {"Only"});
  device.remoteMap.map = nullptr;
  (device.*GetParam().holder).map = map.Map();
  EXPECT_EQ((camera.*GetParam().one)("Only", &node), ZYN_OK);
  EXPECT_STREQ(node.Name(), "Only");
  EXPECT_EQ((camera.*GetParam().all)(&nodes), ZYN_OK);
  ASSERT_EQ(nodes.length(), 1U);
  EXPECT_EQ(InternalOf(nodes[0]), InternalOf(node));
}

INSTANTIATE_TEST_SUITE_P(
    Table, EachFamily,
    testing::Values(
        FamilyCase{"Remote", &fakes::FakeCamera::remoteMap, &LogicCamera::GetRemoteNode,
                   &LogicCamera::GetRemoteNodes},
        FamilyCase{"Dev", &fakes::FakeCamera::localMap, &LogicCamera::GetDevNode, &LogicCamera::GetDevNodes},
        FamilyCase{"TL", &fakes::FakeCamera::tlMap, &LogicCamera::GetTLNode, &LogicCamera::GetTLNodes},
        FamilyCase{"IF", &fakes::FakeCamera::interfaceMap, &LogicCamera::GetIFNode, &LogicCamera::GetIFNodes},
        FamilyCase{"DS", &fakes::FakeCamera::streamMap, &LogicCamera::GetDSNode, &LogicCamera::GetDSNodes}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(LogicCameraNodes, NullArgumentsAreRefused) {
  EXPECT_EQ(camera.GetNodeByXmlType("Width", nullptr, kRemote), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(camera.GetNodeByXmlType(nullptr, &node, kRemote), ZYN_ERROR_INVALID_ARGUMENT);
  EXPECT_EQ(camera.GetNodesByXmlType(nullptr, kRemote), ZYN_ERROR_INVALID_ARGUMENT);
}

TEST_F(LogicCameraNodes, ANodeMapThatDoesNotExistIsNoNodeMap) {
  for (int source : {5, -1}) {
    EXPECT_EQ(camera.GetNodeByXmlType("Width", &node, static_cast<ZynXmlSource>(source)),
              ZYN_ERROR_NO_NODE_MAP);
    nodes.setSize(3);
    EXPECT_EQ(camera.GetNodesByXmlType(&nodes, static_cast<ZynXmlSource>(source)), ZYN_ERROR_NO_NODE_MAP);
    EXPECT_EQ(nodes.length(), 0U);
    EXPECT_EQ(camera.GetNodesMap(static_cast<ZynXmlSource>(source)), nullptr);
  }
}

TEST_F(LogicCameraNodes, AFailedLookUpLeavesTheHandleAlone) {
  ASSERT_EQ(camera.GetRemoteNode("Width", &node), ZYN_OK);
  const void* before = InternalOf(node);
  EXPECT_EQ(camera.GetRemoteNode("Nothing", &node), ZYN_ERROR_NO_SUCH_NODE);
  ThrowInLookUps();
  EXPECT_EQ(camera.GetRemoteNode("Gain", &node), ZYN_ERROR_EXCEPTION);
  EXPECT_THROW(camera.GetRemoteNode("TriggerSoftware", &node), GenICam::GenericException);
  EXPECT_EQ(InternalOf(node), before);
}

TEST_F(LogicCameraNodes, SpecialNamesAreExactlyFour) {
  for (const char* name : {"ExposureTime", "TriggerDelay", "Gain", "AcquisitionFrameRate"}) {
    EXPECT_TRUE(LogicCamera::IsSpecialNode(name));
  }
  for (const char* name : {"ExposureTimeAbs", "Gain1", "gain", "", "Width"}) {
    EXPECT_FALSE(LogicCamera::IsSpecialNode(name));
  }
}

TEST_F(LogicCameraNodes, AnOlderNameIsFoundUnderTheNewOne) {
  ASSERT_EQ(camera.GetRemoteNode("ExposureTime", &node), ZYN_OK);
  EXPECT_STREQ(node.Name(), "ExposureTime");
  EXPECT_EQ(node.Type(), ZYN_NODE_FLOAT);
  EXPECT_EQ(node.SetFloat(250), ZYN_OK);
  float value = 0;
  camera.GetRemoteNode("ExposureTimeAbs", &node);
  EXPECT_EQ(node.GetFloat(&value), ZYN_OK);
  EXPECT_EQ(value, 250.0F);
  ASSERT_EQ(camera.GetRemoteNode("Gain", &node), ZYN_OK);
  EXPECT_EQ(node.Type(), ZYN_NODE_INTEGER);
}

TEST_F(LogicCameraNodes, TheNewNameWinsOverTheOlderOnes) {
  TestNodeMap map(R"(<Float Name="Gain"><Value>1</Value></Float><Float Name="GainAbs"><Value>2</Value></Float>
      <Integer Name="GainRaw"><Value>3</Value></Integer>)",
                  {"Gain", "GainAbs", "GainRaw"});
  device.remoteMap.map = map.Map();
  ASSERT_EQ(camera.GetRemoteNode("Gain", &node), ZYN_OK);
  float value = 0;
  EXPECT_EQ(node.GetFloat(&value), ZYN_OK);
  EXPECT_EQ(value, 1.0F);
}

TEST_F(LogicCameraNodes, NoNameOfASpecialFeatureGivesTheLastCode) {
  // The last candidate exists, as a text, which is no ZynNode.
  TestNodeMap map(R"(<String Name="GainRaw"><Value>x</Value></String>)", {"GainRaw"});
  device.remoteMap.map = map.Map();
  EXPECT_EQ(camera.GetRemoteNode("Gain", &node), ZYN_ERROR_UNSUPPORTED_NODE);
  EXPECT_EQ(camera.GetRemoteNode("TriggerDelay", &node), ZYN_ERROR_NO_SUCH_NODE);
  EXPECT_EQ(InternalOf(node), nullptr);
}

TEST_F(LogicCameraNodes, OtherNamesHaveNoOlderForm) {
  TestNodeMap map(R"(<Integer Name="WidthRaw"><Value>3</Value></Integer>)", {"WidthRaw"});
  device.remoteMap.map = map.Map();
  EXPECT_EQ(camera.GetRemoteNode("Width", &node), ZYN_ERROR_NO_SUCH_NODE);
}

TEST_F(LogicCameraNodes, ThrowingCandidatesArePassedOver) {
  int lookUps = 0;
  device.hook = [&](const std::string& call) {
    if (call == "RemoteDeviceNodeMap" && ++lookUps <= 2) throw RUNTIME_EXCEPTION("lost");
  };
  EXPECT_EQ(camera.GetRemoteNode("Gain", &node), ZYN_OK);  // "GainRaw", the third
  EXPECT_EQ(lookUps, 3);
}

TEST_F(LogicCameraNodes, AnExceptionOfTheLastCandidateIsACode) {
  ThrowInLookUps();
  EXPECT_EQ(camera.GetRemoteNode("Gain", &node), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(camera.GetRemoteNode("Width", &node), ZYN_ERROR_EXCEPTION);
}

TEST_F(LogicCameraNodes, LookingUpTriggerSoftwareLetsExceptionsThrough) {
  EXPECT_EQ(camera.GetRemoteNode("TriggerSoftware", &node), ZYN_ERROR_NO_SUCH_NODE);
  ThrowInLookUps();
  EXPECT_THROW(camera.GetRemoteNode("TriggerSoftware", &node), GenICam::GenericException);
  ZynNodeType type = ZYN_NODE_UNKNOWN;
  EXPECT_THROW(camera.GetNodeType("TriggerSoftware", kRemote, type), GenICam::GenericException);
  EXPECT_EQ(camera.GetNodeType("TriggerSoftwareX", kRemote, type), ZYN_ERROR_EXCEPTION);
}

TEST_F(LogicCameraNodes, HandlesOfOneNameShareTheirNodeAndSurviveReopening) {
  ZynNode other;
  camera.GetRemoteNode("Width", &node);
  camera.GetRemoteNode("Width", &other);
  EXPECT_EQ(InternalOf(node), InternalOf(other));
  EXPECT_EQ(camera.Close(), ZYN_OK);
  int value = -1;
  EXPECT_EQ(node.GetInt(&value), ZYN_ERROR_NOT_OPEN);
  EXPECT_EQ(value, 0);  // what is asked for is written also on failure
  fakes::FakeCamera again;
  again.remoteMap.map = area.Map();
  transport.cameras[&info] = {&again};
  EXPECT_EQ(camera.Open(nullptr), ZYN_OK);
  EXPECT_EQ(node.GetInt(&value), ZYN_OK);
  EXPECT_EQ(value, 640);
  camera.Close();
}

TEST_F(LogicCameraNodes, ListingReplacesTheArray) {
  nodes.setSize(3);
  EXPECT_EQ(camera.GetRemoteNodes(&nodes), ZYN_OK);
  EXPECT_GT(nodes.length(), 10U);
  for (unsigned int i = 0; i < nodes.length(); ++i) {
    ZynNode single;
    EXPECT_EQ(camera.GetRemoteNode(nodes[static_cast<int>(i)].Name(), &single), ZYN_OK);
    EXPECT_EQ(InternalOf(single), InternalOf(nodes[static_cast<int>(i)]));
  }
}

TEST_F(LogicCameraNodes, ListingAnEmptyMapIsNoFailure) {
  TestNodeMap empty("", {});
  device.localMap.map = empty.Map();
  nodes.setSize(3);
  EXPECT_EQ(camera.GetDevNodes(&nodes), ZYN_OK);
  EXPECT_EQ(nodes.length(), 0U);
}

TEST_F(LogicCameraNodes, AFailingListIsACodeAndEmpty) {
  nodes.setSize(3);
  EXPECT_EQ(camera.GetTLNodes(&nodes), ZYN_ERROR_NO_NODE_MAP);
  EXPECT_EQ(nodes.length(), 0U);
  ThrowInLookUps();
  EXPECT_EQ(camera.GetRemoteNodes(&nodes), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(nodes.length(), 0U);
}

TEST_F(LogicCameraNodes, TheNodeMapIsTheTransportsOrNull) {
  EXPECT_EQ(camera.GetNodesMap(kRemote), area.Map());
  EXPECT_EQ(camera.GetNodesMap(ZYN_XML_INTERFACE), nullptr);
  ThrowInLookUps();
  EXPECT_EQ(camera.GetNodesMap(kRemote), nullptr);
  EXPECT_EQ(camera.GetNodesMap(ZYN_XML_INTERFACE), nullptr);  // would hang if the lock were still held
  EXPECT_THROW(camera.GetNodesMapAction(kRemote), GenICam::GenericException);
}

TEST_F(LogicCameraNodes, LookUpsOfTheNodeMapDoNotOverlap) {
  // The first look-up gives the other one, which has started, the time to come in beside it.
  constexpr std::chrono::milliseconds kForTheOther(200);
  std::mutex mutex;
  std::condition_variable changed;
  int inside = 0;
  int mostInside = 0;
  device.hook = [&](const std::string& call) {
    if (call != "RemoteDeviceNodeMap") return;
    std::unique_lock lock(mutex);
    mostInside = std::max(mostInside, ++inside);
    changed.notify_all();
    changed.wait_for(lock, kForTheOther, [&] { return mostInside > 1; });
    --inside;
  };
  auto other = std::async(std::launch::async, [&] { return camera.GetNodesMap(kRemote); });
  EXPECT_EQ(camera.GetNodesMap(kRemote), area.Map());
  EXPECT_EQ(other.get(), area.Map());
  EXPECT_EQ(mostInside, 1);
}

TEST_F(LogicCameraNodes, ValuesGoThroughTheDevice) {
  bool flag = true;
  int value = 0, minimum = 0, maximum = 0, increment = 0;
  float real = 0, realMin = 0, realMax = 0, realInc = 0;
  ZynString current;
  ZynStringArray entries;
  EXPECT_EQ(camera.SetBoolValue("Flag", kRemote, true), ZYN_OK);
  EXPECT_EQ(camera.GetBoolValue("Flag", kRemote, flag), ZYN_OK);
  EXPECT_TRUE(flag);
  EXPECT_EQ(camera.SetIntValue("Width", kRemote, 800), ZYN_OK);
  EXPECT_EQ(camera.GetIntValue("Width", kRemote, value, minimum, maximum, increment), ZYN_OK);
  EXPECT_EQ(value, 800);
  EXPECT_EQ(increment, 8);
  EXPECT_EQ(camera.SetFloatValue("Stepped", kRemote, 2.5F), ZYN_OK);
  EXPECT_EQ(camera.GetFloatValue("Stepped", kRemote, real, realMin, realMax, realInc), ZYN_OK);
  EXPECT_EQ(real, 2.5F);
  EXPECT_EQ(camera.SetEnumStringValue("Mode", kRemote, "Third"), ZYN_OK);
  EXPECT_EQ(camera.GetEnumValue("Mode", kRemote, current, entries), ZYN_OK);
  EXPECT_STREQ(current.getStr(), "Third");
  EXPECT_EQ(camera.SetEnumIndexValue("Mode", kRemote, 10), ZYN_OK);
  EXPECT_EQ(area.port.Get(MemoryPort::kMode), 10U);
  EXPECT_EQ(camera.ExecuteNode("Reset", kRemote, 0), ZYN_OK);
  EXPECT_EQ(camera.ExecuteNode("Reset", kRemote, 0), -1);
}

TEST_F(LogicCameraNodes, EveryValueOperationTurnsExceptionsIntoACode) {
  bool flag = true;
  int value = 0, minimum = 0, maximum = 0, increment = 0;
  float real = 0, realMin = 0, realMax = 0, realInc = 0;
  ZynString current;
  ZynStringArray entries;
  ThrowInLookUps();
  EXPECT_EQ(camera.GetBoolValue("Flag", kRemote, flag), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(camera.GetIntValue("Width", kRemote, value, minimum, maximum, increment), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(camera.GetFloatValue("Stepped", kRemote, real, realMin, realMax, realInc), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(camera.GetEnumValue("Mode", kRemote, current, entries), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(camera.SetBoolValue("Flag", kRemote, true), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(camera.SetIntValue("Width", kRemote, 1), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(camera.SetFloatValue("Stepped", kRemote, 1), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(camera.SetEnumStringValue("Mode", kRemote, "First"), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(camera.SetEnumIndexValue("Mode", kRemote, 10), ZYN_ERROR_EXCEPTION);
  EXPECT_EQ(camera.ExecuteNode("Reset", kRemote, 0), ZYN_ERROR_EXCEPTION);
}

TEST_F(LogicCameraNodes, AListingThatThrowsMidwayStillListsWhatItFound) {
  fakes::FakeInteger first("First"), lost("Lost"), last("Last");
  fakes::FakeBoolean second("Second");
  lost.nameThrows = true;
  fakes::FakeNodeMap map;
  map.nodes = {&first, &second, &lost, &last};
  device.remoteMap.map = &map;
  EXPECT_EQ(camera.GetNodesByXmlType(&nodes, kRemote), ZYN_ERROR_EXCEPTION);
  ASSERT_EQ(nodes.length(), 2U);
  EXPECT_STREQ(nodes[0].Name(), "First");
  EXPECT_STREQ(nodes[1].Name(), "Second");
}
