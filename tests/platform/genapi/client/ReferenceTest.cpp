// Objects that stand for a node.
#include <gtest/gtest.h>

#include <string>

#include "../MemoryPort.h"
#include "GenApi/IEnumerationT.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

enum Colour { Red, Green, Blue };

const char* const kNodes =
    "<Integer Name=\"I\"><Value>5</Value><pCastAlias>F</pCastAlias></Integer>"
    "<Float Name=\"F\"><Value>1.5</Value><pCastAlias>I</pCastAlias></Float>"
    "<Boolean Name=\"B\"><Value>false</Value></Boolean><String Name=\"S\"><Value>x</Value></String>"
    "<Command Name=\"C\"><Value>0</Value><CommandValue>1</CommandValue></Command>"
    "<Category Name=\"Root\"><pFeature>I</pFeature></Category>"
    "<Enumeration Name=\"E\"><EnumEntry Name=\"Red\"><Value>10</Value></EnumEntry>"
    "<EnumEntry Name=\"Blue\"><Value>30</Value></EnumEntry><EnumEntry "
    "Name=\"Other\"><Value>40</Value></EnumEntry>"
    "<Value>10</Value></Enumeration>";

template <class Reference>
void Bind(Reference& reference, Camera& camera, const char* name) {
  static_cast<IReference&>(reference).SetReference(camera.map._GetNode(name));
}

TEST(References, PassEverythingOnToTheirNode) {
  Camera camera(std::string(kNodes) + Register("Register", "R", 0x10, 4));
  CIntegerRef integer;
  CFloatRef real;
  CBooleanRef boolean;
  CStringRef text;
  CCommandRef command;
  CCategoryRef category;
  CRegisterRef bytes;
  CEnumerationRef enumeration;
  CPortRef port;
  Bind(integer, camera, "I");
  Bind(real, camera, "F");
  Bind(boolean, camera, "B");
  Bind(text, camera, "S");
  Bind(command, camera, "C");
  Bind(category, camera, "Root");
  Bind(bytes, camera, "R");
  Bind(enumeration, camera, "E");
  Bind(port, camera, "Device");
  integer = 7;
  EXPECT_EQ(integer() + *integer, 14);
  EXPECT_EQ(camera.Integer("I").GetValue(), 7);
  EXPECT_EQ(integer.GetFloatAlias(), &camera.Float("F"));
  EXPECT_EQ(integer.ToString(), "7");
  EXPECT_EQ(integer.GetMin(), INT64_MIN);
  real = 2.5;
  EXPECT_EQ(real() + *real, 5);
  EXPECT_EQ(real.GetIntAlias(), &camera.Integer("I"));
  EXPECT_EQ(real.GetEnumAlias(), nullptr);
  boolean = true;
  EXPECT_TRUE(boolean());
  text = "y";
  EXPECT_EQ(text(), "y");
  EXPECT_NO_THROW(command());
  EXPECT_TRUE(command.IsDone());
  FeatureList_t features;
  category.GetFeatures(features);
  EXPECT_EQ(features.size(), 1U);
  const uint8_t data[2] = {1, 2};
  bytes.Set(data, 2);
  EXPECT_EQ(camera.port.bytes[0x11], 2);
  EXPECT_EQ(bytes.GetAddress(), 0x10);
  enumeration = "Blue";
  EXPECT_EQ(enumeration.GetIntValue(), 30);
  uint8_t read[2] = {};
  port.Read(read, 0x10, 2);
  EXPECT_EQ(read[1], 2);
}

TEST(References, AnEmptyOneIsNotImplementedAndThrows) {
  Camera camera(kNodes);
  CIntegerRef integer;
  EXPECT_EQ(integer.GetAccessMode(), NI);
  EXPECT_FALSE(integer.IsValid());
  try {
    integer.GetValue();
    FAIL() << "no exception";
  } catch (const AccessException& error) {
    EXPECT_STREQ(error.GetDescription(), "Feature not present (reference not valid)");
  }
  Bind(integer, camera, "F");
  EXPECT_FALSE(integer.IsValid()) << "a float is no integer";
  Bind(integer, camera, "I");
  EXPECT_EQ(integer.GetAccessMode(), RW);
  static_cast<IReference&>(integer).SetReference(nullptr);
  EXPECT_THROW(integer = 5, AccessException);
}

TEST(References, TypedEnumerationsTranslateBetweenEnumeratorsAndEntries) {
  Camera camera(kNodes);
  CEnumerationTRef<Colour> colour;
  EXPECT_THROW(colour.GetValue(), AccessException);
  Bind(colour, camera, "E");
  colour.SetNumEnums(3);
  const char* const names[] = {"Red", "Green", "Blue"};
  for (int i = 0; i < 3; ++i) colour.SetEnumReference(i, names[i]);
  EXPECT_EQ(colour(), Red);
  colour = Blue;
  EXPECT_EQ(camera.As<IEnumeration>("E").GetIntValue(), 30);
  EXPECT_EQ(colour.GetValue(), Blue);
  EXPECT_EQ(colour.GetEntry(Blue)->GetValue(), 30);
  EXPECT_THROW(colour = Green, AccessException) << "the device has no such entry";
  EXPECT_THROW(colour.SetEnumReference(3, "Red"), OutOfRangeException);
  colour = "Other";
  EXPECT_THROW(colour.GetValue(), AccessException) << "the program has no such enumerator";
}

class Params : public CGeneric_XMLLoaderParams {
 public:
  CIntegerRef Width;

 protected:
  void _Initialize(INodeMap* map) override {
    static_cast<IReference&>(Width).SetReference(map->GetNode("I"));
  }
};

TEST(References, CameraClassesBindThemWhenTheDescriptionIsLoaded) {
  CNodeMapRefT<Params> camera;
  EXPECT_EQ(camera.Width.GetAccessMode(), NI);
  camera._LoadXMLFromString(Description(kNodes).c_str());
  EXPECT_EQ(camera.Width(), 5);
}

}  // namespace
