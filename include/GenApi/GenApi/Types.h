/// Enumerations and small types of the node interface.
#ifndef GENAPI_TYPES_H
#define GENAPI_TYPES_H

#include "../Base/GCStringVector.h"
#include "../Base/GCTypes.h"
#include "GenApiDll.h"

namespace GENAPI_NAMESPACE {

typedef GENICAM_NAMESPACE::gcstring_vector StringList_t;

typedef enum _ESign { Signed = 0, Unsigned = 1, _UndefinedSign = 2 } ESign;

/// NI not implemented, NA not available, WO write only, RO read only, RW both.
typedef enum _EAccessMode {
  NI = 0,
  NA = 1,
  WO = 2,
  RO = 3,
  RW = 4,
  _UndefinedAccesMode = 5,
  _CycleDetectAccesMode = 6
} EAccessMode;

typedef enum _EVisibility {
  Beginner = 0,
  Expert = 1,
  Guru = 2,
  Invisible = 3,
  _UndefinedVisibility = 99
} EVisibility;

/// NoCache: every access goes to the device. WriteThrough: a write also fills the cache. WriteAround: a write
/// empties the cache, the next read fills it.
typedef enum _ECachingMode {
  NoCache = 0,
  WriteThrough = 1,
  WriteAround = 2,
  _UndefinedCachingMode = 3
} ECachingMode;

typedef enum _ERepresentation {
  Linear = 0,
  Logarithmic = 1,
  Boolean = 2,
  PureNumber = 3,
  HexNumber = 4,
  IPV4Address = 5,
  MACAddress = 6,
  _UndefinedRepresentation = 7
} ERepresentation;
#ifndef NO_UNDEFINEDED_REPRESENTATION
#define _UndefindedRepresentation _UndefinedRepresentation
#endif

typedef enum _EEndianess { BigEndian = 0, LittleEndian = 1, _UndefinedEndian = 2 } EEndianess;

typedef enum _ENameSpace { Custom = 0, Standard = 1, _UndefinedNameSpace = 2 } ENameSpace;

typedef enum _EStandardNameSpace {
  None = 0,
  GEV = 1,
  IIDC = 2,
  CL = 3,
  USB = 4,
  _UndefinedStandardNameSpace = 5
} EStandardNameSpace;

typedef enum _EYesNo { No = 0, Yes = 1, _UndefinedYesNo = 2 } EYesNo;

typedef enum _ESlope {
  Increasing = 0,
  Decreasing = 1,
  Varying = 2,
  Automatic = 3,
  _UndefinedESlope = 4
} ESlope;

typedef enum _EXMLValidation {
  xvLoad = 0x1,
  xvCycles = 0x2,
  xvSFNC = 0x4,
  xvDefault = 0,
  xvAll = static_cast<int>(0xffffffffU),
  _UndefinedEXMLValidation = 0x8000000
} EXMLValidation;

typedef enum _EDisplayNotation {
  fnAutomatic = 0,
  fnFixed = 1,
  fnScientific = 2,
  _UndefinedEDisplayNotation = 3
} EDisplayNotation;

/// The principal interface of a node.
typedef enum _EInterfaceType {
  intfIValue = 0,
  intfIBase = 1,
  intfIInteger = 2,
  intfIBoolean = 3,
  intfICommand = 4,
  intfIFloat = 5,
  intfIString = 6,
  intfIRegister = 7,
  intfICategory = 8,
  intfIEnumeration = 9,
  intfIEnumEntry = 10,
  intfIPort = 11
} EInterfaceType;

typedef enum _ELinkType {
  ctParentNodes = 0,
  ctReadingChildren = 1,
  ctWritingChildren = 2,
  ctInvalidatingChildren = 3,
  ctDependingNodes = 4,
  ctTerminalNodes = 5,
  ctValueChangingChildren = 6
} ELinkType;

typedef enum _EIncMode { noIncrement = 0, fixedIncrement = 1, listIncrement = 2 } EIncMode;

typedef enum _EInputDirection { idFrom = 0, idTo = 1, idNone = 2 } EInputDirection;

typedef enum _EGenApiSchemaVersion { v1_0 = 1, v1_1 = 2, _Undefined = -1 } EGenApiSchemaVersion;

/// csmOff: callbacks fire. csmActive: none fires until csmOff. csmOnce: those of the next call do not fire.
typedef enum _ECallbackSuppressMode { csmOff = 0, csmActive = 1, csmOnce = 2 } ECallbackSuppressMode;

typedef enum _ECacheUsage_t {
  CacheUsage_Automatic = 0,
  CacheUsage_ForceWrite = 1,
  CacheUsage_ForceRead = 2,
  CacheUsage_Ignore = 3
} ECacheUsage_t;

typedef enum _EContentType_t { ContentType_Xml = 0, ContentType_ZippedXml = 1 } EContentType_t;

}  // namespace GENAPI_NAMESPACE

#endif
