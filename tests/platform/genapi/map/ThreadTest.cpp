// One map, used from many threads.
#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <thread>
#include <vector>

#include "../MemoryPort.h"

namespace {

using namespace GenApi;
using namespace zyn::genapi::test;

std::string Nodes() {
  return Register("IntReg", "R", 0x10, 4) +
         Register("IntReg", "Polled", 0x14, 4, "<PollingTime>1</PollingTime>") +
         Register("MaskedIntReg", "Low", 0x18, 4, "<LSB>0</LSB><MSB>15</MSB>") +
         Register("MaskedIntReg", "High", 0x18, 4, "<LSB>16</LSB><MSB>31</MSB>") +
         "<Integer Name=\"I\"><pValue>R</pValue><pIsLocked>Lock</pIsLocked></Integer>"
         "<Integer Name=\"Lock\"><Value>0</Value></Integer>"
         "<SwissKnife Name=\"K\"><pVariable Name=\"A\">I</pVariable><Formula>A*2</Formula></SwissKnife>";
}

TEST(Threads, ReadWritePollAndListenOnOneMapAtOnce) {
  constexpr int kRounds = 2000;
  Camera camera(Nodes());
  std::latch start(5);
  std::atomic<int> calls{0};
  const CallbackHandleType handle = Register(
      &camera.Node("K"), [&](INode*) { ++calls; }, cbPostOutsideLock);
  std::vector<std::thread> threads;
  const auto run = [&](auto body) {
    threads.emplace_back([&start, body] {
      start.arrive_and_wait();
      for (int i = 0; i < kRounds; ++i) body(i);
    });
  };
  run([&](int i) { camera.Integer("I").SetValue(i); });
  run([&](int i) { camera.Integer("Low").SetValue(i & 0xFFFF); });
  run([&](int i) { camera.Integer("High").SetValue(i & 0xFFFF); });
  run([&](int) { camera.map._Poll(1); });
  run([&](int i) {
    const AutoLock lock(camera.map._Ptr->GetLock());
    EXPECT_EQ(camera.Float("K").GetValue(), 2.0 * static_cast<double>(camera.Integer("I").GetValue()));
    camera.Integer("Polled").GetValue();
    if (i % 100 == 0) camera.map._InvalidateNodes();
    const CallbackHandleType own = Register(&camera.Node("I"), [](INode*) {});
    Deregister(own);
  });
  for (std::thread& thread : threads) thread.join();
  Deregister(handle);
  EXPECT_EQ(camera.Integer("I").GetValue(), kRounds - 1);
  EXPECT_EQ(camera.Integer("Low").GetValue(), kRounds - 1);
  EXPECT_EQ(camera.Integer("High").GetValue(), kRounds - 1);
  EXPECT_GE(calls.load(), kRounds);
}

TEST(Threads, MapsOfOneDescriptionDoNotDisturbEachOther) {
  CNodeMapFactory factory(Description(Nodes()).c_str());
  factory.Preprocess();
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    INodeMap* const created = factory.CreateNodeMap("Device", false);
    threads.emplace_back([created, t] {
      CNodeMapRef map(created);
      MemoryPort port;
      map._Connect(&port);
      for (int i = 0; i < 500; ++i) {
        CIntegerPtr(map._GetNode("I"))->SetValue(i + t);
        EXPECT_EQ(CFloatPtr(map._GetNode("K"))->GetValue(), 2.0 * (i + t));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
