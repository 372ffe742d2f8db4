/// Enumerators as texts and back.
#ifndef GENAPI_ENUMCLASSES_H
#define GENAPI_ENUMCLASSES_H

#include "../Base/GCString.h"
#include "GenApiDll.h"
#include "Types.h"

namespace GENAPI_NAMESPACE {

// The texts are those of descriptions: "RW", "Beginner", "LittleEndian". An enumerator without a text of its
// own reads "_Undefined" and the name of its kind.

class GENAPI_DECL ESignClass {
 public:
  /// Returns false, and leaves *pValue alone, when the text is unknown or pValue is null.
  static bool FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, ESign* pValue);
  static void ToString(GENICAM_NAMESPACE::gcstring& ValueStr, ESign* pValue);
  static GENICAM_NAMESPACE::gcstring ToString(ESign Value);
};

class GENAPI_DECL EEndianessClass {
 public:
  /// Returns false, and leaves *pValue alone, when the text is unknown or pValue is null.
  static bool FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, EEndianess* pValue);
  static void ToString(GENICAM_NAMESPACE::gcstring& ValueStr, EEndianess* pValue);
  static GENICAM_NAMESPACE::gcstring ToString(EEndianess Value);
};

class GENAPI_DECL ERepresentationClass {
 public:
  /// Returns false, and leaves *pValue alone, when the text is unknown or pValue is null.
  static bool FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, ERepresentation* pValue);
  static void ToString(GENICAM_NAMESPACE::gcstring& ValueStr, ERepresentation* pValue);
  static GENICAM_NAMESPACE::gcstring ToString(ERepresentation Value);
};

class GENAPI_DECL EVisibilityClass {
 public:
  /// Returns false, and leaves *pValue alone, when the text is unknown or pValue is null.
  static bool FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, EVisibility* pValue);
  static void ToString(GENICAM_NAMESPACE::gcstring& ValueStr, EVisibility* pValue);
  static GENICAM_NAMESPACE::gcstring ToString(EVisibility Value);
};

class GENAPI_DECL EAccessModeClass {
 public:
  /// Returns false, and leaves *pValue alone, when the text is unknown or pValue is null.
  static bool FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, EAccessMode* pValue);
  static void ToString(GENICAM_NAMESPACE::gcstring& ValueStr, EAccessMode* pValue);
  static GENICAM_NAMESPACE::gcstring ToString(EAccessMode Value);
};

class GENAPI_DECL ECachingModeClass {
 public:
  /// Returns false, and leaves *pValue alone, when the text is unknown or pValue is null.
  static bool FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, ECachingMode* pValue);
  static void ToString(GENICAM_NAMESPACE::gcstring& ValueStr, ECachingMode* pValue);
  static GENICAM_NAMESPACE::gcstring ToString(ECachingMode Value);
};

class GENAPI_DECL ENameSpaceClass {
 public:
  /// Returns false, and leaves *pValue alone, when the text is unknown or pValue is null.
  static bool FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, ENameSpace* pValue);
  static void ToString(GENICAM_NAMESPACE::gcstring& ValueStr, ENameSpace* pValue);
  static GENICAM_NAMESPACE::gcstring ToString(ENameSpace Value);
};

class GENAPI_DECL EYesNoClass {
 public:
  /// Returns false, and leaves *pValue alone, when the text is unknown or pValue is null.
  static bool FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, EYesNo* pValue);
  static void ToString(GENICAM_NAMESPACE::gcstring& ValueStr, EYesNo* pValue);
  static GENICAM_NAMESPACE::gcstring ToString(EYesNo Value);
};

class GENAPI_DECL EStandardNameSpaceClass {
 public:
  /// Returns false, and leaves *pValue alone, when the text is unknown or pValue is null.
  static bool FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, EStandardNameSpace* pValue);
  static void ToString(GENICAM_NAMESPACE::gcstring& ValueStr, EStandardNameSpace* pValue);
  static GENICAM_NAMESPACE::gcstring ToString(EStandardNameSpace Value);
};

class GENAPI_DECL ESlopeClass {
 public:
  /// Returns false, and leaves *pValue alone, when the text is unknown or pValue is null.
  static bool FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, ESlope* pValue);
  static void ToString(GENICAM_NAMESPACE::gcstring& ValueStr, ESlope* pValue);
  static GENICAM_NAMESPACE::gcstring ToString(ESlope Value);
};

class GENAPI_DECL EDisplayNotationClass {
 public:
  /// Returns false, and leaves *pValue alone, when the text is unknown or pValue is null.
  static bool FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, EDisplayNotation* pValue);
  static void ToString(GENICAM_NAMESPACE::gcstring& ValueStr, EDisplayNotation* pValue);
  static GENICAM_NAMESPACE::gcstring ToString(EDisplayNotation Value);
};

class GENAPI_DECL EInputDirectionClass {
 public:
  /// Returns false, and leaves *pValue alone, when the text is unknown or pValue is null.
  static bool FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, EInputDirection* pValue);
  static void ToString(GENICAM_NAMESPACE::gcstring& ValueStr, EInputDirection* pValue);
  static GENICAM_NAMESPACE::gcstring ToString(EInputDirection Value);
};

class GENAPI_DECL EGenApiSchemaVersionClass {
 public:
  /// Returns false, and leaves *pValue alone, when the text is unknown or pValue is null.
  static bool FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, EGenApiSchemaVersion* pValue);
  static void ToString(GENICAM_NAMESPACE::gcstring& ValueStr, EGenApiSchemaVersion* pValue);
  static GENICAM_NAMESPACE::gcstring ToString(EGenApiSchemaVersion Value);
};

}  // namespace GENAPI_NAMESPACE

#endif
