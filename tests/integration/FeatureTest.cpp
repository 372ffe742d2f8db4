#include <GenApi/GenApi.h>
#include <ZynCamera.h>
#include <gtest/gtest.h>

#include <string>

#include "Chain.h"
#include "FakeGigeCamera.h"

namespace {

using ZYNSDK::ZynCamera;
using ZYNSDK::ZynNode;
using zyntest::FakeGigeCamera;

/// A fake camera on the wire, opened.
class Feature : public testing::Test {
 protected:
  void SetUp() override {
    camera_ = chain::Find("GV01");
    ASSERT_EQ(camera_.Open(nullptr), 0);
  }
  void TearDown() override { camera_.Close(); }

  FakeGigeCamera fake_{1};
  ZynCamera camera_;
};

TEST_F(Feature, SizeIsReadAndWritten) {
  chain::SetInt(camera_, "Width", 256);
  chain::SetInt(camera_, "Height", 128);
  EXPECT_EQ(chain::GetInt(camera_, "Width"), 256);
  EXPECT_EQ(chain::GetInt(camera_, "Height"), 128);
  EXPECT_EQ(chain::GetInt(camera_, "PayloadSize"), 256 * 128);
}

TEST_F(Feature, ExposureTimeIsFoundUnderItsOlderName) {
  ZynNode node;
  ASSERT_EQ(camera_.GetRemoteNode("ExposureTime", &node), 0);
  EXPECT_STREQ(node.Name(), "ExposureTime");
  ASSERT_EQ(node.SetFloat(12345.0F), 0);
  ZynNode older;
  ASSERT_EQ(camera_.GetRemoteNode("ExposureTimeAbs", &older), 0);
  float value = 0;
  ASSERT_EQ(older.GetFloat(&value, nullptr, nullptr, nullptr), 0);
  EXPECT_FLOAT_EQ(value, 12345.0F);
}

TEST_F(Feature, EveryNodeMapIsThere) {
  for (int source = 0; source <= 4; ++source) {
    GenApi_3_4::INodeMap* map =
        ZYNSDK::Get2DCameraNodeMap(&camera_, static_cast<ZYNSDK::ZynXmlSource>(source));
    ASSERT_NE(map, nullptr) << source;
    EXPECT_GT(map->GetNumNodes(), 5U) << source;
    EXPECT_NE(map->GetNode("Root"), nullptr) << source;
  }
  EXPECT_EQ(ZYNSDK::Get2DCameraNodeMap(&camera_, static_cast<ZYNSDK::ZynXmlSource>(5)), nullptr);
}

TEST_F(Feature, ModulesReportTheirMandatoryFeatures) {
  const struct {
    int source;
    const char* feature;
  } cases[] = {{1, "DeviceID"}, {2, "TLVendorName"}, {3, "InterfaceID"}, {4, "StreamID"}};
  for (const auto& [source, feature] : cases) {
    GenApi_3_4::INodeMap* map =
        ZYNSDK::Get2DCameraNodeMap(&camera_, static_cast<ZYNSDK::ZynXmlSource>(source));
    ASSERT_NE(map, nullptr) << source;
    const GenApi_3_4::CStringPtr node(map->GetNode(feature));
    ASSERT_TRUE(node.IsValid()) << feature;
    EXPECT_STRNE(node->GetValue().c_str(), "") << feature;
  }
}

TEST_F(Feature, ANameThatDoesNotExistIsRefused) {
  ZynNode node;
  EXPECT_EQ(camera_.GetRemoteNode("NoSuchFeature", &node), 101091);
  EXPECT_EQ(camera_.GetDSNode("Width", &node), 101091) << "a feature of another node map";
}

TEST_F(Feature, AValueOutOfRangeIsRefusedAndChangesNothing) {
  chain::SetInt(camera_, "Width", 512);
  ZynNode node;
  ASSERT_EQ(camera_.GetRemoteNode("Width", &node), 0);
  EXPECT_EQ(node.SetInt(-5), 101040);
  EXPECT_EQ(node.SetInt(1000000), 101040);
  EXPECT_EQ(chain::GetInt(camera_, "Width"), 512);
}

TEST_F(Feature, AnEntryThatDoesNotExistIsRefused) {
  ZynNode node;
  ASSERT_EQ(camera_.GetRemoteNode("PixelFormat", &node), 0);
  ZYNSDK::ZynString wrong;
  wrong = "NoSuchFormat";
  EXPECT_EQ(node.SetEnumString(wrong), 101040);
  EXPECT_EQ(node.SetEnumIndex(99), 101050);
  ZYNSDK::ZynString current;
  ASSERT_EQ(node.GetEnumString(&current, nullptr), 0);
  EXPECT_STREQ(current.getStr(), "Mono8");
}

TEST_F(Feature, ListsContainWhatLookUpsFind) {
  ZYNSDK::ZynNodeArray nodes;
  ASSERT_EQ(camera_.GetRemoteNodes(&nodes), 0);
  ASSERT_GT(nodes.length(), 10U);
  for (unsigned int i = 0; i < nodes.length(); ++i) {
    ZynNode& listed = nodes[static_cast<int>(i)];
    ZynNode found;
    ASSERT_EQ(camera_.GetRemoteNode(listed.Name(), &found), 0) << listed.Name();
    EXPECT_EQ(found.Type(), listed.Type()) << listed.Name();
  }
}

TEST_F(Feature, NodesOfAClosedCameraAnswerNotOpen) {
  ZynNode node;
  ASSERT_EQ(camera_.GetRemoteNode("Width", &node), 0);
  ASSERT_EQ(camera_.Close(), 0);
  int value = 7;
  EXPECT_EQ(node.GetInt(&value, nullptr, nullptr, nullptr), 101010);
  EXPECT_EQ(node.SetInt(512), 101010);
}

}  // namespace
