#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "FakeNodeMap.h"
#include "FakeTransport.h"
#include "PhysicCamera.h"
#include "ZynCamera.h"

using namespace ZYNSDK;
using fakes::FakeCommand;
using fakes::ReadFlags;

namespace {

constexpr auto kRemote = ZYN_XML_REMOTE_DEVICE;
const std::vector<ReadFlags> kOneUnverifiedCachedRead = {{false, false}};

// An open device whose remote node map is scripted.
class PhysicCameraNodeCalls : public testing::Test {
 protected:
  PhysicCameraNodeCalls() {
    transport.cameras[&info] = {&camera};
    device.Open(&info);
    camera.remoteMap.map = &map;
  }
  ~PhysicCameraNodeCalls() override { device.Close(); }

  fakes::FakeNodeMap map;
  fakes::FakeTransport transport;
  fakes::FakeCameraInfo info;
  fakes::FakeCamera camera;
  PhysicCamera device;
};

}  // namespace

TEST_F(PhysicCameraNodeCalls, AnIntegerIsReadUnverifiedAndThroughTheCache) {
  fakes::FakeInteger node("Width");
  map.nodes = {&node};
  int value = 0, minimum = 0, maximum = 0, increment = 0;
  EXPECT_EQ(device.GetInt("Width", kRemote, value, minimum, maximum, increment), ZYN_OK);
  EXPECT_EQ(value, 7);
  EXPECT_EQ(node.reads, kOneUnverifiedCachedRead);
}

TEST_F(PhysicCameraNodeCalls, AFloatIsReadUnverifiedAndThroughTheCache) {
  fakes::FakeFloat node("Gain");
  map.nodes = {&node};
  float value = 0, minimum = 0, maximum = 0, increment = 0;
  EXPECT_EQ(device.GetFloat("Gain", kRemote, value, minimum, maximum, increment), ZYN_OK);
  EXPECT_EQ(value, 0.5F);
  EXPECT_EQ(node.reads, kOneUnverifiedCachedRead);
}

TEST_F(PhysicCameraNodeCalls, ABooleanIsReadUnverifiedAndThroughTheCache) {
  fakes::FakeBoolean node("Reverse");
  map.nodes = {&node};
  bool value = false;
  EXPECT_EQ(device.GetBool("Reverse", kRemote, value), ZYN_OK);
  EXPECT_TRUE(value);
  EXPECT_EQ(node.reads, kOneUnverifiedCachedRead);
}

TEST_F(PhysicCameraNodeCalls, AnEnumerationTextIsReadUnverifiedAndThroughTheCache) {
  fakes::FakeEnumeration node("Mode");
  node.text = "Off";
  map.nodes = {&node};
  ZynString current;
  ZynStringArray entries;
  EXPECT_EQ(device.GetEnum("Mode", kRemote, current, entries), ZYN_OK);
  EXPECT_STREQ(current.getStr(), "Off");
  EXPECT_EQ(node.reads, kOneUnverifiedCachedRead);
}

TEST_F(PhysicCameraNodeCalls, OnlyAFixedFloatIncrementIsReportedEveryOtherModeReadsAsOne) {
  fakes::FakeFloat node("Gain");
  map.nodes = {&node};
  const std::vector<std::pair<GenApi::EIncMode, float>> cases = {
      {GenApi::fixedIncrement, 0.25F}, {GenApi::listIncrement, 1.0F}, {GenApi::noIncrement, 1.0F}};
  for (const auto& [mode, expected] : cases) {
    node.incrementMode = mode;
    float value = 0, minimum = 0, maximum = 0, increment = -1;
    EXPECT_EQ(device.GetFloat("Gain", kRemote, value, minimum, maximum, increment), ZYN_OK);
    EXPECT_EQ(increment, expected) << "mode " << mode;
  }
}

TEST_F(PhysicCameraNodeCalls, ExecuteAsksIsDoneAndExecutesBothVerified) {
  FakeCommand node("Start");
  map.nodes = {&node};
  EXPECT_EQ(device.Execute("Start", kRemote, 0), ZYN_OK);
  EXPECT_EQ(node.calls, (std::vector<FakeCommand::Call>{{"IsDone", true}, {"Execute", true}}));
}

TEST_F(PhysicCameraNodeCalls, OnlyNodesOfAVisibilityUpToGuruAreListed) {
  fakes::FakeInteger guru("Guru"), invisible("Invisible"), undefined("Undefined"), beginner("Beginner");
  guru.visibility = GenApi::Guru;
  invisible.visibility = GenApi::Invisible;
  undefined.visibility = GenApi::_UndefinedVisibility;
  map.nodes = {&guru, &invisible, &undefined, &beginner};
  std::vector<std::pair<std::string, ZynNodeType>> found;
  EXPECT_EQ(device.GetNodes(kRemote, found), ZYN_OK);
  const decltype(found) expected = {{"Guru", ZYN_NODE_INTEGER}, {"Beginner", ZYN_NODE_INTEGER}};
  EXPECT_EQ(found, expected);
}

TEST_F(PhysicCameraNodeCalls, AWriteOnlyEntryIsListedAnUnavailableOrUnimplementedOneIsNot) {
  fakes::FakeEnumEntry unimplemented("NI", GenApi::NI), unavailable("NA", GenApi::NA);
  fakes::FakeEnumEntry writeOnly("WO", GenApi::WO), readOnly("RO", GenApi::RO), full("RW", GenApi::RW);
  fakes::FakeEnumeration node("Mode");
  node.entries = {&unimplemented, &writeOnly, &unavailable, &readOnly, &full};
  map.nodes = {&node};
  ZynString current;
  ZynStringArray entries;
  EXPECT_EQ(device.GetEnum("Mode", kRemote, current, entries), ZYN_OK);
  ASSERT_EQ(entries.length(), 3U);
  EXPECT_STREQ(entries[0].getStr(), "WO");
  EXPECT_STREQ(entries[1].getStr(), "RO");
  EXPECT_STREQ(entries[2].getStr(), "RW");
}

TEST_F(PhysicCameraNodeCalls, ANumberOf64BitsIsReadAsItsLow32Bits) {
  fakes::FakeInteger node("Timestamp");
  node.value = 0x100000005;
  node.minimum = std::numeric_limits<std::int64_t>::min();
  node.maximum = std::numeric_limits<std::int64_t>::max();
  node.increment = 0x200000001;
  map.nodes = {&node};
  int value = -1, minimum = -1, maximum = 7, increment = -1;
  EXPECT_EQ(device.GetInt("Timestamp", kRemote, value, minimum, maximum, increment), ZYN_OK);
  EXPECT_EQ(value, 5);
  EXPECT_EQ(minimum, 0);
  EXPECT_EQ(maximum, -1);
  EXPECT_EQ(increment, 1);
}

TEST_F(PhysicCameraNodeCalls, AFloatThatSaysItHasNoIncrementIsNotAskedForOne) {
  fakes::FakeFloat node("Gain");
  node.hasIncrement = false;
  map.nodes = {&node};
  float value = 0, minimum = 0, maximum = 0, increment = -1;
  EXPECT_EQ(device.GetFloat("Gain", kRemote, value, minimum, maximum, increment), ZYN_OK);
  EXPECT_EQ(increment, 1.0F);
}

TEST_F(PhysicCameraNodeCalls, AStartReadsTheTriggerSourceAlsoOfACameraThatIsNotTriggered) {
  fakes::FakeEnumeration mode("TriggerMode");
  fakes::FakeEnumeration source("TriggerSource");
  mode.text = "Off";
  source.text = "Line1";
  map.nodes = {&mode, &source};
  EXPECT_EQ(device.StartGrab(KELGENICAM::GRAB_ONE_BY_ONE, 0), ZYN_OK);
  EXPECT_EQ(mode.reads, kOneUnverifiedCachedRead);
  EXPECT_EQ(source.reads, kOneUnverifiedCachedRead);
  EXPECT_EQ(device.TriggerSource(), 0);
}
