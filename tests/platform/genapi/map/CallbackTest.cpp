#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <latch>
#include <thread>
#include <utility>

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

// What is told is that something was done, not that a value became another.
TEST(CallbackRuns, FollowEveryKindOfChangeOnceEach) {
  Camera camera(zyn::genapi::test::Register("IntReg", "R", 0x10, 1) +
                "<Integer Name=\"Over\"><pValue>R</pValue><Max>20</Max><pValueCopy>R</pValueCopy></Integer>"
                "<Command Name=\"C\"><pValue>R</pValue><CommandValue>3</CommandValue></Command>"
                "<Integer "
                "Name=\"Told\"><pInvalidator>R</pInvalidator><pInvalidator>Over</pInvalidator><Value>1</"
                "Value></Integer>"
                "<Integer Name=\"OfTold\"><pValue>Told</pValue></Integer>");
  int calls = 0;
  const CallbackHandleType handle = GenApi::Register(&camera.Node("OfTold"), [&](INode*) { ++calls; });
  const auto expectOne = [&](const char* what) {
    EXPECT_EQ(calls, 1) << what;
    calls = 0;
  };
  camera.Integer("Over").SetValue(0);
  expectOne("the value it had, in two places");
  camera.Integer("R").SetValue(300, false);
  expectOne("unchecked");
  camera.Value("Over").FromString("7");
  expectOne("as text");
  const uint8_t byte = 1;
  camera.As<IRegister>("R").Set(&byte, 1);
  expectOne("as bytes");
  camera.As<ICommand>("C").Execute();
  expectOne("command");
  camera.Node("R").InvalidateNode();
  expectOne("invalidation");
  EXPECT_THROW(camera.Integer("Over").SetValue(21), OutOfRangeException);
  EXPECT_THROW(camera.Integer("Told").FromString("x"), InvalidArgumentException);
  camera.Integer("R").GetValue();
  EXPECT_EQ(calls, 0);
  Deregister(handle);
}

TEST(CallbackRuns, AnyKindOfNodeCanBeListenedTo) {
  Camera camera(
      "<Category Name=\"Root\"><pFeature>E</pFeature></Category><Integer "
      "Name=\"Has\"><Value>1</Value></Integer>"
      "<Enumeration Name=\"E\"><EnumEntry "
      "Name=\"A\"><Value>0</Value><pIsAvailable>Has</pIsAvailable></EnumEntry>"
      "<Value>0</Value></Enumeration>" +
      zyn::genapi::test::Register("IntReg", "R", 0x10, 1));
  std::string calls;
  std::vector<CallbackHandleType> handles;
  for (const char* const name : {"Root", "EnumEntry_E_A", "Device"})
    handles.push_back(
        GenApi::Register(&camera.Node(name), [&](INode* node) { calls += node->GetName().c_str()[0]; }));
  camera.Integer("Has").SetValue(0);
  EXPECT_EQ(calls, "ER") << "the entry's condition, and the category above";
  calls.clear();
  camera.port.InvalidateNode();
  EXPECT_EQ(calls, "D");
  for (const CallbackHandleType handle : handles) Deregister(handle);
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

TEST(CallbackRuns, WhatIsWrittenInsideOneIsToldOutsideTheLockAfterwards) {
  Camera camera(
      "<Integer Name=\"A\"><Value>0</Value></Integer><Integer Name=\"B\"><Value>0</Value></Integer>");
  std::string order;
  const CallbackHandleType inside = Register(&camera.Node("A"), [&](INode*) {
    order += 'a';
    camera.Integer("B").SetValue(1);
    order += 'A';
  });
  const CallbackHandleType insideB = Register(&camera.Node("B"), [&](INode*) { order += 'b'; });
  bool wasFree = false;
  const CallbackHandleType outside = Register(
      &camera.Node("B"),
      [&](INode*) {
        order += 'o';
        std::thread([&] {
          wasFree = camera.map._Ptr->GetLock().TryLock();
          if (wasFree) camera.map._Ptr->GetLock().Unlock();
        }).join();
      },
      cbPostOutsideLock);
  camera.Integer("A").SetValue(1);
  EXPECT_EQ(order, "abAo");
  EXPECT_TRUE(wasFree) << "another thread can take the lock";
  camera.map._Ptr->Poll(1);
  Deregister(inside);
  Deregister(insideB);
  Deregister(outside);
}

// Counts how often it is destroyed.
class CountedCallback : public CNodeCallback {
 public:
  CountedCallback(INode* node, ECallbackType type, std::function<void()> action, int& destroyed)
      : CNodeCallback(node, type), action_(std::move(action)), destroyed_(destroyed) {}
  void operator()(ECallbackType type) const override {
    if (type == m_CallbackType) action_();
  }
  void Destroy() override {
    ++destroyed_;
    delete this;
  }

 private:
  const std::function<void()> action_;
  int& destroyed_;
};

TEST(CallbackRuns, OneMayEndItsOwnRegistration) {
  for (const ECallbackType type : {cbPostInsideLock, cbPostOutsideLock}) {
    Camera camera("<Integer Name=\"A\"><Value>0</Value></Integer>");
    int destroyed = 0;
    int calls = 0;
    CallbackHandleType handle = 0;
    handle = camera.Node("A").RegisterCallback(new CountedCallback(
        &camera.Node("A"), type,
        [&] {
          Deregister(handle);
          EXPECT_EQ(destroyed, 0) << "not while it is running";
          ++calls;
        },
        destroyed));
    camera.Integer("A").SetValue(1);
    EXPECT_EQ(destroyed, 1);
    camera.Integer("A").SetValue(2);
    EXPECT_EQ(calls, 1);
  }
}

TEST(CallbackRuns, EndingARegistrationWaitsForTheCallThatRunsOnAnotherThread) {
  Camera camera("<Integer Name=\"A\"><Value>0</Value></Integer>");
  std::latch entered(1);
  std::latch mayLeave(1);
  int destroyed = 0;
  std::atomic<bool> left{false};
  const CallbackHandleType handle = camera.Node("A").RegisterCallback(new CountedCallback(
      &camera.Node("A"), cbPostOutsideLock,
      [&] {
        entered.count_down();
        mayLeave.wait();
        camera.Integer("A").GetValue();
        left = true;
      },
      destroyed));
  std::thread writer([&] { camera.Integer("A").SetValue(1); });
  entered.wait();
  std::thread ender([&] {
    Deregister(handle);
    EXPECT_TRUE(left) << "it was still running";
  });
  mayLeave.count_down();
  ender.join();
  writer.join();
  EXPECT_EQ(destroyed, 1);
}

TEST(CallbackRuns, EndingARegistrationDoesNotWaitWhileTheLockIsHeld) {
  Camera camera("<Integer Name=\"A\"><Value>0</Value></Integer>");
  std::latch entered(1);
  std::latch mayLeave(1);
  int destroyed = 0;
  const CallbackHandleType handle = camera.Node("A").RegisterCallback(new CountedCallback(
      &camera.Node("A"), cbPostOutsideLock,
      [&] {
        entered.count_down();
        mayLeave.wait();
        camera.Integer("A").GetValue();
      },
      destroyed));
  std::thread writer([&] { camera.Integer("A").SetValue(1); });
  entered.wait();
  {
    const GenApi::AutoLock lock(camera.map._Ptr->GetLock());
    Deregister(handle);  // waiting would last for ever: the callback waits for this lock
    EXPECT_EQ(destroyed, 0);
  }
  mayLeave.count_down();
  writer.join();
  EXPECT_EQ(destroyed, 1);
}

}  // namespace
