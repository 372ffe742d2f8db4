#include <gtest/gtest.h>

#include <set>

#include "CameraFixture.h"

namespace {

using namespace GenApi;
using zyn::cameras::Catalog;
using zyn::cameras::MakeCamera;
using zyn::cameras::test::Camera;

class EveryModel : public testing::TestWithParam<std::string> {};

std::vector<std::string> Models() {
  std::vector<std::string> names;
  for (const auto& entry : Catalog()) names.emplace_back(entry.model);
  return names;
}

std::string CaseName(const testing::TestParamInfo<std::string>& info) {
  std::string name = info.param;
  std::erase(name, '-');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Catalog, EveryModel, testing::ValuesIn(Models()), CaseName);

std::vector<INode*> Features(Camera& camera) {
  NodeList_t nodes;
  camera.map._GetNodes(nodes);
  std::vector<INode*> features;
  for (INode* node : nodes) {
    if (node->IsFeature() && !dynamic_cast<ICategory*>(node)) features.push_back(node);
  }
  return features;
}

bool IsOfAFrameOrAnEvent(INode& node) {
  const std::string name = node.GetName().c_str();
  return name.rfind("Chunk", 0) == 0 || name.rfind("EventExposureEnd", 0) == 0;
}

TEST_P(EveryModel, EveryFeatureIsReadable) {
  Camera camera(GetParam());
  const auto features = Features(camera);
  EXPECT_GT(features.size(), 30U);
  for (INode* node : features) {
    SCOPED_TRACE(node->GetName().c_str());
    if (dynamic_cast<ICommand*>(node)) {
      EXPECT_EQ(node->GetAccessMode(), RW);
      continue;
    }
    if (!IsReadable(node)) {
      EXPECT_TRUE(IsOfAFrameOrAnEvent(*node)) << "what the camera itself knows is always there";
      continue;
    }
    EXPECT_NO_THROW(dynamic_cast<IValue&>(*node).ToString(true));
    EXPECT_FALSE(node->GetToolTip().empty());
  }
}

TEST_P(EveryModel, EveryWritableFeatureTakesItsLimitsAndRefusesWhatLiesBeyond) {
  Camera camera(GetParam());
  for (INode* node : Features(camera)) {
    SCOPED_TRACE(node->GetName().c_str());
    if (!IsWritable(node)) continue;
    if (auto* integer = dynamic_cast<IInteger*>(node)) {
      const auto before = integer->GetValue();
      integer->SetValue(integer->GetMax());
      EXPECT_EQ(integer->GetValue(true), integer->GetMax());
      integer->SetValue(integer->GetMin());
      EXPECT_EQ(integer->GetValue(true), integer->GetMin());
      EXPECT_THROW(integer->SetValue(integer->GetMax() + integer->GetInc()), GenICam::OutOfRangeException);
      // Past the node map's own check, the camera itself refuses.
      if (std::string(node->GetName().c_str()) != "TLParamsLocked") {
        EXPECT_THROW(integer->SetValue(integer->GetMax() + integer->GetInc(), false),
                     GenICam::RuntimeException);
      }
      integer->SetValue(before);
    } else if (auto* number = dynamic_cast<IFloat*>(node)) {
      const double before = number->GetValue();
      number->SetValue(number->GetMax());
      EXPECT_EQ(number->GetValue(true), number->GetMax());
      number->SetValue(number->GetMin());
      EXPECT_EQ(number->GetValue(true), number->GetMin());
      EXPECT_THROW(number->SetValue(number->GetMax() * 2 + 1), GenICam::OutOfRangeException);
      EXPECT_THROW(number->SetValue(number->GetMax() * 2 + 1, false), GenICam::RuntimeException);
      number->SetValue(before);
    } else if (auto* boolean = dynamic_cast<IBoolean*>(node)) {
      const bool before = boolean->GetValue();
      boolean->SetValue(!before);
      EXPECT_EQ(boolean->GetValue(true), !before);
      boolean->SetValue(before);
    } else if (auto* choice = dynamic_cast<IEnumeration*>(node)) {
      const std::string before = choice->ToString().c_str();
      GenICam::gcstring_vector names;
      choice->GetSymbolics(names);
      for (const auto& name : names) {
        choice->FromString(name);
        EXPECT_EQ(choice->ToString(true), name);
      }
      choice->FromString(before.c_str());
    } else if (auto* text = dynamic_cast<IString*>(node)) {
      text->SetValue("name");
      EXPECT_EQ(text->GetValue(true), "name");
    }
  }
}

TEST_P(EveryModel, EveryCommandIsDoneAtOnce) {
  Camera camera(GetParam());
  for (INode* node : Features(camera)) {
    auto* command = dynamic_cast<ICommand*>(node);
    // The default set cannot be overwritten.
    if (!command || node->GetName() == "UserSetSave") continue;
    SCOPED_TRACE(node->GetName().c_str());
    EXPECT_NO_THROW(command->Execute());
    EXPECT_TRUE(command->IsDone());
    camera.Execute("AcquisitionStop");
  }
}

TEST_P(EveryModel, ItsDescriptionHasNoNameTwice) {
  Camera camera(GetParam());
  const std::string text(camera.model->Description());
  std::set<std::string> names;
  for (std::size_t at = text.find(" Name=\""); at != std::string::npos; at = text.find(" Name=\"", at + 1)) {
    const std::size_t lineStart = text.rfind('<', at);
    if (text.compare(lineStart, 10, "<EnumEntry") == 0) continue;
    const std::size_t from = at + 7;
    EXPECT_TRUE(names.insert(text.substr(from, text.find('"', from) - from)).second) << text.substr(at, 40);
  }
}

TEST_P(EveryModel, NamesItselfInFeaturesAsInItsIdentity) {
  Camera camera(GetParam());
  const auto identity = camera.model->GetIdentity();
  EXPECT_EQ(identity.model, GetParam());
  EXPECT_EQ(camera.Get("DeviceModelName"), identity.model);
  EXPECT_EQ(camera.Get("DeviceVendorName"), identity.vendor);
  EXPECT_EQ(camera.Get("DeviceVersion"), identity.version);
  EXPECT_EQ(camera.Get("DeviceSerialNumber"), "SN1");
  camera.Set("DeviceUserID", "left of the belt");
  EXPECT_EQ(camera.model->GetIdentity().userName, "left of the belt");
}

TEST_P(EveryModel, SettingsAreLockedWhileFramesAreAcquired) {
  Camera camera(GetParam());
  camera.Execute("AcquisitionStart");
  EXPECT_TRUE(camera.model->IsAcquiring());
  EXPECT_THROW(camera.Set("Height", "100"), GenICam::GenericException);
  EXPECT_THROW(camera.Execute("UserSetLoad"), GenICam::GenericException);
  EXPECT_THROW(camera.Execute("AcquisitionStart"), GenICam::GenericException);
  camera.Execute("AcquisitionStop");
  EXPECT_FALSE(camera.model->IsAcquiring());
  EXPECT_NO_THROW(camera.Set("Height", "100"));
}

TEST_P(EveryModel, TLParamsLockedLocksTheDescription) {
  Camera camera(GetParam());
  camera.Set("TLParamsLocked", "1");
  EXPECT_EQ(camera.Node("Height").GetAccessMode(), RO);
  camera.Set("TLParamsLocked", "0");
  EXPECT_EQ(camera.Node("Height").GetAccessMode(), RW);
}

TEST_P(EveryModel, UserSetsKeepSettingsAcrossAReset) {
  Camera camera(GetParam());
  const std::string asDelivered = camera.Get("Height");
  camera.Set("Height", "100");
  EXPECT_THROW(camera.Execute("UserSetSave"), GenICam::GenericException) << "Default is not changed";
  camera.Set("UserSetSelector", "UserSet1");
  camera.Execute("UserSetSave");
  camera.Set("UserSetSelector", "Default");
  camera.Execute("UserSetLoad");
  EXPECT_EQ(camera.Get("Height"), asDelivered);
  camera.Set("UserSetSelector", "UserSet1");
  camera.Execute("UserSetLoad");
  EXPECT_EQ(camera.Get("Height"), "100");

  camera.Execute("DeviceReset");
  EXPECT_EQ(camera.Get("Height"), asDelivered);
  camera.Set("UserSetDefault", "UserSet1");
  camera.Execute("DeviceReset");
  EXPECT_EQ(camera.Get("Height"), "100");
  EXPECT_EQ(camera.model->ResetCount(), 2U);
}

TEST_P(EveryModel, AResetEndsTheAcquisition) {
  Camera camera(GetParam());
  camera.Execute("AcquisitionStart");
  camera.Execute("DeviceReset");
  EXPECT_FALSE(camera.model->IsAcquiring());
}

TEST_P(EveryModel, WarmsUp) {
  Camera camera(GetParam());
  EXPECT_NEAR(camera.Float("DeviceTemperature").GetValue(), 32, 0.01);
  camera.clock.Advance(3'600'000'000'000);
  EXPECT_NEAR(camera.Float("DeviceTemperature").GetValue(), 44, 0.01);
}

TEST_P(EveryModel, LatchesItsTime) {
  Camera camera(GetParam());
  camera.clock.Advance(123);
  camera.Execute("TimestampLatch");
  camera.clock.Advance(1);
  EXPECT_EQ(camera.Get("TimestampLatchValue"), "123");
}

TEST(Catalog, KnowsItsModelsOnly) {
  EXPECT_EQ(MakeCamera("KEL-LP", "1"), nullptr);
  int lasers = 0;
  for (const auto& entry : Catalog()) {
    const auto camera = MakeCamera(entry.model, "1");
    ASSERT_NE(camera, nullptr);
    EXPECT_EQ(camera->GetIdentity().isLaser, entry.isLaser);
    const bool hasLaserName = entry.model.starts_with("KEL-LP") || entry.model.starts_with("VX7");
    EXPECT_EQ(hasLaserName, entry.isLaser);
    lasers += entry.isLaser ? 1 : 0;
  }
  EXPECT_EQ(lasers, 3);
}

TEST(Catalog, TellsTheLargestImageAndTheConnector) {
  for (const auto& entry : Catalog()) {
    SCOPED_TRACE(entry.model);
    Camera camera{std::string(entry.model)};
    EXPECT_EQ(camera.Get("Width"), std::to_string(entry.columns));
    EXPECT_EQ(camera.Get("Height"), std::to_string(entry.rows));
    EXPECT_EQ(camera.Has("DeviceTapGeometry"), entry.isCameraLink);
    EXPECT_EQ(zyn::cameras::FindModel(entry.model), &entry);
  }
  EXPECT_EQ(zyn::cameras::FindModel("ZS"), nullptr);
}

std::string Attribute(const std::string& xml, const std::string& name) {
  const std::size_t begin = xml.find(name + "=\"") + name.size() + 2;
  return xml.substr(begin, xml.find('"', begin) - begin);
}

// Consumers keep descriptions by these numbers.
TEST(Catalog, EveryDescriptionHasNumbersOfItsOwnThatStayTheSame) {
  std::set<std::string> products;
  std::set<std::string> versions;
  for (const auto& entry : Catalog()) {
    const std::string xml(MakeCamera(entry.model, "1")->Description());
    const std::string again(MakeCamera(entry.model, "2")->Description());
    for (const char* name : {"ProductGuid", "VersionGuid"}) {
      const std::string guid = Attribute(xml, name);
      EXPECT_EQ(guid.find_first_not_of("0123456789ABCDEF-"), std::string::npos) << guid;
      EXPECT_EQ(guid.size(), 36U);
      EXPECT_EQ(guid, Attribute(again, name)) << "whatever camera of the model";
    }
    products.insert(Attribute(xml, "ProductGuid"));
    versions.insert(Attribute(xml, "VersionGuid"));
  }
  EXPECT_EQ(products.size(), Catalog().size());
  EXPECT_EQ(versions.size(), Catalog().size());
}

}  // namespace
