#include "GenApi/EnumClasses.h"

#include <cstddef>
#include <cstring>

namespace GENAPI_NAMESPACE {

using GENICAM_NAMESPACE::gcstring;

namespace {

template <class Enum>
struct Row {
  const char* text;
  Enum value;
};

template <class Enum, std::size_t kCount>
bool Find(const Row<Enum> (&rows)[kCount], const gcstring& text, Enum* value) {
  if (!value) return false;
  for (const Row<Enum>& row : rows) {
    if (std::strcmp(row.text, text.c_str()) != 0) continue;
    *value = row.value;
    return true;
  }
  return false;
}

template <class Enum, std::size_t kCount>
gcstring TextOf(const Row<Enum> (&rows)[kCount], Enum value, const char* undefined) {
  for (const Row<Enum>& row : rows)
    if (row.value == value) return row.text;
  return undefined;
}

constexpr Row<ESign> kESign[] = {{"Signed", Signed}, {"Unsigned", Unsigned}};
constexpr Row<EEndianess> kEEndianess[] = {{"BigEndian", BigEndian}, {"LittleEndian", LittleEndian}};
constexpr Row<ERepresentation> kERepresentation[] = {{"Linear", Linear},        {"Logarithmic", Logarithmic},
                                                     {"Boolean", Boolean},      {"PureNumber", PureNumber},
                                                     {"HexNumber", HexNumber},  {"IPV4Address", IPV4Address},
                                                     {"MACAddress", MACAddress}};
constexpr Row<EVisibility> kEVisibility[] = {
    {"Beginner", Beginner}, {"Expert", Expert}, {"Guru", Guru}, {"Invisible", Invisible}};
constexpr Row<EAccessMode> kEAccessMode[] = {{"NI", NI}, {"NA", NA}, {"WO", WO}, {"RO", RO}, {"RW", RW}};
constexpr Row<ECachingMode> kECachingMode[] = {
    {"NoCache", NoCache}, {"WriteThrough", WriteThrough}, {"WriteAround", WriteAround}};
constexpr Row<ENameSpace> kENameSpace[] = {{"Custom", Custom}, {"Standard", Standard}};
constexpr Row<EYesNo> kEYesNo[] = {{"Yes", Yes}, {"No", No}};
constexpr Row<EStandardNameSpace> kEStandardNameSpace[] = {
    {"None", None}, {"GEV", GEV}, {"IIDC", IIDC}, {"CL", CL}, {"USB", USB}};
constexpr Row<ESlope> kESlope[] = {
    {"Increasing", Increasing}, {"Decreasing", Decreasing}, {"Varying", Varying}, {"Automatic", Automatic}};
constexpr Row<EDisplayNotation> kEDisplayNotation[] = {
    {"Automatic", fnAutomatic}, {"Fixed", fnFixed}, {"Scientific", fnScientific}};
constexpr Row<EInputDirection> kEInputDirection[] = {{"From", idFrom}, {"To", idTo}, {"None", idNone}};
constexpr Row<EGenApiSchemaVersion> kEGenApiSchemaVersion[] = {{"v1_0", v1_0}, {"v1_1", v1_1}};

}  // namespace

bool ESignClass::FromString(const gcstring& ValueStr, ESign* pValue) {
  return Find(kESign, ValueStr, pValue);
}
void ESignClass::ToString(gcstring& ValueStr, ESign* pValue) {
  ValueStr = pValue ? ToString(*pValue) : gcstring("_UndefinedSign");
}
gcstring ESignClass::ToString(ESign Value) {
  return TextOf(kESign, Value, "_UndefinedSign");
}

bool EEndianessClass::FromString(const gcstring& ValueStr, EEndianess* pValue) {
  return Find(kEEndianess, ValueStr, pValue);
}
void EEndianessClass::ToString(gcstring& ValueStr, EEndianess* pValue) {
  ValueStr = pValue ? ToString(*pValue) : gcstring("_UndefinedEndian");
}
gcstring EEndianessClass::ToString(EEndianess Value) {
  return TextOf(kEEndianess, Value, "_UndefinedEndian");
}

bool ERepresentationClass::FromString(const gcstring& ValueStr, ERepresentation* pValue) {
  return Find(kERepresentation, ValueStr, pValue);
}
void ERepresentationClass::ToString(gcstring& ValueStr, ERepresentation* pValue) {
  ValueStr = pValue ? ToString(*pValue) : gcstring("_UndefinedRepresentation");
}
gcstring ERepresentationClass::ToString(ERepresentation Value) {
  return TextOf(kERepresentation, Value, "_UndefinedRepresentation");
}

bool EVisibilityClass::FromString(const gcstring& ValueStr, EVisibility* pValue) {
  return Find(kEVisibility, ValueStr, pValue);
}
void EVisibilityClass::ToString(gcstring& ValueStr, EVisibility* pValue) {
  ValueStr = pValue ? ToString(*pValue) : gcstring("_UndefinedVisibility");
}
gcstring EVisibilityClass::ToString(EVisibility Value) {
  return TextOf(kEVisibility, Value, "_UndefinedVisibility");
}

bool EAccessModeClass::FromString(const gcstring& ValueStr, EAccessMode* pValue) {
  return Find(kEAccessMode, ValueStr, pValue);
}
void EAccessModeClass::ToString(gcstring& ValueStr, EAccessMode* pValue) {
  ValueStr = pValue ? ToString(*pValue) : gcstring("_UndefinedAccessMode");
}
gcstring EAccessModeClass::ToString(EAccessMode Value) {
  return TextOf(kEAccessMode, Value, "_UndefinedAccessMode");
}

bool ECachingModeClass::FromString(const gcstring& ValueStr, ECachingMode* pValue) {
  return Find(kECachingMode, ValueStr, pValue);
}
void ECachingModeClass::ToString(gcstring& ValueStr, ECachingMode* pValue) {
  ValueStr = pValue ? ToString(*pValue) : gcstring("_UndefinedCachingMode");
}
gcstring ECachingModeClass::ToString(ECachingMode Value) {
  return TextOf(kECachingMode, Value, "_UndefinedCachingMode");
}

bool ENameSpaceClass::FromString(const gcstring& ValueStr, ENameSpace* pValue) {
  return Find(kENameSpace, ValueStr, pValue);
}
void ENameSpaceClass::ToString(gcstring& ValueStr, ENameSpace* pValue) {
  ValueStr = pValue ? ToString(*pValue) : gcstring("_UndefinedNameSpace");
}
gcstring ENameSpaceClass::ToString(ENameSpace Value) {
  return TextOf(kENameSpace, Value, "_UndefinedNameSpace");
}

bool EYesNoClass::FromString(const gcstring& ValueStr, EYesNo* pValue) {
  return Find(kEYesNo, ValueStr, pValue);
}
void EYesNoClass::ToString(gcstring& ValueStr, EYesNo* pValue) {
  ValueStr = pValue ? ToString(*pValue) : gcstring("_UndefinedYesNo");
}
gcstring EYesNoClass::ToString(EYesNo Value) {
  return TextOf(kEYesNo, Value, "_UndefinedYesNo");
}

bool EStandardNameSpaceClass::FromString(const gcstring& ValueStr, EStandardNameSpace* pValue) {
  return Find(kEStandardNameSpace, ValueStr, pValue);
}
void EStandardNameSpaceClass::ToString(gcstring& ValueStr, EStandardNameSpace* pValue) {
  ValueStr = pValue ? ToString(*pValue) : gcstring("_UndefinedStandardNameSpace");
}
gcstring EStandardNameSpaceClass::ToString(EStandardNameSpace Value) {
  return TextOf(kEStandardNameSpace, Value, "_UndefinedStandardNameSpace");
}

bool ESlopeClass::FromString(const gcstring& ValueStr, ESlope* pValue) {
  return Find(kESlope, ValueStr, pValue);
}
void ESlopeClass::ToString(gcstring& ValueStr, ESlope* pValue) {
  ValueStr = pValue ? ToString(*pValue) : gcstring("_UndefinedESlope");
}
gcstring ESlopeClass::ToString(ESlope Value) {
  return TextOf(kESlope, Value, "_UndefinedESlope");
}

bool EDisplayNotationClass::FromString(const gcstring& ValueStr, EDisplayNotation* pValue) {
  return Find(kEDisplayNotation, ValueStr, pValue);
}
void EDisplayNotationClass::ToString(gcstring& ValueStr, EDisplayNotation* pValue) {
  ValueStr = pValue ? ToString(*pValue) : gcstring("_UndefinedEDisplayNotation");
}
gcstring EDisplayNotationClass::ToString(EDisplayNotation Value) {
  return TextOf(kEDisplayNotation, Value, "_UndefinedEDisplayNotation");
}

bool EInputDirectionClass::FromString(const gcstring& ValueStr, EInputDirection* pValue) {
  return Find(kEInputDirection, ValueStr, pValue);
}
void EInputDirectionClass::ToString(gcstring& ValueStr, EInputDirection* pValue) {
  ValueStr = pValue ? ToString(*pValue) : gcstring("_UndefinedEInputDirection");
}
gcstring EInputDirectionClass::ToString(EInputDirection Value) {
  return TextOf(kEInputDirection, Value, "_UndefinedEInputDirection");
}

bool EGenApiSchemaVersionClass::FromString(const gcstring& ValueStr, EGenApiSchemaVersion* pValue) {
  return Find(kEGenApiSchemaVersion, ValueStr, pValue);
}
void EGenApiSchemaVersionClass::ToString(gcstring& ValueStr, EGenApiSchemaVersion* pValue) {
  ValueStr = pValue ? ToString(*pValue) : gcstring("_UndefinedEGenApiSchemaVersion");
}
gcstring EGenApiSchemaVersionClass::ToString(EGenApiSchemaVersion Value) {
  return TextOf(kEGenApiSchemaVersion, Value, "_UndefinedEGenApiSchemaVersion");
}

}  // namespace GENAPI_NAMESPACE
