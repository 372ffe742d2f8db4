#include "NodeManager.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

using namespace ZYNSDK;

TEST(NodeManager, TheSameNameInTheSameMapIsTheSameNode) {
  NodeManager nodes;
  CameraNode* first = nodes.GetNode(nullptr, "GainRaw", "Gain", ZYN_NODE_INTEGER, ZYN_XML_REMOTE_DEVICE);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(nodes.GetNode(nullptr, "GainAbs", "Gain", ZYN_NODE_FLOAT, ZYN_XML_REMOTE_DEVICE), first);
  EXPECT_EQ(first->Type(), ZYN_NODE_INTEGER);  // nothing is typed again
  EXPECT_STREQ(first->Name(), "Gain");
}

TEST(NodeManager, TheSameNameInTwoMapsIsTwoNodes) {
  NodeManager nodes;
  std::set<CameraNode*> all;
  for (int source = 0; source <= 4; ++source) {
    all.insert(nodes.GetNode(nullptr, "Gain", "Gain", ZYN_NODE_FLOAT, static_cast<ZynXmlSource>(source)));
  }
  EXPECT_EQ(all.size(), 5U);
  EXPECT_EQ(all.count(nullptr), 0U);
}

TEST(NodeManager, AMapThatDoesNotExistHasNoNodes) {
  NodeManager nodes;
  EXPECT_EQ(nodes.GetNode(nullptr, "Gain", "Gain", ZYN_NODE_FLOAT, static_cast<ZynXmlSource>(5)), nullptr);
  EXPECT_EQ(nodes.GetNode(nullptr, "Gain", "Gain", ZYN_NODE_FLOAT, static_cast<ZynXmlSource>(-1)), nullptr);
}

TEST(NodeManager, ThreadsThatLookUpTogetherGetOneNode) {
  NodeManager nodes;
  std::vector<CameraNode*> found(8);
  std::vector<std::thread> threads;
  threads.reserve(found.size());
  for (auto& node : found) {
    threads.emplace_back([&] {
      for (int i = 0; i < 100; ++i) {
        node = nodes.GetNode(nullptr, "N", "N" + std::to_string(i), ZYN_NODE_FLOAT, ZYN_XML_INTERFACE);
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(std::set<CameraNode*>(found.begin(), found.end()).size(), 1U);
}
