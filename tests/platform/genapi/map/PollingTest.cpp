// What the passing of time changes.
#include <gtest/gtest.h>

#include "../MemoryPort.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

TEST(Polling, StopsWhileItIsBlocked) {
  Camera camera(
      Register("IntReg", "R", 0x10, 1, "<PollingTime>100</PollingTime><pBlockPolling>Block</pBlockPolling>") +
      "<Enumeration Name=\"Block\"><EnumEntry Name=\"Yes\"><Value>1</Value><NumericValue>0</NumericValue>"
      "</EnumEntry><EnumEntry Name=\"No\"><Value>0</Value></EnumEntry><Value>1</Value></Enumeration>");
  camera.Integer("R").GetValue();
  camera.map._Poll(1000);
  camera.Integer("R").GetValue();
  EXPECT_EQ(camera.port.reads, 1) << "blocked";
  camera.Value("Block").FromString("No");
  camera.map._Poll(99);
  camera.Integer("R").GetValue();
  EXPECT_EQ(camera.port.reads, 1) << "the time of the block does not count";
  camera.map._Poll(1);
  camera.Integer("R").GetValue();
  EXPECT_EQ(camera.port.reads, 2);
}

TEST(Polling, OfACommandRunsOnlyWhileItIsBusy) {
  Camera camera(
      Register("IntReg", "R", 0x10, 1) +
      "<Command "
      "Name=\"C\"><pValue>R</pValue><CommandValue>1</CommandValue><PollingTime>10</PollingTime></Command>");
  int calls = 0;
  const CallbackHandleType handle = GenApi::Register(&camera.Node("C"), [&](INode*) { ++calls; });
  camera.map._Poll(100);
  EXPECT_EQ(calls, 0);
  camera.As<ICommand>("C").Execute();
  EXPECT_EQ(calls, 1);
  camera.map._Poll(10);
  EXPECT_EQ(calls, 2);
  camera.port.bytes[0x10] = 0;
  EXPECT_TRUE(camera.As<ICommand>("C").IsDone());
  EXPECT_EQ(calls, 3) << "told once that it is done";
  EXPECT_TRUE(camera.As<ICommand>("C").IsDone());
  camera.map._Poll(100);
  EXPECT_EQ(calls, 3);
  Deregister(handle);
}

TEST(Polling, ASelfClearingEntryIsAskedForUntilItIsCleared) {
  Camera camera(Register("IntReg", "R", 0x10, 1) +
                "<Enumeration Name=\"E\"><EnumEntry Name=\"Idle\"><Value>0</Value></EnumEntry>"
                "<EnumEntry Name=\"Once\"><Value>1</Value><IsSelfClearing>Yes</IsSelfClearing></EnumEntry>"
                "<pValue>R</pValue><PollingTime>10</PollingTime></Enumeration>");
  int calls = 0;
  const CallbackHandleType handle = GenApi::Register(&camera.Node("E"), [&](INode*) { ++calls; });
  camera.map._Poll(100);
  EXPECT_EQ(calls, 0) << "nothing is waited for";
  camera.Value("E").FromString("Once");
  EXPECT_EQ(camera.Text("E"), "Once");
  EXPECT_EQ(camera.Text("E"), "Once");
  EXPECT_EQ(camera.port.reads, 2) << "no cache while it is waited for";
  camera.map._Poll(10);
  EXPECT_EQ(calls, 2) << "the write and the poll";
  camera.port.bytes[0x10] = 0;
  EXPECT_EQ(camera.Text("E"), "Idle");
  const int reads = camera.port.reads;
  EXPECT_EQ(camera.Text("E"), "Idle");
  EXPECT_LE(camera.port.reads, reads + 1);
  const int settled = camera.port.reads;
  EXPECT_EQ(camera.Text("E"), "Idle");
  EXPECT_EQ(camera.port.reads, settled) << "cached again";
  camera.map._Poll(100);
  EXPECT_EQ(calls, 2);
  Deregister(handle);
}

TEST(Polling, TimesDoNotOverflow) {
  Camera camera(Register("IntReg", "R", 0x10, 1, "<PollingTime>0x7FFFFFFFFFFFFFFF</PollingTime>"));
  camera.Integer("R").GetValue();
  camera.map._Poll(INT64_MAX - 1);
  camera.Integer("R").GetValue();
  EXPECT_EQ(camera.port.reads, 1);
  camera.map._Poll(INT64_MAX - 1);
  camera.Integer("R").GetValue();
  EXPECT_EQ(camera.port.reads, 2);
}

// The second node's block cannot be read; the first one is due all the same.
TEST(Polling, AFailureOfOneNodeKeepsTheOthersDue) {
  Camera camera(
      Register("IntReg", "A", 0x10, 1, "<PollingTime>10</PollingTime>") +
      Register("IntReg", "Block", 0x14, 1, "<Cachable>NoCache</Cachable>") +
      Register("IntReg", "B", 0x18, 1, "<PollingTime>10</PollingTime><pBlockPolling>Block</pBlockPolling>"));
  camera.Integer("A").GetValue();
  camera.port.fails = true;
  EXPECT_THROW(camera.map._Poll(10), TimeoutException);
  camera.port.fails = false;
  camera.port.bytes[0x10] = 5;
  EXPECT_EQ(camera.Integer("A").GetValue(), 5);
}

}  // namespace
