#include "cameras/FeatureAccess.h"

#include <gtest/gtest.h>

#include <string>

#include "CameraFixture.h"

namespace {

using namespace zyn::cameras;
using zyn::cameras::test::Camera;

std::string PortOf(GenApi::INode& node) {
  GenICam::gcstring value;
  GenICam::gcstring attribute;
  return node.GetProperty("pPort", value, attribute) ? value.c_str() : "";
}

// The feature that a register belongs to: registers of numbers are called like it, with "Reg" behind.
std::string FeatureOf(Camera& camera, const std::string& registerName) {
  const std::string base = registerName.substr(0, registerName.rfind("Reg"));
  return camera.Has(base) ? base : registerName;
}

TEST(FeatureAccess, FindsFeaturesWhereTheDescriptionPutsThem) {
  for (const char* model : {"KEL-LP2000", "ZS-A1600"}) {
    Camera camera(model);
    GenApi::NodeList_t nodes;
    camera.map._GetNodes(nodes);
    int count = 0;
    for (GenApi::INode* node : nodes) {
      auto* const place = dynamic_cast<GenApi::IRegister*>(node);
      if (place == nullptr || PortOf(*node) != "Device") continue;
      const std::string feature = FeatureOf(camera, node->GetName().c_str());
      if (!camera.Node(feature).IsFeature()) continue;  // an upper limit
      const auto found = camera.model->Find(feature);
      ASSERT_TRUE(found) << feature;
      EXPECT_EQ(found->address, static_cast<std::uint64_t>(place->GetAddress())) << feature;
      EXPECT_EQ(found->length, static_cast<std::size_t>(place->GetLength())) << feature;
      ++count;
    }
    EXPECT_GT(count, 30) << model;
  }
}

TEST(FeatureAccess, FindsNothingWhereThereIsNoRegister) {
  Camera camera("KEL-LP2000");
  for (const char* name : {"", "NoSuchFeature", "TriggerSelector", "ChunkFrameID", "ExposureTimeReg"}) {
    EXPECT_FALSE(camera.model->Find(name)) << name;
    EXPECT_EQ(WriteTextFeature(*camera.model, name, "x"), RegisterStatus::unmapped) << name;
    EXPECT_EQ(ExecuteCommand(*camera.model, name), RegisterStatus::unmapped) << name;
  }
}

TEST(FeatureAccess, ATextReplacesTheWholeTextBefore) {
  Camera camera("KEL-LP2000");
  EXPECT_EQ(WriteTextFeature(*camera.model, "DeviceUserID", "a longer name"), RegisterStatus::ok);
  EXPECT_EQ(camera.model->GetIdentity().userName, "a longer name");
  EXPECT_EQ(WriteTextFeature(*camera.model, "DeviceUserID", "left"), RegisterStatus::ok);
  EXPECT_EQ(camera.model->GetIdentity().userName, "left");
  const std::string longest(camera.model->Find("DeviceUserID")->length, 'x');
  EXPECT_EQ(WriteTextFeature(*camera.model, "DeviceUserID", longest + "x"), RegisterStatus::outOfRange);
  EXPECT_EQ(camera.model->GetIdentity().userName, "left");
  EXPECT_EQ(WriteTextFeature(*camera.model, "DeviceUserID", longest), RegisterStatus::ok);
  EXPECT_EQ(camera.model->GetIdentity().userName, longest);
  EXPECT_EQ(WriteTextFeature(*camera.model, "DeviceUserID", ""), RegisterStatus::ok);
  EXPECT_EQ(camera.model->GetIdentity().userName, "");
}

TEST(FeatureAccess, CommandsAreExecuted) {
  Camera camera("KEL-LP2000");
  EXPECT_EQ(ExecuteCommand(*camera.model, "AcquisitionStart"), RegisterStatus::ok);
  EXPECT_TRUE(camera.model->IsAcquiring());
  EXPECT_EQ(ExecuteCommand(*camera.model, "DeviceReset"), RegisterStatus::ok);
  EXPECT_EQ(camera.model->ResetCount(), 1U);
}

TEST(FeatureAccess, OnlyACameraThatAcquiresIsStopped) {
  Camera camera("KEL-LP2000");
  camera.model->GetFaults().FailAllRegisters(1, RegisterStatus::busy);
  EXPECT_EQ(StopAcquisition(*camera.model), RegisterStatus::ok) << "no register is touched";
  camera.model->GetFaults().Clear();
  camera.Execute("AcquisitionStart");
  camera.model->GetFaults().FailAllRegisters(1, RegisterStatus::busy);
  EXPECT_EQ(StopAcquisition(*camera.model), RegisterStatus::busy);
  EXPECT_TRUE(camera.model->IsAcquiring());
  EXPECT_EQ(StopAcquisition(*camera.model), RegisterStatus::ok);
  EXPECT_FALSE(camera.model->IsAcquiring());
}

}  // namespace
