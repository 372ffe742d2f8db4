// Whole cameras: every feature used through the public interface.
#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "../MemoryPort.h"
#include "StandardCamera.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

// Writes something else than the present value, and reads it back from the device.
void ChangeAndReadBack(IValue& feature) {
  INode& node = *feature.GetNode();
  SCOPED_TRACE(node.GetName().c_str());
  ASSERT_EQ(node.GetAccessMode(), RW);
  ASSERT_TRUE(node.IsFeature());
  gcstring text;
  switch (node.GetPrincipalInterfaceType()) {
    case intfIInteger:
      text = "8";
      break;
    case intfIFloat:
      text = "1.5";
      break;
    case intfIBoolean:
      text = "1";
      break;
    case intfIString:
      text = "abc";
      break;
    case intfIEnumeration: {
      StringList_t symbolics;
      dynamic_cast<IEnumeration&>(feature).GetSymbolics(symbolics);
      ASSERT_EQ(symbolics.size(), 2U);
      text = symbolics[1];
      break;
    }
    default:
      EXPECT_NO_THROW(dynamic_cast<ICommand&>(feature).Execute());
      return;
  }
  feature.FromString(text);
  EXPECT_EQ(feature.ToString(true), text);
  EXPECT_EQ(feature.ToString(false, true), text);
}

TEST(WholeCamera, EveryStandardFeatureIsThereAndKeepsItsValue) {
  Camera camera(StandardCameraNodes());
  FeatureList_t categories;
  camera.As<ICategory>("Root").GetFeatures(categories);
  ASSERT_EQ(categories.size(), 10U);
  EXPECT_TRUE(camera.Node("Root").IsFeature());
  int count = 0;
  for (IValue* const category : categories) {
    FeatureList_t features;
    dynamic_cast<ICategory&>(*category).GetFeatures(features);
    for (IValue* const feature : features) ChangeAndReadBack(*feature);
    count += static_cast<int>(features.size());
  }
  EXPECT_EQ(count, kStandardCameraFeatures);
  // What came back could have been wrong in both directions alike: the bytes of one feature of each kind.
  const struct {
    const char* kind;
    std::size_t address;
    int byte;
  } bytes[] = {{"selector", 0x103, 1},    {"integer", 0x10B, 8}, {"converter", 0x153, 15},
               {"enumeration", 0x17B, 1}, {"boolean", 0x19D, 1}, {"string", 0x1AC, 'a'},
               {"command", 0x1D5, 1}};
  for (const auto& row : bytes) EXPECT_EQ(camera.port.bytes[row.address], row.byte) << row.kind;
  // The first feature of each category chose the second place, so the first place is untouched.
  camera.Value("DeviceControlSelector").FromString("First");
  EXPECT_EQ(camera.Text("DeviceControlInteger0"), "0");
  EXPECT_THROW(camera.Integer("DeviceControlInteger0").SetValue(6), OutOfRangeException);
  EXPECT_THROW(camera.Integer("DeviceControlInteger0").SetValue(5000), OutOfRangeException);
}

TEST(WholeCamera, AllSettingsSurviveAFile) {
  Camera camera(StandardCameraNodes());
  for (int i = 0; i < 9; ++i)
    camera.Integer(("LUTControlInteger" + std::to_string(i)).c_str()).SetValue(4 * i);
  CFeatureBag bag;
  // Per category: the selector once, and the other 26 streamable features in both places.
  EXPECT_EQ(bag.StoreToBag(camera.map._Ptr), 10 * (1 + 2 * 26));
  std::stringstream file;
  file << bag;
  CFeatureBag read;
  file >> read;
  Camera other(StandardCameraNodes());
  EXPECT_TRUE(read.LoadFromBag(other.map._Ptr));
  EXPECT_EQ(other.port.bytes, camera.port.bytes);
  EXPECT_EQ(other.Text("LUTControlInteger8"), "32");
}

TEST(WholeCamera, ProfilesAreComputedPointByPoint) {
  Camera camera(ProfileCameraNodes());
  camera.port.Set(0x100, {0, 0, 0, 0x3F, 0, 0, 0x80, 0x3E});  // 0.5 and 0.25, little-endian
  camera.port.Set(0x110, {0x40, 0x24, 0, 0, 0, 0, 0, 0});     // 10, big-endian
  camera.port.Set(0x200, {0, 0, 0, 4, 0, 8});
  EXPECT_EQ(camera.Float("ProfileHeight").GetValue(), -1) << "no point";
  camera.Integer("ProfilePointSelector").SetValue(1);
  EXPECT_EQ(camera.Float("ProfileHeight").GetValue(), 12);
  camera.Integer("ProfilePointSelector").SetValue(2);
  EXPECT_EQ(camera.Float("ProfileHeight").GetValue(), 14);
  camera.Value("Scan3dCoordinateSelector").FromString("CoordinateB");
  EXPECT_EQ(camera.Float("Scan3dCoordinateScale").GetValue(), 0.25);
  EXPECT_EQ(camera.Float("ProfileHeight").GetValue(), 2);
  EXPECT_EQ(camera.Integer("ProfilePointSelector").GetMax(), 299);
  camera.Integer("ProfileCount").SetValue(3);
  EXPECT_EQ(camera.Integer("ProfilePointSelector").GetMax(), 2);
  EXPECT_THROW(camera.Integer("ProfilePointSelector").SetValue(3), OutOfRangeException);
}

// One thread writes, one reads, one polls and invalidates, one comes and goes as a listener; callbacks of both kinds
// are registered all the time.
TEST(WholeCamera, FourThreadsShareOneMap) {
  constexpr int kRounds = 300;
  Camera camera(StandardCameraNodes());
  std::atomic<int> inside{0};
  std::atomic<int> outside{0};
  IInteger& written = camera.Integer("AnalogControlInteger0");
  INode& node = camera.Node("AnalogControlInteger0");
  const CallbackHandleType first = Register(&node, [&](INode*) { ++inside; });
  const CallbackHandleType second = Register(
      &node,
      [&](INode*) {
        written.GetValue();
        ++outside;
      },
      cbPostOutsideLock);
  std::latch start(4);
  std::vector<std::thread> threads;
  const auto run = [&](auto body) {
    threads.emplace_back([&start, body] {
      start.arrive_and_wait();
      for (int i = 0; i < kRounds; ++i) body(i);
    });
  };
  run([&](int i) { written.SetValue(4 * (i % 1024)); });
  run([&](int i) {
    camera.Float("AnalogControlFloat1").GetValue();
    EXPECT_EQ(written.GetValue() % 4, 0);
    if (i % 50 == 0) camera.Value("AnalogControlSelector").ToString(false, true);
  });
  run([&](int i) {
    camera.map._Poll(1);
    if (i % 50 == 0) camera.map._InvalidateNodes();
  });
  run([&](int) {
    std::atomic<int> own{0};
    const CallbackHandleType handle = Register(
        &node, [&own](INode*) { ++own; }, cbPostOutsideLock);
    written.GetValue();
    Deregister(handle);  // afterwards nothing may count any more: the counter ends here
  });
  for (std::thread& thread : threads) thread.join();
  Deregister(first);
  Deregister(second);
  EXPECT_GE(inside.load(), kRounds);
  EXPECT_GE(outside.load(), kRounds);
  EXPECT_EQ(written.GetValue(), 4 * (kRounds - 1));
}

}  // namespace
