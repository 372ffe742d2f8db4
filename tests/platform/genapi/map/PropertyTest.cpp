// What a node says about itself as texts.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "../MemoryPort.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

struct PropertyRow {
  const char* node;
  const char* property;
  const char* value;
  const char* attribute;
};

std::string Nodes() {
  return "<Category Name=\"Root\" "
         "NameSpace=\"Standard\"><Visibility>Invisible</Visibility><pFeature>Width</pFeature>"
         "</Category>"
         "<Integer Name=\"Width\" NameSpace=\"Standard\" ExposeStatic=\"No\"><Visibility>Guru</Visibility>"
         "<IsDeprecated>Yes</IsDeprecated><ImposedAccessMode>RO</ImposedAccessMode><pInvalidator>A</"
         "pInvalidator>"
         "<pInvalidator>B</pInvalidator><Streamable>Yes</Streamable><pValue>R</pValue><Min>-4</"
         "Min><Max>0x10</Max>"
         "</Integer>" +
         Register("IntReg", "R", 0x10, 4, "<Cachable>NoCache</Cachable>") +
         "<Node Name=\"A\" ExposeStatic=\"Yes\"/><Node Name=\"B\"/>"
         "<SwissKnife Name=\"K\"><pVariable Name=\"X\">Width</pVariable><pVariable "
         "Name=\"Y.Max\">R</pVariable>"
         "<Constant Name=\"C\">0.5</Constant><Formula>X&lt;C</Formula></SwissKnife>"
         "<Boolean Name=\"T\"><Value>true</Value></Boolean>"
         "<Enumeration Name=\"E\"><EnumEntry "
         "Name=\"N\"><Value>1</Value></EnumEntry><Value>1</Value></Enumeration>";
}

TEST(Property, ElementsAndWhatFollowsFromThemAreTexts) {
  const PropertyRow rows[] = {
      {"Width", "Name", "Width", ""},
      {"Width", "NodeType", "Integer", ""},
      {"Width", "NameSpace", "Standard", ""},
      {"R", "NameSpace", "Custom", ""},
      {"Width", "DeviceName", "Device", ""},
      {"Width", "Visibility", "Guru", ""},
      {"R", "Visibility", "Beginner", ""},
      {"Root", "Visibility", "Guru", ""},
      {"Width", "ImposedAccessMode", "RO", ""},
      {"R", "ImposedAccessMode", "RW", ""},
      {"Width", "Streamable", "Yes", ""},
      {"R", "Streamable", "No", ""},
      {"Width", "IsFeature", "Yes", ""},
      {"R", "IsFeature", "No", ""},
      {"Width", "IsDeprecated", "Yes", ""},
      {"R", "IsDeprecated", "No", ""},
      {"Width", "ExposeStatic", "No", ""},
      {"A", "ExposeStatic", "Yes", ""},
      {"R", "ExposeStatic", "No", ""},
      {"Root", "ExposeStatic", "Yes", ""},
      {"Width", "pTerminal", "R", ""},
      {"R", "pTerminal", "R", ""},
      {"R", "pDependent", "Root\tWidth\tK", ""},
      {"K", "pDependent", "", ""},
      {"Width", "Min", "-4", ""},
      {"Width", "Max", "16", ""},
      {"Width", "pValue", "R", ""},
      {"Width", "pInvalidator", "A\tB", "\t"},
      {"R", "Address", "16", ""},
      {"R", "AccessMode", "RW", ""},
      {"R", "Cachable", "NoCache", ""},
      {"R", "pPort", "Device", ""},
      {"K", "pVariable", "Width\tR", "X\tY.Max"},
      {"K", "Constant", "0.5", "C"},
      {"K", "Formula", "X<C", ""},
      {"T", "Value", "true", ""},
      {"E", "EnumEntry", "EnumEntry_E_N", "N"},
      {"EnumEntry_E_N", "NodeType", "EnumEntry", ""},
      {"EnumEntry_E_N", "Name", "EnumEntry_E_N", ""},
  };
  Camera camera(Nodes());
  for (const PropertyRow& row : rows) {
    SCOPED_TRACE(std::string(row.node) + "." + row.property);
    INode& node = camera.Node(row.node);
    gcstring value = "old";
    gcstring attribute = "old";
    EXPECT_TRUE(node.GetProperty(row.property, value, attribute));
    std::string names(value.c_str());
    // Dependents come in no particular order.
    if (std::string(row.property) == "pDependent" && !names.empty()) {
      for (const char* const name : {"Root", "Width", "K"})
        EXPECT_NE(("\t" + names + "\t").find("\t" + std::string(name) + "\t"), std::string::npos) << names;
      EXPECT_EQ(std::count(names.begin(), names.end(), '\t'), 2) << names;
    } else {
      EXPECT_EQ(names, row.value);
    }
    EXPECT_STREQ(attribute.c_str(), row.attribute);
    gcstring_vector all;
    node.GetPropertyNames(all);
    EXPECT_EQ(std::count(all.begin(), all.end(), gcstring(row.property)), 1);
  }
}

TEST(Property, NamesAreThoseOfEveryNodeAndOfTheElementsPresent) {
  Camera camera(Nodes());
  gcstring_vector names(1, "old");
  camera.Node("B").GetPropertyNames(names);
  EXPECT_EQ(names.size(), 12U) << "what every node has";
  camera.Node("T").GetPropertyNames(names);
  ASSERT_EQ(names.size(), 13U);
  EXPECT_EQ(names[12], "Value");
}

TEST(Property, UnknownOnesAndAbsentElementsAreNotThere) {
  Camera camera(Nodes());
  gcstring value = "old";
  gcstring attribute = "old";
  for (const char* const name : {"Colour", "Max", "name", ""}) {
    EXPECT_FALSE(camera.Node("T").GetProperty(name, value, attribute)) << name;
    EXPECT_EQ(value, "old") << name;
  }
}

TEST(Property, WhatIsImposedShows) {
  Camera camera(Nodes());
  INode& node = camera.Node("Width");
  node.ImposeAccessMode(NA);
  node.ImposeVisibility(Invisible);
  gcstring value;
  gcstring attribute;
  node.GetProperty("ImposedAccessMode", value, attribute);
  EXPECT_EQ(value, "NA");
  node.GetProperty("Visibility", value, attribute);
  EXPECT_EQ(value, "Invisible");
}

}  // namespace
