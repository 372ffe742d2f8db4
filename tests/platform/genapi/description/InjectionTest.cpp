// A second description merged into the first.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "../MemoryPort.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

std::string Injected(const std::string& nodes) {
  return "<RegisterDescription>" + nodes + "</RegisterDescription>";
}

const char* const kTarget =
    "<Category Name=\"Root\"><pFeature>A</pFeature></Category>"
    "<Integer Name=\"A\"><Value>1</Value></Integer>"
    "<Enumeration Name=\"E\"><EnumEntry Name=\"Old\"><Value>0</Value></EnumEntry><Value>0</Value>"
    "</Enumeration><Integer Name=\"OfE\"><pValue>E</pValue></Integer>";

std::string ErrorOf(const std::string& injected) {
  try {
    CNodeMapRef map;
    map._LoadXMLFromStringInject(Description(kTarget).c_str(), Injected(injected).c_str());
  } catch (const GenericException& error) {
    return error.GetDescription();
  }
  return "no error";
}

TEST(Injection, AddsNewNodesAndJoinsFeatureLists) {
  CNodeMapRef map;
  map._LoadXMLFromStringInject(Description(kTarget).c_str(),
                               Injected("<Category Name=\"Root\"><pFeature>B</pFeature></Category>"
                                        "<Integer Name=\"B\"><pValue>A</pValue></Integer>")
                                   .c_str());
  EXPECT_EQ(CIntegerPtr(map._GetNode("B"))->GetValue(), 1);
  FeatureList_t features;
  CCategoryPtr(map._GetNode("Root"))->GetFeatures(features);
  ASSERT_EQ(features.size(), 2U);
  EXPECT_EQ(features[0]->GetNode()->GetName(), "A");
  EXPECT_EQ(features[1]->GetNode()->GetName(), "B");
  EXPECT_TRUE(map._GetNode("B")->IsFeature());
}

TEST(Injection, PriorityDecidesWhichOfTwoNodesStays) {
  CNodeMapRef map;
  map._LoadXMLFromStringInject(
      Description(kTarget).c_str(),
      Injected("<Integer Name=\"A\" MergePriority=\"-1\"><Value>2</Value></Integer>"
               "<Category Name=\"Root\" MergePriority=\"+1\"><pFeature>E</pFeature></Category>"
               "<Enumeration Name=\"E\" MergePriority=\"1\"><EnumEntry "
               "Name=\"New\"><Value>3</Value></EnumEntry><Value>3</Value></Enumeration>")
          .c_str());
  EXPECT_EQ(CIntegerPtr(map._GetNode("A"))->GetValue(), 1);
  EXPECT_EQ(CEnumerationPtr(map._GetNode("E"))->ToString(), "New");
  EXPECT_EQ(CIntegerPtr(map._GetNode("OfE"))->GetValue(), 3);
  EXPECT_EQ(map._GetNode("EnumEntry_E_Old"), nullptr);
  EXPECT_NE(map._GetNode("EnumEntry_E_New"), nullptr);
  FeatureList_t features;
  CCategoryPtr(map._GetNode("Root"))->GetFeatures(features);
  ASSERT_EQ(features.size(), 1U);
  EXPECT_EQ(features[0]->GetNode()->GetName(), "E");
}

TEST(Injection, ACategoryOfLowerPriorityAddsNothing) {
  CNodeMapRef map;
  map._LoadXMLFromStringInject(
      Description(kTarget).c_str(),
      Injected("<Category Name=\"Root\" MergePriority=\"-1\"><pFeature>E</pFeature></Category>").c_str());
  FeatureList_t features;
  CCategoryPtr(map._GetNode("Root"))->GetFeatures(features);
  ASSERT_EQ(features.size(), 1U);
  EXPECT_EQ(features[0]->GetNode()->GetName(), "A");
}

TEST(Injection, TwoNodesOfOneNameWithoutPriorityAreAConflict) {
  const std::string error = ErrorOf("<Integer Name=\"A\"><Value>2</Value></Integer>");
  EXPECT_NE(error.find("Merge conflict with node A (Integer, line 3)"), std::string::npos) << error;
  EXPECT_NE(ErrorOf("<Category Name=\"A\"/>"), "no error");
  EXPECT_NE(ErrorOf("<Integer Name=\"C\"><pValue>Nowhere</pValue></Integer>"), "no error");
  EXPECT_EQ(ErrorOf("<Integer Name=\"C\"><pValue>A</pValue></Integer>"), "no error");
}

TEST(Injection, SeveralDocumentsMergeOneAfterTheOther) {
  CNodeMapFactory factory(Description(kTarget).c_str());
  CNodeMapFactory first(Injected("<Integer Name=\"B\"><Value>2</Value></Integer>").c_str());
  CNodeMapFactory second(
      Injected("<Integer Name=\"B\" MergePriority=\"+1\"><Value>3</Value></Integer>").c_str());
  CNodeMapFactory before(factory);
  factory.AddInjectionData(first);
  factory.AddInjectionData(second);
  factory.LoadAndInject();
  EXPECT_TRUE(factory.IsPreprocessed());
  CNodeMapRef map(factory.CreateNodeMap());
  EXPECT_EQ(CIntegerPtr(map._GetNode("B"))->GetValue(), 3);
  CNodeMapRef untouched(before.CreateNodeMap());
  EXPECT_EQ(untouched._GetNode("B"), nullptr);
  CNodeMapFactory empty;
  EXPECT_THROW(factory.AddInjectionData(empty), RuntimeException);
  EXPECT_THROW(factory.AddInjectionData(first), RuntimeException) << "its text was released";
}

TEST(Injection, WorksOnFilesToo) {
  const std::string target = testing::TempDir() + "zyn_genapi_target.xml";
  const std::string injected = testing::TempDir() + "zyn_genapi_injected.xml";
  std::ofstream(target) << Description(kTarget);
  std::ofstream(injected) << Injected("<Integer Name=\"B\"><Value>2</Value></Integer>");
  CNodeMapRef map;
  map._LoadXMLFromFileInject(target.c_str(), injected.c_str());
  EXPECT_NE(map._GetNode("B"), nullptr);
  EXPECT_THROW(map._LoadXMLFromFileInject(target.c_str(), injected.c_str()), RuntimeException);
  std::remove(target.c_str());
  std::remove(injected.c_str());
}

}  // namespace
