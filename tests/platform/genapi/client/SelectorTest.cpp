// Selectors and their combinations.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../MemoryPort.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

std::vector<std::string> Names(const FeatureList_t& features) {
  std::vector<std::string> names;
  for (IValue* const feature : features) names.emplace_back(feature->GetNode()->GetName().c_str());
  return names;
}

std::vector<std::string> Selected(Camera& camera, const char* name) {
  FeatureList_t features;
  camera.As<ISelector>(name).GetSelectedFeatures(features);
  return Names(features);
}

std::vector<std::string> Selecting(Camera& camera, const char* name) {
  FeatureList_t features;
  camera.As<ISelector>(name).GetSelectingFeatures(features);
  return Names(features);
}

using List = std::vector<std::string>;

TEST(Selectors, ListWhatTheySelectAndWhatIsComputedFromIt) {
  Camera camera(
      "<Integer "
      "Name=\"Sel\"><Value>0</Value><pSelected>Raw</pSelected><pSelected>Missing</pSelected></Integer>"
      "<Integer Name=\"Raw\"><Value>1</Value></Integer>"
      "<Float Name=\"Gain\"><pValue>Raw</pValue></Float>"
      "<SwissKnife Name=\"Twice\"><pVariable Name=\"G\">Gain</pVariable><Formula>G*2</Formula></SwissKnife>"
      "<Integer Name=\"Limited\"><Value>1</Value><pMax>Raw</pMax></Integer>"
      "<Integer Name=\"Locked\"><Value>1</Value><pIsLocked>Raw</pIsLocked></Integer>"
      "<Integer Name=\"Told\"><Value>1</Value><pInvalidator>Raw</pInvalidator></Integer>"
      "<Category Name=\"Root\"><pFeature>Raw</pFeature></Category>");
  EXPECT_EQ(Selected(camera, "Sel"), (List{"Raw", "Gain", "Limited", "Twice"}));
  EXPECT_EQ(Selecting(camera, "Twice"), List{"Sel"});
  EXPECT_EQ(Selecting(camera, "Limited"), List{"Sel"});
  EXPECT_EQ(Selecting(camera, "Raw"), List{"Sel"});
  EXPECT_EQ(Selecting(camera, "Locked"), List{}) << "a condition only says whether it may be used";
  EXPECT_EQ(Selecting(camera, "Told"), List{});
  EXPECT_EQ(Selecting(camera, "Root"), List{});
  EXPECT_TRUE(camera.As<ISelector>("Sel").IsSelector());
  EXPECT_FALSE(camera.As<ISelector>("Raw").IsSelector());
  EXPECT_FALSE(camera.As<ISelector>("Device").IsSelector());
}

TEST(Selectors, ThatDependOnWhatTheySelectDoNotSelectThemselves) {
  Camera camera(
      "<Integer Name=\"Sel\"><Value>0</Value><pMax>Raw</pMax><pSelected>Raw</pSelected></Integer>"
      "<Integer Name=\"Raw\"><Value>1</Value></Integer>");
  EXPECT_EQ(Selected(camera, "Sel"), List{"Raw"});
  EXPECT_EQ(Selecting(camera, "Sel"), List{});
}

// Values of feature F that are kept per combination of Outer and Inner; Inner lacks "Z" while Outer is 1.
const char* const kNested =
    "<Integer Name=\"Outer\"><Value>1</Value><Min>0</Min><Max>1</Max><pSelected>Inner</pSelected></Integer>"
    "<Enumeration Name=\"Inner\"><EnumEntry Name=\"Y\"><Value>0</Value></EnumEntry>"
    "<EnumEntry Name=\"Z\"><Value>1</Value><pIsAvailable>OuterIsZero</pIsAvailable></EnumEntry>"
    "<pValue>InnerReg</pValue><pSelected>F</pSelected></Enumeration>"
    "<IntSwissKnife Name=\"OuterIsZero\"><pVariable Name=\"O\">Outer</pVariable><Formula>O=0</Formula>"
    "</IntSwissKnife>"
    "<IntReg Name=\"InnerReg\"><Address>0x10</Address><pIndex Offset=\"4\">Outer</pIndex><Length>4</Length>"
    "<AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>"
    "<IntReg Name=\"F\"><Address>0x20</Address><pIndex Offset=\"4\">InnerReg</pIndex><Length>4</Length>"
    "<AccessMode>RW</AccessMode><pPort>Device</pPort></IntReg>";

TEST(SelectorSet, StepsThroughAllCombinationsAndRestores) {
  Camera camera(kNested);
  camera.port.bytes[0x10] = 1;
  CSelectorSet set(&camera.Node("F"));
  EXPECT_FALSE(set.IsEmpty());
  FeatureList_t selectors;
  set.GetSelectorList(selectors);
  EXPECT_EQ(Names(selectors), (List{"Outer", "Inner"}));
  set.GetSelectorList(selectors, true);
  EXPECT_EQ(selectors.size(), 4U);
  List seen;
  for (bool more = set.SetFirst(); more; more = set.SetNext()) seen.emplace_back(set.ToString().c_str());
  EXPECT_EQ(seen, (List{"{Outer=0\tInner=Y}", "{Outer=0\tInner=Z}", "{Outer=1\tInner=Y}"}));
  EXPECT_EQ(camera.Integer("Outer").GetValue(), 1);
  EXPECT_EQ(camera.port.bytes[0x10], 1) << "the inner selector of the other outer value";
  EXPECT_EQ(camera.port.bytes[0x14], 0);
}

TEST(SelectorSet, CanBeLeftInTheMiddle) {
  Camera camera(kNested);
  CSelectorSet set(&camera.Node("F"));
  ASSERT_TRUE(set.SetFirst());
  ASSERT_TRUE(set.SetNext());
  EXPECT_EQ(camera.Text("Inner"), "Z");
  camera.Value("Inner").FromString("Y");
  EXPECT_TRUE(set.SetNext(false)) << "without a tick the present combination is set again";
  EXPECT_EQ(camera.Text("Inner"), "Z");
  CSelectorState state;
  set.GetState(state);
  set.Restore();
  EXPECT_EQ(camera.Integer("Outer").GetValue(), 1);
  EXPECT_EQ(camera.port.bytes[0x10], 0);
  EXPECT_TRUE(state.RestoreState(camera.map._Ptr));
  EXPECT_EQ(camera.Integer("Outer").GetValue(), 0);
  EXPECT_EQ(camera.Text("Inner"), "Z");
}

TEST(SelectorSet, FixedHugeAndCircularSelectorsKeepTheirValue) {
  Camera camera(
      "<Integer "
      "Name=\"Fixed\"><Value>3</Value><ImposedAccessMode>RO</ImposedAccessMode><pSelected>F</pSelected>"
      "</Integer><Integer Name=\"Huge\"><Value>4</Value><pSelected>F</pSelected></Integer>"
      "<Boolean "
      "Name=\"Flag\"><Value>true</Value><pSelected>F</pSelected><pSelected>Steps</pSelected></Boolean>"
      "<Integer Name=\"Steps\"><Value>0</Value><Min>0</Min><Max>10</Max><ValidValueSet>2;7;99</ValidValueSet>"
      "<pSelected>F</pSelected><pSelected>Flag</pSelected></Integer>"
      "<Integer Name=\"F\"><Value>0</Value></Integer>");
  CSelectorSet set(&camera.Node("F"));
  List seen;
  for (bool more = set.SetFirst(); more; more = set.SetNext()) seen.emplace_back(set.ToString().c_str());
  ASSERT_EQ(seen.size(), 4U);
  EXPECT_EQ(seen[0], "{Fixed=3\tHuge=4\tFlag=0\tSteps=2}");
  EXPECT_EQ(seen[3], "{Fixed=3\tHuge=4\tFlag=1\tSteps=7}");
  EXPECT_EQ(camera.Text("Steps"), "0");
  CSelectorSet none(&camera.Node("Device"));
  EXPECT_TRUE(none.IsEmpty());
  EXPECT_FALSE(none.SetFirst());
  EXPECT_FALSE(none.SetNext());
  EXPECT_EQ(none.ToString(), "");
}

TEST(SelectorState, SaysWhatCouldNotBeSet) {
  Camera camera("<Integer Name=\"A\"><Value>1</Value></Integer>");
  CSelectorState state;
  EXPECT_TRUE(state.IsEmpty());
  EXPECT_FALSE(state.SetFirst());
  state.AddSelector("Missing", "1");
  state.AddSelector(camera.Value("A"));
  state.AddSelector("A", "text");
  camera.Integer("A").SetValue(5);
  gcstring_vector errors;
  EXPECT_FALSE(state.RestoreState(camera.map._Ptr, &errors));
  EXPECT_EQ(camera.Integer("A").GetValue(), 1);
  ASSERT_EQ(errors.size(), 2U);
  EXPECT_EQ(errors[0], "Error while setting selector: 'Missing' not found");
  List walked;
  for (bool more = state.SetFirst(); more; more = state.SetNext())
    walked.emplace_back((state.GetNodeName() + "=" + state.GetNodeValue()).c_str());
  EXPECT_EQ(walked, (List{"Missing=1", "A=1", "A=text"}));
  EXPECT_EQ(state.GetNodeName(), "");
}

}  // namespace
