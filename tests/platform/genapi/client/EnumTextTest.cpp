// Enumerators as texts.
#include <gtest/gtest.h>

#include <string>

#include "../MemoryPort.h"
#include "GenApi/EnumClasses.h"

namespace {

using namespace GenApi;
using namespace GenICam;
using namespace zyn::genapi::test;

template <class Class, class Enum>
void Check(Enum value, const char* text) {
  EXPECT_EQ(Class::ToString(value), text);
  gcstring written;
  Class::ToString(written, &value);
  EXPECT_EQ(written, text);
  Enum read = static_cast<Enum>(-1);
  EXPECT_TRUE(Class::FromString(text, &read)) << text;
  EXPECT_EQ(read, value) << text;
}

TEST(EnumTexts, AreThoseOfDescriptions) {
  Check<ESignClass>(Signed, "Signed");
  Check<ESignClass>(Unsigned, "Unsigned");
  Check<EEndianessClass>(BigEndian, "BigEndian");
  Check<EEndianessClass>(LittleEndian, "LittleEndian");
  const char* const representations[] = {"Linear",    "Logarithmic", "Boolean",   "PureNumber",
                                         "HexNumber", "IPV4Address", "MACAddress"};
  for (int i = 0; i < 7; ++i)
    Check<ERepresentationClass>(static_cast<ERepresentation>(i), representations[i]);
  const char* const visibilities[] = {"Beginner", "Expert", "Guru", "Invisible"};
  for (int i = 0; i < 4; ++i) Check<EVisibilityClass>(static_cast<EVisibility>(i), visibilities[i]);
  const char* const modes[] = {"NI", "NA", "WO", "RO", "RW"};
  for (int i = 0; i < 5; ++i) Check<EAccessModeClass>(static_cast<EAccessMode>(i), modes[i]);
  const char* const caching[] = {"NoCache", "WriteThrough", "WriteAround"};
  for (int i = 0; i < 3; ++i) Check<ECachingModeClass>(static_cast<ECachingMode>(i), caching[i]);
  Check<ENameSpaceClass>(Custom, "Custom");
  Check<ENameSpaceClass>(Standard, "Standard");
  Check<EYesNoClass>(Yes, "Yes");
  Check<EYesNoClass>(No, "No");
  const char* const spaces[] = {"None", "GEV", "IIDC", "CL", "USB"};
  for (int i = 0; i < 5; ++i) Check<EStandardNameSpaceClass>(static_cast<EStandardNameSpace>(i), spaces[i]);
  const char* const slopes[] = {"Increasing", "Decreasing", "Varying", "Automatic"};
  for (int i = 0; i < 4; ++i) Check<ESlopeClass>(static_cast<ESlope>(i), slopes[i]);
  const char* const notations[] = {"Automatic", "Fixed", "Scientific"};
  for (int i = 0; i < 3; ++i) Check<EDisplayNotationClass>(static_cast<EDisplayNotation>(i), notations[i]);
  Check<EInputDirectionClass>(idTo, "To");
  Check<EGenApiSchemaVersionClass>(v1_1, "v1_1");
}

TEST(EnumTexts, WhatIsUnknownIsUndefined) {
  EXPECT_EQ(EAccessModeClass::ToString(_UndefinedAccesMode), "_UndefinedAccessMode");
  EXPECT_EQ(EVisibilityClass::ToString(_UndefinedVisibility), "_UndefinedVisibility");
  EVisibility visibility = Guru;
  EXPECT_FALSE(EVisibilityClass::FromString("guru", &visibility));
  EXPECT_EQ(visibility, Guru);
  EXPECT_FALSE(EVisibilityClass::FromString("Guru", nullptr));
}

}  // namespace
