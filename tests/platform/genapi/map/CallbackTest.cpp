#include <gtest/gtest.h>

#include <algorithm>

#include <string>
#include <vector>

#include "../MemoryPort.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

class Callbacks : public testing::Test {
 protected:
  Callbacks()
      : camera(Register("IntReg", "R", 0x10, 1) +
               "<Integer Name=\"I\"><pValue>R</pValue><pSelected>S</pSelected></Integer>" +
               "<Integer Name=\"S\"><Value>1</Value></Integer><Integer "
               "Name=\"Other\"><Value>1</Value></Integer>") {}
  ~Callbacks() override {
    for (const CallbackHandleType handle : handles) Deregister(handle);
  }

  void Listen(const char* name, ECallbackType type) {
    handles.push_back(Register(
        &camera.Node(name),
        [this, type](INode* node) {
          calls.push_back(std::string(node->GetName().c_str()) + (type == cbPostInsideLock ? " in" : " out"));
        },
        type));
  }

  Camera camera;
  std::vector<std::string> calls;
  std::vector<CallbackHandleType> handles;
};

TEST_F(Callbacks, FireForEverythingThatChangesInsideOnesFirst) {
  Listen("R", cbPostOutsideLock);
  Listen("I", cbPostInsideLock);
  Listen("S", cbPostInsideLock);
  Listen("Other", cbPostInsideLock);
  camera.Integer("I").SetValue(3);
  ASSERT_EQ(calls.size(), 3U);
  EXPECT_EQ(calls.back(), "R out");
  EXPECT_NE(std::find(calls.begin(), calls.end(), "I in"), calls.end());
  EXPECT_NE(std::find(calls.begin(), calls.end(), "S in"), calls.end());
}

TEST_F(Callbacks, DoNotFireWhenTheWriteFails) {
  Listen("I", cbPostInsideLock);
  EXPECT_THROW(camera.Integer("I").SetValue(1000), OutOfRangeException);
  camera.port.fails = true;
  EXPECT_THROW(camera.Integer("I").SetValue(1), TimeoutException);
  EXPECT_TRUE(calls.empty());
}

TEST_F(Callbacks, FireOnInvalidationAndPolling) {
  Listen("I", cbPostInsideLock);
  camera.Node("R").InvalidateNode();
  EXPECT_EQ(calls.size(), 1U);
  camera.map._InvalidateNodes();
  EXPECT_EQ(calls.size(), 2U);
}

TEST_F(Callbacks, CanBeSuppressed) {
  Listen("Other", cbPostInsideLock);
  camera.map._SetSuppressCallbackMode(csmOnce);
  camera.Integer("Other").SetValue(2);
  EXPECT_EQ(calls.size(), 0U);
  camera.Integer("Other").SetValue(3);
  EXPECT_EQ(calls.size(), 1U);
  camera.map._SetSuppressCallbackMode(csmActive);
  camera.Integer("Other").SetValue(4);
  camera.Integer("Other").SetValue(5);
  EXPECT_EQ(calls.size(), 1U);
  camera.map._SetSuppressCallbackMode(csmOff);
  camera.Integer("Other").SetValue(6);
  EXPECT_EQ(calls.size(), 2U);
}

TEST_F(Callbacks, MayReadAndWriteNodes) {
  int64_t seen = 0;
  handles.push_back(Register(&camera.Node("R"), [&](INode*) {
    seen = camera.Integer("I").GetValue();
    camera.Integer("Other").SetValue(seen);
  }));
  camera.Integer("I").SetValue(9);
  EXPECT_EQ(seen, 9);
  EXPECT_EQ(camera.Integer("Other").GetValue(), 9);
}

TEST_F(Callbacks, UnknownHandlesAreNotDeregistered) {
  EXPECT_FALSE(camera.Node("I").DeregisterCallback(12345));
  Listen("I", cbPostInsideLock);
  EXPECT_FALSE(camera.Node("R").DeregisterCallback(handles.back()));
  Deregister(handles.back());
  handles.pop_back();
  camera.Integer("I").SetValue(3);
  EXPECT_TRUE(calls.empty());
}

TEST_F(Callbacks, OneCallbackMayEndAnother) {
  Listen("Other", cbPostOutsideLock);
  const CallbackHandleType second = handles.back();
  handles.push_back(Register(&camera.Node("Other"), [&](INode*) {
    if (handles.front() == second) {
      Deregister(second);
      handles.erase(handles.begin());
    }
  }));
  camera.Integer("Other").SetValue(2);
  EXPECT_TRUE(calls.empty());
}

TEST(CallbacksLeft, AreDestroyedWithTheMap) {
  struct Counter : CNodeCallback {
    Counter(INode* node, int& n) : CNodeCallback(node, cbPostInsideLock), count(n) {}
    void operator()(ECallbackType) const override {}
    void Destroy() override {
      ++count;
      delete this;
    }
    int& count;
  };
  int destroyed = 0;
  {
    Camera camera("");
    camera.Node("Device").RegisterCallback(new Counter(&camera.Node("Device"), destroyed));
  }
  EXPECT_EQ(destroyed, 1);
}

}  // namespace
