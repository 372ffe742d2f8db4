// One map, used from many threads.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <latch>
#include <string>
#include <thread>
#include <vector>

#include "../MemoryPort.h"
#include "GenApi/ChunkAdapterGeneric.h"

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

struct Question {
  const char* name;
  std::function<void()> ask;
};

// Each question is asked many times in a row, until everything has changed meanwhile: between others a call that forgot
// the lock would go unseen, because theirs would put it in order.
TEST(Threads, EveryQuestionMayBeAskedWhileTheMapChanges) {
  constexpr int kTimes = 200;
  constexpr int kChanges = 20;
  constexpr std::size_t kChangers = 3;
  Camera camera(
      Register("IntReg", "Room", 0x10, 4,
               "<PollingTime>2</PollingTime><pBlockPolling>Block</pBlockPolling>") +
      Register("IntReg", "R", 0x14, 4) +
      "<Integer Name=\"Block\"><Value>0</Value></Integer>"
      "<Integer Name=\"I\"><pValue>R</pValue><pMax>Room</pMax><pSelected>S</pSelected></Integer>"
      "<Float Name=\"F\"><pValue>I</pValue></Float><Integer Name=\"S\"><Value>1</Value></Integer>"
      "<String Name=\"Text\"><Value>was</Value></String>"
      "<Enumeration Name=\"E\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry><EnumEntry "
      "Name=\"B\"><Value>1"
      "</Value></EnumEntry><pValue>Block</pValue></Enumeration>"
      "<Command "
      "Name=\"C\"><pValue>S</pValue><CommandValue>3</CommandValue><PollingTime>1</PollingTime></Command>"
      "<Port Name=\"Chunk\"><ChunkID>11</ChunkID></Port>"
      "<IntReg Name=\"Frame\"><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode>"
      "<pPort>Chunk</pPort></IntReg>");
  camera.port.bytes[0x10] = 200;
  std::array<uint8_t, 4> chunk{7, 0, 0, 0};
  SingleChunkData_t place{0x11, 0, 4};
  CChunkAdapterGeneric adapter(camera.map._Ptr);
  std::atomic<int> calls{0};
  const CallbackHandleType inside = Register(&camera.Node("F"), [&](INode*) { ++calls; });
  const CallbackHandleType outside = Register(
      &camera.Node("F"), [&](INode*) { ++calls; }, cbPostOutsideLock);
  std::atomic<bool> isOver{false};
  std::latch start(kChangers + 1);
  // Relaxed, so that counting puts nothing in order.
  std::array<std::atomic<int>, kChangers> changes{};
  std::vector<std::thread> threads;
  const auto keepChanging = [&](auto change) {
    threads.emplace_back([&start, &isOver, &count = changes[threads.size()], change] {
      start.arrive_and_wait();
      for (int i = 0; !isOver.load(std::memory_order_relaxed); ++i) {
        change(i);
        count.store(i, std::memory_order_relaxed);
        std::this_thread::yield();
      }
    });
  };
  keepChanging([&](int i) {
    camera.Integer("Room").SetValue(100 + i % 100);
    camera.Integer("I").SetValue(i % 100);
    camera.Value("E").FromString(i % 2 ? "A" : "B");
    camera.Value("Text").FromString(i % 2 ? "is" : "was");
    camera.Integer("I").ImposeMax(i % 2 ? 150 : 1000);
    camera.As<ICommand>("C").Execute();
    camera.Integer("S").SetValue(i % 2);
  });
  keepChanging([&](int i) {
    camera.map._Poll(1);
    if (i % 20 == 0) camera.map._InvalidateNodes();
    camera.Node("R").InvalidateNode();
    camera.Node("I").ImposeAccessMode(RW);
    camera.Node("I").ImposeVisibility(i % 2 ? Beginner : Guru);
  });
  keepChanging([&](int) {
    adapter.AttachBuffer(chunk.data(), &place, 1);
    adapter.DetachBuffer();
  });
  GenICam::gcstring value;
  GenICam::gcstring attribute;
  NodeList_t nodes;
  FeatureList_t features;
  IInteger& integer = camera.Integer("I");
  IFloat& real = camera.Float("F");
  INode& node = camera.Node("I");
  const Question questions[] = {
      {"value", [&] { EXPECT_LT(integer.GetValue(), 100); }},
      {"real value", [&] { EXPECT_LT(real.GetValue(), 100); }},
      {"text", [&] { EXPECT_NE(camera.Text("Text").find('s'), std::string::npos); }},
      {"entry", [&] { EXPECT_NE(camera.As<IEnumeration>("E").GetCurrentEntry(), nullptr); }},
      {"command", [&] { camera.As<ICommand>("C").IsDone(); }},
      {"maximum", [&] { EXPECT_LT(integer.GetMax(), 201); }},
      {"real maximum", [&] { EXPECT_LT(real.GetMax(), 201); }},
      {"increment", [&] { EXPECT_TRUE(real.HasInc()); }},
      {"cached", [&] { integer.IsValueCacheValid(); }},
      {"access", [&] { EXPECT_EQ(node.GetAccessMode(), RW); }},
      {"visibility", [&] { EXPECT_NE(node.GetVisibility(), Invisible); }},
      {"dependents", [&] { EXPECT_TRUE(node.GetProperty("pDependent", value, attribute)); }},
      {"imposed", [&] { EXPECT_TRUE(node.GetProperty("ImposedAccessMode", value, attribute)); }},
      {"children", [&] { node.GetChildren(nodes, ctDependingNodes); }},
      {"selected", [&] { camera.As<ISelector>("I").GetSelectedFeatures(features); }},
      {"chunk",
       [&] {
         try {
           EXPECT_EQ(camera.Integer("Frame").GetValue(false, true), 7);
         } catch (const GenICam::AccessException&) {
           return;  // no buffer is attached
         }
       }},
  };
  start.arrive_and_wait();
  for (const Question& question : questions) {
    SCOPED_TRACE(question.name);
    std::array<int, kChangers> wanted{};
    for (std::size_t i = 0; i < kChangers; ++i)
      wanted[i] = changes[i].load(std::memory_order_relaxed) + kChanges;
    const auto changed = [&] {
      for (std::size_t i = 0; i < kChangers; ++i)
        if (changes[i].load(std::memory_order_relaxed) < wanted[i]) return false;
      return true;
    };
    while (!changed()) {
      for (int i = 0; i < kTimes; ++i) question.ask();
      std::this_thread::yield();
    }
  }
  isOver = true;
  for (std::thread& thread : threads) thread.join();
  Deregister(inside);
  Deregister(outside);
  EXPECT_GT(calls.load(), 0);
  EXPECT_EQ(features.size(), 2U) << "what is computed from it too";
  EXPECT_EQ(nodes.size(), 3U);
}

}  // namespace
