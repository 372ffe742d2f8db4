#include <gtest/gtest.h>

#include <cstdlib>
#include <list>
#include <new>
#include <string>

#include "FakeTransport.h"
#include "LaserFeatures.h"
#include "LogicCamera.h"
#include "TestNodeMap.h"
#include "ZynCamera.h"

using namespace ZYNSDK;

namespace {
thread_local long allocationsLeft = -1;  // negative: as many as there are
}

// Never inlined: where only one of a pair is, g++ takes them for a mismatch. This program's own: fails on a thread that has used up its allocations.
__attribute__((noinline)) void* operator new(std::size_t bytes) {
  if (allocationsLeft == 0) throw std::bad_alloc();
  if (allocationsLeft > 0) --allocationsLeft;
  void* memory = std::malloc(bytes == 0 ? 1 : bytes);
  if (!memory) throw std::bad_alloc();
  return memory;
}
__attribute__((noinline)) void operator delete(void* memory) noexcept {
  std::free(memory);
}
__attribute__((noinline)) void operator delete(void* memory, std::size_t /*bytes*/) noexcept {
  std::free(memory);
}

namespace {

template <class Operation>
long WithAllocations(long count, Operation operation) {
  struct Limit {
    explicit Limit(long limit) { allocationsLeft = limit; }
    ~Limit() { allocationsLeft = -1; }
  };
  const Limit limit(count);
  return operation();
}

class OutOfMemory : public testing::Test {
 protected:
  OutOfMemory() {
    transport.cameras[&info] = {&device};
    device.remoteMap.map = map.Map();
    camera.Open(nullptr);
  }
  ~OutOfMemory() override { camera.Close(); }

  // Lets the first allocation fail, then the second, and so on, until the operation succeeds. Every failure
  // must be that code; an exception would end the test.
  template <class Operation>
  static void ExpectTheCode(long code, Operation operation) {
    constexpr long kMany = 5000;
    long failures = 0;
    for (; failures < kMany; ++failures) {
      const long result = WithAllocations(failures, operation);
      if (result == ZYN_OK) break;
      ASSERT_EQ(result, code) << "after " << failures << " allocations";
    }
    EXPECT_GT(failures, 0);
    EXPECT_LT(failures, kMany);
  }

  fakes::FakeTransport transport;
  fakes::FakeCameraInfo info;
  fakes::FakeCamera device;
  fakes::TestNodeMap map;
  LogicCamera camera{&info};
  ZynNode node;
  ZynNodeArray nodes;
  ZynString text;
  ZynStringArray entries;
};

}  // namespace

TEST_F(OutOfMemory, ALookUpAnswersACode) {
  ExpectTheCode(ZYN_ERROR_EXCEPTION, [&] { return camera.GetRemoteNode("ExposureTime", &node); });
}

TEST_F(OutOfMemory, AListAnswersACode) {
  ExpectTheCode(ZYN_ERROR_EXCEPTION, [&] { return camera.GetRemoteNodes(&nodes); });
  EXPECT_GT(nodes.length(), 0U);
}

TEST_F(OutOfMemory, ReadingAnEnumerationAnswersACode) {
  ASSERT_EQ(camera.GetRemoteNode("Mode", &node), ZYN_OK);
  ExpectTheCode(ZYN_ERROR_EXCEPTION, [&] { return node.GetEnumString(&text, nullptr); });
  int index = 7;
  ExpectTheCode(ZYN_ERROR_WRONG_NODE_TYPE, [&] { return node.GetEnumIndex(&index, nullptr); });
  EXPECT_EQ(index, 1);
}

TEST_F(OutOfMemory, WritingAnEnumerationAnswersACode) {
  ASSERT_EQ(camera.GetRemoteNode("Mode", &node), ZYN_OK);
  // Up to the write itself, which a position behind the last entry never reaches.
  ExpectTheCode(ZYN_ERROR_EXCEPTION, [&]() -> long {
    const long result = node.SetEnumIndex(99);
    return result == ZYN_ERROR_INVALID_ARGUMENT ? ZYN_OK : result;
  });
  ZynString entry;
  entry = "a name that does not fit into the string object itself";
  EXPECT_EQ(WithAllocations(0, [&] { return node.SetEnumString(entry); }), ZYN_ERROR_EXCEPTION);
}

TEST_F(OutOfMemory, AProfileOrAScanAnswersACodeAndReleasesItsFrame) {
  fakes::LaserNodeMap features;
  features.PutInt("OutlineLengthMax", 4);
  features.PutInt("AcquisitionLineCount", 5);
  features.PutInt("BatchNumber", 5);
  info.model = "VX7";
  device.remoteMap.map = features.Map();
  std::list<fakes::FakeImage> frames;
  fakes::FakeChunk records(std::vector<unsigned char>(80, 7));
  ZynImage image;
  ZynImage intensity;
  Zyn3DIntArray heights;
  ZynRangeImage range;
  const auto run = [&](Zyn3DGrabType type, auto grab) {
    ASSERT_EQ(camera.Start3DGrab(type), ZYN_OK);
    long result = ZYN_ERROR_EXCEPTION;
    long failures = -1;
    while (result == ZYN_ERROR_EXCEPTION && failures < 100) {
      fakes::FakeImage& frame = frames.emplace_back(2, 2, 1, 2);
      frame.chunks = {&records};
      device.Deliver(0, &frame);
      result = WithAllocations(++failures, grab);
      EXPECT_TRUE(result == ZYN_OK || heights.Length() == 0);
    }
    EXPECT_EQ(result, ZYN_OK);
    EXPECT_GT(failures, 3);
    camera.Stop3DGrab();
    heights.Clear();
  };
  run(ZYN_3D_GRAB_PROFILE, [&] { return camera.Grab3DData(&image, &heights, &intensity); });
  run(ZYN_3D_GRAB_CONTOUR, [&] { return camera.Grab3DContour(&heights, &intensity); });
  run(ZYN_3D_GRAB_BATCH, [&] { return camera.Grab3DBatchData(&range, &intensity); });
  EXPECT_EQ(range.Height(), 5);
  camera.Close();
}
